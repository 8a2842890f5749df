#include <Tolvar/Varundo/FrameCodec.h>

#include <QTest>

using namespace Tolvar::Varundo;

namespace {

QByteArray packet()
{
    return QByteArray::fromHex("03 02 01 01 00 00 03");
}

/// The receiving end of a unit that knows one request, that for the text codec.
class Unit
{
public:
    /// Takes the bytes in one read, and returns what comes back.
    QByteArray read(const QByteArray& bytes)
    {
        m_replies.clear();
        m_decoder.decode(bytes.constData(), bytes.size(), *this);
        return m_replies;
    }
    CommandMessage lastAccepted() const { return m_accepted; }

    void frameAccepted(const CommandMessage& message)
    {
        m_accepted = message;
        m_replies += static_cast<char>(Protocol::Ack);
        if (message.grpId == Protocol::Read && message.cmdId == 0x01) {
            m_replies += encodeFrame({0x01, Protocol::Read, 1, QByteArray(1, '\0')});
        }
    }
    void frameRejected() { m_replies += static_cast<char>(Protocol::Nack); }
    void printableByte(quint8) {}
    void byteDiscarded(quint8) {}
    bool wantsMore() const { return true; }

private:
    FrameDecoder m_decoder;
    QByteArray m_replies;
    CommandMessage m_accepted;
};

/// The recipe of docs/protocol.md, step by step. How often the packet had to be sent; 0 if it was in vain.
int getInStep(Unit& unit)
{
    const QByteArray answer = QByteArray::fromHex("06 02 01 01 01 00 00 03");
    constexpr int LargestFiller = 0x10000;
    int packets = 0;
    for (int filler = 512; filler <= 2 * LargestFiller; filler *= 2) {
        ++packets;
        if (unit.read(packet()).endsWith(answer)) {
            return packets;
        }
        unit.read(QByteArray(qMin(filler, LargestFiller), '\x01'));
    }
    return unit.read(packet()).endsWith(answer) ? packets + 1 : 0;
}

} // namespace

/// The recipe by which controllers get a unit back into step has to work from wherever they may have left it.
class TestSynchronising : public QObject
{
    Q_OBJECT

private slots:
    void recipeWorksAfter_data();
    void recipeWorksAfter();
    void recipeWorksHoweverManyPayloadBytesAreMissing();
    void recipeWorksHoweverManyPayloadBytesWereLeft();
    void recipeWorksForEveryLengthThatWasBegun();
};

void TestSynchronising::recipeWorksAfter_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("packets");
    QTest::newRow("nothing") << QByteArray() << 1;
    QTest::newRow("a whole frame") << QByteArray::fromHex("02 31 01 00 00 03") << 1;
    QTest::newRow("text") << QByteArray("abc") << 1;
    QTest::newRow("STX") << QByteArray::fromHex("02") << 2;
    QTest::newRow("command") << QByteArray::fromHex("02 31") << 2;
    QTest::newRow("command 00") << QByteArray::fromHex("02 00") << 3;
    QTest::newRow("wrong group") << QByteArray::fromHex("02 31 07") << 2;
    QTest::newRow("group") << QByteArray::fromHex("02 31 01") << 2;
    QTest::newRow("length low") << QByteArray::fromHex("02 31 01 00") << 3;
    QTest::newRow("length high") << QByteArray::fromHex("02 31 01 05 00") << 2;
    QTest::newRow("payload") << QByteArray::fromHex("02 31 01 05 00 41 42 43 44 45") << 1;
    QTest::newRow("wrong end") << QByteArray::fromHex("02 31 01 00 00 04") << 1;
    QTest::newRow("dropped frame") << QByteArray::fromHex("02 00 01 00 00 03") << 1;
    QTest::newRow("payload left over") << QByteArray::fromHex("02 00 01 02 00 41 42 03") << 2;
}

void TestSynchronising::recipeWorksAfter()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, packets);
    Unit unit;
    unit.read(bytes);
    QCOMPARE(getInStep(unit), packets);

    // In step means that the next frame is taken for what it is.
    QCOMPARE(unit.read(QByteArray::fromHex("02 32 02 02 00 0A 02 03")), QByteArray("\x06"));
    QCOMPARE(unit.lastAccepted().data, QByteArray("\x0A\x02"));
}

void TestSynchronising::recipeWorksHoweverManyPayloadBytesAreMissing()
{
    for (int missing = 0; missing <= Protocol::MaxPayloadSize; missing += missing < 3000 ? 1 : 97) {
        for (const char command : {'\x00', '\x31'}) {
            Unit unit;
            unit.read(QByteArray("\x02") + command + '\x01' + static_cast<char>(missing & 0xFF) +
                      static_cast<char>(missing >> 8));
            QVERIFY2(getInStep(unit) > 0, qPrintable(QString::number(missing)));
            QCOMPARE(unit.read(QByteArray::fromHex("02 33 00 00 00 03")), QByteArray("\x06"));
        }
    }
}

void TestSynchronising::recipeWorksHoweverManyPayloadBytesWereLeft()
{
    for (int left = 1; left <= Protocol::MaxPayloadSize; left += left < 3000 ? 1 : 97) {
        Unit unit;
        unit.read(encodeFrame({0x00, Protocol::Write, static_cast<quint16>(left), QByteArray(left, 'A')}));
        QVERIFY2(getInStep(unit) > 0, qPrintable(QString::number(left)));
        QCOMPARE(unit.read(QByteArray::fromHex("02 33 00 00 00 03")), QByteArray("\x06"));
    }
}

void TestSynchronising::recipeWorksForEveryLengthThatWasBegun()
{
    for (int low = 0; low <= 0xFF; ++low) {
        Unit unit;
        unit.read(QByteArray::fromHex("02 31 01") + static_cast<char>(low));
        QVERIFY2(getInStep(unit) > 0, qPrintable(QString::number(low)));
        QCOMPARE(unit.read(QByteArray::fromHex("02 33 00 00 00 03")), QByteArray("\x06"));
    }
}

QTEST_APPLESS_MAIN(TestSynchronising)
#include "tst_synchronising.moc"
