#include "ScriptCommand.h"

#include "Zelctl.h"

#include <QCommandLineParser>
#include <QFile>
#include <QProcess>
#include <QTextStream>

#include <cstdio>

namespace Tolvar::Varundo::Zelctl {

namespace {

bool openScript(QFile& file, const QString& name)
{
    if (name == QLatin1String("-")) {
        return file.open(stdin, QIODevice::ReadOnly | QIODevice::Text);
    }
    file.setFileName(name);
    return file.open(QIODevice::ReadOnly | QIODevice::Text);
}

ExitStatus runLines(Zelctl& zelctl, QTextStream& lines, const QString& shownName, bool keepGoing)
{
    ExitStatus first = Done;
    QString line;
    for (int number = 1; lines.readLineInto(&line); ++number) {
        const QStringList words = QProcess::splitCommand(line.trimmed());
        if (words.isEmpty() || line.trimmed().startsWith(QLatin1Char('#'))) {
            continue;
        }
        zelctl.printer().setPlace(QStringLiteral("%1:%2").arg(shownName).arg(number));
        const ExitStatus status = zelctl.runScriptLine(words);
        first = first == Done ? status : first;
        if (status == NoConnection || (status != Done && !keepGoing)) {
            break; // without a connection, going on would only repeat the error
        }
    }
    zelctl.printer().setPlace(QString());
    return first;
}

} // namespace

void declareScript(QCommandLineParser& parser)
{
    parser.addOption({QStringLiteral("keep-going"), QStringLiteral("Do not stop at a command that fails.")});
}

ExitStatus runScript(Zelctl& zelctl, const CommandCall& call)
{
    if (call.arguments.size() != 1) {
        return zelctl.usage(QStringLiteral("run: expected the name of one script, or - for standard input"));
    }
    const QString name = call.arguments.first();
    QFile file;
    if (!openScript(file, name)) {
        return zelctl.usage(QStringLiteral("run: cannot read %1: %2").arg(name, file.errorString()));
    }
    QTextStream lines(&file);
    lines.setCodec("UTF-8");
    const QString shownName = name == QLatin1String("-") ? QStringLiteral("standard input") : name;
    return runLines(zelctl, lines, shownName, call.options.isSet(QStringLiteral("keep-going")));
}

} // namespace Tolvar::Varundo::Zelctl
