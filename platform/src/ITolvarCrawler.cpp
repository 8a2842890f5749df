#include <ITolvarCrawler.h>

ITolvarCrawler::ITolvarCrawler(QObject* parent)
    : QObject(parent)
{}

ITolvarCrawler::~ITolvarCrawler() = default;
