#include "ModelSnapshot.h"

#include <QtTest>

#include <initializer_list>
#include <limits>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float Smallest = std::numeric_limits<float>::denorm_min();
constexpr float Largest = std::numeric_limits<float>::max();
constexpr float Epsilon = std::numeric_limits<float>::epsilon(); // between 1 and the next number

/// How often a value is announced that is set on a fresh model after another.
template <class Row>
int announcements(const Row& row, float stored, float value)
{
    DataManager model;
    (model.*row.set)(stored);
    SignalLog log;
    watchModel(log, model);
    (model.*row.set)(value);
    return log.take().size();
}

} // namespace

/// When a setter keeps quiet, where that is more than plain equality.
class DataManagerRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void valueIsSilentWithinAHundredThousandth_data();
    void valueIsSilentWithinAHundredThousandth();
    void silentValueIsNotStored();
    void announcedValueIsStoredBitForBit();
    void pressureIsComparedInThousandths_data();
    void pressureIsComparedInThousandths();
    void pressureIsStoredUnscaled();
    void silentPressureIsNotStored();
    void cursorIsAlwaysAnnounced();
    void repeatedFreeTextIsSilentWithoutDurationOnly();
    void anyDifferenceInTheFreeTextIsAnnounced();
    void freeTextIsStoredBeforeItIsAnnounced();
    void freeTextColorsAreStoredWithoutASignal();
    void codecIsStoredWithoutASignal();
    void colorsOfAnotherModelDiffer();
    void listenerMaySetTheSamePropertyAgain();
};

void DataManagerRulesTest::valueIsSilentWithinAHundredThousandth_data()
{
    QTest::addColumn<float>("stored");
    QTest::addColumn<float>("value");
    QTest::addColumn<bool>("silent");
    QTest::newRow("zero again") << 0.0F << 0.0F << true;
    QTest::newRow("negative zero after zero") << 0.0F << -0.0F << true;
    QTest::newRow("a tenth of a millionth after zero") << 0.0F << 1e-7F << false;
    QTest::newRow("smallest number after zero") << 0.0F << Smallest << false;
    QTest::newRow("zero after the smallest number") << Smallest << 0.0F << false;
    QTest::newRow("smallest number again") << Smallest << Smallest << true;
    QTest::newRow("next to the smallest number") << Smallest << 2 * Smallest << false;
    QTest::newRow("the same") << 21.5F << 21.5F << true;
    QTest::newRow("just within, above") << 1.0F << 1.0F + 83 * Epsilon << true;
    QTest::newRow("just outside, above") << 1.0F << 1.0F + 84 * Epsilon << false;
    QTest::newRow("just within, down") << 1.0F + 83 * Epsilon << 1.0F << true;
    QTest::newRow("just outside, down") << 1.0F + 84 * Epsilon << 1.0F << false;
    QTest::newRow("negative, just within") << -1.0F << -1.0F - 83 * Epsilon << true;
    QTest::newRow("negative, just outside") << -1.0F << -1.0F - 84 * Epsilon << false;
    QTest::newRow("the same with another sign") << 1.0F << -1.0F << false;
    QTest::newRow("large, within") << 1e10F << 1.000009e10F << true;
    QTest::newRow("large, outside") << 1e10F << 1.000011e10F << false;
    QTest::newRow("largest again") << Largest << Largest << true;
    QTest::newRow("a thousandth of it") << 2.0F << 2000.0F << false;
    // A difference of infinities is no number, and nothing is smaller than or equal to that.
    QTest::newRow("infinity after a number") << 1.0F << Infinity << false;
    QTest::newRow("a number after infinity") << Infinity << 1.0F << false;
    QTest::newRow("infinity again") << Infinity << Infinity << false;
    QTest::newRow("the opposite infinity: no farther away than it is large") << Infinity << -Infinity << true;
    QTest::newRow("NaN after a number") << 1.0F << NaN << false;
    QTest::newRow("a number after NaN") << NaN << 1.0F << false;
    QTest::newRow("NaN again") << NaN << NaN << false;
    QTest::newRow("NaN after zero") << 0.0F << NaN << false;
}

void DataManagerRulesTest::valueIsSilentWithinAHundredThousandth()
{
    QFETCH(float, stored);
    QFETCH(float, value);
    QFETCH(bool, silent);
    for (const ValueRow& row : ValueRows) {
        QVERIFY2(announcements(row, stored, value) == (silent ? 0 : 1), row.property);
    }
}

