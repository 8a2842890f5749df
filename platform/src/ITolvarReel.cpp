#include <ITolvarReel.h>

ITolvarReel::ITolvarReel(QObject* parent)
    : QObject(parent)
{}

ITolvarReel::~ITolvarReel() = default;
