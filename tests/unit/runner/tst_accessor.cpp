// How the host's elements are keyed, found and changed.

#include "CallLog.h"
#include "HeapInUse.h"
#include "RecordingElement.h"

#include <Mavril/VideoOverlay/ElementParam.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QPointer>
#include <QtTest>

#include <ctime>
#include <optional>
#include <type_traits>
#include <vector>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;
using Mavril::VideoOverlay::IVideoOverlayElementAccessor;

namespace {

QVariant textValue(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

static_assert(std::is_base_of_v<QObject, ZelVideoOverlayElementAccessor>);
static_assert(std::is_base_of_v<IVideoOverlayElementAccessor, ZelVideoOverlayElementAccessor>);

class TestAccessor : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void objectComesBeforeTheHostsInterface();
    void aParentMayBeGiven();

    void keyIsTheFirstParameterThatIsNotEmpty_data();
    void keyIsTheFirstParameterThatIsNotEmpty();
    void elementWithoutKeyIsNotRegistered();
    void keysAreCaseSensitive();
    void secondElementTakesOverAKey();
    void unregisteringAReplacedElementRemovesNothing();
    void unregisteredElementIsLeftAlone();
    void unregisteringAStrangerRemovesNothing();
    void elementUnderTwoKeysLosesOnePerUnregistering();
    void elementAtTheAddressOfOneThatIsGoneHasItsOwnKey();
    void keysOfManyElementsAreTakenOverWithoutAWalkForEach();
    void nothingIsKeptOfElementsThatWereReplaced();
    void manyElementsAreUnregisteredWithoutAWalkForEach();
    void destroyingTheAccessorDeletesNoElement();

    void positionSetsColumnThenRow();
    void visibilitySwitchesEnabledAndNotVisible_data();
    void visibilitySwitchesEnabledAndNotVisible();
    void textOperationsSetJustTheirProperty();
    void coloursAreCopied();
    void freeTextIsHiddenSetAndShown();
    void positionAndVisibilityReachEveryKindOfElement();
    void textOperationsLeaveOtherKindsAlone();
    void unknownKeyDoesNothing();
    void nullElementDoesNothing();

private:
    static void callEverything(IVideoOverlayElementAccessor& accessor, const QString& key);

    CallLog m_log;
    QString m_key = QStringLiteral("KEY");
};

void TestAccessor::init()
{
    static_cast<void>(m_log.take());
}

void TestAccessor::objectComesBeforeTheHostsInterface()
{
    ZelVideoOverlayElementAccessor accessor;
    QCOMPARE(static_cast<void*>(static_cast<QObject*>(&accessor)), static_cast<void*>(&accessor));
    QVERIFY(static_cast<void*>(static_cast<IVideoOverlayElementAccessor*>(&accessor)) !=
            static_cast<void*>(&accessor));
}

void TestAccessor::aParentMayBeGiven()
{
    QObject parent;
    auto* const accessor = new ZelVideoOverlayElementAccessor(&parent);
    QCOMPARE(accessor->parent(), &parent);
}

void TestAccessor::keyIsTheFirstParameterThatIsNotEmpty_data()
{
    QTest::addColumn<QVariant>("column");
    QTest::addColumn<QVariant>("staticId");
    QTest::addColumn<QVariant>("caption");
    QTest::addColumn<QString>("key");
    const QVariant missing;
    const QVariant empty = QString();
    const QVariant noText = QPoint(1, 2);
    QTest::newRow("all three: the column")
        << textValue("SPEED") << textValue("3") << textValue("box") << "SPEED";
    QTest::newRow("column alone") << textValue("SPEED") << missing << missing << "SPEED";
    QTest::newRow("column and caption") << textValue("SPEED") << missing << textValue("box") << "SPEED";
    QTest::newRow("static id before caption") << missing << textValue("3") << textValue("box") << "3";
    QTest::newRow("empty column, static id") << empty << textValue("3") << missing << "3";
    QTest::newRow("static id as a number") << missing << QVariant(3) << textValue("box") << "3";
    QTest::newRow("static id 0 is not empty") << missing << QVariant(0) << textValue("box") << "0";
    QTest::newRow("caption last") << missing << missing << textValue("box") << "box";
    QTest::newRow("two empty, caption") << empty << empty << textValue("box") << "box";
    QTest::newRow("column that is no text") << noText << textValue("3") << missing << "3";
    QTest::newRow("static id that is no text") << missing << noText << textValue("box") << "box";
    QTest::newRow("column as bytes") << QVariant(QByteArray("SPEED")) << textValue("3") << missing << "SPEED";
    QTest::newRow("a blank is not empty") << textValue(" ") << textValue("3") << missing << " ";
    QTest::newRow("none") << missing << missing << missing << "";
    QTest::newRow("all empty") << empty << empty << empty << "";
    QTest::newRow("no text anywhere") << noText << noText << noText << "";
}

void TestAccessor::keyIsTheFirstParameterThatIsNotEmpty()
{
    QFETCH(QVariant, column);
    QFETCH(QVariant, staticId);
    QFETCH(QVariant, caption);
    ElementParam params;
    const auto put = [&](const QString& name, const QVariant& value) {
        if (value.isValid()) {
            params.insert(name, value);
        }
    };
    put(ElementParam::NAME_COLUMNBOUND, column);
    put(ElementParam::NAME_STATIC_ID, staticId);
    put(ElementParam::NAME_COLUMNCAPTION, caption);
    ZelVideoOverlayElementAccessor accessor;
    QTEST(accessor.generateElementKey(params), "key");
}

void TestAccessor::elementWithoutKeyIsNotRegistered()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(accessor.generateElementKey(text.getParamObject()), &text);
    callEverything(accessor, QString());
    callEverything(accessor, QStringLiteral(""));
    QCOMPARE(m_log.take(), QStringList());
}

