#include "ListCommand.h"

#include "ArgumentReader.h"
#include "ElementName.h"
#include "PayloadArguments.h"
#include "Zelctl.h"

#include <Tolvar/Varundo/Client/ColorTable.h>

namespace Tolvar::Varundo::Zelctl {

namespace {

using Client::CommandInfo;
using Client::Verb;

QString hexNumber(quint8 number)
{
    return QStringLiteral("0x%1").arg(number, 2, 16, QLatin1Char('0'));
}

void listCommands(const Printer& printer)
{
    for (const CommandInfo& info : Client::allCommands()) {
        const QString group = Client::groupName(info.group);
        const QString element = QLatin1String(info.element);
        const QString verb = Client::verbName(info.verb);
        const QString request = Client::payloadLayout(info.request);
        const QString answer = Client::payloadLayout(info.answer);
        QString text = QStringLiteral("%1 %2 %3 %4 %5")
                           .arg(group, -8)
                           .arg(hexNumber(info.id))
                           .arg(element, -21)
                           .arg(verb, -12)
                           .arg(request.isEmpty() ? QStringLiteral("-") : request);
        if (!answer.isEmpty()) {
            text += QStringLiteral(" -> ") + answer;
        }
        printer.result(text, {{QStringLiteral("group"), group},
                              {QStringLiteral("id"), info.id},
                              {QStringLiteral("element"), element},
                              {QStringLiteral("verb"), verb},
                              {QStringLiteral("payload"), request},
                              {QStringLiteral("answer"), answer}});
    }
}

/// One line for each way to name an element on the command line.
void listElements(const Printer& printer, Protocol::Group group)
{
    for (const QString& typed : ElementName::all(group)) {
        ArgumentReader arguments({QString(typed).replace(QStringLiteral("-N"), QStringLiteral("-1"))});
        const ElementName element = ElementName::read(arguments, group);
        for (const Verb verb : element.verbs(group)) {
            const CommandInfo* command = element.command(group, verb);
            const QString values = PayloadArguments::usage(command->request);
            const QString verbText = Client::verbName(verb);
            const bool verbFirst = verb == Verb::Show || verb == Verb::Hide || verb == Verb::Toggle;
            QStringList words = verbFirst ? QStringList{verbText, typed} : QStringList{typed, verbText};
            if (group != Protocol::Execute) {
                words.prepend(Client::groupName(group));
            }
            if (!values.isEmpty()) {
                words.append(values);
            }
            printer.result(words.join(QLatin1Char(' ')),
                           {{QStringLiteral("group"), QString(Client::groupName(group))},
                            {QStringLiteral("element"), typed},
                            {QStringLiteral("verb"), verbText},
                            {QStringLiteral("arguments"), values}});
        }
    }
}

void listColors(const Printer& printer)
{
    for (const QString& name : Client::colorNames()) {
        const Client::ColorInfo& color = Client::colorInfo(Client::colorNumber(name).value_or(0));
        const QString argb = QStringLiteral("#%1").arg(color.argb, 8, 16, QLatin1Char('0')).toUpper();
        printer.result(QStringLiteral("%1 %2 %3").arg(color.number, 2).arg(name, -12).arg(argb),
                       {{QStringLiteral("number"), color.number},
                        {QStringLiteral("name"), name},
                        {QStringLiteral("argb"), argb}});
    }
}

} // namespace

ExitStatus listAll(Zelctl& zelctl, const CommandCall& call)
{
    ArgumentReader arguments(call.arguments);
    const QString what =
        arguments.atEnd() ? QStringLiteral("commands") : arguments.word(QStringLiteral("what"));
    if (!arguments.finish()) {
        return zelctl.usage(QStringLiteral("list: %1").arg(arguments.error()));
    }
    if (what == QLatin1String("commands")) {
        listCommands(zelctl.printer());
    } else if (what == QLatin1String("elements")) {
        for (const auto group : {Protocol::Execute, Protocol::Read, Protocol::Write}) {
            listElements(zelctl.printer(), group);
        }
    } else if (what == QLatin1String("colours") || what == QLatin1String("colors")) {
        listColors(zelctl.printer());
    } else {
        return zelctl.usage(QStringLiteral("list '%1': expected commands, elements or colours").arg(what));
    }
    return Done;
}

} // namespace Tolvar::Varundo::Zelctl
