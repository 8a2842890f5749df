#include "Zelctl.h"

#include "CommandTable.h"

#include <Tolvar/Varundo/Client/FrameMeaning.h>

#include <QCommandLineParser>

#include <array>

namespace Tolvar::Varundo::Zelctl {

using Client::PayloadKind;
using Client::Reply;

namespace {

// In the order of Reply::Outcome.
constexpr std::array OutcomeNames{
    "pending",    "acknowledged", "answered", "rejected",        "timed-out",
    "unanswered", "abandoned",    "not-sent", "connection-lost",
};
static_assert(OutcomeNames.size() == static_cast<std::size_t>(Reply::Outcome::ConnectionLost) + 1);

constexpr const char* Description = "Talks to a unit over the ZEL interface.";

/// Not the parser's own, which also advertises options of Qt that this program does not have.
void declareHelp(QCommandLineParser& parser)
{
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print this text.")});
}

bool holdsText(PayloadKind kind)
{
    return kind == PayloadKind::Text || kind == PayloadKind::LineText;
}

} // namespace

ExitStatus Zelctl::runCommandLine(const QStringList& words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(Description));
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    declareHelp(parser);
    parser.addOption({QStringLiteral("version"), QStringLiteral("Print the program's version.")});
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("What to do, see below."),
                                 QStringLiteral("COMMAND ..."));
    Options::declare(parser);
    const bool isParsed = parser.parse(QStringList(QStringLiteral("zelctl")) + words);
    if (!isParsed) {
        return usage(parser.errorText());
    }
    if (parser.isSet(QStringLiteral("help"))) {
        m_printer.plain(parser.helpText() + CommandTable::helpText());
        return Done;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        m_printer.plain(QStringLiteral("zelctl " ZELCTL_VERSION));
        return Done;
    }
    const QString error = m_options.take(parser);
    m_printer.setJson(m_options.json);
    if (!error.isEmpty()) {
        return usage(error);
    }
    if (parser.positionalArguments().isEmpty()) {
        return usage(QStringLiteral("no command given; possible: %1").arg(CommandTable::names()));
    }
    return runCommand(parser.positionalArguments(), Source::CommandLine);
}

ExitStatus Zelctl::runScriptLine(const QStringList& words)
{
    return runCommand(words, Source::Script);
}

ExitStatus Zelctl::runCommand(const QStringList& words, Source source)
{
    const CommandTable::Row* row = CommandTable::find(words.first());
    if (!row) {
        return usage(
            QStringLiteral("unknown command '%1'; possible: %2").arg(words.first(), CommandTable::names()));
    }
    if (source == Source::Script && !row->inScripts) {
        return usage(QStringLiteral("'%1' has no place in a script").arg(words.first()));
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(row->summary));
    parser.setOptionsAfterPositionalArgumentsMode(row->literalArguments
                                                      ? QCommandLineParser::ParseAsPositionalArguments
                                                      : QCommandLineParser::ParseAsOptions);
    declareHelp(parser);
    if (row->declare) {
        row->declare(parser);
    }
    if (source == Source::CommandLine) {
        Options::declare(parser);
    }
    parser.addPositionalArgument(words.first(), QString(), CommandTable::syntax(*row));
    if (!parser.parse(QStringList(QStringLiteral("zelctl")) + words.mid(1))) {
        return usage(QStringLiteral("%1: %2").arg(words.first(), parser.errorText()));
    }
    if (parser.isSet(QStringLiteral("help"))) {
        m_printer.plain(parser.helpText());
        return Done;
    }
    if (source == Source::CommandLine) {
        const QString error = m_options.take(parser);
        m_printer.setJson(m_options.json);
        if (!error.isEmpty()) {
            return usage(error);
        }
    }
    return row->run(*this, {words.first(), parser.positionalArguments(), parser});
}

ExitStatus Zelctl::usage(const QString& error) const
{
    m_printer.error(error);
    return Usage;
}

Zelctl::Result Zelctl::request(const CommandMessage& command)
{
    const Client::CommandInfo* info = Client::findCommand(command.grpId, command.cmdId);
    const PayloadKind answerKind = info ? info->answer : PayloadKind::None;
    Result result{command, {}, {}};
    auto codec = std::optional(Client::TextCodec::Latin9);
    if (holdsText(answerKind)) {
        codec = m_unit.textCodec(&result.reply);
        if (!codec) {
            return result;
        }
    }
    result.reply = m_unit.request(command);
    if (result.reply.outcome == Reply::Outcome::Answered) {
        const QByteArray& payload = result.reply.answer.data;
        result.answer = Client::payloadMeaning(answerKind, payload, *codec);
        if (!result.answer.valid) {
            result.reply.outcome = Reply::Outcome::Unanswered;
            result.reply.errorText =
                QStringLiteral("the answer is malformed: payload %1").arg(Printer::hex(payload));
        }
    }
    return result;
}

QJsonObject Zelctl::describe(const Result& result) const
{
    const auto codec = m_options.codec.value_or(Client::TextCodec::Utf8);
    const Client::CommandInfo* info = Client::findCommand(result.command.grpId, result.command.cmdId);
    QJsonObject object{
        {QStringLiteral("request"), Client::frameMeaning(result.command, Client::Sender::Controller, codec)},
        {QStringLiteral("outcome"),
         QLatin1String(OutcomeNames.at(static_cast<std::size_t>(result.reply.outcome)))}};
    if (info) {
        object.insert(QStringLiteral("group"), QString(Client::groupName(info->group)));
        object.insert(QStringLiteral("element"),
                      Client::frameElement(result.command, Client::Sender::Controller));
        object.insert(QStringLiteral("verb"), QString(Client::verbName(info->verb)));
    }
    if (result.answer.valid) {
        object.insert(QStringLiteral("answer"), result.answer.fields);
    }
    if (!result.reply.errorText.isEmpty()) {
        object.insert(QStringLiteral("error"), result.reply.errorText);
    }
    return object;
}

ExitStatus Zelctl::tell(const Result& result, const QString& text)
{
    const QJsonObject object = describe(result);
    if (result.reply.succeeded()) {
        m_printer.result(text, object);
        return Done;
    }
    m_printer.result(QString(), object);
    const bool isConnection = result.reply.outcome == Reply::Outcome::ConnectionLost;
    const QString what =
        isConnection ? QString() : object.value(QStringLiteral("request")).toString() + QStringLiteral(": ");
    const bool isSilent = result.reply.outcome == Reply::Outcome::TimedOut;
    const QString hint =
        isSilent ? QStringLiteral(
                       "; if this goes on, the unit may wait for the rest of a frame: try 'zelctl resync'")
                 : QString();
    m_printer.error(what + result.reply.errorText + hint);
    return result.reply.exitStatus();
}

ExitStatus Zelctl::perform(const CommandMessage& command)
{
    const Result result = request(command);
    return tell(result, result.answer.text);
}

} // namespace Tolvar::Varundo::Zelctl
