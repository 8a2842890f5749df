#ifndef TOLVAR_VARUNDO_SERIALPORTWATCHER_H
#define TOLVAR_VARUNDO_SERIALPORTWATCHER_H

#include <Tolvar/Varundo/Export.h>

#include <QObject>
#include <QString>

class QTimer;

namespace Tolvar::Varundo {

/// Looks once a second whether a USB serial adapter's device node exists, and tells when the first has
/// appeared and when the last has gone. Only /dev/ttyUSB1 and /dev/ttyUSB0 are looked at; ttyUSB1 wins.
///
/// It reports edges: a change of adapter between two looks is not reported (the log tells of it), and neither
/// is a node that cannot be opened. Lives in a thread of its own, owned by the SerialAdaptor; all its signals
/// are queued to it.
class VARUNDO_EXPORT SerialPortWatcher : public QObject
{
    Q_OBJECT

public:
    static constexpr int PollIntervalMs = 1000;

    /// Does not start polling. The name is the short one, without "/dev/".
    explicit SerialPortWatcher(QString portName, QObject* parent = nullptr);

    /// The short name of the adapter found last. Not thread-safe: for the watcher's own thread.
    QString portName() const { return m_portName; }

public slots:
    void startWatching(); ///< the first look is one interval later
    void stopWatching();
    void setPortName(QString portName);
    void checkPorts(); ///< one look

signals:
    void serialPortConnected(QString serialPort); ///< the short name, for example "ttyUSB0"
    void serialPortDisconnected();

private:
    void tellOfAnExchange();

    QString m_portName;
    QTimer* m_pollTimer;
    bool m_connected = false;             // between a reported appearance and the next reported disappearance
    const char* m_reportedNode = nullptr; // while connected, until it is found exchanged
    quint64 m_reportedIdentity = 0;
};

} // namespace Tolvar::Varundo

#endif
