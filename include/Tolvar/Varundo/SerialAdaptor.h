#ifndef TOLVAR_VARUNDO_SERIALADAPTOR_H
#define TOLVAR_VARUNDO_SERIALADAPTOR_H

#include <Tolvar/Varundo/CommandMessage.h>
#include <Tolvar/Varundo/Export.h>
#include <Tolvar/Varundo/FrameCodec.h>

#include <QObject>
#include <QStringList>
#include <QThread>

#include <memory>

class QSerialPort;

namespace Tolvar::Varundo {

/// The serial road: follows a USB serial adapter that comes and goes, decodes and acknowledges the frames
/// that arrive on it, and writes the answers.
///
/// Lives in the host's event-loop thread. Its watcher lives in a thread that the adaptor owns; the destructor
/// stops that thread and waits for it.
///
/// A slot of its signals may turn an event loop: what arrives meanwhile waits until the slot returns. To
/// destroy the adaptor from within one, use deleteLater().
class VARUNDO_EXPORT SerialAdaptor : public QObject
{
    Q_OBJECT

public:
    /// While so many bytes of replies wait for a line that does not drain, no more is read from it.
    static constexpr qint64 MaxUnsentBytes = 65536;
    /// What the port holds of bytes that were not read yet.
    static constexpr qint64 MaxUnreadBytes = 65536;

    /// Sets the line up (9600 8N1, no flow control) without opening it, and starts the watcher.
    explicit SerialAdaptor(QString portName, QObject* parent = nullptr);
    ~SerialAdaptor() override;

    int baudrate() const { return m_baudrate; }
    /// "disabled", then the name of every available port whose name contains "ttyUSB".
    Q_INVOKABLE QStringList getPortNames();
    /// What the port's decoder has seen so far.
    const FrameCounters& frameCounters() const;

public slots:
    void handleReadyRead();
    void handleError(int error);
    void sendACK();
    void sendNACK();
    /// Frames and writes a record in one write. On a closed port it is lost, silently.
    void writeMessage(CommandMessage commandMessage);
    void openSerialPort(QString serialPort); ///< the short device name; ignored while a port is open
    void closeSerialPort();
    void portListUpdated(QStringList portList);
    void setBaudrate(int baudrate); ///< bits per second, both directions; also while the port is closed

signals:
    void receivedValidMessage(CommandMessage commandMessage);
    void printableCharReceived(char printableChar);
    void serialPortError(QString errorText); ///< the device's own words
    void startWatchingForPort();
    void baudrateChanged(int baudrate);
    /// Declared only.
    void changePortname(QString portName);

private:
    class Reader;

    void connectWatcher(const QString& portName);
    void stopWatcher();
    void onPortError(int error);
    void closeIfGone();
    void closeDevice();
    void write(const QByteArray& bytes);

    QSerialPort* m_serialPort;
    std::shared_ptr<Reader> m_reader; // kept by who is in it
    bool m_portOpen =
        false; // the watcher's view: a device that is gone counts as open until the watcher says so
    int m_errorsInARow = 0;
    QThread m_watcherThread;
    int m_baudrate;
    QStringList m_portList;
};

} // namespace Tolvar::Varundo

#endif
