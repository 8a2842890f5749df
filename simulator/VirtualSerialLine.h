#ifndef TOLVAR_VARUNDO_SIMULATOR_VIRTUALSERIALLINE_H
#define TOLVAR_VARUNDO_SIMULATOR_VIRTUALSERIALLINE_H

#include "BytePump.h"
#include "DeviceNode.h"
#include "PseudoTerminal.h"

#include <QObject>
#include <QString>

#include <memory>

namespace Tolvar::Varundo::Simulator {

/// A serial line without hardware: the unit's adapter, which can be unplugged and plugged in, and the
/// controller's end, which is there all the time. Bytes pass at once, whatever the baud rates.
///
/// The adapter is a new device each time it is plugged in, as a real one is; a bridge behind it leads to the
/// same end for the controller. Lives in the GUI thread; owned by main(). The node goes with it.
class VirtualSerialLine final : public QObject
{
    Q_OBJECT

public:
    explicit VirtualSerialLine(QObject* parent = nullptr);
    ~VirtualSerialLine() override;

    static QString device(); ///< the adapter's node, where the library looks first
    const QString& controller() const { return m_controllerEnd.deviceName(); }
    bool isPlugged() const { return m_plug != nullptr; }

    /// Nothing changes when it is so already, nor when it fails; error then says why, and what helps.
    bool plug(QString* error);
    void unplug();

private:
    struct Plug
    {
        PseudoTerminal terminal;
        std::unique_ptr<DeviceNode> node;
        std::unique_ptr<BytePump> toUnit;
        std::unique_ptr<BytePump> toController;
    };

    void bridge(Plug& plug);
    void throwAway();

    PseudoTerminal m_controllerEnd;
    std::unique_ptr<BytePump> m_drain; // while it is unplugged
    std::unique_ptr<Plug> m_plug;
};

} // namespace Tolvar::Varundo::Simulator

#endif