void DataManagerRulesTest::silentValueIsNotStored()
{
    for (const ValueRow& row : ValueRows) {
        DataManager model;
        (model.*row.set)(1.0F);
        // Each step is too small by itself: the comparison stays with the value that was announced.
        (model.*row.set)(1.0F + 80 * Epsilon);
        QCOMPARE(asText((model.*row.get)()), asText(1.0F));
        (model.*row.set)(1.0F + 160 * Epsilon);
        QCOMPARE(asText((model.*row.get)()), asText(1.0F + 160 * Epsilon));
    }
}

void DataManagerRulesTest::announcedValueIsStoredBitForBit()
{
    const auto check = [](const auto& rows, std::initializer_list<float> values) {
        for (const auto& row : rows) {
            for (const float value : values) {
                DataManager model;
                SignalLog log;
                log.watch(&model, row.changed);
                (model.*row.set)(value);
                QCOMPARE(asText((model.*row.get)()), asText(value));
                QVERIFY2(log.take().value(0).endsWith(QStringLiteral("(%1)").arg(asText(value))),
                         row.property);
            }
        }
    };
    check(ValueRows, {NaN, -NaN, Infinity, -Infinity, Smallest, -Largest, 0.1F});
    // A thousandth of the smallest number is none, which makes it no change of a pressure.
    check(PressureRows, {NaN, -NaN, Infinity, -Infinity, -Largest, 0.1F});
}

void DataManagerRulesTest::pressureIsComparedInThousandths_data()
{
    QTest::addColumn<float>("stored");
    QTest::addColumn<float>("value");
    QTest::addColumn<bool>("silent");
    QTest::newRow("zero again") << 0.0F << 0.0F << true;
    QTest::newRow("the same again") << 2000.0F << 2000.0F << false;
    QTest::newRow("small, the same again") << 2.0F << 2.0F << false;
    QTest::newRow("a thousand times as much") << 2.0F << 2000.0F << true;
    QTest::newRow("a thousand times as much, fuzzily") << 2.0F << 2000.01F << true;
    QTest::newRow("a little more than a thousand times") << 2.0F << 2000.1F << false;
    QTest::newRow("a thousandth") << 2000.0F << 2.0F << false;
    QTest::newRow("zero after something") << 2.0F << 0.0F << false;
    QTest::newRow("something after zero") << 0.0F << 2.0F << false;
    QTest::newRow("another sign") << -2.0F << 2000.0F << false;
    QTest::newRow("negative, a thousand times as much") << -2.0F << -2000.0F << true;
    QTest::newRow("NaN again") << NaN << NaN << false;
    QTest::newRow("infinity again") << Infinity << Infinity << false;
}

void DataManagerRulesTest::pressureIsComparedInThousandths()
{
    QFETCH(float, stored);
    QFETCH(float, value);
    QFETCH(bool, silent);
    for (const ValueRow& row : PressureRows) {
        QVERIFY2(announcements(row, stored, value) == (silent ? 0 : 1), row.property);
    }
}

void DataManagerRulesTest::pressureIsStoredUnscaled()
{
    for (const ValueRow& row : PressureRows) {
        DataManager model;
        fillModel(model, true);
        SignalLog log;
        watchModel(log, model);
        const QString name = QString::fromLatin1(QMetaMethod::fromSignal(row.changed).name());
        for (int i = 0; i < 3; ++i) { // announced each time, though nothing changes
            (model.*row.set)(2000.0F);
            QCOMPARE(log.take(), QStringList{QStringLiteral("%1(%2)").arg(name, asText(2000.0F))});
            QCOMPARE(asText((model.*row.get)()), asText(2000.0F));
        }
    }
}

void DataManagerRulesTest::silentPressureIsNotStored()
{
    for (const ValueRow& row : PressureRows) {
        DataManager model;
        (model.*row.set)(2.0F);
        (model.*row.set)(2000.0F);
        QCOMPARE(asText((model.*row.get)()), asText(2.0F));
    }
}

void DataManagerRulesTest::cursorIsAlwaysAnnounced()
{
    DataManager model;
    SignalLog log;
    watchModel(log, model);
    model.setCursorPosition(0, 0);
    QCOMPARE(log.take(), QStringList{"cursorPositionChanged((0, 0))"_s});
    model.setCursorPosition(3, -4);
    model.setCursorPosition(3, -4);
    QCOMPARE(log.take(),
             (QStringList{"cursorPositionChanged((3, -4))"_s, "cursorPositionChanged((3, -4))"_s}));
    QCOMPARE(model.cursorPosition(), QPoint(3, -4));
}