void TestAccessor::keysAreCaseSensitive()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(QStringLiteral("Key"), &text);
    callEverything(accessor, m_key);
    QCOMPARE(m_log.take(), QStringList());
}

void TestAccessor::secondElementTakesOverAKey()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText first(QStringLiteral("first"), m_log);
    RecordingText second(QStringLiteral("second"), m_log);
    accessor.registerElement(m_key, &first);
    accessor.registerElement(m_key, &second);
    accessor.setElementVisibility(m_key, true);
    QCOMPARE(m_log.take(), inOrder("second.setEnabled(true)"));
}

void TestAccessor::unregisteringAReplacedElementRemovesNothing()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText first(QStringLiteral("first"), m_log);
    RecordingText second(QStringLiteral("second"), m_log);
    accessor.registerElement(m_key, &first);
    accessor.registerElement(m_key, &second);
    accessor.unregisterElement(&first);
    accessor.setElementVisibility(m_key, true);
    QCOMPARE(m_log.take(), inOrder("second.setEnabled(true)"));
}

void TestAccessor::unregisteredElementIsLeftAlone()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    RecordingText other(QStringLiteral("other"), m_log);
    accessor.registerElement(m_key, &text);
    accessor.registerElement(QStringLiteral("OTHER"), &other);
    accessor.unregisterElement(&text);
    callEverything(accessor, m_key);
    QCOMPARE(m_log.take(), QStringList());
    accessor.setElementVisibility(QStringLiteral("OTHER"), true);
    QCOMPARE(m_log.take(), inOrder("other.setEnabled(true)"));
}

void TestAccessor::unregisteringAStrangerRemovesNothing()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    RecordingText stranger(QStringLiteral("stranger"), m_log);
    accessor.unregisterElement(&stranger); // with nothing registered at all
    accessor.registerElement(m_key, &text);
    accessor.unregisterElement(&stranger);
    accessor.unregisterElement(nullptr);
    accessor.setElementVisibility(m_key, true);
    QCOMPARE(m_log.take(), inOrder("setEnabled(true)"));
}

void TestAccessor::elementUnderTwoKeysLosesOnePerUnregistering()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    const QStringList keys{QStringLiteral("A"), QStringLiteral("B")};
    const auto reached = [&] {
        for (const QString& key : keys) {
            accessor.setElementVisibility(key, true);
        }
        return m_log.take().size();
    };
    accessor.registerElement(keys.first(), &text);
    accessor.registerElement(keys.last(), &text);
    QCOMPARE(reached(), 2);
    accessor.unregisterElement(&text);
    QCOMPARE(reached(), 1);
    accessor.unregisterElement(&text);
    QCOMPARE(reached(), 0);
}

void TestAccessor::elementAtTheAddressOfOneThatIsGoneHasItsOwnKey()
{
    const QString other = QStringLiteral("OTHER");
    ZelVideoOverlayElementAccessor accessor;
    std::optional<RecordingText> place;
    accessor.registerElement(m_key, &place.emplace(QStringLiteral("gone"), m_log));
    accessor.registerElement(other, &place.emplace(QStringLiteral("new"), m_log));
    RecordingText third(QStringLiteral("third"), m_log);
    accessor.registerElement(m_key, &third); // whose former element has the address of a live one
    accessor.unregisterElement(&*place);
    accessor.setElementVisibility(other, true);
    accessor.setElementVisibility(m_key, true);
    QCOMPARE(m_log.take(), inOrder("third.setEnabled(true)"));
}

