#include "WatchCommand.h"

#include "ArgumentReader.h"
#include "ElementCommands.h"
#include "InterruptWatcher.h"
#include "PayloadArguments.h"
#include "Zelctl.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QEventLoop>
#include <QTimer>

#include <limits>

namespace Tolvar::Varundo::Zelctl {

namespace {

constexpr int MaxInterval = 24 * 3600 * 1000;

struct Reading
{
    QString name;
    CommandMessage command;
};

struct Plan
{
    QVector<Reading> readings;
    int interval = 1000; // milliseconds
    int count = 0;       // 0: until interrupted
};

Plan planOf(const CommandCall& call, ArgumentReader& arguments)
{
    Plan plan;
    ArgumentReader options(
        {call.options.value(QStringLiteral("interval")), call.options.value(QStringLiteral("count"))});
    plan.interval = options.integer(QStringLiteral("--interval"), 0, MaxInterval);
    plan.count = options.integer(QStringLiteral("--count"), 0, std::numeric_limits<int>::max());
    if (!options.error().isEmpty()) {
        arguments.fail(options.error());
    }
    do {
        const ElementName element = ElementName::read(arguments, Protocol::Read);
        const auto* command = call.options.isSet(QStringLiteral("state"))
                                  ? element.command(Protocol::Read, Client::Verb::State)
                                  : defaultReading(element);
        if (!command) {
            arguments.fail(QStringLiteral("%1 has no state to read").arg(element.text()));
            break;
        }
        plan.readings.append(
            {element.text(),
             Client::makeCommand(*command, PayloadArguments::build(arguments, *command, element, {}))});
    } while (!arguments.atEnd());
    return plan;
}

ExitStatus readOnce(Zelctl& zelctl, const Reading& reading)
{
    const Zelctl::Result result = zelctl.request(reading.command);
    if (!result.reply.succeeded()) {
        return zelctl.tell(result, QString());
    }
    QJsonObject object = zelctl.describe(result);
    object.insert(QStringLiteral("time"), QDateTime::currentDateTime().toString(Qt::ISODateWithMs));
    zelctl.printer().result(QStringLiteral("%1 %2").arg(reading.name, result.answer.text), object);
    return Done;
}

/// Until the interval is over, or something ends the watch.
void pause(Zelctl& zelctl, const InterruptWatcher& interrupt, int milliseconds)
{
    QEventLoop loop;
    QObject::connect(&interrupt, &InterruptWatcher::interrupted, &loop, &QEventLoop::quit);
    QObject::connect(&zelctl.unit(), &Unit::connectionLost, &loop, &QEventLoop::quit);
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

void declareWatch(QCommandLineParser& parser)
{
    parser.addOption({QStringLiteral("interval"), QStringLiteral("Pause between two rounds; default 1000."),
                      QStringLiteral("MS"), QStringLiteral("1000")});
    parser.addOption({QStringLiteral("count"), QStringLiteral("End after so many rounds; default 0, never."),
                      QStringLiteral("N"), QStringLiteral("0")});
    parser.addOption({QStringLiteral("state"), QStringLiteral("Read states, not values.")});
}

ExitStatus watchElements(Zelctl& zelctl, const CommandCall& call)
{
    ArgumentReader arguments(call.arguments);
    const Plan plan = planOf(call, arguments);
    if (!arguments.finish()) {
        return zelctl.usage(QStringLiteral("watch: %1").arg(arguments.error()));
    }
    const InterruptWatcher interrupt;
    ExitStatus first = Done;
    for (int round = 1; !interrupt.isInterrupted(); ++round) {
        for (const Reading& reading : plan.readings) {
            const ExitStatus status = interrupt.isInterrupted() ? Done : readOnce(zelctl, reading);
            first = first == Done ? status : first;
            if (status == NoConnection) {
                return NoConnection;
            }
        }
        if (plan.count > 0 && round >= plan.count) {
            break;
        }
        if (!interrupt.isInterrupted()) {
            pause(zelctl, interrupt, plan.interval);
        }
    }
    return first;
}

} // namespace Tolvar::Varundo::Zelctl
