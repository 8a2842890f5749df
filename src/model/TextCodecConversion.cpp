#include <Tolvar/Varundo/DataManager.h>

#include <QTextCodec>

namespace Tolvar::Varundo {

namespace {

constexpr int mibIso8859_15 = 111;

QTextCodec* codecFor(DataManager::TextCodec codec)
{
    switch (codec) {
    case DataManager::Utf8:
        return QTextCodec::codecForName("UTF-8");
    case DataManager::Utf16:
        return QTextCodec::codecForName("UTF-16");
    case DataManager::Latin9:
        break;
    }
    return QTextCodec::codecForMib(mibIso8859_15);
}

} // namespace

QString DataManager::convertTextToCodec(QByteArray text) const
{
    return codecFor(m_textCodec)->toUnicode(text);
}

QByteArray DataManager::convertByteArrayFromText(QString text) const
{
    return codecFor(m_textCodec)->fromUnicode(text);
}

} // namespace Tolvar::Varundo
