#include <Tolvar/Varundo/Client/ColorTable.h>
#include <Tolvar/Varundo/Client/CommandCatalog.h>

#include <QSet>
#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Client;

namespace {

struct Expected
{
    int id;
    const char* element;
    const char* verb;
    const char* payload;
};

// Written out from the protocol by hand, not derived from the catalogue.
constexpr Expected Actions[] = {
    {0x80, "overlay", "on", ""},
    {0x81, "overlay", "off", ""},
    {0x88, "overlay", "clear", ""},
    {0xD4, "measurement-3d", "main-pipe", ""},
    {0xD5, "measurement-3d", "lateral", ""},
    {0xD6, "measurement-3d", "off", ""},
};

struct Triple
{
    int on;
    const char* element;
};

constexpr Triple Triples[] = {
    {0x30, "meter-counter-1"},
    {0x36, "meter-counter-2"},
    {0x39, "meter-counter-3"},
    {0x40, "date"},
    {0x50, "time"},
    {0x70, "video-counter"},
    {0x90, "status-line-1"},
    {0x93, "status-line-2"},
    {0x96, "status-line-3"},
    {0x99, "status-line-4"},
    {0xB8, "crawler-temperature"},
    {0xBB, "crawler-pressure"},
    {0xCC, "cable-speed"},
    {0xDA, "external-temperature"},
    {0xDD, "crawler-roll"},
    {0xF0, "pan"},
    {0xF3, "tilt"},
    {0xF6, "camera-temperature"},
    {0xF9, "pressure"},
    {0xFC, "inclination"},
};

constexpr Expected Reads[] = {
    {0x01, "text-codec", "value", "codec number"},
    {0x30, "meter-counter-1", "value", "value (single)"},
    {0x31, "meter-counter-1", "state", "format, visible, column, row"},
    {0x36, "meter-counter-2", "value", "value (single)"},
    {0x37, "meter-counter-2", "state", "format, visible, column, row"},
    {0x3B, "meter-counter-3", "value", "value (single)"},
    {0x3C, "meter-counter-3", "state", "format, visible, column, row"},
    {0x40, "date", "value", "day, month, century, year"},
    {0x41, "date", "state", "format, visible, column, row"},
    {0x50, "time", "value", "hour, minute, second"},
    {0x51, "time", "state", "format, visible, column, row"},
    {0x70, "video-counter", "value", "hours, minutes, seconds"},
    {0x71, "video-counter", "state", "format, visible, column, row"},
    {0x90, "status-line", "text", "line number, text"},
    {0x92, "status-line", "state", "line number, colours, visible, 0, 0"},
    {0x98, "line", "text", "line number, text"},
    {0xC0, "crawler-temperature", "value", "value (single)"},
    {0xC1, "crawler-temperature", "state", "format, visible, column, row"},
    {0xC2, "crawler-pressure", "value", "value (single)"},
    {0xC3, "crawler-pressure", "state", "format, visible, column, row"},
    {0xC4, "crawler-roll", "value", "value (single)"},
    {0xC5, "crawler-roll", "state", "format, visible, column, row"},
    {0xC6, "cable-speed", "value", "value (single)"},
    {0xC7, "cable-speed", "state", "format, visible, column, row"},
    {0xD4, "measurement-3d", "value", "x, y, z (doubles), angle (single)"},
    {0xF0, "pan", "value", "value (single)"},
    {0xF1, "pan", "state", "format, visible, column, row"},
    {0xF3, "tilt", "value", "value (single)"},
    {0xF4, "tilt", "state", "format, visible, column, row"},
    {0xF5, "external-temperature", "value", "value (single)"},
    {0xF6, "camera-temperature", "value", "value (single)"},
    {0xF7, "camera-temperature", "state", "format, visible, column, row"},
    {0xF8, "external-temperature", "state", "format, visible, column, row"},
    {0xF9, "pressure", "value", "value (single)"},
    {0xFA, "pressure", "state", "format, visible, column, row"},
    {0xFB, "inclination", "value", "value (single)"},
    {0xFC, "inclination", "state", "format, visible, column, row"},
    {0xFD, "laser-calibration", "value", "index, value (double)"},
    {0xFF, "software-id", "value", "text"},
};

constexpr Expected Writes[] = {
    {0x01, "text-codec", "value", "codec number"},
    {0x30, "meter-counter-1", "value", "value (single)"},
    {0x32, "meter-counter-1", "position", "column, row"},
    {0x36, "meter-counter-2", "value", "value (single)"},
    {0x38, "meter-counter-2", "position", "column, row"},
    {0x3C, "meter-counter-3", "value", "value (single)"},
    {0x3E, "meter-counter-3", "position", "column, row"},
    {0x40, "date", "value", "day, month, century, year"},
    {0x42, "date", "position", "column, row"},
    {0x50, "time", "value", "hour, minute, second"},
    {0x52, "time", "position", "column, row"},
    {0x62, "cursor", "position", "column, row"},
    {0x70, "video-counter", "value", "hours, minutes, seconds"},
    {0x72, "video-counter", "position", "column, row"},
    {0x90, "status-line", "text", "line number, text"},
    {0x92, "free-text", "colour", "colours"},
    {0x95, "cursor", "text", "text"},
    {0x98, "line", "text", "line number, text"},
    {0x99, "status-line", "colour", "number, colours"},
    {0xC0, "crawler-temperature", "position", "column, row"},
    {0xC2, "crawler-pressure", "position", "column, row"},
    {0xC4, "crawler-roll", "position", "column, row"},
    {0xC6, "cable-speed", "position", "column, row"},
    {0xD4, "measurement-3d", "position", "x, y, z (doubles)"},
    {0xD5, "measurement-3d", "orientation", "two angles (singles)"},
    {0xD7, "free-text", "text", "0, duration, 0, up to five texts separated by 0"},
    {0xE5, "element", "colour", "number, colours"},
    {0xF0, "pan", "position", "column, row"},
    {0xF3, "tilt", "position", "column, row"},
    {0xF5, "external-temperature", "format", "format number"},
    {0xF6, "camera-temperature", "position", "column, row"},
    {0xF9, "pressure", "position", "column, row"},
    {0xFB, "external-temperature", "position", "column, row"},
    {0xFC, "inclination", "position", "column, row"},
    {0xFD, "inclination", "format", "format number"},
};

void addRow(Protocol::Group group, const Expected& expected)
{
    QTest::addRow("%s 0x%02x", groupName(group).data(), expected.id)
        << static_cast<int>(group) << expected.id << QString::fromLatin1(expected.element)
        << QString::fromLatin1(expected.verb) << QString::fromLatin1(expected.payload);
}

} // namespace

