#ifndef TOLVAR_VARUNDO_CLIENT_SERIALLINK_H
#define TOLVAR_VARUNDO_CLIENT_SERIALLINK_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/Protocol.h>

#include <QObject>
#include <QString>

class QIODevice;
class QSerialPort;

namespace Tolvar::Varundo::Client {

/// Opens a serial line to a unit, with the settings that the unit has on its end, and owns the port. Lives in
/// one thread with an event loop; must outlive the ZelClient that uses its device.
///
/// A line has nobody who would accept a connection: that it is open does not mean that a unit listens.
/// Connect lost() to ZelClient::fail(), so that the client knows why the line ended.
class ZEL_CLIENT_EXPORT SerialLink : public QObject
{
    Q_OBJECT

public:
    /// A device is a path, or a name in /dev. Pseudo-terminals will do.
    explicit SerialLink(const QString& deviceName, int baudrate = Protocol::DefaultBaudrate,
                        QObject* parent = nullptr);
    ~SerialLink() override;

    /// Opens at once, or not at all: then errorText() says which device, and why. What the line held for an
    /// earlier program is thrown away.
    [[nodiscard]] bool open();

    [[nodiscard]] QIODevice* device() const;
    [[nodiscard]] QString peerName() const { return m_deviceName; }
    [[nodiscard]] QString errorText() const { return m_errorText; }

    /// How long the line is busy with so many bytes, in milliseconds.
    [[nodiscard]] int transmissionTime(int byteCount) const;

    /// Sends what is still to be sent, then closes; waits no longer than given.
    void close(int timeoutMilliseconds);

signals:
    /// The line broke: the adapter was pulled, or the other end hung up. The device is closed after this.
    void lost(const QString& reason);

private:
    void handleError(int error);
    void end(const QString& reason);

    QString m_deviceName;
    QString m_errorText;
    QSerialPort* m_port;
    int m_baudrate;
};

} // namespace Tolvar::Varundo::Client

#endif
