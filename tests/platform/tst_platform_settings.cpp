#include <CApplicationSettings.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <sys/stat.h>

namespace {

QString key()
{
    return QStringLiteral("ZEL_INTERFACE");
}

void write(const QString& name, const QByteArray& content)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("%s: %s", qPrintable(name), qPrintable(file.errorString()));
    }
}

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void expectWarning(const QString& pattern)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(pattern));
}

} // namespace

class TestPlatformSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void thereIsOneInstance();
    void aSettingThatWasNeverSetIsTheDefault();
    void aSettingIsReadBackFromTheFile();
    void readingWritesNothing();
    void anyTextIsReadBackAsItWas_data();
    void anyTextIsReadBackAsItWas();
    void aVeryLongTextIsReadBack();
    void otherSettingsStayWhenOneIsSet();
    void eachFileHasItsOwnSettings();
    void theDefaultFileIsTheApplicationsOwn();
    void aRelativeNameIsNotMovedByTheWorkingDirectory();
    void missingDirectoriesAreMade();
    void nothingIsLeftBesideTheFile();
    void aLinkStaysALink_data();
    void aLinkStaysALink();

    void aBrokenFileIsKeptAsideAndSettingsStartEmpty_data();
    void aBrokenFileIsKeptAsideAndSettingsStartEmpty();
    void aBrokenFileBehindALinkIsKeptWhereItWas();
    void aValueThatIsNoTextIsTheDefaultAndStaysInTheFile();
    void aDirectoryInPlaceOfTheFileIsNotReplaced();
    void aDeviceInPlaceOfTheFileIsNeitherReadNorReplaced();
    void aSettingThatCannotBeWrittenHoldsInMemory();
    void theNextWriteTakesAlongWhatCouldNotBeWritten();

private:
    static CApplicationSettings& settings() { return *CApplicationSettings::instance(); }
    QString path(const QString& name) const { return m_directory->filePath(name); }
    QString stored(const QString& file, const QString& name = key()) const
    {
        settings().setFileName(file); // reads it again
        return settings().getCustomSetting(name, QStringLiteral("nothing stored"));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_file;
};

void TestPlatformSettings::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_file = path(QStringLiteral("settings.json"));
    settings().setFileName(m_file);
}

void TestPlatformSettings::thereIsOneInstance()
{
    QVERIFY(CApplicationSettings::instance());
    QCOMPARE(CApplicationSettings::instance(), CApplicationSettings::instance());
}

void TestPlatformSettings::aSettingThatWasNeverSetIsTheDefault()
{
    QCOMPARE(settings().getCustomSetting(key(), QStringLiteral("Serial")), QStringLiteral("Serial"));
    QCOMPARE(settings().getCustomSetting(key(), QString()), QString());
}

void TestPlatformSettings::aSettingIsReadBackFromTheFile()
{
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(settings().getCustomSetting(key(), QString()), QStringLiteral("Tcp"));
    QCOMPARE(stored(m_file), QStringLiteral("Tcp"));
    settings().setCustomSetting(key(), QStringLiteral("Udp"));
    QCOMPARE(stored(m_file), QStringLiteral("Udp"));
}

void TestPlatformSettings::readingWritesNothing()
{
    settings().getCustomSetting(key(), QStringLiteral("Serial"));
    QVERIFY(QDir(m_directory->path()).isEmpty());
}

void TestPlatformSettings::anyTextIsReadBackAsItWas_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("lines") << QStringLiteral("a\nb\r\n\tc\n");
    QTest::newRow("signs of file formats") << QStringLiteral("[a]=\"b\\\";{c: 'd'} # %1");
    QTest::newRow("blanks around") << QStringLiteral("  a  ");
    QTest::newRow("beyond Latin") << QStringLiteral("\u00e4\u20ac\u4e2d\U0001F600");
    QTest::newRow("NUL") << QStringLiteral("a") + QChar(QChar::Null) + QLatin1Char('b');
    QTest::newRow("half a character") << QString(QChar(0xD800)) + QLatin1Char('a');
}

/// As a value and as a key.
void TestPlatformSettings::anyTextIsReadBackAsItWas()
{
    QFETCH(QString, text);
    settings().setCustomSetting(key(), text);
    settings().setCustomSetting(text, QStringLiteral("value"));
    QCOMPARE(stored(m_file), text);
    QCOMPARE(stored(m_file, text), QStringLiteral("value"));
}

