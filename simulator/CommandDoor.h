#ifndef TOLVAR_VARUNDO_SIMULATOR_COMMANDDOOR_H
#define TOLVAR_VARUNDO_SIMULATOR_COMMANDDOOR_H

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <functional>

namespace Tolvar::Varundo::Simulator {

class UnitControl;

/// Lets a script stand at the unit: takes commands, one a line, from a descriptor, and has each answered by
/// one line, "ok" or "error: ...". docs/simulator.md lists them. Closes at the end of its input; the unit
/// runs on.
///
/// GUI thread; owned by main(), and must not outlive the control. The descriptor is left as it is: a terminal
/// is shared with whoever started the program.
class CommandDoor final : public QObject
{
    Q_OBJECT

public:
    static constexpr int MaxLineBytes = 65536; ///< what is longer is refused as a whole

    using Answer = std::function<void(const QString& line)>;
    /// Writes picture and state; false with a reason.
    using Snapshot = std::function<bool(QString* error)>;

    CommandDoor(int descriptor, UnitControl& control, Snapshot snapshot, Answer answer,
                QObject* parent = nullptr);

private:
    void readPending();
    void take(const QByteArray& line);
    bool carryOut(const QString& verb, const QString& argument, QString* error);

    UnitControl& m_control;
    Snapshot m_snapshot;
    Answer m_answer;
    QSocketNotifier m_notifier;
    QByteArray m_line;
    bool m_tooLong = false; // the rest of this line is thrown away
};

} // namespace Tolvar::Varundo::Simulator

#endif
