#include <Tolvar/Varundo/DataManager.h>

#include <QTextCodec>

namespace Tolvar::Varundo {

namespace {

constexpr int mibIso8859_15 = 111;

QTextCodec* codecFor(DataManager::TextCodec codec)
{
    switch (codec) {
    case DataManager::Utf8: {
        static QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
        return utf8;
    }
    case DataManager::Utf16: {
        static QTextCodec* const utf16 = QTextCodec::codecForName("UTF-16");
        return utf16;
    }
    case DataManager::Latin9:
        break;
    }
    static QTextCodec* const latin9 = QTextCodec::codecForMib(mibIso8859_15);
    return latin9;
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
