#include <CApplicationSettings.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <random>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

/// A settings_writer, from its start to its killing.
class Writer
{
public:
    Writer(const QString& file, int ballast)
    {
        int ends[2];
        if (pipe(ends) != 0) {
            return;
        }
        m_fromWriter = ends[0];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, ends[0]);
        posix_spawn_file_actions_addclose(&actions, ends[1]);
        QByteArray program(SETTINGS_WRITER);
        QByteArray fileName = QFile::encodeName(file);
        QByteArray size = QByteArray::number(ballast);
        char* const arguments[] = {program.data(), fileName.data(), size.data(), nullptr};
        if (posix_spawn(&m_pid, program.constData(), &actions, nullptr, arguments, environ) != 0) {
            m_pid = 0;
        }
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
    }
    ~Writer()
    {
        static_cast<void>(kill());
        close(m_fromWriter);
    }
    Q_DISABLE_COPY(Writer)

    /// Reads what it says: the next word. False when it says nothing any more.
    bool listen()
    {
        quint32 word = 0;
        if (read(m_fromWriter, &word, sizeof word) != sizeof word) {
            return false;
        }
        m_isSetting = word % 2 == 0;
        m_set = m_isSetting ? m_set : word / 2;
        return true;
    }
    bool waitForNumber(quint32 number)
    {
        while (m_set < number && listen()) {
        }
        return m_set >= number;
    }
    quint32 lastSet() const { return m_set; }
    bool isSetting() const { return m_isSetting; } ///< the number after that one

    /// False if it had ended by itself.
    bool kill()
    {
        if (m_pid <= 0) {
            return false;
        }
        int status = 0;
        ::kill(m_pid, SIGKILL);
        waitpid(m_pid, &status, 0);
        m_pid = 0;
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    }

private:
    pid_t m_pid = 0;
    int m_fromWriter = -1;
    quint32 m_set = 0;
    bool m_isSetting = false;
};

} // namespace

/// What a process that dies suddenly leaves behind.
class TestPlatformSettingsKill : public QObject
{
    Q_OBJECT

private slots:
    void aSettingSurvivesAKillRightAfterItWasSet();
    void aWriterThatIsKilledAnywhereLeavesAWholeFile();

private:
    /// What the file holds, read without the class under test; 0 if it is not whole.
    static quint32 storedNumber(const QString& file, int ballast);
};

quint32 TestPlatformSettingsKill::storedNumber(const QString& file, int ballast)
{
    QFile settings(file);
    if (!settings.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QString value =
        QJsonDocument::fromJson(settings.readAll()).object().value(QStringLiteral("number")).toString();
    const QString number = value.section(QLatin1Char('x'), 0, 0);
    return value.size() == number.size() + ballast ? number.toUInt() : 0;
}

void TestPlatformSettingsKill::aSettingSurvivesAKillRightAfterItWasSet()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("settings.json"));
    for (quint32 round = 0; round < 20; ++round) {
        Writer writer(file, 0);
        const quint32 set = 1 + round % 3;
        QVERIFY(writer.waitForNumber(set));
        QVERIFY(writer.kill());
        QVERIFY(storedNumber(file, 0) >= set);
        CApplicationSettings::instance()->setFileName(file);
        const QString read =
            CApplicationSettings::instance()->getCustomSetting(QStringLiteral("number"), QString());
        QVERIFY2(read.toUInt() >= set, qPrintable(read));
    }
}

void TestPlatformSettingsKill::aWriterThatIsKilledAnywhereLeavesAWholeFile()
{
    constexpr int ballast = 300'000;
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("settings.json"));
    std::mt19937 random(20180828); // the moments differ from run to run all the same
    std::uniform_int_distribution<int> microseconds(0, 8000);
    int interrupted = 0;
    for (int round = 0; round < 60; ++round) {
        Writer writer(file, ballast);
        QVERIFY(writer.waitForNumber(1));
        usleep(static_cast<useconds_t>(microseconds(random)));
        QVERIFY(writer.kill());
        while (writer.listen()) {
        }
        const quint32 stored = storedNumber(file, ballast);
        const quint32 last = writer.lastSet();
        QVERIFY2(stored == last || (writer.isSetting() && stored == last + 1),
                 qPrintable(QStringLiteral("%1 is stored, %2 was set").arg(stored).arg(last)));
        interrupted += writer.isSetting() ? 1 : 0;
    }
    QVERIFY2(interrupted > 0, "no writer was killed while it wrote: the test has shown nothing");
}

QTEST_GUILESS_MAIN(TestPlatformSettingsKill)
#include "tst_platform_settings_kill.moc"
