#include <Mavril/SystemClock.h>
#include <Mavril/SystemDateTime.h>

#include <QDateTime>
#include <QtTest>

using Mavril::SystemClock;
using Mavril::SystemDateTime;

namespace {

class RecordingClock : public SystemClock
{
public:
    void setDateTime(const QDateTime& dateTime) override { dateTimes.append(dateTime); }
    void setTime(const QTime& time) override { times.append(time); }

    QList<QDateTime> dateTimes;
    QList<QTime> times;
};

const QDateTime noon(QDate(2020, 2, 29), QTime(12, 0));

void expectDropWarning()
{
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral("^no clock is installed; not set to")));
}

} // namespace

class TestPlatformClock : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { SystemDateTime::install(nullptr); }

    void bothCallsGoToTheInstalledClock();
    void theLastClockInstalledIsTheOne();
    void anInvalidTimeIsPassedOn();
    void withoutAClockCallsAreLoggedAndDropped();
    void aDestroyedClockTakesItselfOut();
    void aClockThatIsNotInstalledLeavesTheOtherIn();
};

void TestPlatformClock::bothCallsGoToTheInstalledClock()
{
    RecordingClock clock;
    SystemDateTime::install(&clock);
    SystemDateTime().setDateTime(noon);
    SystemDateTime().setTime(QTime(1, 2, 3));
    QCOMPARE(clock.dateTimes, QList<QDateTime>{noon});
    QCOMPARE(clock.times, (QList<QTime>{QTime(1, 2, 3)}));
}

void TestPlatformClock::theLastClockInstalledIsTheOne()
{
    RecordingClock first;
    RecordingClock second;
    SystemDateTime::install(&first);
    SystemDateTime::install(&second);
    SystemDateTime().setDateTime(noon);
    QVERIFY(first.dateTimes.isEmpty());
    QCOMPARE(second.dateTimes.size(), 1);
}

void TestPlatformClock::anInvalidTimeIsPassedOn()
{
    RecordingClock clock;
    SystemDateTime::install(&clock);
    SystemDateTime().setDateTime(QDateTime());
    SystemDateTime().setTime(QTime());
    QCOMPARE(clock.dateTimes, QList<QDateTime>{QDateTime()});
    QCOMPARE(clock.times, QList<QTime>{QTime()});
}

void TestPlatformClock::withoutAClockCallsAreLoggedAndDropped()
{
    expectDropWarning();
    SystemDateTime().setDateTime(noon);
    expectDropWarning();
    SystemDateTime().setTime(noon.time());
}

void TestPlatformClock::aDestroyedClockTakesItselfOut()
{
    {
        RecordingClock clock;
        SystemDateTime::install(&clock);
    }
    expectDropWarning();
    SystemDateTime().setTime(noon.time());
}

void TestPlatformClock::aClockThatIsNotInstalledLeavesTheOtherIn()
{
    RecordingClock installed;
    {
        RecordingClock former;
        SystemDateTime::install(&former);
        SystemDateTime::install(&installed);
    }
    SystemDateTime().setTime(noon.time());
    QCOMPARE(installed.times.size(), 1);
}

QTEST_GUILESS_MAIN(TestPlatformClock)
#include "tst_platform_clock.moc"
