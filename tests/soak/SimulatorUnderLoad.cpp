#include "SimulatorUnderLoad.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace Tolvar::Varundo::Test {

namespace {

constexpr int patienceMs = 60000;

/// An adapter that is pulled is news, and meant to be: the only thing that a unit under this load may say.
bool isExpected(const QString& line)
{
    static const QRegularExpression pulled(QStringLiteral("^varundo\\.transport: ttyUSB1 "));
    return line.isEmpty() || pulled.match(line).hasMatch();
}

} // namespace

SimulatorUnderLoad::SimulatorUnderLoad()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_dir.path()); // else Qt complains
    m_process.setProcessEnvironment(environment);
}

SimulatorUnderLoad::~SimulatorUnderLoad()
{
    if (isRunning()) {
        end();
    }
}

bool SimulatorUnderLoad::start(QString* error)
{
    m_process.start(QStringLiteral(VARUNDO_SIMULATOR),
                    {QStringLiteral("--control"), QStringLiteral("--virtual-serial"),
                     QStringLiteral("--tcp-port=0"), QStringLiteral("--interface=Tcp"),
                     QStringLiteral("--settings"), m_dir.filePath(QStringLiteral("settings.json"))});
    while (!m_process.canReadLine() && m_process.waitForReadyRead(patienceMs)) {
    }
    static const QRegularExpression doors(
        QStringLiteral("^ready: tcp ([0-9]+), serial /dev/ttyUSB1 <- (/dev/pts/[0-9]+)\n$"));
    const auto ready = doors.match(QString::fromUtf8(m_process.readLine()));
    m_port = ready.captured(1).toUShort();
    m_controllerDevice = ready.captured(2);
    if (!ready.hasMatch()) {
        *error = QString::fromUtf8(m_process.readAllStandardError()).trimmed();
    }
    return ready.hasMatch();
}

bool SimulatorUnderLoad::command(const QByteArray& line)
{
    m_process.write(line + '\n');
    while (!m_process.canReadLine() && m_process.waitForReadyRead(patienceMs)) {
    }
    const QByteArray answer = m_process.readLine();
    if (answer != "ok\n") {
        m_complaints.append(QString::fromUtf8(line + ": " + answer).trimmed());
    }
    return answer == "ok\n";
}

int SimulatorUnderLoad::end()
{
    m_process.terminate();
    m_process.waitForFinished(patienceMs);
    const bool ended =
        m_process.state() == QProcess::NotRunning && m_process.exitStatus() == QProcess::NormalExit;
    return ended ? m_process.exitCode() : -1;
}

int SimulatorUnderLoad::residentKiB() const
{
    return status("VmRSS:").split(' ').constFirst().toInt();
}

int SimulatorUnderLoad::threads() const
{
    return status("Threads:").toInt();
}

int SimulatorUnderLoad::descriptors() const
{
    return QDir(QStringLiteral("/proc/%1/fd").arg(m_process.processId()))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

QStringList SimulatorUnderLoad::complaints()
{
    const QString said = QString::fromUtf8(m_process.readAllStandardError());
    for (const QString& line : said.split(QLatin1Char('\n'))) {
        if (!isExpected(line)) {
            m_complaints.append(line);
        }
    }
    return m_complaints;
}

QByteArray SimulatorUnderLoad::status(const char* field) const
{
    QFile file(QStringLiteral("/proc/%1/status").arg(m_process.processId()));
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith(field)) {
                return line.mid(int(qstrlen(field))).trimmed();
            }
        }
    }
    return {};
}

} // namespace Tolvar::Varundo::Test