void TestPlatformSettings::aVeryLongTextIsReadBack()
{
    const QString text(8 * 1024 * 1024, QChar(0x20ac));
    settings().setCustomSetting(key(), text);
    QVERIFY(stored(m_file) == text);
}

void TestPlatformSettings::otherSettingsStayWhenOneIsSet()
{
    settings().setCustomSetting(QStringLiteral("other"), QStringLiteral("1"));
    settings().setFileName(m_file);
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(stored(m_file, QStringLiteral("other")), QStringLiteral("1"));
}

void TestPlatformSettings::eachFileHasItsOwnSettings()
{
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(stored(path(QStringLiteral("other.json"))), QStringLiteral("nothing stored"));
    QCOMPARE(stored(m_file), QStringLiteral("Tcp"));
}

void TestPlatformSettings::theDefaultFileIsTheApplicationsOwn()
{
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_directory->path()));
    settings().setFileName(QString());
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    const QString read = stored(QString());
    if (before.isNull()) {
        qunsetenv("XDG_CONFIG_HOME");
    } else {
        qputenv("XDG_CONFIG_HOME", before);
    }
    QCOMPARE(read, QStringLiteral("Tcp"));
    QCOMPARE(stored(path(QCoreApplication::applicationName() + QLatin1String("/settings.json"))),
             QStringLiteral("Tcp"));
}

void TestPlatformSettings::aRelativeNameIsNotMovedByTheWorkingDirectory()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_directory->path()));
    settings().setFileName(QStringLiteral("relative.json"));
    QVERIFY(QDir::setCurrent(before));
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QVERIFY(QFile::exists(path(QStringLiteral("relative.json"))));
}

void TestPlatformSettings::missingDirectoriesAreMade()
{
    const QString file = path(QStringLiteral("a/b/c/settings.json"));
    settings().setFileName(file);
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(stored(file), QStringLiteral("Tcp"));
}

void TestPlatformSettings::nothingIsLeftBesideTheFile()
{
    for (int i = 0; i < 5; ++i) {
        settings().setCustomSetting(key(), QString::number(i));
    }
    QCOMPARE(QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{QStringLiteral("settings.json")});
}

void TestPlatformSettings::aLinkStaysALink_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("to a file") << true;
    QTest::newRow("to nothing yet") << false;
}

void TestPlatformSettings::aLinkStaysALink()
{
    QFETCH(bool, exists);
    const QString target = path(QStringLiteral("data/real.json"));
    QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("data")));
    if (exists) {
        write(target, R"({"other": "1"})");
    }
    QVERIFY(QFile::link(QStringLiteral("data/real.json"), m_file));
    settings().setFileName(m_file);
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QVERIFY(QFileInfo(m_file).isSymLink());
    QVERIFY(!QFileInfo(target).isSymLink());
    QCOMPARE(stored(target), QStringLiteral("Tcp"));
    QCOMPARE(stored(target, QStringLiteral("other")),
             exists ? QStringLiteral("1") : QStringLiteral("nothing stored"));
}

void TestPlatformSettings::aBrokenFileIsKeptAsideAndSettingsStartEmpty_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("illegal value");
    QTest::newRow("cut off") << QByteArray(R"({"ZEL_INTERFACE": "T)")
                             << QStringLiteral("unterminated string");
    QTest::newRow("zeros") << QByteArray(512, '\0') << QStringLiteral("illegal value");
    QTest::newRow("array") << QByteArray("[]") << QStringLiteral("not a JSON object");
}

void TestPlatformSettings::aBrokenFileIsKeptAsideAndSettingsStartEmpty()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const QString aside = m_file + QLatin1String(".broken");
    write(m_file, content);
    write(aside, "an older one");
    expectWarning(QStringLiteral("^settings \".*settings\\.json\" cannot be used: \"%1\" - kept as "
                                 "\".*settings\\.json\\.broken\"$")
                      .arg(reason));
    QCOMPARE(settings().getCustomSetting(key(), QStringLiteral("Serial")), QStringLiteral("Serial"));
    QCOMPARE(contentOf(aside), content);
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(stored(m_file), QStringLiteral("Tcp"));
    QCOMPARE(contentOf(aside), content);
}

