// The words that people and their scripts type: zelctl's command lines and scripts, the simulator's options,
// and the commands that it takes while it runs.
//
// Input: one byte that says who reads, then lines. For zelctl, payloads that a unit answers with may follow
// behind a zero byte.

#include "CountingPrinter.h"
#include "Demand.h"
#include "FuzzInput.h"
#include "ScriptedZelctlUnit.h"

#include "CommandDoor.h"
#include "SimulatedUnit.h"
#include "UnitControl.h"
#include "Zelctl.h"
#include "simulator/Options.h" // zelctl has one of that name, too

#include <CApplicationSettings.h>

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QProcess>
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <iterator>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

/// Not run: they wait for time to go by, or read whatever file is named.
bool isLeftOut(const QStringList& words)
{
    for (const char* const name : {"run", "watch", "resync"}) {
        if (words.contains(QLatin1String(name))) {
            return true;
        }
    }
    return false;
}

void runZelctl(FuzzInput& input)
{
    const QByteArray bytes = input.rest();
    const int end = bytes.indexOf('\0');
    const QString text = QString::fromUtf8(bytes.left(end));
    ScriptedZelctlUnit::setAnswers(end < 0 ? QByteArray() : bytes.mid(end + 1));
    Zelctl::Zelctl zelctl;
    bool isFirst = true;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        const QStringList words = QProcess::splitCommand(line.trimmed());
        if (isLeftOut(words) || (words.isEmpty() && !isFirst)) {
            continue;
        }
        const int before = CountingPrinter::errors();
        const Zelctl::ExitStatus status =
            isFirst ? zelctl.runCommandLine(words) : zelctl.runScriptLine(words);
        isFirst = false;
        const bool hasFailed = CountingPrinter::errors() != before;
        demand(status != Zelctl::Usage || hasFailed, "a mistake is told");
        demand(status != Zelctl::NoConnection || hasFailed, "a lost connection is told");
        demand(status != Zelctl::Done || !hasFailed, "what went well brings no error");
        if (status == Zelctl::NoConnection) {
            return; // as a script does
        }
    }
}

void readOptions(FuzzInput& input)
{
    const QStringList words = QProcess::splitCommand(QString::fromUtf8(input.rest()));
    if (words.filter(QStringLiteral("snapshot")).size() + words.filter(QStringLiteral("state")).size() > 0) {
        return; // whether a file can be written is tried out on the spot
    }
    QString error;
    const auto options =
        Simulator::Options::read(QStringList(QStringLiteral("varundo-simulator")) + words, &error);
    demand(options.has_value() == error.isEmpty(), "options are taken, or it is said why not");
    if (options && options->answer.isEmpty()) {
        demand(options->tcpPort >= 0 && options->tcpPort <= 65535, "a port is one");
        const QSize size = options->pictureSize;
        demand(size.expandedTo(Simulator::Options::SmallestPicture) == size &&
                   size.boundedTo(Simulator::Options::LargestPicture) == size,
               "a picture has a size that can be drawn");
    }
}

Simulator::SimulatedUnit& simulatedUnit()
{
    static const QByteArray settings =
        QByteArrayLiteral("/dev/shm/varundo-fuzz-") + QByteArray::number(getpid());
    static const bool prepared = [] {
        CApplicationSettings::instance()->setFileName(QString::fromLatin1(settings));
        return std::atexit([] { unlink(settings.constData()); }) == 0;
    }();
    Q_UNUSED(prepared)
    static Simulator::SimulatedUnit unit({Runner::Tcp, 20000 + getpid() % 20000, {}, {}});
    return unit;
}

int commandsIn(const QByteArray& lines)
{
    int count = 0;
    for (const QByteArray& line : lines.split('\n')) {
        const QString text = QString::fromUtf8(line).trimmed();
        count += text.isEmpty() || text.startsWith(QLatin1Char('#')) ? 0 : 1;
    }
    return count;
}

void standAtTheUnit(FuzzInput& input)
{
    const QByteArray lines = input.rest();
    if (lines.contains('/')) {
        return; // a profile may be any file, also one that never ends
    }
    int ends[2];
    demand(pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0, "there is a pipe");
    demand(write(ends[1], lines.constData(), static_cast<std::size_t>(lines.size())) == lines.size(),
           "a pipe holds an input");
    close(ends[1]);
    Simulator::UnitControl control(simulatedUnit());
    int answers = 0;
    {
        const Simulator::CommandDoor door(
            ends[0], control, [](QString*) { return true; },
            [&](const QString& answer) {
                ++answers;
                demand(answer == QStringLiteral("ok\n") ||
                           (answer.startsWith(QStringLiteral("error: ")) && answer.size() > 8 &&
                            answer.count(QLatin1Char('\n')) == 1),
                       "an answer is one line, and an error says what is wrong");
            });
        while (QThread::currentThread()->eventDispatcher()->processEvents(QEventLoop::AllEvents)) {
        }
    }
    close(ends[0]);
    demand(answers == commandsIn(lines), "each command has one answer");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void prepare()
{
    static int argc = 1;
    static char name[] = "fuzz_words";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "varundo.*=false");
    qputenv("QT_NO_GLIB", "1");
    static const QGuiApplication application(argc, argv);
    demand(std::freopen("/dev/null", "r", stdin) != nullptr, "there is nothing on the standard input");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool prepared = [] {
        prepare();
        return true;
    }();
    Q_UNUSED(prepared)

    constexpr void (*readers[])(FuzzInput&) = {runZelctl, readOptions, standAtTheUnit};
    FuzzInput input(data, size);
    readers[input.byte() % std::size(readers)](input);
    return 0;
}
