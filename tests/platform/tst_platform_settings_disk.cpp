#include <CApplicationSettings.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// What is asked of the system, in order: "sync NAME", and "name settings.json" when a file gets that name.
QStringList* systemCalls = nullptr;
bool syncFails = false;

void tell(const QString& what)
{
    if (systemCalls) {
        systemCalls->append(what);
    }
}

/// A file that has no lasting name yet is "new".
QString nameOf(int descriptor)
{
    const QString name =
        QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(descriptor))).fileName();
    const bool isNew = name.startsWith(QLatin1Char('#')) || name.startsWith(QLatin1String("settings.json."));
    return isNew ? QStringLiteral("new") : name;
}

void tellNaming(const char* path)
{
    if (QFile::decodeName(path).endsWith(QLatin1String("/settings.json"))) {
        tell(QStringLiteral("name settings.json"));
    }
}

} // namespace

// These stand before the system's own: the settings and Qt call them here.
extern "C" Q_DECL_EXPORT int fsync(int descriptor)
{
    tell(QStringLiteral("sync ") + nameOf(descriptor));
    if (syncFails) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

extern "C" Q_DECL_EXPORT int rename(const char* from, const char* to) noexcept
{
    const auto result = syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
    if (result == 0) {
        tellNaming(to);
    }
    return static_cast<int>(result);
}

extern "C" Q_DECL_EXPORT int linkat(int fromDirectory, const char* from, int toDirectory, const char* to,
                                    int flags) noexcept
{
    const auto result = syscall(SYS_linkat, fromDirectory, from, toDirectory, to, flags);
    if (result == 0) {
        tellNaming(to);
    }
    return static_cast<int>(result);
}

/// What reaches the disk, in which order, and what happens when it does not.
class TestPlatformSettingsDisk : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void contentIsOnDiskBeforeItTakesTheNameAndTheNameIsOnDiskAfter();
    void aNewDirectoryIsOnDiskToo();
    void whatCannotBeBroughtToDiskDoesNotReplaceTheFile();
    void aFullDiskLeavesTheOldFileWhole();

private:
    static CApplicationSettings& settings() { return *CApplicationSettings::instance(); }
    QByteArray content() const;

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_file;
    QStringList m_calls;
};

void TestPlatformSettingsDisk::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_file = m_directory->filePath(QStringLiteral("settings.json"));
    settings().setFileName(m_file);
    settings().setCustomSetting(QStringLiteral("key"), QStringLiteral("old"));
    m_calls.clear();
    systemCalls = &m_calls;
}

void TestPlatformSettingsDisk::cleanup()
{
    systemCalls = nullptr;
    syncFails = false;
}

QByteArray TestPlatformSettingsDisk::content() const
{
    QFile file(m_file);
    return file.open(QIODevice::ReadOnly) ? file.readAll().simplified() : QByteArray();
}

void TestPlatformSettingsDisk::contentIsOnDiskBeforeItTakesTheNameAndTheNameIsOnDiskAfter()
{
    settings().setCustomSetting(QStringLiteral("key"), QStringLiteral("new"));
    QCOMPARE(m_calls, (QStringList{QStringLiteral("sync new"), QStringLiteral("name settings.json"),
                                   QStringLiteral("sync ") + QFileInfo(m_directory->path()).fileName()}));
}

void TestPlatformSettingsDisk::aNewDirectoryIsOnDiskToo()
{
    settings().setFileName(m_directory->filePath(QStringLiteral("a/b/settings.json")));
    settings().setCustomSetting(QStringLiteral("key"), QStringLiteral("new"));
    QCOMPARE(m_calls, (QStringList{QStringLiteral("sync ") + QFileInfo(m_directory->path()).fileName(),
                                   QStringLiteral("sync a"), QStringLiteral("sync new"),
                                   QStringLiteral("name settings.json"), QStringLiteral("sync b")}));
}

void TestPlatformSettingsDisk::whatCannotBeBroughtToDiskDoesNotReplaceTheFile()
{
    syncFails = true;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(
                                           "^settings \".*\" cannot be written: \"Input/output error\"$")));
    settings().setCustomSetting(QStringLiteral("key"), QStringLiteral("new"));
    QCOMPARE(content(), QByteArray(R"({ "key": "old" })"));
    QCOMPARE(settings().getCustomSetting(QStringLiteral("key"), QString()), QStringLiteral("new"));
}

/// A limit on the size of files fails in the middle of the writing, as a full disk does.
void TestPlatformSettingsDisk::aFullDiskLeavesTheOldFileWhole()
{
    const QString big(100'000, QLatin1Char('x'));
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = before;
    limited.rlim_cur = 4096;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(
                                           "^settings \".*\" cannot be written: \"File too large\"$")));
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &limited), 0);
    settings().setCustomSetting(QStringLiteral("key"), big);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, formerHandler);
    QCOMPARE(content(), QByteArray(R"({ "key": "old" })"));
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files), QStringList{QStringLiteral("settings.json")});
    QVERIFY(settings().getCustomSetting(QStringLiteral("key"), QString()) == big);
}

QTEST_GUILESS_MAIN(TestPlatformSettingsDisk)
#include "tst_platform_settings_disk.moc"
