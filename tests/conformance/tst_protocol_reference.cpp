#include "CommandProbe.h"
#include "ControllerLink.h"
#include "ExampleUnit.h"
#include "ProtocolDocument.h"
#include "SessionPlayer.h"
#include "SessionScript.h"
#include "UnitElement.h"

#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/ElementParam.h>

#include <Tolvar/Varundo/FrameCodec.h>
#include <Tolvar/Varundo/TcpServer.h>

#include <QFile>
#include <QTest>

#include <set>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Tests;

namespace {

QString documentName()
{
    return QStringLiteral(VARUNDO_PROTOCOL_DOCUMENT);
}

/// What a program of a controller would understand of the bytes that a session sends.
struct FrameCollector
{
    void frameAccepted(const CommandMessage& message)
    {
        frames[message.grpId].insert(static_cast<int>(message.cmdId));
    }
    void frameRejected() {}
    void printableByte(quint8) {}
    void byteDiscarded(quint8) {}
    bool wantsMore() const { return true; }

    std::set<int> frames[3];
};

QString inWords(const std::set<int>& ids)
{
    QString words;
    for (const int id : ids) {
        words += QStringLiteral("0x%1 ").arg(id, 2, 16, QLatin1Char('0'));
    }
    return words;
}

} // namespace

/// Keeps docs/protocol.md true: replays its examples against a whole unit, and compares its tables with what
/// a unit does.
class TestProtocolReference : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyExampleIsTrue_data();
    void everyExampleIsTrue();
    void tablesListExactlyTheCommandsThatAUnitKnows_data();
    void tablesListExactlyTheCommandsThatAUnitKnows();
    void everyCommandHasAnExample_data();
    void everyCommandHasAnExample();
    void colourTableIsTheUnits_data();
    void colourTableIsTheUnits();
    void elementNumbersAreTheUnits();
    void exampleUnitStandsAsDescribed();
    void boundsAreTheServers();
    void dateAndTimeComeFromTheClock();

private:
    std::set<int> idsOf(const QStringList& headings) const;

    ProtocolDocument m_document{documentName()};
};

void TestProtocolReference::initTestCase()
{
    if (!qEnvironmentVariable("VARUNDO_TEST_ISOLATION").contains(QLatin1String("net"))) {
        QSKIP("needs a network of its own: port 9998 is fixed");
    }
    QVERIFY2(m_document.error().isEmpty(), qPrintable(m_document.error()));
}

void TestProtocolReference::everyExampleIsTrue_data()
{
    QTest::addColumn<int>("block");
    constexpr int Fewest = 30; // a document that lost its examples must not pass for a true one
    QVERIFY(m_document.blocks().size() >= Fewest);
    for (int i = 0; i < m_document.blocks().size(); ++i) {
        const ProtocolDocument::Block& block = m_document.blocks().at(i);
        QTest::addRow("line %d, %s", block.line, qPrintable(block.heading)) << i;
    }
}

void TestProtocolReference::everyExampleIsTrue()
{
    QFETCH(int, block);
    const ProtocolDocument::Block& example = m_document.blocks().at(block);
    const SessionScript script = SessionScript::parse(example.text, m_document.fileName(), example.line);
    const QString failure = SessionPlayer().play(script);
    QVERIFY2(failure.isEmpty(), qPrintable(failure));
}

void TestProtocolReference::tablesListExactlyTheCommandsThatAUnitKnows_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<QStringList>("headings");
    QTest::newRow("execute") << static_cast<int>(Protocol::Execute)
                             << QStringList{QStringLiteral("Showing and hiding"), QStringLiteral("Actions")};
    QTest::newRow("read") << static_cast<int>(Protocol::Read) << QStringList{QStringLiteral("Read table")};
    QTest::newRow("write") << static_cast<int>(Protocol::Write) << QStringList{QStringLiteral("Write table")};
}

void TestProtocolReference::tablesListExactlyTheCommandsThatAUnitKnows()
{
    QFETCH(int, group);
    QFETCH(QStringList, headings);
    ExampleUnit unit;
    ControllerLink link(unit.port());
    QVERIFY(link.isConnected());
    const std::set<int> known = CommandProbe(unit, link).knownCommands(static_cast<Protocol::Group>(group));
    QVERIFY(!known.empty());
    QCOMPARE(inWords(idsOf(headings)), inWords(known));
}

void TestProtocolReference::everyCommandHasAnExample_data()
{
    tablesListExactlyTheCommandsThatAUnitKnows_data();
}

void TestProtocolReference::everyCommandHasAnExample()
{
    QFETCH(int, group);
    QFETCH(QStringList, headings);
    FrameCollector shown;
    for (const ProtocolDocument::Block& block : m_document.blocks()) {
        const SessionScript script = SessionScript::parse(block.text, m_document.fileName(), block.line);
        FrameDecoder decoder;
        for (const SessionScript::Step& step : script.steps()) {
            if (step.action == SessionScript::Action::Send) {
                decoder.decode(step.bytes.constData(), step.bytes.size(), shown);
            }
        }
    }
    for (const int id : idsOf(headings)) {
        QVERIFY2(shown.frames[group].count(id) == 1, qPrintable(QString::number(id, 16)));
    }
}