/// As when a profile is loaded anew before the elements of the old one have gone.
void TestAccessor::keysOfManyElementsAreTakenOverWithoutAWalkForEach()
{
    constexpr int Count = 20000;
    ZelVideoOverlayElementAccessor accessor;
    QObject owner;
    // Processor time, so that a busy machine makes no difference.
    const auto timeToRegister = [&] {
        std::vector<RecordingElement*> elements;
        elements.reserve(Count);
        for (int i = 0; i < Count; ++i) {
            elements.push_back(new RecordingElement(QString(), m_log, &owner));
        }
        const std::clock_t begin = std::clock();
        for (int i = 0; i < Count; ++i) {
            accessor.registerElement(QString::number(i), elements.at(static_cast<std::size_t>(i)));
        }
        return std::clock() - begin;
    };
    const std::clock_t first = timeToRegister();
    const std::clock_t second = timeToRegister();
    QVERIFY2(second < 10 * first, qPrintable(QStringLiteral("%1, then %2").arg(first).arg(second)));
}

/// A host may put one element after the other under a key, for months.
void TestAccessor::nothingIsKeptOfElementsThatWereReplaced()
{
    constexpr int Count = 20000;
    constexpr qint64 MostBytes = 65536;
    ZelVideoOverlayElementAccessor accessor;
    QObject owner;
    std::vector<QPointer<RecordingElement>>
        elements; // a guard of its own for each, so that none is made later
    elements.reserve(Count);
    for (int i = 0; i < Count; ++i) {
        elements.emplace_back(new RecordingElement(QString(), m_log, &owner));
    }
    const qint64 before = heapInUse();
    for (const auto& element : elements) {
        accessor.registerElement(QStringLiteral("key"), element);
    }
    const qint64 kept = heapInUse() - before;
    QVERIFY2(kept < MostBytes, qPrintable(QString::number(kept)));
}

void TestAccessor::manyElementsAreUnregisteredWithoutAWalkForEach()
{
    constexpr int Count = 20000;
    ZelVideoOverlayElementAccessor accessor;
    QObject owner;
    std::vector<RecordingElement*> elements;
    for (int i = 0; i < Count; ++i) {
        elements.push_back(new RecordingElement(QString(), m_log, &owner));
    }
    // Processor time, so that a busy machine makes no difference.
    const std::clock_t begin = std::clock();
    for (int i = 0; i < Count; ++i) {
        accessor.registerElement(QString::number(i), elements.at(static_cast<std::size_t>(i)));
    }
    const std::clock_t registered = std::clock();
    for (RecordingElement* const element : elements) {
        accessor.unregisterElement(element);
    }
    const std::clock_t unregistered = std::clock();
    QVERIFY2(
        unregistered - registered < 10 * (registered - begin),
        qPrintable(QStringLiteral("%1, then %2").arg(registered - begin).arg(unregistered - registered)));
    accessor.setElementPosition(QStringLiteral("7"), QPoint(5, 2));
    QCOMPARE(m_log.take(), QStringList());
}

void TestAccessor::destroyingTheAccessorDeletesNoElement()
{
    QObject owner;
    const QPointer<RecordingText> text = new RecordingText(QString(), m_log, &owner);
    {
        ZelVideoOverlayElementAccessor accessor;
        accessor.registerElement(m_key, text);
    }
    QVERIFY(text);
    QCOMPARE(m_log.take(), QStringList());
}

void TestAccessor::positionSetsColumnThenRow()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(m_key, &text);
    accessor.setElementPosition(m_key, QPoint(5, 2));
    QCOMPARE(m_log.take(), inOrder("setColumn(5)", "setRow(2)"));
    accessor.setElementPosition(m_key, QPoint(-1, 300));
    QCOMPARE(m_log.take(), inOrder("setColumn(-1)", "setRow(300)"));
}

void TestAccessor::visibilitySwitchesEnabledAndNotVisible_data()
{
    QTest::addColumn<bool>("visible");
    QTest::newRow("on") << true;
    QTest::newRow("off") << false;
}