class tst_CommandCatalog : public QObject
{
    Q_OBJECT

private slots:
    void everyCommandOfTheProtocolIsThere_data();
    void everyCommandOfTheProtocolIsThere();
    void nothingElseIsThere();
    void linesAndIndexesAreAskedForInTheRequest();
    void everyVerbIsFoundByItsName();
    void elementColorNumbersAreTheProtocols_data();
    void elementColorNumbersAreTheProtocols();
    void unusedElementColorNumbersNameNothing();
    void colorNumbersAreTheProtocols_data();
    void colorNumbersAreTheProtocols();
    void unknownColorsAreRefused();
    void messageOfACommandCarriesItsPayloadAndLength();
};

void tst_CommandCatalog::everyCommandOfTheProtocolIsThere_data()
{
    QTest::addColumn<int>("group");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("verb");
    QTest::addColumn<QString>("payload");
    for (const Triple& triple : Triples) {
        addRow(Protocol::Execute, {triple.on, triple.element, "show", ""});
        addRow(Protocol::Execute, {triple.on + 1, triple.element, "hide", ""});
        addRow(Protocol::Execute, {triple.on + 2, triple.element, "toggle", ""});
    }
    for (const Expected& expected : Actions) {
        addRow(Protocol::Execute, expected);
    }
    for (const Expected& expected : Reads) {
        addRow(Protocol::Read, expected);
    }
    for (const Expected& expected : Writes) {
        addRow(Protocol::Write, expected);
    }
}

void tst_CommandCatalog::everyCommandOfTheProtocolIsThere()
{
    QFETCH(int, group);
    QFETCH(int, id);
    QFETCH(QString, element);
    QFETCH(QString, verb);
    QFETCH(QString, payload);

    const CommandInfo* info = findCommand(static_cast<quint8>(group), static_cast<quint8>(id));
    QVERIFY(info);
    QCOMPARE(QString::fromLatin1(info->element), element);
    QCOMPARE(QString(verbName(info->verb)), verb);
    QCOMPARE(QString(payloadLayout(group == Protocol::Read ? info->answer : info->request)), payload);
    QCOMPARE(findCommand(info->group, element, info->verb), info);
}

void tst_CommandCatalog::nothingElseIsThere()
{
    const auto expected = 3 * std::size(Triples) + std::size(Actions) + std::size(Reads) + std::size(Writes);
    QCOMPARE(static_cast<std::size_t>(allCommands().size()), expected);
    int found = 0;
    for (int group = 0; group < 256; ++group) {
        for (int id = 0; id < 256; ++id) {
            found += findCommand(static_cast<quint8>(group), static_cast<quint8>(id)) ? 1 : 0;
        }
    }
    QCOMPARE(static_cast<std::size_t>(found), expected);
    QVERIFY(!findCommand(Protocol::Read, u"cursor", Verb::Position));
}

void tst_CommandCatalog::linesAndIndexesAreAskedForInTheRequest()
{
    QSet<int> withRequest;
    for (const CommandInfo& info : allCommands()) {
        if (info.group == Protocol::Read && info.request != PayloadKind::None) {
            withRequest.insert(info.id);
            QVERIFY(isIndexedElement(QString::fromLatin1(info.element)));
        }
        if (info.group != Protocol::Read) {
            QCOMPARE(info.answer, PayloadKind::None);
        }
    }
    QCOMPARE(withRequest, QSet<int>({0x90, 0x92, 0x98, 0xFD}));
    QVERIFY(!isIndexedElement(u"pan"));
}

