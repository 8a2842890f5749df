#include "FrameMaker.h"
#include "Isolation.h"
#include "Playing.h"
#include "Shrinker.h"
#include "StepGenerator.h"

#include <QTest>

#include <algorithm>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Model;

/// That a long sequence which fails becomes one that people can read, shown with failures that were made.
class TestModelShrinking : public QObject
{
    Q_OBJECT

private slots:
    void everythingUnneededIsLeftOut();
    void brokenFrameIsLeftOutWithItsRepair();
    void frameThatWasCutIsPutTogether();
    void sequenceThatDoesNotFailStaysAsItIs();
    void searchEndsAtItsLimit();
    void plantedDisagreementIsShrunkToItsMinimum_data();
    void plantedDisagreementIsShrunkToItsMinimum();
};

namespace {

const Bytes NeededFirst = frame(0x62, 2, {7});
const Bytes NeededLast = frame(0x80, 0, {});

bool has(const Step& step, const Bytes& piece)
{
    return std::find(step.pieces.begin(), step.pieces.end(), piece) != step.pieces.end();
}

/// Fails at the last needed frame that comes behind a profile that was removed behind the first needed frame.
std::optional<std::size_t> made(const Sequence& sequence)
{
    int met = 0;
    for (std::size_t at = 0; at < sequence.size(); ++at) {
        const Step& step = sequence[at];
        if (met == 0 && has(step, NeededFirst)) {
            met = 1;
        } else if (met == 1 && step.kind == Step::Kind::RemoveProfile) {
            met = 2;
        } else if (met == 2 && has(step, NeededLast)) {
            return at;
        }
    }
    return std::nullopt;
}

Sequence longSequence()
{
    Sequence sequence = StepGenerator(1).sequence(1000);
    const auto third = static_cast<std::ptrdiff_t>(sequence.size() / 3);
    sequence.insert(sequence.begin() + 2 * third, sending(NeededLast));
    sequence.insert(sequence.begin() + third, happening(Step::Kind::RemoveProfile));
    Step crowded = sending(frame(0x31, 1, {}));
    crowded.pieces.push_back(NeededFirst);
    crowded.pieces.push_back(frame(0x33, 0, {}));
    sequence.insert(sequence.begin() + third / 2, crowded);
    return sequence;
}

} // namespace

void TestModelShrinking::everythingUnneededIsLeftOut()
{
    constexpr int Plenty = 10000;
    Shrinker shrinker(made, Plenty);
    const Sequence shortest = shrinker.shrunk(longSequence());
    QVERIFY(shrinker.isDone());
    QCOMPARE(shortest.size(), std::size_t{3});
    QCOMPARE(shortest[0].pieces, std::vector<Bytes>{NeededFirst});
    QCOMPARE(shortest[1].kind, Step::Kind::RemoveProfile);
    QCOMPARE(shortest[2].pieces, std::vector<Bytes>{NeededLast});
}

/// A frame with a wrong group, and what the receiver then needs, go together or not at all.
void TestModelShrinking::brokenFrameIsLeftOutWithItsRepair()
{
    const auto fails = [](const Sequence& sequence) -> std::optional<std::size_t> {
        UnitModel model;
        for (std::size_t at = 0; at < sequence.size(); ++at) {
            model.apply(sequence[at]);
            if (model.cursorColumn() == 7) {
                return at;
            }
        }
        return std::nullopt;
    };
    Shrinker shrinker(fails, 1000);
    const Sequence shortest = shrinker.shrunk({happening(Step::Kind::LoadProfile), sending({2, 5, 9}),
                                               sending({1, 0, 0, 3}), sending(frame(0x62, 2, {7}))});
    QCOMPARE(shortest.size(), std::size_t{1});
}

/// Neither half of a frame can be left out, so the whole has to be put together before its payload can.
void TestModelShrinking::frameThatWasCutIsPutTogether()
{
    const Bytes cut = frame(0x90, 2, {1, 'l', 'o', 'n', 'g'});
    const auto fails = [](const Sequence& sequence) -> std::optional<std::size_t> {
        UnitModel model;
        for (std::size_t at = 0; at < sequence.size(); ++at) {
            model.apply(sequence[at]);
            if (model.framesAccepted() > 0) {
                return at;
            }
        }
        return std::nullopt;
    };
    Shrinker shrinker(fails, 1000);
    const Sequence shortest =
        shrinker.shrunk({sending({cut.begin(), cut.begin() + 3}), sending({cut.begin() + 3, cut.begin() + 8}),
                         sending({cut.begin() + 8, cut.end()})});
    QCOMPARE(shortest.size(), std::size_t{1});
    QCOMPARE(shortest[0].pieces, std::vector<Bytes>{frame(0x90, 2, {})});
}

void TestModelShrinking::sequenceThatDoesNotFailStaysAsItIs()
{
    Sequence sequence = longSequence();
    sequence.resize(10);
    QCOMPARE(Shrinker(made, 100).shrunk(sequence).size(), sequence.size());
}

void TestModelShrinking::searchEndsAtItsLimit()
{
    constexpr int Few = 5;
    int trials = 0;
    Shrinker shrinker(
        [&trials](const Sequence& candidate) {
            ++trials;
            return made(candidate);
        },
        Few);
    const Sequence shorter = shrinker.shrunk(longSequence());
    QVERIFY(!shrinker.isDone());
    QCOMPARE(trials, Few);
    QVERIFY(made(shorter).has_value());
}

void TestModelShrinking::plantedDisagreementIsShrunkToItsMinimum_data()
{
    QTest::addColumn<int>("seed");
    for (const int seed : {1, 3, 9}) { // which meet it early: the sanitizers make each trial slow
        QTest::addRow("seed %d", seed) << seed;
    }
}

/// The model drops the last character of status line 3 under UTF-16. It takes three things to see that: the
/// codec, the text, and either the line on the overlay or a request for it.
void TestModelShrinking::plantedDisagreementIsShrunkToItsMinimum()
{
    constexpr auto Flaw = UnitModel::Flaw::StatusLine3UnderUtf16;
    if (!Test::hasOwn("net")) {
        QSKIP(Test::NeedsOwnNetwork);
    }
    QFETCH(int, seed);
    const Sequence sequence = StepGenerator(static_cast<std::uint32_t>(seed)).sequence(3000);
    QVERIFY(play(sequence, Flaw).has_value());
    const Sequence shortest = shrunk(sequence, Flaw);
    const QString report = explained(shortest, Flaw);

    std::size_t things = 0;
    for (const Step& step : shortest) {
        things += step.kind == Step::Kind::Send ? step.pieces.size() : 1;
    }
    QVERIFY2(things == 3, qPrintable(report));
    QVERIFY2(report.contains(QLatin1String("02 01 02 01 00 02 03")), qPrintable(report));
    QVERIFY2(report.contains(QLatin1String("02 90 02 03 00 03 ")), qPrintable(report)); // one UTF-16 unit
    QVERIFY2(report.contains(QLatin1String("write text-codec value utf16")), qPrintable(report));
    QVERIFY2(report.contains(QLatin1String(": expected ")), qPrintable(report));
    for (std::size_t left = 0; left < shortest.size(); ++left) {
        Sequence shorter = shortest;
        shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(left));
        QVERIFY2(!play(shorter, Flaw), qPrintable(report));
    }
    QVERIFY2(!play(shortest), qPrintable(report)); // without the flaw there is nothing wrong
}

QTEST_MAIN(TestModelShrinking)
#include "tst_model_shrinking.moc"
