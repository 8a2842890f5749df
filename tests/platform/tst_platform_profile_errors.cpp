#include <Mavril/VideoOverlay/CVideoOverlayManager.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using Mavril::VideoOverlay::CVideoOverlayManager;

namespace {

QByteArray profile(const QByteArray& elements)
{
    return "{\"elements\": [" + elements + "]}";
}

/// The third element of three, so that the place in the message says something.
QByteArray third(const QByteArray& element)
{
    return profile(R"({"kind": "free"}, {"kind": "static", "id": 9}, )" + element);
}

/// A free text with one field more.
QByteArray withField(const QByteArray& field)
{
    return third(R"({"kind": "static", "id": 1, )" + field + "}");
}

void add(const char* name, const QByteArray& json, const char* error)
{
    QTest::newRow(name) << json << QString::fromUtf8(error);
}

const char* const textFields = "row, column, type, enabled, visible, text, unit, timeout, textColor, "
                               "backgroundColor, font";

} // namespace

/// What the author of a profile is told, to the letter.
class TestPlatformProfileErrors : public QObject
{
    Q_OBJECT

private slots:
    void aFaultIsToldWithItsPlace_data();
    void aFaultIsToldWithItsPlace();
    void aFileThatCannotBeReadIsTold_data();
    void aFileThatCannotBeReadIsTold();
    void aFileThatIsTooLargeIsRefused();
    void tooManyElementsAreRefused();
    void theFileIsNamedAsItWasGiven();

private:
    void addDocumentFaults();
    void addIdentityFaults();
    void addValueFaults();
    void addRepetitions();
};

void TestPlatformProfileErrors::aFaultIsToldWithItsPlace_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");
    addDocumentFaults();
    addIdentityFaults();
    addValueFaults();
    addRepetitions();
}

void TestPlatformProfileErrors::addDocumentFaults()
{
    add("empty", "", "p.json:1:1: illegal value");
    add("no colon", "{\"name\": \"x\",\n \"elements\" []}", "p.json:2:13: missing name separator");
    add("no value", "{\n\n\"name\":}", "p.json:3:8: object is missing after a comma");
    add("comma at the end", "{\"elements\": [],}", "p.json:1:17: object is missing after a comma");
    add("cut off", "{\"elements\": [", "p.json:1:14: unterminated array");
    add("column in characters", "{\"\xc3\xa4\xc3\xb6\" 1}", "p.json:1:7: missing name separator");
    add("something behind the end", "{\"elements\": []}\n}",
        "p.json:1:17: garbage at the end of the document");
    add("not UTF-8", "{\"name\": \"\xff\"}", "p.json:1:10: invalid UTF8 string");
    add("an array", "[]", "p.json: expected an object with \"elements\", got an array");
    add("nothing in it", "{}", "p.json: elements: expected an array, got nothing");
    add("elements null", R"({"elements": null})", "p.json: elements: expected an array, got null");
    add("elements as an object", R"({"elements": {}})", "p.json: elements: expected an array, got an object");
    add("name is no text", R"({"name": 5, "elements": []})", "p.json: name: expected a text, got 5");
    add("unknown field", R"({"elments": [], "elements": []})",
        "p.json: unknown field \"elments\"; known here are name, elements");
    add("field without a name", R"({"": 1, "elements": []})",
        "p.json: unknown field \"\"; known here are name, elements");
    add("line end in a field", R"({"a\nb": 1, "elements": []})",
        R"(p.json: unknown field "a\nb"; known here are name, elements)");
    add("element is a number", third("7"), "p.json: elements[2]: expected an object, got 7");
    add("element is an array", third("[]"), "p.json: elements[2]: expected an object, got an array");
}

