#ifndef TOLVAR_VARUNDO_TESTS_COMMANDPROBE_H
#define TOLVAR_VARUNDO_TESTS_COMMANDPROBE_H

#include <Tolvar/Varundo/Protocol.h>

#include <QByteArray>
#include <QString>

#include <set>

namespace Tolvar::Varundo::Tests {

class ControllerLink;
class ExampleUnit;

/// Finds out what a unit knows by trying: sends commands over the wire and looks whether anything about the
/// unit changes. Has no table of commands of its own.
class CommandProbe
{
public:
    CommandProbe(ExampleUnit& unit, ControllerLink& link);

    /// The ids of a group, out of all 256, that the unit answers or that change something.
    [[nodiscard]] std::set<int> knownCommands(Protocol::Group group);
    /// The name of the one element whose state a write command changes; empty if none does, and all of their
    /// names if there are several.
    [[nodiscard]] QString elementChangedBy(quint8 writeCommand, const QByteArray& payload);
    /// What comes back.
    QByteArray send(quint8 command, Protocol::Group group, const QByteArray& payload = QByteArray());

private:
    bool doesSomething(quint8 command, Protocol::Group group);
    bool changesSomething(quint8 command, Protocol::Group group, const QByteArray& payload);
    void showAll(bool show);
    void writeSomeText();

    ExampleUnit& m_unit;
    ControllerLink& m_link;
};

} // namespace Tolvar::Varundo::Tests

#endif
