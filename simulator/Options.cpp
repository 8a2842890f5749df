#include "Options.h"

#include "UnitControl.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

namespace Tolvar::Varundo::Simulator {

namespace {

QCommandLineOption option(const char* name, const char* valueName, const char* description)
{
    return {QLatin1String(name), QLatin1String(description), QLatin1String(valueName)};
}

/// Takes the options of a parsed command line one by one; the first wrong one ends it.
class Reader
{
public:
    explicit Reader(const QCommandLineParser& parser)
        : m_parser(parser)
    {}

    QString error() const { return m_error; }

    bool readInterface(std::optional<Runner::SelectedInterface>& interface)
    {
        return read("interface", QStringLiteral("Serial, Tcp or Udp"), [&interface](const QString& text) {
            interface = UnitControl::interfaceNamed(text);
            return interface.has_value();
        });
    }

    bool readPort(int& port)
    {
        return read("tcp-port", QStringLiteral("a number from 0 to 65535"), [&port](const QString& text) {
            bool isNumber = false;
            port = text.toUShort(&isNumber);
            return isNumber;
        });
    }

    bool readSize(QSize& size)
    {
        const QSize smallest = Options::SmallestPicture;
        const QSize largest = Options::LargestPicture;
        const QString expected = QStringLiteral("WIDTHxHEIGHT from %1x%2 to %3x%4")
                                     .arg(smallest.width())
                                     .arg(smallest.height())
                                     .arg(largest.width())
                                     .arg(largest.height());
        return read("size", expected, [&](const QString& text) {
            static const QRegularExpression form(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
            const auto match = form.match(text);
            size = QSize(match.captured(1).toInt(), match.captured(2).toInt());
            return match.hasMatch() && size.expandedTo(smallest) == size && size.boundedTo(largest) == size;
        });
    }

    bool readClock(QDateTime& clock)
    {
        return read("seed-clock", QStringLiteral("a date and time such as 2026-03-15T12:00:00"),
                    [&clock](const QString& text) {
                        clock = QDateTime::fromString(text, Qt::ISODate);
                        return clock.isValid();
                    });
    }

    /// A file that is only written at the end: better told now than after hours.
    bool readOutput(const char* name, QString& file)
    {
        const QString text = m_parser.value(QLatin1String(name));
        if (text.isEmpty()) {
            return true;
        }
        const QFileInfo target(text);
        QSaveFile attempt(target.absoluteFilePath());
        if (target.isDir() || !attempt.open(QIODevice::WriteOnly)) {
            return fail(name, QStringLiteral("cannot write %1: %2")
                                  .arg(target.absoluteFilePath(), target.isDir()
                                                                      ? QStringLiteral("it is a directory")
                                                                      : attempt.errorString()));
        }
        attempt.cancelWriting();
        file = target.absoluteFilePath();
        return true;
    }

private:
    template <typename Take>
    bool read(const char* name, const QString& expected, Take take)
    {
        if (!m_parser.isSet(QLatin1String(name))) {
            return true;
        }
        const QString text = m_parser.value(QLatin1String(name));
        return take(text) || fail(name, QStringLiteral("expected %1, got \"%2\"").arg(expected, text));
    }

    bool fail(const char* name, const QString& what)
    {
        m_error = QStringLiteral("--%1: %2").arg(QLatin1String(name), what);
        return false;
    }

    const QCommandLineParser& m_parser;
    QString m_error;
};

void describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        QStringLiteral("A whole unit in one process: controllers connect to it as to a real one.\n"
                       "Runs until it is interrupted. SIGUSR1 writes the snapshot and the state, SIGUSR2 "
                       "unplugs the virtual serial adapter and plugs it in again."));
    parser.addOptions({
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Prints this.")},
        {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Prints the version.")},
        option("interface", "NAME",
               "Serial, Tcp or Udp: whose commands are obeyed; is kept. Default: the one that was kept, Tcp "
               "at first."),
        option("tcp-port", "PORT", "The TCP port, 0 for any that is free. Default: 9998."),
        option("settings", "FILE", "Where settings are kept. Default: the user's own."),
        option("profile", "FILE",
               "The overlay's elements, in JSON. Default: a built-in one with all of them."),
        option("devices", "FILE", "How the devices move, in JSON. Default: they stand still."),
        {QStringLiteral("virtual-serial"),
         QStringLiteral("Provides a serial line: /dev/ttyUSB1 for the unit, and the controller's end that "
                        "the ready line names.")},
        {QStringLiteral("control"),
         QStringLiteral("Takes commands from the standard input, one a line, while it runs.")},
        option("size", "WxH", "The picture's size. Default: 720x576."),
        option("seed-clock", "TIME", "Where the drawn clock starts (ISO 8601). Default: now."),
        option("snapshot", "FILE", "Where the picture is written to, in PNG, on SIGUSR1 and at the end."),
        option("state", "FILE", "Where the state is written to, in JSON, on SIGUSR1 and at the end."),
    });
}

} // namespace

std::optional<Options> Options::read(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    Options options;
    if (parser.isSet(QStringLiteral("help"))) {
        options.answer = parser.helpText();
        return options;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        options.answer = QStringLiteral("varundo-simulator %1\n").arg(QCoreApplication::applicationVersion());
        return options;
    }
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("unexpected argument \"%1\"").arg(parser.positionalArguments().constFirst());
        return std::nullopt;
    }
    options.settingsFile = parser.value(QStringLiteral("settings"));
    options.profileFile = parser.value(QStringLiteral("profile"));
    options.devicesFile = parser.value(QStringLiteral("devices"));
    options.takesCommands = parser.isSet(QStringLiteral("control"));
    options.virtualSerial = parser.isSet(QStringLiteral("virtual-serial"));
    Reader reader(parser);
    if (!reader.readInterface(options.interface) || !reader.readPort(options.tcpPort) ||
        !reader.readSize(options.pictureSize) || !reader.readClock(options.clock) ||
        !reader.readOutput("snapshot", options.pictureFile) ||
        !reader.readOutput("state", options.stateFile)) {
        *error = reader.error();
        return std::nullopt;
    }
    return options;
}

} // namespace Tolvar::Varundo::Simulator
