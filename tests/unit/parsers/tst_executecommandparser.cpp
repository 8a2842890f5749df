#include "ModelSnapshot.h"

#include <Tolvar/Varundo/ExecuteCommandParser.h>
#include <Tolvar/Varundo/WriteCommandParser.h>

#include <QtTest>

#include <algorithm>
#include <iterator>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

struct VisibilityCommands
{
    int on; // off is the next id, toggle the one after
    const char* property;
    const char* signal;
    const QString* element;
};

constexpr VisibilityCommands VisibilityTable[] = {
    {0x30, "meterCounter1Visible", "meterCounter1VisibleChanged", &Name::NAME_SECTION_DISTANCE_COUNTER},
    {0x36, "meterCounter2Visible", "meterCounter2VisibleChanged", &Name::NAME_SAT_DISTANCE_COUNTER},
    {0x39, "meterCounter3Visible", "meterCounter3VisibleChanged", &Name::NAME_TOTAL_DISTANCE_COUNTER},
    {0x40, "dateVisible", "dateVisibleChanged", &Name::NAME_DATE},
    {0x50, "timeVisible", "timeVisibleChanged", &Name::NAME_TIME},
    {0x70, "videoCounterVisible", "videoCounterVisibleChanged", &Name::NAME_VIDEO_TIME_COUNTER},
    {0x90, "statusLine1Visible", "statusLine1VisibleChanged", &Name::NAME_STATUS_TEXT_1},
    {0x93, "statusLine2Visible", "statusLine2VisibleChanged", &Name::NAME_STATUS_TEXT_2},
    {0x96, "statusLine3Visible", "statusLine3VisibleChanged", &Name::NAME_STATUS_TEXT_3},
    {0x99, "statusLine4Visible", "statusLine4VisibleChanged", &Name::NAME_STATUS_TEXT_4},
    {0xB8, "crawlerTemperatureVisible", "crawlerTemperatureVisibleChanged", &Name::NAME_CRAWLER_TEMPERATURE},
    {0xBB, "crawlerPressureVisible", "crawlerPressureVisibleChanged", &Name::NAME_CRAWLER_PRESSURE},
    {0xCC, "cableSpeedVisible", "cableSpeedVisibleChanged", &Name::NAME_SPEED},
    {0xDA, "extTemperatureVisible", "extTemperatureVisibleChanged", &Name::NAME_OBJECT_TEMPERATURE},
    {0xDD, "crawlerRollVisible", "crawlerRollVisibleChanged", &Name::NAME_CRAWLER_ROLL},
    {0xF0, "panVisible", "panPositionVisibleChanged", &Name::NAME_CAMERA_PAN},
    {0xF3, "tiltVisible", "tiltVisibleChanged", &Name::NAME_CAMERA_TILT},
    {0xF6, "cameraTemperatureVisible", "cameraTemperatureVisibleChanged", &Name::NAME_CAMERA_TEMPERATURE},
    {0xF9, "pressureVisible", "pressureVisibleChanged", &Name::NAME_CAMERA_PRESSURE},
    {0xFC, "inclinationVisible", "inclinationVisibleChanged", &Name::NAME_CRAWLER_PITCH},
};

struct ActionCommand
{
    int id;
    const char* signal;
};

constexpr ActionCommand ActionTable[] = {
    {0x80, "executeScreenOverlayOn"},
    {0x81, "executeScreenOverlayOff"},
    {0x88, "executeScreenOverlayClearEdit"},
    {0xD4, "execute3dMeasurementMainPipeActivate"},
    {0xD5, "execute3dMeasurementLateralActivate"},
    {0xD6, "execute3dMeasurementDeactivate"},
};

QByteArray idText(int id)
{
    return QByteArray("0x") + QByteArray::number(id, 16).rightJustified(2, '0').toUpper();
}

