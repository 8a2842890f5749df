#include "SimulatorProcess.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

namespace Tolvar::Varundo::Test {

namespace {

constexpr int patienceMs = 60000;

} // namespace

SimulatorProcess::SimulatorProcess()
{
    m_process.removeVariable("QT_QPA_PLATFORM"); // it finds its own way without a display
    m_process.removeVariable("DISPLAY");
    m_process.setVariable("XDG_RUNTIME_DIR", QFile::encodeName(m_dir.path())); // else Qt complains
}

SimulatorProcess::~SimulatorProcess()
{
    if (isRunning()) {
        end(SIGTERM);
    }
}

bool SimulatorProcess::start(const QStringList& further)
{
    const QStringList arguments{
        QStringLiteral("--tcp-port"), QStringLiteral("0"), QStringLiteral("--settings"), settingsFile(),
        QStringLiteral("--snapshot"), pictureFile(),       QStringLiteral("--state"),    stateFile()};
    if (!m_process.start(QStringLiteral(VARUNDO_SIMULATOR), arguments + further) ||
        !m_process.waitForLine(patienceMs)) {
        return false;
    }
    m_readyLine = QString::fromUtf8(m_process.readLine());
    return true;
}

void SimulatorProcess::run(const QStringList& arguments)
{
    m_process.start(QStringLiteral(VARUNDO_SIMULATOR),
                    QStringList{QStringLiteral("--settings"), settingsFile()} + arguments);
    m_process.waitForEnd(patienceMs);
}

void SimulatorProcess::sendSignal(int number) const
{
    m_process.sendSignal(number);
}

QString SimulatorProcess::command(const QByteArray& line)
{
    m_process.write(line + '\n');
    m_process.waitForLine(patienceMs);
    return QString::fromUtf8(m_process.readLine()).chopped(1);
}

void SimulatorProcess::closeInput(const QByteArray& lastWords)
{
    m_process.write(lastWords);
    m_process.closeInput();
}

int SimulatorProcess::end(int signalNumber)
{
    sendSignal(signalNumber);
    m_process.waitForEnd(patienceMs);
    return exitStatus();
}

int SimulatorProcess::port() const
{
    static const QRegularExpression door(QStringLiteral("^ready: tcp ([0-9]+)(, serial .*)?\n$"));
    return door.match(m_readyLine).captured(1).toInt();
}

QString SimulatorProcess::controllerDevice() const
{
    static const QRegularExpression door(QStringLiteral(", serial /dev/ttyUSB1 <- (/dev/pts/[0-9]+)\n$"));
    return door.match(m_readyLine).captured(1);
}

QString SimulatorProcess::write(const QString& name, const QByteArray& content) const
{
    QFile file(m_dir.filePath(name));
    const bool written = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    return written ? file.fileName() : QString();
}

QString SimulatorProcess::errors()
{
    m_errors += QString::fromUtf8(m_process.readErrors());
    return m_errors;
}

int SimulatorProcess::residentKiB() const
{
    return status("VmRSS:").split(' ').constFirst().toInt();
}

int SimulatorProcess::threads() const
{
    return status("Threads:").toInt();
}

int SimulatorProcess::descriptors() const
{
    return QDir(QStringLiteral("/proc/%1/fd").arg(m_process.id()))
        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
        .size();
}

QByteArray SimulatorProcess::status(const char* field) const
{
    QFile file(QStringLiteral("/proc/%1/status").arg(m_process.id()));
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith(field)) {
                return line.mid(int(qstrlen(field))).trimmed();
            }
        }
    }
    return {};
}

QJsonObject SimulatorProcess::freshState()
{
    QFile::remove(stateFile());
    QFile::remove(pictureFile());
    sendSignal(SIGUSR1);
    // The picture is written last.
    const bool written = QTest::qWaitFor([this] { return QFile::exists(pictureFile()); }, patienceMs);
    return written ? stateOnDisk() : QJsonObject();
}

QJsonObject SimulatorProcess::stateOnDisk() const
{
    QFile file(stateFile());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

} // namespace Tolvar::Varundo::Test