void TestPlatformProfileErrors::addIdentityFaults()
{
    const QByteArray bindings =
        "SectionDistanceCounter, SatDistanceCounter, TotalDistanceCounter, Date, Time, VideoTimeCounter, "
        "CrawlerTemperature, CrawlerPressure, CrawlerRoll, CrawlerPitch, CameraTilt, CameraPan, "
        "CameraTemperature, CameraPressure, ObjectTemperature, Speed";
    add("no kind", third("{}"),
        "p.json: elements[2].kind: expected \"bound\", \"static\", \"free\" or \"plain\", got nothing");
    add("unknown kind", third(R"({"kind": "Bound"})"),
        "p.json: elements[2].kind: expected \"bound\", \"static\", \"free\" or \"plain\", got \"Bound\"");
    add("kind is no text", third(R"({"kind": true})"),
        "p.json: elements[2].kind: expected \"bound\", \"static\", \"free\" or \"plain\", got true");
    add("bound to nothing", third(R"({"kind": "bound"})"),
        "p.json: elements[2].binding: expected one of " + bindings + ", got nothing");
    add("bound to what is not there", third(R"({"kind": "bound", "binding": "date"})"),
        "p.json: elements[2].binding: expected one of " + bindings + ", got \"date\"");
    add("bound to a status line", third(R"({"kind": "bound", "binding": "1"})"),
        "p.json: elements[2].binding: expected one of " + bindings + ", got \"1\"");
    add("static without an id", third(R"({"kind": "static"})"),
        "p.json: elements[2].id: expected an integer from 1 to 1000000, got nothing");
    add("static with id 0", third(R"({"kind": "static", "id": 0})"),
        "p.json: elements[2].id: expected an integer from 1 to 1000000, got 0");
    add("static with a text for an id", third(R"({"kind": "static", "id": "1"})"),
        "p.json: elements[2].id: expected an integer from 1 to 1000000, got \"1\"");
    add("empty caption", third(R"({"kind": "free", "caption": ""})"),
        "p.json: elements[2].caption: expected a text that is not empty, got \"\"");
    add("plain without a caption", third(R"({"kind": "plain"})"),
        "p.json: elements[2].caption: expected a text that is not empty, got nothing");
    add("two identities", third(R"({"kind": "bound", "binding": "Date", "id": 1})"),
        "p.json: elements[2]: unknown field \"id\"; known here are kind, binding, " + QByteArray(textFields));
    add("an identity of another kind", third(R"({"kind": "static", "id": 1, "caption": "x"})"),
        "p.json: elements[2]: unknown field \"caption\"; known here are kind, id, " + QByteArray(textFields));
    add("text of a plain element", third(R"({"kind": "plain", "caption": "x", "text": "x"})"),
        "p.json: elements[2]: unknown field \"text\"; known here are kind, caption, row, column, type, "
        "enabled, visible, width, height");
    add("width of a text", third(R"({"kind": "free", "width": 1})"),
        "p.json: elements[2]: unknown field \"width\"; known here are kind, caption, " +
            QByteArray(textFields));
}

void TestPlatformProfileErrors::addValueFaults()
{
    add("row is a text", withField(R"("row": "x")"),
        "p.json: elements[2].row: expected an integer from 0 to 255, got \"x\"");
    add("row is too large", withField(R"("row": 256)"),
        "p.json: elements[2].row: expected an integer from 0 to 255, got 256");
    add("row is negative", withField(R"("row": -1)"),
        "p.json: elements[2].row: expected an integer from 0 to 255, got -1");
    add("row is broken", withField(R"("row": 1.5)"),
        "p.json: elements[2].row: expected an integer from 0 to 255, got 1.5");
    add("row is null", withField(R"("row": null)"),
        "p.json: elements[2].row: expected an integer from 0 to 255, got null");
    add("column is huge", withField(R"("column": 1e300)"),
        "p.json: elements[2].column: expected an integer from 0 to 255, got 1e+300");
    add("type", withField(R"("type": 256)"),
        "p.json: elements[2].type: expected an integer from 0 to 255, got 256");
    add("time-out", withField(R"("timeout": 86401)"),
        "p.json: elements[2].timeout: expected an integer from 0 to 86400, got 86401");
    add("enabled", withField(R"("enabled": 1)"),
        "p.json: elements[2].enabled: expected true or false, got 1");
    add("visible", withField(R"("visible": "no")"),
        "p.json: elements[2].visible: expected true or false, got \"no\"");
    add("text", withField(R"("text": {})"), "p.json: elements[2].text: expected a text, got an object");
    add("unit", withField(R"("unit": false)"), "p.json: elements[2].unit: expected a text, got false");
    for (const QByteArray color :
         {"\"#FFF\"", "\"#12345G\"", "\"#+12345\"", "\"#AARRGGBBA\"", "\"reddish\"", "\"\""}) {
        add(color.constData(), withField("\"textColor\": " + color),
            "p.json: elements[2].textColor: expected a colour such as \"#AARRGGBB\", \"#RRGGBB\" or "
            "\"white\", "
            "got " +
                color);
    }
    add("background", withField(R"("backgroundColor": 0)"),
        "p.json: elements[2].backgroundColor: expected a colour such as \"#AARRGGBB\", \"#RRGGBB\" or "
        "\"white\", got 0");
    add("font", withField(R"("font": "DejaVu Sans")"),
        "p.json: elements[2].font: expected an object with \"family\" and \"size\", got \"DejaVu Sans\"");
    add("font's size", withField(R"("font": {"size": 0})"),
        "p.json: elements[2].font.size: expected an integer from 1 to 500, got 0");
    add("font's family", withField(R"("font": {"family": ""})"),
        "p.json: elements[2].font.family: expected a text that is not empty, got \"\"");
    add("font's weight", withField(R"("font": {"weight": 5})"),
        "p.json: elements[2].font: unknown field \"weight\"; known here are family, size");
    add("width", third(R"({"kind": "plain", "caption": "x", "width": 10001})"),
        "p.json: elements[2].width: expected an integer from 0 to 10000, got 10001");
    add("height", third(R"({"kind": "plain", "caption": "x", "height": -1})"),
        "p.json: elements[2].height: expected an integer from 0 to 10000, got -1");
    add("a long text is cut", withField("\"row\": \"" + QByteArray(100, 'x') + "\""),
        "p.json: elements[2].row: expected an integer from 0 to 255, got \"" + QByteArray(60, 'x') + "...\"");
}