void DataManagerRulesTest::repeatedFreeTextIsSilentWithoutDurationOnly()
{
    DataManager model;
    SignalLog log;
    watchModel(log, model);
    const QStringList text{QStringLiteral("a"), QStringLiteral("b")};
    const QString announced = QStringLiteral("lineTextChanged(\"%1\", [2: a|b], %2)");
    const QString box = Name::NAME_OSD_FREE_TEXT_BOX;
    model.setLineText(text, 0);
    QCOMPARE(log.take(), QStringList{announced.arg(box).arg(0)});
    model.setLineText(text, 0);
    QCOMPARE(log.take(), QStringList());
    for (const int duration : {5, 5, 5, -1, 5}) {
        model.setLineText(text, duration);
        QCOMPARE(log.take(), QStringList{announced.arg(box).arg(duration)});
    }
    model.setLineText(text, 0); // the duration before is not kept, so this is no change
    QCOMPARE(log.take(), QStringList());
}

void DataManagerRulesTest::anyDifferenceInTheFreeTextIsAnnounced()
{
    const QList<QStringList> others{{},
                                    {"a"_s},
                                    {"a"_s, "B"_s},
                                    {"b"_s, "a"_s},
                                    {"a"_s, "b"_s, ""_s},
                                    {""_s, "a"_s, "b"_s},
                                    {"ab"_s, ""_s}};
    for (const QStringList& other : others) {
        DataManager model;
        model.setLineText({"a"_s, "b"_s}, 0);
        SignalLog log;
        watchModel(log, model);
        model.setLineText(other, 0);
        QCOMPARE(log.take(), QStringList{QStringLiteral("lineTextChanged(\"%1\", %2, 0)")
                                             .arg(Name::NAME_OSD_FREE_TEXT_BOX, asText(other))});
        QCOMPARE(model.lineText(), other);
    }
}

void DataManagerRulesTest::freeTextIsStoredBeforeItIsAnnounced()
{
    DataManager model;
    QStringList seen;
    connect(&model, &DataManager::lineTextChanged, this, [&] { seen = model.lineText(); });
    model.setLineText({"a"_s, "b"_s}, 7);
    QCOMPARE(seen, (QStringList{"a"_s, "b"_s}));
}

void DataManagerRulesTest::freeTextColorsAreStoredWithoutASignal()
{
    DataManager model;
    SignalLog log;
    watchModel(log, model);
    const ModelSnapshot before(model);
    model.setLineColorPair(ColorPair(Qt::red, Qt::black));
    QCOMPARE(before.changesTo(ModelSnapshot(model)),
             QStringList{"lineColorPair = "_s + asText(ColorPair(Qt::red, Qt::black))});
    model.setLineColorPair(ColorPair());
    QCOMPARE(asText(model.lineColorPair()), QStringLiteral("invalid on invalid"));
    QCOMPARE(log.take(), QStringList());
}

void DataManagerRulesTest::codecIsStoredWithoutASignal()
{
    DataManager model;
    SignalLog log;
    watchModel(log, model);
    for (int codec = 255; codec >= 0; --codec) {
        model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
        QCOMPARE(int(model.textCodec()), codec);
    }
    QCOMPARE(log.take(), QStringList());
}

void DataManagerRulesTest::colorsOfAnotherModelDiffer()
{
    // Colours are compared whole: red by hue is not red by components, and half transparent is not opaque.
    DataManager model;
    SignalLog log;
    watchModel(log, model);
    const QColor white(Qt::white);
    model.setDateColorPair(ColorPair(QColor(255, 0, 0), white));
    model.setDateColorPair(ColorPair(QColor::fromHsv(0, 255, 255), white));
    model.setDateColorPair(ColorPair(QColor(255, 0, 0, 254), white));
    QCOMPARE(log.take().size(), 3);
    QCOMPARE(asText(model.dateColorPair().first), asText(QColor(255, 0, 0, 254)));
}

void DataManagerRulesTest::listenerMaySetTheSamePropertyAgain()
{
    DataManager model;
    SignalLog log;
    watchModel(log, model);
    connect(&model, &DataManager::dateFormatChanged, this, [&](int format) {
        if (format < 3) {
            model.setDateFormat(format + 1);
        }
    });
    model.setDateFormat(1);
    QCOMPARE(log.take(),
             (QStringList{"dateFormatChanged(1)"_s, "dateFormatChanged(2)"_s, "dateFormatChanged(3)"_s}));
    QCOMPARE(model.dateFormat(), 3);
}

QTEST_GUILESS_MAIN(DataManagerRulesTest)

#include "tst_datamanager_rules.moc"
