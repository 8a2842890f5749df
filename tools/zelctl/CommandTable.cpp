#include "CommandTable.h"

#include "DecodeCommand.h"
#include "ElementCommands.h"
#include "ListCommand.h"
#include "RawCommand.h"
#include "ResyncCommand.h"
#include "ScriptCommand.h"
#include "TextCommands.h"
#include "WatchCommand.h"

#include <algorithm>
#include <array>

namespace Tolvar::Varundo::Zelctl::CommandTable {

namespace {

constexpr std::array Rows{
    Row{"read", "ELEMENT [value|state]", "Print what the unit says.", false, true, nullptr, readElement},
    Row{"write", "ELEMENT [WHAT] VALUE...", "Set a position, colour, format, value or text.", true, true,
        nullptr, writeElement},
    Row{"show", "ELEMENT...", "Make elements visible.", false, true, nullptr, switchElements},
    Row{"hide", "ELEMENT...", "Make elements invisible.", false, true, nullptr, switchElements},
    Row{"toggle", "ELEMENT...", "Make visible elements invisible and the other way round.", false, true,
        nullptr, switchElements},
    Row{"overlay", "on|off|clear", "Switch the whole overlay, or remove the texts written onto it.", false,
        true, nullptr, runAction},
    Row{"measurement-3d", "main-pipe|lateral|off", "Switch the 3D measurement.", false, true, nullptr,
        runAction},
    Row{"text", "TEXT", "Write a text at the cursor.", true, true, nullptr, writeTextAtCursor},
    Row{"line", "ROW TEXT", "Write a text at the beginning of a row.", true, true, nullptr, writeLine},
    Row{"free-text", "LINE...", "Show up to five lines in the free text box.", true, true, declareFreeText,
        writeFreeText},
    Row{"type", "TEXT", "Type characters at the cursor, as a terminal would.", true, true, nullptr,
        typeCharacters},
    Row{"raw", "HEX...", "Send bytes as they are and print what comes back.", true, true, nullptr, sendRaw},
    Row{"decode", "[HEX...|-]", "Say what bytes mean, without a unit.", false, true, declareDecode,
        decodeBytes},
    Row{"resync", "", "Bring back a unit that waits for the rest of a frame.", false, true, nullptr,
        resynchronise},
    Row{"run", "SCRIPT|-", "Run the commands of a file, one a line.", false, false, declareScript, runScript},
    Row{"watch", "ELEMENT...", "Read again and again until interrupted.", false, true, declareWatch,
        watchElements},
    Row{"list", "[commands|elements|colours]", "Print what there is, without a unit.", false, true, nullptr,
        listAll},
};

} // namespace

const Row* find(const QString& name)
{
    const auto* found = std::find_if(Rows.begin(), Rows.end(),
                                     [&](const Row& row) { return name == QLatin1String(row.name); });
    return found != Rows.end() ? found : nullptr;
}

QString names()
{
    QStringList names;
    for (const Row& row : Rows) {
        names.append(QLatin1String(row.name));
    }
    return names.join(QStringLiteral(", "));
}

QString syntax(const Row& row)
{
    return QStringLiteral("%1 %2").arg(QLatin1String(row.name), QLatin1String(row.arguments)).trimmed();
}

QString helpText()
{
    QString text = QStringLiteral("\nCommands:\n");
    for (const Row& row : Rows) {
        text += QStringLiteral("  %1 %2\n").arg(syntax(row), -40).arg(QLatin1String(row.summary));
    }
    return text + QStringLiteral(
                      "\nExit status: 0 done, 1 rejected or not answered, 2 usage, 3 no connection.\n"
                      "'zelctl COMMAND --help' tells the options of a command, 'zelctl list elements' what "
                      "can be done with each element.");
}

} // namespace Tolvar::Varundo::Zelctl::CommandTable
