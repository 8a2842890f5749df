#include "TextCommands.h"

#include "ArgumentReader.h"
#include "ElementCommands.h"
#include "Zelctl.h"

#include <QCommandLineParser>

#include <algorithm>

namespace Tolvar::Varundo::Zelctl {

namespace {

constexpr ushort FirstTyped = Protocol::FirstPrintable;
constexpr ushort LastTyped = 0xFF; // the unit takes a byte for the character of the same number

/// A short way for "write ELEMENT text ...".
ExitStatus writeText(Zelctl& zelctl, const CommandCall& call, const QStringList& words)
{
    ArgumentReader arguments(words);
    const ElementName element = ElementName::read(arguments, Protocol::Write);
    const Client::CommandInfo* command = element.command(Protocol::Write, Client::Verb::Text);
    if (!arguments.error().isEmpty() || !command) {
        return zelctl.usage(QStringLiteral("%1: %2").arg(call.name, arguments.error()));
    }
    return writePayload(zelctl, call, arguments, *command, element);
}

} // namespace

ExitStatus writeTextAtCursor(Zelctl& zelctl, const CommandCall& call)
{
    return writeText(zelctl, call, QStringList(QStringLiteral("cursor")) + call.arguments);
}

ExitStatus writeLine(Zelctl& zelctl, const CommandCall& call)
{
    return writeText(zelctl, call, QStringList(QStringLiteral("line")) + call.arguments);
}

void declareFreeText(QCommandLineParser& parser)
{
    parser.addOption({QStringLiteral("duration"),
                      QStringLiteral("How long the text stays, 0 to 255; 0, the default, is for good."),
                      QStringLiteral("SECONDS"), QStringLiteral("0")});
}

ExitStatus writeFreeText(Zelctl& zelctl, const CommandCall& call)
{
    const QStringList fixed{QStringLiteral("free-text"), call.options.value(QStringLiteral("duration"))};
    return writeText(zelctl, call, fixed + call.arguments);
}

ExitStatus typeCharacters(Zelctl& zelctl, const CommandCall& call)
{
    ArgumentReader arguments(call.arguments);
    const QString text = arguments.text(QStringLiteral("the text"));
    const auto wrong = std::find_if(text.begin(), text.end(), [](QChar character) {
        return character.unicode() < FirstTyped || character.unicode() > LastTyped;
    });
    if (wrong != text.end()) {
        arguments.fail(
            QStringLiteral("U+%1 cannot be typed; only the Latin-1 characters from U+0020 to U+00FF can")
                .arg(wrong->unicode(), 4, 16, QLatin1Char('0')));
    }
    if (!arguments.finish()) {
        return zelctl.usage(QStringLiteral("%1: %2").arg(call.name, arguments.error()));
    }
    if (!zelctl.unit().writeUnframed(text.toLatin1())) {
        zelctl.printer().error(zelctl.unit().errorText());
        return NoConnection;
    }
    // Nothing acknowledges typed characters. The echo behind them shows that the unit has taken them.
    const Unit::Result echo = zelctl.unit().echo();
    QJsonObject object{{QStringLiteral("request"), QStringLiteral("type \"%1\"").arg(text)},
                       {QStringLiteral("outcome"),
                        echo.succeeded() ? QStringLiteral("typed") : QStringLiteral("unconfirmed")}};
    if (!echo.succeeded()) {
        object.insert(QStringLiteral("error"), echo.errorText);
        zelctl.printer().error(
            QStringLiteral("typed, but the unit does not confirm it: %1").arg(echo.errorText));
    }
    zelctl.printer().result(QString(), object);
    return echo.exitStatus();
}

} // namespace Tolvar::Varundo::Zelctl