/// What a command does to a model in which every element is visible, or none.
QStringList expectedEffect(int id, bool wasVisible)
{
    for (const VisibilityCommands& row : VisibilityTable) {
        if (id < row.on || id > row.on + 2) {
            continue;
        }
        const bool visible = id == row.on ? true : id == row.on + 1 ? false : !wasVisible;
        if (visible == wasVisible) {
            return {};
        }
        return {
            QStringLiteral("%1 = %2").arg(QLatin1String(row.property), asText(visible)),
            QStringLiteral("%1(\"%2\", %3)").arg(QLatin1String(row.signal), *row.element, asText(visible))};
    }
    for (const ActionCommand& row : ActionTable) {
        if (id == row.id) {
            return {QLatin1String(row.signal) + QStringLiteral("()")};
        }
    }
    return {};
}

class ExecuteBench
{
public:
    ExecuteBench()
    {
        watchModel(m_log, model);
        m_log.watch(&parser, &ExecuteCommandParser::executeScreenOverlayOn);
        m_log.watch(&parser, &ExecuteCommandParser::executeScreenOverlayOff);
        m_log.watch(&parser, &ExecuteCommandParser::executeScreenOverlayClearEdit);
        m_log.watch(&parser, &ExecuteCommandParser::execute3dMeasurementMainPipeActivate);
        m_log.watch(&parser, &ExecuteCommandParser::execute3dMeasurementLateralActivate);
        m_log.watch(&parser, &ExecuteCommandParser::execute3dMeasurementDeactivate);
    }

    void fill(bool visible)
    {
        fillModel(model, visible);
        static_cast<void>(m_log.take());
    }

    QStringList effectOf(int id, const QByteArray& payload = {})
    {
        const ModelSnapshot before(model);
        parser.parseCommandMessage(
            {static_cast<quint8>(id), 0, static_cast<quint16>(payload.size()), payload});
        return before.changesTo(ModelSnapshot(model)) + m_log.take();
    }

    DataManager model;
    ExecuteCommandParser parser{&model};

private:
    SignalLog m_log;
};

} // namespace

class ExecuteCommandParserTest : public QObject
{
    Q_OBJECT

private slots:
    void everyIdDoesItsRowAndNothingElse_data();
    void everyIdDoesItsRowAndNothingElse();
    void tableCoversTheWholeRangeOfIds();
    void payloadIsNeverRead_data();
    void payloadIsNeverRead();
    void toggleTwiceLeavesTheElementAsItWas_data();
    void toggleTwiceLeavesTheElementAsItWas();
    void toggleFollowsTheModelNotTheLastCommand();
    void inclinationTogglesByTheLastIdButOneAndTheLastDoesNothing();
    void sameIdMeansAnotherThingInTheWriteGroup();
    void signalsAreDeclaredInTheProtocolsOrder();
};

void ExecuteCommandParserTest::everyIdDoesItsRowAndNothingElse_data()
{
    QTest::addColumn<int>("id");
    for (int id = 0; id <= 255; ++id) {
        QTest::newRow(idText(id)) << id;
    }
}

void ExecuteCommandParserTest::everyIdDoesItsRowAndNothingElse()
{
    QFETCH(int, id);
    for (const bool wasVisible : {false, true}) {
        ExecuteBench bench;
        bench.fill(wasVisible);
        QCOMPARE(bench.effectOf(id), expectedEffect(id, wasVisible));
    }
}

void ExecuteCommandParserTest::tableCoversTheWholeRangeOfIds()
{
    // The ranges that the protocol leaves unassigned, as written there.
    const QList<QPair<int, int>> unassigned{
        {0x00, 0x2F}, {0x33, 0x35}, {0x3C, 0x3F}, {0x43, 0x4F}, {0x53, 0x6F}, {0x73, 0x7F}, {0x82, 0x87},
        {0x89, 0x8F}, {0x9C, 0xB7}, {0xBE, 0xCB}, {0xCF, 0xD3}, {0xD7, 0xD9}, {0xE0, 0xEF}, {0xFF, 0xFF}};
    int assignedCount = 0;
    for (int id = 0; id <= 255; ++id) {
        const bool isUnassigned =
            std::any_of(unassigned.begin(), unassigned.end(), [id](const QPair<int, int>& range) {
                return id >= range.first && id <= range.second;
            });
        ExecuteBench bench;
        bench.fill(false);
        const bool actsOnHidden = !bench.effectOf(id).isEmpty();
        bench.fill(true);
        const bool actsOnVisible = !bench.effectOf(id).isEmpty();
        QVERIFY2((actsOnHidden || actsOnVisible) != isUnassigned, idText(id));
        assignedCount += isUnassigned ? 0 : 1;
    }
    QCOMPARE(assignedCount, 20 * 3 + 6);
}

