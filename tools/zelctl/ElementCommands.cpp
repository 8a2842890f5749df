#include "ElementCommands.h"

#include "ArgumentReader.h"
#include "PayloadArguments.h"
#include "Zelctl.h"

#include <array>

namespace Tolvar::Varundo::Zelctl {

using Client::CommandInfo;
using Client::Verb;

namespace {

ExitStatus usageOf(Zelctl& zelctl, const CommandCall& call, const ArgumentReader& arguments)
{
    return zelctl.usage(QStringLiteral("%1: %2").arg(call.name, arguments.error()));
}

/// Takes the verb if there is one. Elements that show text and elements that show a number are both said to
/// have a value.
const CommandInfo* readCommand(ArgumentReader& arguments, const ElementName& element)
{
    if (arguments.atEnd()) {
        return defaultReading(element);
    }
    const QString word = arguments.word(QStringLiteral("what to read"));
    const auto verb = Client::verbFromName(word);
    const CommandInfo* command = verb ? element.command(Protocol::Read, *verb) : nullptr;
    if (!command && (verb == Verb::Value || verb == Verb::Text)) {
        command = element.command(Protocol::Read, *verb == Verb::Value ? Verb::Text : Verb::Value);
    }
    if (!command) {
        arguments.fail(QStringLiteral("cannot read '%1' of %2; possible: %3")
                           .arg(word, element.text(), ElementName::verbList(element.verbs(Protocol::Read))));
    }
    return command;
}

/// What is written when the user names no verb: the value, or what else the element is for.
const CommandInfo* defaultWriting(const ElementName& element)
{
    for (const Verb verb : {Verb::Value, Verb::Position, Verb::Text}) {
        if (const CommandInfo* command = element.command(Protocol::Write, verb)) {
            return command;
        }
    }
    return nullptr;
}

const CommandInfo* writeCommand(ArgumentReader& arguments, const ElementName& element)
{
    const auto verb = Client::verbFromName(arguments.peek());
    const CommandInfo* command = verb ? element.command(Protocol::Write, *verb) : nullptr;
    if (command) {
        arguments.word(QStringLiteral("what to write"));
        return command;
    }
    command = defaultWriting(element);
    const bool isText = command && command->verb == Verb::Text; // then any word may be the text
    if (!command || (verb && !isText)) {
        arguments.fail(QStringLiteral("cannot write '%1' of %2; possible: %3")
                           .arg(arguments.peek(), element.text(),
                                ElementName::verbList(element.verbs(Protocol::Write))));
        return nullptr;
    }
    if (command->request == Client::PayloadKind::LineText && arguments.atEnd()) {
        arguments.fail(
            QStringLiteral("the text is missing")); // only the word 'text' alone means an empty one
    }
    return command;
}

} // namespace

const CommandInfo* defaultReading(const ElementName& element)
{
    for (const Verb verb : {Verb::Value, Verb::Text, Verb::State}) {
        if (const CommandInfo* command = element.command(Protocol::Read, verb)) {
            return command;
        }
    }
    return nullptr;
}

ExitStatus readElement(Zelctl& zelctl, const CommandCall& call)
{
    ArgumentReader arguments(call.arguments);
    const ElementName element = ElementName::read(arguments, Protocol::Read);
    const CommandInfo* command = arguments.error().isEmpty() ? readCommand(arguments, element) : nullptr;
    if (!command || !arguments.finish()) {
        return usageOf(zelctl, call, arguments);
    }
    return zelctl.perform(
        Client::makeCommand(*command, PayloadArguments::build(arguments, *command, element, {})));
}

ExitStatus writeElement(Zelctl& zelctl, const CommandCall& call)
{
    ArgumentReader arguments(call.arguments);
    const ElementName element = ElementName::read(arguments, Protocol::Write);
    const CommandInfo* command = arguments.error().isEmpty() ? writeCommand(arguments, element) : nullptr;
    if (!command) {
        return usageOf(zelctl, call, arguments);
    }
    return writePayload(zelctl, call, arguments, *command, element);
}

ExitStatus writePayload(Zelctl& zelctl, const CommandCall& call, ArgumentReader& arguments,
                        const CommandInfo& command, const ElementName& element)
{
    auto codec = std::optional(Client::TextCodec::Latin9);
    if (PayloadArguments::needsCodec(command.request)) {
        // A mistake in the arguments is told without a unit wherever that does not hang on the codec.
        ArgumentReader trial = arguments;
        static_cast<void>(PayloadArguments::build(trial, command, element, Client::TextCodec::Utf8));
        if (!trial.finish()) {
            return usageOf(zelctl, call, trial);
        }
        Unit::Result failure;
        codec = zelctl.unit().textCodec(&failure);
        if (!codec) {
            zelctl.printer().error(failure.errorText);
            return failure.exitStatus();
        }
    }
    const QByteArray payload = PayloadArguments::build(arguments, command, element, *codec);
    if (!arguments.finish()) {
        return zelctl.usage(QStringLiteral("%1: %2; expected: %3 %4 %5; possible: %6")
                                .arg(call.name, arguments.error(), element.text(),
                                     QString(Client::verbName(command.verb)),
                                     PayloadArguments::usage(command.request),
                                     ElementName::verbList(element.verbs(Protocol::Write))));
    }
    return zelctl.perform(Client::makeCommand(command, payload));
}

ExitStatus switchElements(Zelctl& zelctl, const CommandCall& call)
{
    ArgumentReader arguments(call.arguments);
    const Verb verb = Client::verbFromName(call.name).value_or(Verb::Show);
    QVector<CommandMessage> commands;
    do {
        const ElementName element = ElementName::read(arguments, Protocol::Execute);
        const CommandInfo* command = element.command(Protocol::Execute, verb);
        if (!command) {
            arguments.fail(
                QStringLiteral("cannot %1 %2; possible: %3")
                    .arg(call.name, element.text(), ElementName::verbList(element.verbs(Protocol::Execute))));
            return usageOf(zelctl, call, arguments);
        }
        commands.append(Client::makeCommand(*command));
    } while (!arguments.atEnd());

    ExitStatus status = Done;
    for (int i = 0; i < commands.size() && status == Done; ++i) {
        status = zelctl.perform(commands.at(i));
    }
    return status;
}

ExitStatus runAction(Zelctl& zelctl, const CommandCall& call)
{
    ArgumentReader arguments(QStringList(call.name) + call.arguments);
    const ElementName element = ElementName::read(arguments, Protocol::Execute);
    const QString word = arguments.word(QStringLiteral("what to do"));
    const auto verb = Client::verbFromName(word);
    const CommandInfo* command = verb ? element.command(Protocol::Execute, *verb) : nullptr;
    if (!command) {
        arguments.fail(QStringLiteral("cannot do '%1'; possible: %2")
                           .arg(word, ElementName::verbList(element.verbs(Protocol::Execute))));
    }
    if (!command || !arguments.finish()) {
        return usageOf(zelctl, call, arguments);
    }
    return zelctl.perform(Client::makeCommand(*command));
}

} // namespace Tolvar::Varundo::Zelctl
