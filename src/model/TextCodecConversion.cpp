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

/// By hand, since a QTextCodec on ICU opens a converter for each text, which takes longer than the rest of
/// the command. ISO-8859-15 is Latin-1 but for eight bytes.
QString fromLatin9(const char* bytes, int size)
{
    QString text = QString::fromLatin1(bytes, size);
    for (QChar& character : text) {
        switch (character.unicode()) {
        case 0xA4:
            character = QChar(0x20AC); // euro sign
            break;
        case 0xA6:
            character = QChar(0x0160); // S and s with caron
            break;
        case 0xA8:
            character = QChar(0x0161);
            break;
        case 0xB4:
            character = QChar(0x017D); // Z and z with caron
            break;
        case 0xB8:
            character = QChar(0x017E);
            break;
        case 0xBC:
            character = QChar(0x0152); // the ligatures OE and oe
            break;
        case 0xBD:
            character = QChar(0x0153);
            break;
        case 0xBE:
            character = QChar(0x0178); // Y with diaeresis
            break;
        default:
            break;
        }
    }
    return text;
}

} // namespace

QString DataManager::convertTextToCodec(QByteArray text) const
{
    return convertTextToCodec(text.constData(), text.size());
}

QString DataManager::convertTextToCodec(const char* bytes, int size) const
{
    const bool isWide = m_textCodec == Utf8 || m_textCodec == Utf16;
    return isWide ? codecFor(m_textCodec)->toUnicode(bytes, size) : fromLatin9(bytes, size);
}

QByteArray DataManager::convertByteArrayFromText(QString text) const
{
    return codecFor(m_textCodec)->fromUnicode(text);
}

} // namespace Tolvar::Varundo
