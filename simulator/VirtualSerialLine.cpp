#include "VirtualSerialLine.h"

#include <utility>

namespace Tolvar::Varundo::Simulator {

namespace {

bool failed(QString* error, const QString& what)
{
    *error = what;
    return false;
}

} // namespace

VirtualSerialLine::VirtualSerialLine(QObject* parent)
    : QObject(parent)
{
    if (m_controllerEnd.isOpen()) {
        throwAway();
    }
}

VirtualSerialLine::~VirtualSerialLine() = default;

QString VirtualSerialLine::device()
{
    return QStringLiteral("/dev/ttyUSB1");
}

bool VirtualSerialLine::plug(QString* error)
{
    if (isPlugged()) {
        return true;
    }
    if (!m_controllerEnd.isOpen()) {
        return failed(error, m_controllerEnd.error());
    }
    auto plug = std::make_unique<Plug>();
    if (!plug->terminal.isOpen()) {
        return failed(error, plug->terminal.error());
    }
    plug->node = std::make_unique<DeviceNode>(device(), plug->terminal.deviceName());
    if (!plug->node->isMade()) {
        return failed(error, plug->node->error());
    }
    bridge(*plug);
    m_plug = std::move(plug);
    return true;
}

void VirtualSerialLine::unplug()
{
    if (isPlugged()) {
        m_plug.reset();
        throwAway();
    }
}

/// What the controller sends while the unit has not opened its port yet waits for it in the device.
void VirtualSerialLine::bridge(Plug& plug)
{
    m_drain.reset(); // two may not read from one end
    plug.toUnit = std::make_unique<BytePump>(m_controllerEnd.master(), plug.terminal.master());
    plug.toController = std::make_unique<BytePump>(plug.terminal.master(), m_controllerEnd.master());
    connect(plug.toUnit.get(), &BytePump::taken, this, [this] { m_controllerEnd.liftClaim(); });
}

/// A controller's end without a unit takes everything, as a cable does that leads nowhere.
void VirtualSerialLine::throwAway()
{
    m_drain = std::make_unique<BytePump>(m_controllerEnd.master());
    connect(m_drain.get(), &BytePump::taken, this, [this] { m_controllerEnd.liftClaim(); });
}

} // namespace Tolvar::Varundo::Simulator
