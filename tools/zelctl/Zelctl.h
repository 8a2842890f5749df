#ifndef TOLVAR_VARUNDO_ZELCTL_ZELCTL_H
#define TOLVAR_VARUNDO_ZELCTL_ZELCTL_H

#include "ExitStatus.h"
#include "Options.h"
#include "Printer.h"
#include "Unit.h"

#include <Tolvar/Varundo/Client/PayloadMeaning.h>
#include <Tolvar/Varundo/CommandMessage.h>

#include <QString>
#include <QStringList>

namespace Tolvar::Varundo::Zelctl {

/// The program: understands a command line, runs its command, and is what the commands work with. One
/// instance, in the main thread.
class Zelctl
{
public:
    /// A whole command line without the program's name. Returns the exit status.
    [[nodiscard]] ExitStatus runCommandLine(const QStringList& words);

    /// One command and its arguments, as a line of a script has them: the options are settled already.
    [[nodiscard]] ExitStatus runScriptLine(const QStringList& words);

    [[nodiscard]] const Options& options() const { return m_options; }
    [[nodiscard]] Printer& printer() { return m_printer; }
    [[nodiscard]] Unit& unit() { return m_unit; }

    /// Tells a mistake of the user.
    [[nodiscard]] ExitStatus usage(const QString& error) const;

    /// What came of one command: the unit's reply, and the answer taken apart if there is one.
    struct Result
    {
        CommandMessage command;
        Unit::Result reply;
        Client::PayloadMeaning answer;
    };

    /// Sends one command and waits. An answer that does not fit its layout counts as none.
    [[nodiscard]] Result request(const CommandMessage& command);

    /// The result as an object for --json.
    [[nodiscard]] QJsonObject describe(const Result& result) const;

    /// Prints a failure; on success the text and the object.
    ExitStatus tell(const Result& result, const QString& text);

    /// Sends one command, waits, and prints the answer's values.
    [[nodiscard]] ExitStatus perform(const CommandMessage& command);

private:
    enum class Source : quint8 { CommandLine, Script };

    [[nodiscard]] ExitStatus runCommand(const QStringList& words, Source source);

    Options m_options;
    Printer m_printer{false};
    Unit m_unit{m_options, m_printer};
};

} // namespace Tolvar::Varundo::Zelctl

#endif