void TestPlatformSettings::aBrokenFileBehindALinkIsKeptWhereItWas()
{
    const QString target = path(QStringLiteral("real.json"));
    write(target, "broken");
    QVERIFY(QFile::link(target, m_file));
    expectWarning(QStringLiteral("cannot be used"));
    QCOMPARE(stored(m_file), QStringLiteral("nothing stored"));
    QCOMPARE(contentOf(target + QLatin1String(".broken")), QByteArray("broken"));
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QVERIFY(QFileInfo(m_file).isSymLink());
    QCOMPARE(stored(target), QStringLiteral("Tcp"));
}

void TestPlatformSettings::aValueThatIsNoTextIsTheDefaultAndStaysInTheFile()
{
    write(m_file, R"({"ZEL_INTERFACE": 5, "list": [1, 2], "text": "t"})");
    settings().setFileName(m_file);
    expectWarning(QStringLiteral("^setting \"ZEL_INTERFACE\" in \".*\" is not a text$"));
    QCOMPARE(settings().getCustomSetting(key(), QStringLiteral("Serial")), QStringLiteral("Serial"));
    QCOMPARE(settings().getCustomSetting(QStringLiteral("text"), QString()), QStringLiteral("t"));
    settings().setCustomSetting(QStringLiteral("text"), QStringLiteral("u"));
    QCOMPARE(QJsonDocument::fromJson(contentOf(m_file)),
             QJsonDocument::fromJson(R"({"ZEL_INTERFACE": 5, "list": [1, 2], "text": "u"})"));
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(stored(m_file), QStringLiteral("Tcp"));
}

void TestPlatformSettings::aDirectoryInPlaceOfTheFileIsNotReplaced()
{
    QVERIFY(QDir().mkdir(m_file));
    settings().setFileName(m_file);
    expectWarning(QStringLiteral("^settings \".*\" cannot be read: it is not a regular file$"));
    expectWarning(QStringLiteral("^settings \".*\" cannot be written: \"it is not a regular file\"$"));
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(settings().getCustomSetting(key(), QString()), QStringLiteral("Tcp"));
    QVERIFY(QFileInfo(m_file).isDir());
}

/// A socket of the test's own stands for any device.
void TestPlatformSettings::aDeviceInPlaceOfTheFileIsNeitherReadNorReplaced()
{
    const QByteArray node = QFile::encodeName(m_file);
    QCOMPARE(mknod(node.constData(), S_IFSOCK | 0600, 0), 0);
    settings().setFileName(m_file);
    expectWarning(QStringLiteral("^settings \".*\" cannot be read: it is not a regular file$"));
    expectWarning(QStringLiteral("^settings \".*\" cannot be written: \"it is not a regular file\"$"));
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(settings().getCustomSetting(key(), QString()), QStringLiteral("Tcp"));
    struct stat status = {};
    QCOMPARE(stat(node.constData(), &status), 0);
    QVERIFY(S_ISSOCK(status.st_mode));
}

/// A file stands where the directory would have to be: that stops even root.
void TestPlatformSettings::aSettingThatCannotBeWrittenHoldsInMemory()
{
    write(path(QStringLiteral("file")), "no directory");
    settings().setFileName(path(QStringLiteral("file/settings.json")));
    expectWarning(QStringLiteral("^settings \".*file/settings\\.json\" cannot be written: "
                                 "\"the directory .*/file cannot be made\"$"));
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(settings().getCustomSetting(key(), QString()), QStringLiteral("Tcp"));
}

void TestPlatformSettings::theNextWriteTakesAlongWhatCouldNotBeWritten()
{
    const QString directory = path(QStringLiteral("sub"));
    const QString file = directory + QLatin1String("/settings.json");
    write(directory, "in the way");
    settings().setFileName(file);
    expectWarning(QStringLiteral("cannot be written"));
    settings().setCustomSetting(QStringLiteral("early"), QStringLiteral("1"));
    QVERIFY(QFile::remove(directory));
    settings().setCustomSetting(key(), QStringLiteral("Tcp"));
    QCOMPARE(stored(file, QStringLiteral("early")), QStringLiteral("1"));
    QCOMPARE(stored(file), QStringLiteral("Tcp"));
}

QTEST_GUILESS_MAIN(TestPlatformSettings)
#include "tst_platform_settings.moc"