void TestPlatformProfileErrors::addRepetitions()
{
    add("binding", profile(R"({"kind": "bound", "binding": "Date"}, {"kind": "free"},
                              {"kind": "bound", "binding": "Date"})"),
        "p.json: elements[2]: \"Date\" is elements[0] already");
    add("id", third(R"({"kind": "static", "id": 9})"), "p.json: elements[2]: \"9\" is elements[1] already");
    add("free text box", third(R"({"kind": "free"})"),
        "p.json: elements[2]: \"OsdFreeTextBox\" is elements[0] already");
    add("caption like a static id", third(R"({"kind": "free", "caption": "9"})"),
        "p.json: elements[2]: \"9\" is elements[1] already");
    add("caption like a binding", profile(R"({"kind": "plain", "caption": "Speed"},
                                             {"kind": "bound", "binding": "Speed"})"),
        "p.json: elements[1]: \"Speed\" is elements[0] already");
    add("field of the profile", "{\"elements\": [],\n \"elements\": []}",
        "p.json:2:2: the field \"elements\" is there twice");
    add("field of an element", profile("\n{\"kind\": \"free\", \"row\": 1,\n  \"row\": 2}"),
        "p.json:3:3: the field \"row\" is there twice");
    add("the same name with an escape", profile(R"({"row": 1, "r\u006fw": 2, "kind": "free"})"),
        "p.json:1:26: the field \"row\" is there twice");
    add("field of a font", withField(R"("font": {"size": 1, "size" : 1})"),
        "p.json:1:110: the field \"size\" is there twice");
}

void TestPlatformProfileErrors::aFaultIsToldWithItsPlace()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, error);
    CVideoOverlayManager manager;
    QString told;
    QVERIFY(!manager.loadProfileData(json, QStringLiteral("p.json"), &told));
    QCOMPARE(told, error);
    QVERIFY(!manager.currentProfile());
    QVERIFY(manager.getElementList().isEmpty());
}

void TestPlatformProfileErrors::aFileThatCannotBeReadIsTold_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << QStringLiteral("/nowhere/profile.json")
                             << QStringLiteral(
                                    "/nowhere/profile.json: cannot be read: No such file or directory");
    QTest::newRow("directory") << QStringLiteral("/")
                               << QStringLiteral("/: cannot be read: file to open is a directory");
    QTest::newRow("fails while it is read")
        << QStringLiteral("/proc/self/mem")
        << QStringLiteral("/proc/self/mem: cannot be read: Input/output error");
    QTest::newRow("never ends") << QStringLiteral("/dev/zero")
                                << QStringLiteral("/dev/zero: larger than 33554432 bytes");
}

void TestPlatformProfileErrors::aFileThatCannotBeReadIsTold()
{
    QFETCH(QString, file);
    QFETCH(QString, error);
    CVideoOverlayManager manager;
    QString told;
    QVERIFY(!manager.loadProfile(file, &told));
    QCOMPARE(told, error);
}

void TestPlatformProfileErrors::aFileThatIsTooLargeIsRefused()
{
    constexpr int limit = 32 * 1024 * 1024;
    const QByteArray smallest = profile({});
    CVideoOverlayManager manager;
    QString told;
    QVERIFY(!manager.loadProfileData(smallest + QByteArray(limit + 1 - smallest.size(), ' '),
                                     QStringLiteral("p.json"), &told));
    QCOMPARE(told, QStringLiteral("p.json: larger than 33554432 bytes"));
    QVERIFY(manager.loadProfileData(smallest + QByteArray(limit - smallest.size(), ' '),
                                    QStringLiteral("p.json"), &told));
}

void TestPlatformProfileErrors::tooManyElementsAreRefused()
{
    QByteArray elements("7");
    for (int i = 0; i < 100'000; ++i) {
        elements += ",7";
    }
    CVideoOverlayManager manager;
    QString told;
    QVERIFY(!manager.loadProfileData(profile(elements), QStringLiteral("p.json"), &told));
    QCOMPARE(told, QStringLiteral("p.json: elements: expected 100000 elements at most, got 100001"));
}

void TestPlatformProfileErrors::theFileIsNamedAsItWasGiven()
{
    const QTemporaryDir directory;
    QFile file(directory.filePath(QStringLiteral("100%1 broken.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    CVideoOverlayManager manager;
    QString told;
    QVERIFY(!manager.loadProfile(file.fileName(), &told));
    QCOMPARE(told, file.fileName() + QLatin1String(":1:1: illegal value"));
}

QTEST_GUILESS_MAIN(TestPlatformProfileErrors)
#include "tst_platform_profile_errors.moc"
