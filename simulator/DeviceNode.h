#ifndef TOLVAR_VARUNDO_SIMULATOR_DEVICENODE_H
#define TOLVAR_VARUNDO_SIMULATOR_DEVICENODE_H

#include <QByteArray>
#include <QString>

namespace Tolvar::Varundo::Simulator {

/// A device under a second name, as long as this lives. What stands under that name already is never touched.
/// Owned by the VirtualSerialLine.
///
/// A link, since it is there and gone in one step. A mount is made and removed in two, and whoever looks in
/// between sees an adapter of another kind.
class DeviceNode
{
public:
    DeviceNode(const QString& node, const QString& device);
    ~DeviceNode();
    Q_DISABLE_COPY_MOVE(DeviceNode)

    bool isMade() const { return m_isMade; }
    QString error() const { return m_error; } ///< why it is not there, and what helps

private:
    QByteArray m_node;
    QByteArray m_device;
    bool m_isMade;
    QString m_error;
};

} // namespace Tolvar::Varundo::Simulator

#endif
