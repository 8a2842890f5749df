#include <Tolvar/Varundo/FrameCodec.h>

#include "ModelDecoder.h"
#include "RandomStream.h"
#include "RecordingSink.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

constexpr std::uint32_t FirstSeed = 20180828;
constexpr std::uint32_t StreamsPerRow = 60000;

/// How the decoder under test is driven; no way may make a difference.
enum class Stops { Never, AfterEveryFrame, AtRandom };

std::vector<WireOutcome> readWithStops(FrameDecoder& decoder, const QByteArray& read, RecordingSink& sink)
{
    const std::size_t before = sink.outcomes().size();
    qsizetype used = decoder.decode(read.constData(), read.size(), sink);
    while (used < read.size()) {
        used += decoder.resume(read.constData() + used, read.size() - used, sink);
    }
    return {sink.outcomes().begin() + static_cast<std::ptrdiff_t>(before), sink.outcomes().end()};
}

/// Feeds the first bytes of a stream to both decoders. Empty if they agree, else what differs.
QString difference(const RandomStream& stream, std::size_t size, Stops stops, std::uint32_t seed,
                   ModelDecoder& model)
{
    FrameDecoder decoder;
    RecordingSink sink;
    std::mt19937 random(seed);
    if (stops != Stops::Never) {
        sink.answerWantsMore([&] { return stops == Stops::AtRandom && random() % 2 == 0; });
    }
    std::size_t begin = 0;
    for (std::size_t cut : stream.cuts) {
        const std::size_t end = std::min(cut, size);
        const auto from = stream.bytes.begin() + static_cast<std::ptrdiff_t>(begin);
        const std::vector<std::uint8_t> bytes(from, stream.bytes.begin() + static_cast<std::ptrdiff_t>(end));
        const auto expected = model.read(bytes);
        const auto actual = readWithStops(
            decoder, QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())),
            sink);
        if (actual != expected) {
            QStringList words{QStringLiteral("read of bytes %1 to %2, expected:").arg(begin).arg(end)};
            for (const WireOutcome& outcome : expected) {
                words.append(describe(outcome));
            }
            words.append(QStringLiteral("but was:"));
            for (const WireOutcome& outcome : actual) {
                words.append(describe(outcome));
            }
            return words.join(QLatin1String("; "));
        }
        begin = end;
    }
    const FrameCounters& counters = decoder.counters();
    if (static_cast<int>(decoder.state()) != model.state) {
        return QStringLiteral("state %1, expected %2").arg(int(decoder.state())).arg(model.state);
    }
    if (counters.accepted != model.counters.accepted || counters.rejected != model.counters.rejected ||
        counters.dropped != model.counters.dropped || counters.discardedBytes != model.counters.thrownAway) {
        return QStringLiteral("counters %1 %2 %3 %4, expected %5 %6 %7 %8")
            .arg(counters.accepted)
            .arg(counters.rejected)
            .arg(counters.dropped)
            .arg(counters.discardedBytes)
            .arg(model.counters.accepted)
            .arg(model.counters.rejected)
            .arg(model.counters.dropped)
            .arg(model.counters.thrownAway);
    }
    return {};
}

/// What somebody needs who wants to see the failure again.
QByteArray report(std::uint32_t seed, const RandomStream& stream, Stops stops)
{
    std::size_t shortest = 0;
    QString shown;
    for (; shortest <= stream.bytes.size() && shown.isEmpty(); ++shortest) {
        ModelDecoder model;
        shown = difference(stream, shortest, stops, seed, model);
    }
    QStringList cuts;
    for (const std::size_t cut : stream.cuts) {
        cuts.append(QString::number(cut));
    }
    const QByteArray all(reinterpret_cast<const char*>(stream.bytes.data()),
                         static_cast<int>(stream.bytes.size()));
    return QStringLiteral(
               "seed %1\n  stream %2\n  reads end at %3\n  shortest prefix that fails: %4 bytes\n  %5")
        .arg(seed)
        .arg(QString::fromLatin1(all.toHex(' ')), cuts.join(QLatin1Char(' ')))
        .arg(shortest - 1)
        .arg(shown)
        .toLocal8Bit();
}

} // namespace

Q_DECLARE_METATYPE(Stops)

/// The decoder against an independent model of it, over streams of all kinds, cut into reads anywhere.
class TestFrameCodecModel : public QObject
{
    Q_OBJECT

private slots:
    void theDecoderDoesWhatTheModelDoes_data();
    void theDecoderDoesWhatTheModelDoes();
};

void TestFrameCodecModel::theDecoderDoesWhatTheModelDoes_data()
{
    QTest::addColumn<Stops>("stops");
    QTest::newRow("never stopping") << Stops::Never;
    QTest::newRow("stopping after every frame") << Stops::AfterEveryFrame;
    QTest::newRow("stopping at random") << Stops::AtRandom;
}

void TestFrameCodecModel::theDecoderDoesWhatTheModelDoes()
{
    QFETCH(Stops, stops);
    ModelDecoder::Counters sum;
    std::array<int, 7> endedIn{};
    const std::uint32_t first = FirstSeed + StreamsPerRow * static_cast<std::uint32_t>(stops);
    for (std::uint32_t seed = first; seed < first + StreamsPerRow; ++seed) {
        const RandomStream stream(seed);
        ModelDecoder model;
        if (!difference(stream, stream.bytes.size(), stops, seed, model).isEmpty()) {
            QFAIL(report(seed, stream, stops).constData());
        }
        sum.accepted += model.counters.accepted;
        sum.rejected += model.counters.rejected;
        sum.dropped += model.counters.dropped;
        sum.givenUp += model.counters.givenUp;
        sum.withLeftover += model.counters.withLeftover;
        ++endedIn.at(static_cast<std::size_t>(model.state));
    }
    // The streams are worth the name: every outcome and every state is met often.
    QVERIFY(sum.accepted > 20000);
    QVERIFY(sum.rejected > 20000);
    QVERIFY(sum.dropped > 10000);
    QVERIFY(sum.givenUp > 1000);
    QVERIFY(sum.withLeftover > 1000);
    for (const int streams : endedIn) {
        QVERIFY(streams > 50);
    }
}

QTEST_APPLESS_MAIN(TestFrameCodecModel)

#include "tst_framecodec_model.moc"