void ExecuteCommandParserTest::payloadIsNeverRead_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("one byte") << QByteArray("\x00", 1);
    QTest::newRow("an off switch that is none") << QByteArray("\x31\x32");
    QTest::newRow("all ones") << QByteArray(32, '\xFF');
    QTest::newRow("full size") << QByteArray(65535, '\x01');
}

void ExecuteCommandParserTest::payloadIsNeverRead()
{
    QFETCH(QByteArray, payload);
    for (int id = 0; id <= 255; ++id) {
        ExecuteBench bench;
        bench.fill(false);
        QCOMPARE(bench.effectOf(id, payload), expectedEffect(id, false));
    }
}

void ExecuteCommandParserTest::toggleTwiceLeavesTheElementAsItWas_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("property");
    for (const VisibilityCommands& row : VisibilityTable) {
        QTest::newRow(row.property) << row.on + 2 << QString::fromLatin1(row.property);
    }
}

void ExecuteCommandParserTest::toggleTwiceLeavesTheElementAsItWas()
{
    QFETCH(int, id);
    QFETCH(QString, property);
    ExecuteBench bench;
    const ModelSnapshot fresh(bench.model);
    QCOMPARE(bench.effectOf(id).value(0), property + QStringLiteral(" = true"));
    QCOMPARE(bench.effectOf(id).value(0), property + QStringLiteral(" = false"));
    QCOMPARE(fresh.changesTo(ModelSnapshot(bench.model)), QStringList());
}

void ExecuteCommandParserTest::toggleFollowsTheModelNotTheLastCommand()
{
    ExecuteBench bench;
    static_cast<void>(bench.effectOf(0x30));
    bench.model.setMeterCounter1Visible(false);
    static_cast<void>(bench.effectOf(0x32));
    QVERIFY(bench.model.meterCounter1Visible());
}

void ExecuteCommandParserTest::inclinationTogglesByTheLastIdButOneAndTheLastDoesNothing()
{
    ExecuteBench bench;
    static_cast<void>(bench.effectOf(0xFE));
    QVERIFY(bench.model.inclinationVisible());
    QCOMPARE(bench.effectOf(0xFF), QStringList());
    static_cast<void>(bench.effectOf(0xFE));
    QVERIFY(!bench.model.inclinationVisible());
}

void ExecuteCommandParserTest::sameIdMeansAnotherThingInTheWriteGroup()
{
    ExecuteBench bench;
    static_cast<void>(bench.effectOf(0x92, QByteArray("\x1D")));
    QVERIFY(bench.model.statusLine1Visible());
    QCOMPARE(bench.model.lineColorPair(), ColorPair(Qt::white, Qt::blue));

    WriteCommandParser writeParser(&bench.model);
    writeParser.parseCommandMessage({0x92, 2, 1, QByteArray("\xAF")});
    QVERIFY(bench.model.statusLine1Visible());
    QCOMPARE(bench.model.lineColorPair(), ColorPair(Qt::red, Qt::black));
}

void ExecuteCommandParserTest::signalsAreDeclaredInTheProtocolsOrder()
{
    QCOMPARE(declaredSignals(ExecuteCommandParser::staticMetaObject),
             (QStringList{"executeScreenOverlayOn()"_s, "executeScreenOverlayOff()"_s,
                          "executeScreenOverlayClearEdit()"_s, "execute3dMeasurementMainPipeActivate()"_s,
                          "execute3dMeasurementLateralActivate()"_s, "execute3dMeasurementDeactivate()"_s}));
}

QTEST_GUILESS_MAIN(ExecuteCommandParserTest)

#include "tst_executecommandparser.moc"
