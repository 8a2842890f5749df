#ifndef TOLVAR_VARUNDO_TEST_KEEPALIVETIMES_H
#define TOLVAR_VARUNDO_TEST_KEEPALIVETIMES_H

#include <QByteArray>
#include <QFile>
#include <QString>

namespace Tolvar::Varundo::Test {

/// How soon the kernel asks after a silent peer of a connection with keep-alive, for as long as this lives: a
/// second of silence, a second between questions, three questions. As delivered it is two hours.
///
/// Only for who has a network of its own, as all connections in it are concerned.
class KeepAliveTimes
{
public:
    KeepAliveTimes()
    {
        for (Time& time : m_times) {
            time.before = read(time.name);
            m_set = write(time.name, time.wanted) && m_set;
        }
    }
    ~KeepAliveTimes()
    {
        for (const Time& time : m_times) {
            write(time.name, time.before);
        }
    }
    Q_DISABLE_COPY_MOVE(KeepAliveTimes)

    bool areSet() const { return m_set; }

private:
    struct Time
    {
        const char* name;
        QByteArray wanted;
        QByteArray before;
    };

    static QString fileOf(const char* name)
    {
        return QStringLiteral("/proc/sys/net/ipv4/tcp_keepalive_") + QLatin1String(name);
    }
    static QByteArray read(const char* name)
    {
        QFile file(fileOf(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static bool write(const char* name, const QByteArray& value)
    {
        QFile file(fileOf(name));
        return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(value) == value.size();
    }

    Time m_times[3] = {{"time", "1", {}}, {"intvl", "1", {}}, {"probes", "3", {}}};
    bool m_set = true;
};

} // namespace Tolvar::Varundo::Test

#endif
