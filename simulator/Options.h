#ifndef TOLVAR_VARUNDO_SIMULATOR_OPTIONS_H
#define TOLVAR_VARUNDO_SIMULATOR_OPTIONS_H

#include <Tolvar/Varundo/Protocol.h>
#include <Tolvar/Varundo/Runner.h>

#include <QDateTime>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace Tolvar::Varundo::Simulator {

/// The command line, checked. A plain value.
struct Options
{
    static constexpr QSize SmallestPicture{160, 120};
    static constexpr QSize LargestPicture{3840, 2160};

    std::optional<Runner::SelectedInterface> interface;
    int tcpPort = Protocol::DefaultTcpPort; ///< 0: any that is free
    QString settingsFile;                   ///< empty: the program's own
    QString profileFile;                    ///< empty: the built-in one
    QString devicesFile;                    ///< empty: the devices stand still
    bool virtualSerial = false;
    bool takesCommands = false; ///< on the standard input
    QSize pictureSize{720, 576};
    QDateTime clock;     ///< invalid: the machine's time
    QString pictureFile; ///< empty: none is written
    QString stateFile;   ///< empty: none is written

    QString answer; ///< help or version, when that was asked for; the rest is then of no use

    /// Nothing for a wrong command line; error then names the option and what is wrong with it.
    static std::optional<Options> read(const QStringList& arguments, QString* error);
};

} // namespace Tolvar::Varundo::Simulator

#endif
