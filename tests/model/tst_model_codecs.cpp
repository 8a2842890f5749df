#include "ModelText.h"

#include <QTest>
#include <QTextCodec>

#include <random>

using namespace Tolvar::Varundo;
using Model::Bytes;

Q_DECLARE_METATYPE(QTextCodec*)

/// The model's codecs are written out by hand; the protocol's are those of Qt.
class TestModelCodecs : public QObject
{
    Q_OBJECT

private slots:
    void everyCharacterIsEncodedAsQtDoes_data() { addCodecs(); }
    void everyCharacterIsEncodedAsQtDoes();
    void halvesOfPairsAreEncodedAsQtDoes_data() { addCodecs(); }
    void halvesOfPairsAreEncodedAsQtDoes();
    void anyBytesAreDecodedAsQtDoes_data() { addCodecs(); }
    void anyBytesAreDecodedAsQtDoes();
    void blanksAreThoseOfQt();
    void nulCharactersAreRemoved();

private:
    static void addCodecs();
    static QString unchanged(const std::u16string& text);
    static QString compared(int codec, QTextCodec* reference, const std::u16string& text);
};

void TestModelCodecs::addCodecs()
{
    constexpr int Latin9 = 111;
    QTest::addColumn<int>("codec");
    QTest::addColumn<QTextCodec*>("reference");
    QTest::newRow("ISO-8859-15") << 0 << QTextCodec::codecForMib(Latin9);
    QTest::newRow("UTF-8") << 1 << QTextCodec::codecForName("UTF-8");
    QTest::newRow("UTF-16") << 2 << QTextCodec::codecForName("UTF-16");
    QTest::newRow("an unknown number") << 7 << QTextCodec::codecForMib(Latin9);
}

/// QString's own conversions from UTF-16 and UCS-4 swallow a byte-order mark.
QString TestModelCodecs::unchanged(const std::u16string& text)
{
    return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<int>(text.size()));
}

/// What is unlike, empty if nothing is.
QString TestModelCodecs::compared(int codec, QTextCodec* reference, const std::u16string& text)
{
    const Bytes bytes = Model::encoded(codec, text);
    const QByteArray ours(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
    const QByteArray expected = reference->fromUnicode(unchanged(text));
    return ours == expected ? QString()
                            : QStringLiteral("from U+%1 on: Qt has %2, the model %3")
                                  .arg(text.empty() ? 0 : text[0], 4, 16, QLatin1Char('0'))
                                  .arg(QLatin1String(expected.toHex(' ')), QLatin1String(ours.toHex(' ')));
}

/// In blocks, or each character would cost two strings.
void TestModelCodecs::everyCharacterIsEncodedAsQtDoes()
{
    constexpr char32_t Block = 256;
    QFETCH(int, codec);
    QFETCH(QTextCodec*, reference);
    QCOMPARE(compared(codec, reference, u""), QString());
    for (char32_t first = 0; first <= 0x10FFFF; first += Block) {
        std::u16string text;
        for (char32_t character = first; character < first + Block; ++character) {
            if (character > 0xFFFF) {
                text.push_back(QChar::highSurrogate(character));
                text.push_back(QChar::lowSurrogate(character));
            } else if (!QChar::isSurrogate(character)) {
                text.push_back(static_cast<char16_t>(character));
            }
            text.push_back(u'x');
        }
        QCOMPARE(compared(codec, reference, text), QString());
    }
}

void TestModelCodecs::halvesOfPairsAreEncodedAsQtDoes()
{
    QFETCH(int, codec);
    QFETCH(QTextCodec*, reference);
    constexpr char16_t Units[] = {u'a', 0xD83D, 0xDE00, 0x20AC};
    for (int choice = 0; choice < 256; ++choice) {
        std::u16string text;
        for (int left = choice; left > 0; left /= 4) {
            text.push_back(Units[left % 4]);
        }
        QCOMPARE(compared(codec, reference, text), QString());
    }
}

void TestModelCodecs::anyBytesAreDecodedAsQtDoes()
{
    constexpr int Texts = 20000;
    constexpr std::uint8_t Likely[] = {0,    0x41, 0x80, 0xA4, 0xBB, 0xBF, 0xC0, 0xC2, 0xD8, 0xDC, 0xE0,
                                       0xE2, 0xED, 0xEF, 0xF0, 0xF4, 0xF5, 0xFE, 0xFF, 0x9F, 0x90, 0x20};
    QFETCH(int, codec);
    QFETCH(QTextCodec*, reference);
    std::mt19937 random(1);
    for (int count = 0; count < Texts; ++count) {
        Bytes bytes(random() % 9);
        for (std::uint8_t& byte : bytes) {
            byte = random() % 3 == 0 ? static_cast<std::uint8_t>(random())
                                     : Likely[random() % std::size(Likely)];
        }
        const QByteArray same(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
        const QString expected = reference->toUnicode(same);
        if (Model::decoded(codec, bytes) != expected.toStdU16String()) {
            QFAIL(same.toHex(' ').constData());
        }
    }
}

void TestModelCodecs::blanksAreThoseOfQt()
{
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const std::u16string text{static_cast<char16_t>(unit), u'x', static_cast<char16_t>(unit)};
        const QString expected = unchanged(text).trimmed();
        if (Model::trimmed(text) != expected.toStdU16String()) {
            QFAIL(qPrintable(QString::number(unit, 16)));
        }
    }
    QVERIFY(Model::trimmed(u" \u3000\t").empty());
}

void TestModelCodecs::nulCharactersAreRemoved()
{
    QCOMPARE(Model::withoutNul(std::u16string(u"\0a\0\0b\0", 6)), std::u16string(u"ab"));
}

QTEST_APPLESS_MAIN(TestModelCodecs)
#include "tst_model_codecs.moc"