void TestAccessor::visibilitySwitchesEnabledAndNotVisible()
{
    QFETCH(bool, visible);
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(m_key, &text);
    text.setEnabled(!visible);
    text.setVisible(!visible);
    static_cast<void>(m_log.take());

    accessor.setElementVisibility(m_key, visible);
    QCOMPARE(m_log.take(), inOrder(QStringLiteral("setEnabled(%1)").arg(inWords(visible))));
    QCOMPARE(text.enabled(), visible);
    QCOMPARE(text.visible(), !visible); // the host's own flag is deliberately not touched
}

void TestAccessor::textOperationsSetJustTheirProperty()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(m_key, &text);
    QColor red(Qt::red);
    QColor transparent(Qt::transparent);

    accessor.setElementText(m_key, QStringLiteral(" as it is "));
    QCOMPARE(m_log.take(), inOrder("setText( as it is )"));
    accessor.setElementTextColor(m_key, red);
    QCOMPARE(m_log.take(), inOrder("setTextColor(#ffff0000)"));
    accessor.setElementBackgroundColor(m_key, transparent);
    QCOMPARE(m_log.take(), inOrder("setBackgroundColor(#00000000)"));
    accessor.setElementUnit(m_key, QStringLiteral("°C"));
    QCOMPARE(m_log.take(), inOrder(QStringLiteral("setUnit(°C)")));
}

void TestAccessor::coloursAreCopied()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(m_key, &text);
    QColor color(Qt::red);
    accessor.setElementTextColor(m_key, color);
    accessor.setElementBackgroundColor(m_key, color);
    QCOMPARE(color, QColor(Qt::red));
    color = Qt::blue;
    QCOMPARE(text.textColor(), QColor(Qt::red));
    QCOMPARE(text.backgroundColor(), QColor(Qt::red));
}

void TestAccessor::freeTextIsHiddenSetAndShown()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(m_key, &text);
    accessor.setElementFreeTextEnabled(m_key, 30, QStringLiteral("a\nb"));
    QCOMPARE(m_log.take(), inOrder("setVisible(false)", "setTimeout(30)", "setText(a\nb)", "setEnabled(true)",
                                   "setVisible(true)"));
    QVERIFY(text.visible());
    QVERIFY(text.enabled());
    QCOMPARE(text.timeout(), 30);
    QCOMPARE(text.text(), QStringLiteral("a\nb"));
}

void TestAccessor::positionAndVisibilityReachEveryKindOfElement()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingElement element(QString(), m_log);
    accessor.registerElement(m_key, &element);
    accessor.setElementPosition(m_key, QPoint(5, 2));
    accessor.setElementVisibility(m_key, true);
    QCOMPARE(m_log.take(), inOrder("setColumn(5)", "setRow(2)", "setEnabled(true)"));
}

void TestAccessor::textOperationsLeaveOtherKindsAlone()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingElement element(QString(), m_log);
    accessor.registerElement(m_key, &element);
    QColor red(Qt::red);
    accessor.setElementText(m_key, QStringLiteral("text"));
    accessor.setElementTextColor(m_key, red);
    accessor.setElementBackgroundColor(m_key, red);
    accessor.setElementUnit(m_key, QStringLiteral("°C"));
    accessor.setElementFreeTextEnabled(m_key, 5, QStringLiteral("text"));
    QCOMPARE(m_log.take(), QStringList());
}

void TestAccessor::unknownKeyDoesNothing()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(m_key, &text);
    callEverything(accessor, QStringLiteral("KE"));
    QCOMPARE(m_log.take(), QStringList());
}

void TestAccessor::nullElementDoesNothing()
{
    ZelVideoOverlayElementAccessor accessor;
    RecordingText text(QString(), m_log);
    accessor.registerElement(m_key, &text);
    accessor.registerElement(m_key, nullptr); // takes the key from the text
    callEverything(accessor, m_key);
    QCOMPARE(m_log.take(), QStringList());
}

void TestAccessor::callEverything(IVideoOverlayElementAccessor& accessor, const QString& key)
{
    QColor color(Qt::red);
    accessor.setElementPosition(key, QPoint(1, 2));
    accessor.setElementVisibility(key, true);
    accessor.setElementText(key, QStringLiteral("text"));
    accessor.setElementTextColor(key, color);
    accessor.setElementBackgroundColor(key, color);
    accessor.setElementUnit(key, QStringLiteral("°C"));
    accessor.setElementFreeTextEnabled(key, 5, QStringLiteral("text"));
}

QTEST_MAIN(TestAccessor)
#include "tst_accessor.moc"
