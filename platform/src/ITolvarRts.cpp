#include <ITolvarRts.h>

ITolvarRts::ITolvarRts(QObject* parent)
    : QObject(parent)
{}

ITolvarRts::~ITolvarRts() = default;
