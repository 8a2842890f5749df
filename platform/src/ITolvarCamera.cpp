#include <ITolvarCamera.h>

ITolvarCamera::ITolvarCamera(QObject* parent)
    : QObject(parent)
{}

ITolvarCamera::~ITolvarCamera() = default;