void TestProtocolReference::colourTableIsTheUnits_data()
{
    QTest::addColumn<QStringList>("row");
    const ProtocolDocument::Table table = m_document.table(QStringLiteral("Colour numbers"));
    QCOMPARE(table.rows.size(), 16);
    for (int i = 0; i < table.rows.size(); ++i) {
        QCOMPARE(table.rows.at(i).at(0), QString::number(i));
        QTest::newRow(qPrintable(table.rows.at(i).at(1))) << table.rows.at(i);
    }
}

void TestProtocolReference::colourTableIsTheUnits()
{
    QFETCH(QStringList, row);
    QCOMPARE(row.size(), 6);
    const auto number = static_cast<char>(row.at(0).toInt());
    const QColor described(row.at(2).toInt(), row.at(3).toInt(), row.at(4).toInt(), row.at(5).toInt());
    ExampleUnit unit;
    ControllerLink link(unit.port());
    CommandProbe probe(unit, link);

    // As the text colour it stands in the high half of the byte, as the background in the low half.
    constexpr char LineOne = 1;
    probe.send(0x99, Protocol::Write, QByteArray(1, LineOne) + static_cast<char>(number << 4));
    const auto* const line = unit.element(Mavril::VideoOverlay::ElementParam::NAME_STATUS_TEXT_1);
    QCOMPARE(line->textColor().rgba(), described.rgba());
    QCOMPARE(line->backgroundColor().rgba(), qRgba(0, 0, 0, 0));

    probe.send(0x99, Protocol::Write, QByteArray(1, LineOne) + number);
    QCOMPARE(line->backgroundColor().rgba(), described.rgba());
    const QByteArray state = probe.send(0x92, Protocol::Read, QByteArray(1, LineOne));
    QCOMPARE(state.size(), 12); // the ACK, then a frame
    QCOMPARE(state.at(7), number);
}

void TestProtocolReference::elementNumbersAreTheUnits()
{
    const ProtocolDocument::Table table = m_document.table(QStringLiteral("Element numbers"));
    QVector<QString> described(256);
    for (const QStringList& row : table.rows) {
        described[row.at(0).toInt()] = row.at(1);
    }
    ExampleUnit unit;
    ControllerLink link(unit.port());
    CommandProbe probe(unit, link);
    constexpr char RedOnBlack = '\xAF';
    for (int number = 0; number <= 0xFF; ++number) {
        const QByteArray payload = QByteArray(1, static_cast<char>(number)) + RedOnBlack;
        QCOMPARE(probe.elementChangedBy(0xE5, payload), described.at(number));
    }
}

void TestProtocolReference::exampleUnitStandsAsDescribed()
{
    const ProtocolDocument::Table table = m_document.table(QStringLiteral("The example unit"));
    QStringList described;
    for (const QStringList& row : table.rows) {
        described.append(row.mid(0, 3).join(QLatin1Char(' ')));
    }
    QStringList built;
    for (const UnitElement& element : UnitElement::all()) {
        built.append(QStringLiteral("%1 %2,%3 %4")
                         .arg(QLatin1String(element.name))
                         .arg(element.column)
                         .arg(element.row)
                         .arg(QLatin1String(element.shown ? "shown" : "hidden")));
    }
    built.sort();
    described.sort();
    QCOMPARE(described, built);
}

void TestProtocolReference::boundsAreTheServers()
{
    QFile file(documentName());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll()).simplified();
    for (const QString& sentence :
         {QStringLiteral("Up to %1 older connections are kept").arg(TcpServer::MaxOlderClients),
          QStringLiteral("While %1 KiB of replies are waiting").arg(TcpServer::MaxUnsentBytes / 1024),
          QStringLiteral("Connect to TCP port %1").arg(Protocol::DefaultTcpPort),
          QStringLiteral("%1 baud, 8 data bits, no parity, one stop bit").arg(Protocol::DefaultBaudrate)}) {
        QVERIFY2(text.contains(sentence), qPrintable(sentence));
    }
}

/// What stands behind the wildcards of the examples.
void TestProtocolReference::dateAndTimeComeFromTheClock()
{
    ExampleUnit unit;
    ControllerLink link(unit.port());
    CommandProbe probe(unit, link);
    const QDateTime before = QDateTime::currentDateTime();
    const QByteArray date = probe.send(0x40, Protocol::Read);
    const QByteArray time = probe.send(0x50, Protocol::Read);
    const QDateTime after = QDateTime::currentDateTime();
    QCOMPARE(date.size(), 11); // the ACK, then a frame
    QCOMPARE(time.size(), 11);
    if (before.date() != after.date()) {
        QSKIP("midnight has passed in between");
    }
    QCOMPARE(QDate(2000 + date.at(9), date.at(7), date.at(6)), before.date());
    const QTime answered(time.at(6), time.at(7), time.at(8));
    QVERIFY(answered >= QTime(before.time().hour(), before.time().minute(), before.time().second()));
    QVERIFY(answered <= after.time());
}

std::set<int> TestProtocolReference::idsOf(const QStringList& headings) const
{
    std::set<int> ids;
    for (const QString& heading : headings) {
        for (const QStringList& row : m_document.table(heading).rows) {
            for (const QString& cell : row) {
                bool isId = false;
                const int id = cell.startsWith(QLatin1String("0x")) ? cell.midRef(2).toInt(&isId, 16) : 0;
                if (isId && !ids.insert(id).second) {
                    qFatal("0x%02X stands twice under \"%s\"", static_cast<unsigned>(id),
                           qPrintable(heading));
                }
            }
        }
    }
    return ids;
}

QTEST_MAIN(TestProtocolReference)
#include "tst_protocol_reference.moc"
