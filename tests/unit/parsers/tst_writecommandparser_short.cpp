#include "WriteBench.h"

#include <QtTest>

#include <algorithm>
#include <memory>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr char Poison = '\xEE';
constexpr int PoisonSize = 64;

/// A payload that is not terminated, as no payload needs to be: behind its last byte stands poison, so that a
/// read beyond the end shows in the effect. Behind the tight form nothing stands at all, which the address
/// sanitizer watches.
class BorrowedPayload
{
public:
    enum Ending { Poisoned, Tight };

    BorrowedPayload(const QByteArray& bytes, Ending ending)
        : m_size(bytes.size())
        , m_memory(std::make_unique<char[]>(
              static_cast<std::size_t>(m_size + (ending == Poisoned ? PoisonSize : 0))))
    {
        std::copy(bytes.begin(), bytes.end(), m_memory.get());
        if (ending == Poisoned) {
            std::fill_n(m_memory.get() + m_size, PoisonSize, Poison);
        }
    }

    [[nodiscard]] QByteArray payload() const { return QByteArray::fromRawData(m_memory.get(), m_size); }

private:
    int m_size;
    std::unique_ptr<char[]> m_memory;
};

// No byte zero and none alike, so that a byte that was read, or was not, shows.
const QByteArray FullPayload("\x03\x05\x14\x1A\x41\x42\x43\x44\x45\x46\x47\x48\x49\x4A\x4B\x4C"
                             "\x4D\x4E\x4F\x50\x51\x52\x53\x54");

struct FixedPayload
{
    int id;
    int size; // how many bytes are read, each at its fixed place
};

// A missing byte of these counts as zero, wherever the payload ends.
constexpr FixedPayload FixedPayloads[] = {
    {0x01, 1}, {0x30, 4}, {0x32, 2}, {0x36, 4}, {0x38, 2}, {0x3C, 4}, {0x3E, 2}, {0x40, 4}, {0x42, 2},
    {0x50, 3}, {0x52, 2}, {0x62, 2}, {0x70, 3}, {0x72, 2}, {0xC0, 2}, {0xC2, 2}, {0xC4, 2}, {0xC6, 2},
    {0xF0, 2}, {0xF3, 2}, {0xF5, 1}, {0xF6, 2}, {0xF9, 2}, {0xFB, 2}, {0xFC, 2}, {0xFD, 1},
};

QStringList effectOf(int id, const QByteArray& payload)
{
    WriteBench bench;
    bench.fill();
    return bench.effectOf(id, payload);
}

/// The bytes from a place on, made up to a size with zeros.
QString doubleAt(const QByteArray& payload, int from)
{
    return QStringLiteral("double ") +
           QString::fromLatin1(payload.mid(from, 8).leftJustified(8, '\0').toHex());
}

QString singleAt(const QByteArray& payload, int from)
{
    return QStringLiteral("float ") +
           QString::fromLatin1(payload.mid(from, 4).leftJustified(4, '\0').toHex());
}

} // namespace

/// Payloads of every length below the intended one: nothing outside is read, and what is missing is zero.
class WriteCommandParserShortPayloadTest : public QObject
{
    Q_OBJECT

private slots:
    void missingByteCountsAsZero_data();
    void missingByteCountsAsZero();
    void shortPosition3DIsFilledUpWithZeros();
    void shortOrientation3DIsFilledUpWithZeros();
    void byteBehindTheEndIsNeverSeen_data();
    void byteBehindTheEndIsNeverSeen();
};

void WriteCommandParserShortPayloadTest::missingByteCountsAsZero_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("size");
    for (const FixedPayload& row : FixedPayloads) {
        QTest::newRow(QByteArray::number(row.id, 16)) << row.id << row.size;
    }
}

void WriteCommandParserShortPayloadTest::missingByteCountsAsZero()
{
    QFETCH(int, id);
    QFETCH(int, size);
    for (int length = 0; length < size; ++length) {
        const QByteArray given = FullPayload.left(length);
        const QStringList effect = effectOf(id, given.leftJustified(size, '\0'));
        QVERIFY(!effect.isEmpty());
        QVERIFY(effect != effectOf(id, FullPayload.left(size)));
        QCOMPARE(effectOf(id, given), effect);
        QCOMPARE(effectOf(id, BorrowedPayload(given, BorrowedPayload::Poisoned).payload()), effect);
        QCOMPARE(effectOf(id, BorrowedPayload(given, BorrowedPayload::Tight).payload()), effect);
    }
}

void WriteCommandParserShortPayloadTest::shortPosition3DIsFilledUpWithZeros()
{
    for (int length = 0; length <= FullPayload.size(); ++length) {
        const QByteArray given = FullPayload.left(length);
        const QStringList effect{
            QStringLiteral("writeMeasurement3DPosition(%1, %2, %3)")
                .arg(doubleAt(given, 0), doubleAt(given, 8), doubleAt(given, std::max(0, length - 8)))};
        QCOMPARE(effectOf(0xD4, BorrowedPayload(given, BorrowedPayload::Poisoned).payload()), effect);
        QCOMPARE(effectOf(0xD4, BorrowedPayload(given, BorrowedPayload::Tight).payload()), effect);
    }
}

void WriteCommandParserShortPayloadTest::shortOrientation3DIsFilledUpWithZeros()
{
    for (int length = 0; length <= 8; ++length) {
        const QByteArray given = FullPayload.left(length);
        const QStringList effect{QStringLiteral("writeMeasurement3DOrientation(%1, %2)")
                                     .arg(singleAt(given, 0), singleAt(given, std::max(0, length - 4)))};
        QCOMPARE(effectOf(0xD5, BorrowedPayload(given, BorrowedPayload::Poisoned).payload()), effect);
        QCOMPARE(effectOf(0xD5, BorrowedPayload(given, BorrowedPayload::Tight).payload()), effect);
    }
}

void WriteCommandParserShortPayloadTest::byteBehindTheEndIsNeverSeen_data()
{
    QTest::addColumn<int>("codec");
    QTest::newRow("ISO-8859-15") << 0;
    QTest::newRow("UTF-8") << 1;
    QTest::newRow("UTF-16") << 2;
}

void WriteCommandParserShortPayloadTest::byteBehindTheEndIsNeverSeen()
{
    QFETCH(int, codec);
    const auto effect = [codec](int id, const QByteArray& payload) {
        WriteBench bench;
        bench.fill();
        bench.model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
        return bench.effectOf(id, payload);
    };
    QList<int> ids{0x90, 0x92, 0x95, 0x98, 0x99, 0xD4, 0xD5, 0xD7, 0xE5};
    for (const FixedPayload& row : FixedPayloads) {
        ids.append(row.id);
    }
    QCOMPARE(ids.size(), 35); // every command that there is
    for (const int id : ids) {
        for (int length = 0; length <= FullPayload.size(); ++length) {
            const QByteArray given = FullPayload.left(length);
            const QStringList expected = effect(id, given);
            QCOMPARE(effect(id, BorrowedPayload(given, BorrowedPayload::Poisoned).payload()), expected);
            QCOMPARE(effect(id, BorrowedPayload(given, BorrowedPayload::Tight).payload()), expected);
        }
    }
}

QTEST_GUILESS_MAIN(WriteCommandParserShortPayloadTest)

#include "tst_writecommandparser_short.moc"