void tst_CommandCatalog::everyVerbIsFoundByItsName()
{
    for (int i = 0; i <= static_cast<int>(Verb::Lateral); ++i) {
        const auto verb = static_cast<Verb>(i);
        QCOMPARE(verbFromName(QString(verbName(verb))), std::optional(verb));
    }
    QCOMPARE(verbFromName(u"color"), std::optional(Verb::Color));
    QVERIFY(!verbFromName(u"shew"));
    QVERIFY(!verbFromName(u""));
}

void tst_CommandCatalog::elementColorNumbersAreTheProtocols_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("meter-counter-1") << 0;
    QTest::newRow("meter-counter-2") << 1;
    QTest::newRow("time") << 2;
    QTest::newRow("date") << 3;
    QTest::newRow("pan") << 10;
    QTest::newRow("tilt") << 11;
    QTest::newRow("video-counter") << 12;
    QTest::newRow("camera-temperature") << 13;
    QTest::newRow("inclination") << 14;
    QTest::newRow("pressure") << 15;
    QTest::newRow("external-temperature") << 16;
    QTest::newRow("crawler-temperature") << 17;
    QTest::newRow("crawler-pressure") << 18;
    QTest::newRow("crawler-roll") << 19;
    QTest::newRow("cable-speed") << 20;
    QTest::newRow("meter-counter-3") << 21;
}

void tst_CommandCatalog::elementColorNumbersAreTheProtocols()
{
    QFETCH(int, number);
    const QString element = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(elementColorNumber(element), std::optional(static_cast<quint8>(number)));
    QCOMPARE(QString(elementOfColorNumber(static_cast<quint8>(number))), element);
}

void tst_CommandCatalog::unusedElementColorNumbersNameNothing()
{
    for (const int number : {4, 5, 6, 7, 8, 9, 22, 255}) {
        QVERIFY2(elementOfColorNumber(static_cast<quint8>(number)).isEmpty(),
                 qPrintable(QString::number(number)));
    }
    QVERIFY(!elementColorNumber(u""));
    QVERIFY(!elementColorNumber(u"cursor"));
}

void tst_CommandCatalog::colorNumbersAreTheProtocols_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<uint>("argb");
    QTest::newRow("0") << "transparent" << 0x00000000U;
    QTest::newRow("1") << "white" << 0xFFFFFFFFU;
    QTest::newRow("2") << "maroon" << 0xFF800000U;
    QTest::newRow("3") << "green" << 0xFF008000U;
    QTest::newRow("4") << "olive" << 0xFF808000U;
    QTest::newRow("5") << "navy" << 0xFF000080U;
    QTest::newRow("6") << "purple" << 0xFF800080U;
    QTest::newRow("7") << "teal" << 0xFF008080U;
    QTest::newRow("8") << "gray" << 0xFFA0A0A4U;
    QTest::newRow("9") << "silver" << 0xFFC0C0C0U;
    QTest::newRow("10") << "red" << 0xFFFF0000U;
    QTest::newRow("11") << "lime" << 0xFF00FF00U;
    QTest::newRow("12") << "yellow" << 0xFFFFFF00U;
    QTest::newRow("13") << "blue" << 0xFF0000FFU;
    QTest::newRow("14") << "magenta" << 0xFFFF00FFU;
    QTest::newRow("15") << "black" << 0xFF000000U;
}

void tst_CommandCatalog::colorNumbersAreTheProtocols()
{
    QFETCH(QString, name);
    QFETCH(uint, argb);
    const auto number = static_cast<quint8>(QByteArray(QTest::currentDataTag()).toInt());
    QCOMPARE(QString(colorName(number)), name);
    QCOMPARE(colorInfo(number).argb, argb);
    QCOMPARE(colorInfo(static_cast<quint8>(number + 16)).number, number);
    QCOMPARE(colorNumber(name.toUpper()), std::optional(number));
    QCOMPARE(colorNumber(QString::number(number)), std::optional(number));
    QCOMPARE(colorNames().at(number), name);
}

void tst_CommandCatalog::unknownColorsAreRefused()
{
    QVERIFY(!colorNumber(u"cyan"));
    QVERIFY(!colorNumber(u"16"));
    QVERIFY(!colorNumber(u"-1"));
    QVERIFY(!colorNumber(u""));
    QCOMPARE(colorNumber(u"grey"), std::optional<quint8>(8));
}

void tst_CommandCatalog::messageOfACommandCarriesItsPayloadAndLength()
{
    const CommandMessage message = makeCommand(*findCommand(Protocol::Write, 0x32), QByteArray(300, 'x'));
    QCOMPARE(message.cmdId, quint8(0x32));
    QCOMPARE(message.grpId, quint8(2));
    QCOMPARE(message.length, quint16(300));
    QCOMPARE(message.data, QByteArray(300, 'x'));
}

QTEST_GUILESS_MAIN(tst_CommandCatalog)
#include "tst_commandcatalog.moc"
