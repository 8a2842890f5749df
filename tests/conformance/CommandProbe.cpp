#include "CommandProbe.h"

#include "ControllerLink.h"
#include "ExampleUnit.h"
#include "UnitElement.h"

#include <Tolvar/Varundo/FrameCodec.h>

#include <QMetaMethod>

#include <algorithm>
#include <iterator>

namespace Tolvar::Varundo::Tests {

CommandProbe::CommandProbe(ExampleUnit& unit, ControllerLink& link)
    : m_unit(unit)
    , m_link(link)
{}

std::set<int> CommandProbe::knownCommands(Protocol::Group group)
{
    std::set<int> known;
    for (int id = 0; id <= 0xFF; ++id) {
        if (doesSomething(static_cast<quint8>(id), group)) {
            known.insert(id);
        }
    }
    return known;
}

QByteArray CommandProbe::send(quint8 command, Protocol::Group group, const QByteArray& payload)
{
    const CommandMessage message{command, group, static_cast<quint16>(payload.size()), payload};
    if (!m_link.send(encodeFrame(message))) {
        qFatal("the unit did not take command 0x%02X of group %d", command, group);
    }
    return m_link.takeReceived();
}

bool CommandProbe::doesSomething(quint8 command, Protocol::Group group)
{
    if (group == Protocol::Read) {
        return send(command, group).size() > 1;
    }
    if (command == 0) {
        return changesSomething(command, group, {}); // a payload would stay and spoil the commands after it
    }
    if (group == Protocol::Execute) {
        showAll(true);
        const bool hides = changesSomething(command, group, {});
        showAll(false);
        return changesSomething(command, group, {}) || hides;
    }
    // A payload that every write command can make something of, and that is new each time: 1 to 3 as line,
    // element, codec or format; as a position a cell where nothing stands.
    QByteArray payload(24, static_cast<char>('A' + command % 26));
    payload[0] = static_cast<char>(1 + command % 3);
    payload[1] = static_cast<char>(command ^ 0x55);
    payload[2] = static_cast<char>(command % 100);
    return changesSomething(command, group, payload);
}

bool CommandProbe::changesSomething(quint8 command, Protocol::Group group, const QByteArray& payload)
{
    writeSomeText();
    const QStringList before = m_unit.snapshot();
    send(command, group, payload);
    return m_unit.snapshot() != before;
}

QString CommandProbe::elementChangedBy(quint8 writeCommand, const QByteArray& payload)
{
    const QStringList before = m_unit.snapshot();
    send(writeCommand, Protocol::Write, payload);
    const QStringList now = m_unit.snapshot();
    QStringList changed;
    for (const UnitElement& element : UnitElement::all()) {
        const QString name = QString(QLatin1String(element.name)) + QLatin1Char(' ');
        const auto isElement = [&](const QString& fact) {
            return fact.startsWith(name);
        };
        const auto was = std::find_if(before.begin(), before.end(), isElement);
        const auto is = std::find_if(now.begin(), now.end(), isElement);
        if (*was != *is) {
            changed.append(QLatin1String(element.name));
        }
    }
    return changed.join(QLatin1Char(' '));
}

/// By way of the data model's own setters, whichever there are.
void CommandProbe::showAll(bool show)
{
    DataManager* const model = m_unit.runner().getDataManager();
    const QMetaObject* const meta = model->metaObject();
    int setters = 0;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.name().startsWith("set") && method.name().endsWith("Visible")) {
            setters += method.invoke(model, Qt::DirectConnection, Q_ARG(bool, show)) ? 1 : 0;
        }
    }
    const UnitElement::Range elements = UnitElement::all();
    if (setters != std::distance(elements.begin(), elements.end())) {
        qFatal("%d elements can be shown and hidden", setters);
    }
}

/// So that there is always a text that a command could remove.
void CommandProbe::writeSomeText()
{
    if (m_unit.writtenTexts() == 0 && !m_link.send("x")) {
        qFatal("the unit did not take a character");
    }
}

} // namespace Tolvar::Varundo::Tests
