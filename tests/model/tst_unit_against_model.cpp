#include "Isolation.h"
#include "Playing.h"
#include "StepGenerator.h"

#include <QTest>

using namespace Tolvar::Varundo;

/// Takes the unit and its model through the same long random sequences, and compares all that can be observed
/// after each step.
class TestUnitAgainstModel : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void unitDoesWhatTheModelSays_data();
    void unitDoesWhatTheModelSays();

private:
    bool m_hasFailed = false;
};

void TestUnitAgainstModel::initTestCase()
{
    if (!Test::hasOwn("net")) {
        QSKIP(Test::NeedsOwnNetwork);
    }
}

/// 50 seeds are 250,000 frames. VARUNDO_MODEL_SEEDS=FIRST-LAST names others, to share them out or to look for
/// longer.
void TestUnitAgainstModel::unitDoesWhatTheModelSays_data()
{
    QTest::addColumn<int>("seed");
    const QStringList range =
        qEnvironmentVariable("VARUNDO_MODEL_SEEDS", QStringLiteral("1-50")).split(QLatin1Char('-'));
    for (int seed = range.first().toInt(); seed <= range.last().toInt(); ++seed) {
        QTest::addRow("seed %d", seed) << seed;
    }
}

void TestUnitAgainstModel::unitDoesWhatTheModelSays()
{
    constexpr long Frames = 5000;
    if (m_hasFailed) {
        QSKIP("a sequence before this one has failed, and this one may fail for the same reason");
    }
    QFETCH(int, seed);
    Model::Sequence sequence = Model::StepGenerator(static_cast<std::uint32_t>(seed)).sequence(Frames);
    const std::optional<Model::Disagreement> found = Model::play(sequence);
    m_hasFailed = found.has_value();
    if (found) {
        sequence.resize(found->step + 1);
        const QString report = Model::explained(Model::shrunk(sequence));
        QFAIL(qPrintable(report));
    }
}

QTEST_MAIN(TestUnitAgainstModel)
#include "tst_unit_against_model.moc"
