#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QElapsedTimer>
#include <QtTest>

#include <limits>

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;

namespace {

/// Timers may be early by this much.
constexpr int almostASecond = 900;

/// As a host that records what is called.
class WatchedText : public CVideoOverlayText
{
public:
    void setVisible(bool visible) override
    {
        calls.append(visible);
        CVideoOverlayText::setVisible(visible);
    }

    QList<bool> calls;
};

} // namespace

class TestPlatformText : public QObject
{
    Q_OBJECT

private slots:
    void isFoundByTheMetaObjectCast();
    void whatIsSetIsHeld();
    void aColourThatIsNoneIsHeldToo();
    void aTextWithATimeoutHidesItselfAndKeepsTheRest();
    void aTimeoutOfZeroOrLessStays();
    void theTimeRunsFromTheShowing();
    void aNewTextOrTimeoutStartsTheTimeAgain();
    void hidingEndsTheTime();
    void shownAgainItHidesAgain();
    void aVeryLongTimeoutDoesNotEndAtOnce();
};

void TestPlatformText::isFoundByTheMetaObjectCast()
{
    CVideoOverlayText text;
    CVideoOverlayElement element;
    QCOMPARE(qobject_cast<CVideoOverlayText*>(static_cast<CVideoOverlayElement*>(&text)), &text);
    QVERIFY(!qobject_cast<CVideoOverlayText*>(&element));
}

void TestPlatformText::whatIsSetIsHeld()
{
    CVideoOverlayText text;
    const QFont font(QStringLiteral("Any Family"), 17);
    const QString words = QStringLiteral("two\nlines \u20ac") + QChar(QChar::Null);
    text.setText(words);
    text.setTextColor(QColor(1, 2, 3, 4));
    text.setBackgroundColor(QColor(5, 6, 7, 8));
    text.setFont(font);
    text.setTimeout(9);
    text.setUnit(QStringLiteral("\u00b0F"));
    QCOMPARE(text.text(), words);
    QCOMPARE(text.textColor(), QColor(1, 2, 3, 4));
    QCOMPARE(text.backgroundColor(), QColor(5, 6, 7, 8));
    QCOMPARE(text.font(), font);
    QCOMPARE(text.timeout(), 9);
    QCOMPARE(text.unit(), QStringLiteral("\u00b0F"));
}

void TestPlatformText::aColourThatIsNoneIsHeldToo()
{
    CVideoOverlayText text;
    text.setTextColor(Qt::red);
    text.setTextColor(QColor());
    QVERIFY(!text.textColor().isValid());
}

/// In the order in which the library shows a free text.
void TestPlatformText::aTextWithATimeoutHidesItselfAndKeepsTheRest()
{
    CVideoOverlayText text;
    text.setVisible(false);
    text.setTimeout(1);
    text.setText(QStringLiteral("soon gone"));
    text.setEnabled(true);
    QElapsedTimer time;
    time.start();
    text.setVisible(true);
    QVERIFY(text.visible());
    QTRY_VERIFY_WITH_TIMEOUT(!text.visible(), 3000);
    QVERIFY2(time.elapsed() >= almostASecond, qPrintable(QString::number(time.elapsed())));
    QVERIFY(text.enabled());
    QCOMPARE(text.text(), QStringLiteral("soon gone"));
    QCOMPARE(text.timeout(), 1);
}

/// A time-out that ran before is over, too.
void TestPlatformText::aTimeoutOfZeroOrLessStays()
{
    CVideoOverlayText zero;
    CVideoOverlayText negative;
    for (CVideoOverlayText* const text : {&zero, &negative}) {
        text->setTimeout(1);
        text->setVisible(true);
    }
    zero.setTimeout(0);
    negative.setTimeout(-1);
    QCOMPARE(negative.timeout(), -1);
    QTest::qWait(1300);
    QVERIFY(zero.visible());
    QVERIFY(negative.visible());
}

void TestPlatformText::theTimeRunsFromTheShowing()
{
    CVideoOverlayText text;
    text.setTimeout(1);
    text.setText(QStringLiteral("not shown yet"));
    QTest::qWait(600);
    QElapsedTimer time;
    time.start();
    text.setVisible(true);
    QTRY_VERIFY_WITH_TIMEOUT(!text.visible(), 3000);
    QVERIFY2(time.elapsed() >= almostASecond, qPrintable(QString::number(time.elapsed())));
}

void TestPlatformText::aNewTextOrTimeoutStartsTheTimeAgain()
{
    CVideoOverlayText newText;
    CVideoOverlayText newTimeout;
    for (CVideoOverlayText* const text : {&newText, &newTimeout}) {
        text->setTimeout(1);
        text->setVisible(true);
    }
    QTest::qWait(600);
    QElapsedTimer time;
    time.start();
    newText.setText(QStringLiteral("new"));
    newTimeout.setTimeout(1);
    QTRY_VERIFY_WITH_TIMEOUT(!newText.visible() || !newTimeout.visible(), 3000);
    QVERIFY2(time.elapsed() >= almostASecond, qPrintable(QString::number(time.elapsed())));
    QTRY_VERIFY_WITH_TIMEOUT(!newText.visible() && !newTimeout.visible(), 3000);
}

void TestPlatformText::hidingEndsTheTime()
{
    WatchedText text;
    text.setTimeout(1);
    text.setVisible(true);
    text.setVisible(false);
    text.calls.clear();
    QTest::qWait(1300);
    QVERIFY(text.calls.isEmpty());
}

/// The end is a virtual call, so that a host that overrides sees it.
void TestPlatformText::shownAgainItHidesAgain()
{
    WatchedText text;
    text.setTimeout(1);
    text.setVisible(true);
    QTRY_COMPARE_WITH_TIMEOUT(text.calls, (QList<bool>{true, false}), 3000);
    text.setVisible(true);
    QVERIFY(text.visible());
    QTRY_COMPARE_WITH_TIMEOUT(text.calls, (QList<bool>{true, false, true, false}), 3000);
    QVERIFY(!text.visible());
}

/// A number of seconds whose milliseconds do not fit an int.
void TestPlatformText::aVeryLongTimeoutDoesNotEndAtOnce()
{
    CVideoOverlayText text;
    text.setTimeout(std::numeric_limits<int>::max());
    text.setVisible(true);
    QTest::qWait(50);
    QVERIFY(text.visible());
    QCOMPARE(text.timeout(), std::numeric_limits<int>::max());
}

QTEST_GUILESS_MAIN(TestPlatformText)
#include "tst_platform_text.moc"
