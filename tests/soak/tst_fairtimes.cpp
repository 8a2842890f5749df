#include "FairTimes.h"

#include <QTest>

using Tolvar::Varundo::Test::FairTimes;

namespace {

constexpr FairTimes::Cause pull = FairTimes::Cause::Pull;
constexpr FairTimes::Cause change = FairTimes::Cause::Switch;

} // namespace

/// A road that dies is to be noticed, and one that lives is not to be blamed.
class tst_FairTimes : public QObject
{
    Q_OBJECT

private slots:
    void roadThatGoesOnHasNoFault();
    void roadThatDiesIsNamedWithWhatItDiedOf();
    void tooShortATimeDecidesNothing();
    void timeThatNeverBeganDoesNotEnd();
    void whatWasNeverJudgedIsAFault();
};

void tst_FairTimes::roadThatGoesOnHasNoFault()
{
    FairTimes times(QStringLiteral("serial"));
    times.begin(change, 0, 0);
    times.end(1, FairTimes::ShortestMs);
    times.begin(pull, 1, 10000);
    times.end(2, 15000);
    QCOMPARE(times.judged(change), 1);
    QCOMPARE(times.judged(pull), 1);
    QCOMPARE(times.faults({pull, change}), QStringList());
}

void tst_FairTimes::roadThatDiesIsNamedWithWhatItDiedOf()
{
    FairTimes times(QStringLiteral("serial"));
    times.begin(pull, 0, 0);
    times.end(70, 5000);
    times.begin(pull, 80, 10000); // some were done in between
    times.end(80, 15000);
    QCOMPARE(times.faults({pull}),
             QStringList{QStringLiteral("the serial road was not served after pull 2")});
}

void tst_FairTimes::tooShortATimeDecidesNothing()
{
    FairTimes times(QStringLiteral("serial"));
    times.begin(pull, 5, 0);
    times.end(5, FairTimes::ShortestMs - 1);
    QCOMPARE(times.judged(pull), 0);
    QCOMPARE(times.faults({}), QStringList());
}

void tst_FairTimes::timeThatNeverBeganDoesNotEnd()
{
    FairTimes times(QStringLiteral("serial"));
    times.end(0, 60000);
    times.begin(pull, 0, 60000);
    times.end(1, 65000);
    times.end(1, 70000);
    QCOMPARE(times.judged(pull), 1);
    QCOMPARE(times.faults({}), QStringList());
}

void tst_FairTimes::whatWasNeverJudgedIsAFault()
{
    FairTimes times(QStringLiteral("serial"));
    times.begin(change, 0, 0);
    times.end(9, 5000);
    QCOMPARE(times.faults({pull, change}),
             QStringList{QStringLiteral("the serial road was never judged after a pull")});
}

QTEST_GUILESS_MAIN(tst_FairTimes)
#include "tst_fairtimes.moc"
