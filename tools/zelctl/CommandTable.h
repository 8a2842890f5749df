#ifndef TOLVAR_VARUNDO_ZELCTL_COMMANDTABLE_H
#define TOLVAR_VARUNDO_ZELCTL_COMMANDTABLE_H

#include "ExitStatus.h"

#include <QString>
#include <QStringList>

class QCommandLineParser;

namespace Tolvar::Varundo::Zelctl {

class Zelctl;

/// One command as it was typed.
struct CommandCall
{
    QString name;
    QStringList arguments;
    const QCommandLineParser& options;
};

/// The commands of the program.
namespace CommandTable {

struct Row
{
    const char* name;
    const char* arguments;
    const char* summary;
    bool literalArguments; ///< after the first argument all is meant as it stands, even with a dash in front
    bool inScripts;
    void (*declare)(QCommandLineParser&); ///< its own options; may be null
    ExitStatus (*run)(Zelctl&, const CommandCall&);
};

/// Null if there is no such command.
[[nodiscard]] const Row* find(const QString& name);
[[nodiscard]] QString names();
[[nodiscard]] QString syntax(const Row& row);
[[nodiscard]] QString helpText();

} // namespace CommandTable

} // namespace Tolvar::Varundo::Zelctl

#endif
