#include "Options.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Simulator;

/// The command line.
class tst_Options : public QObject
{
    Q_OBJECT

private slots:
    void emptyCommandLineHasTheDocumentedDefaults();
    void everyOptionIsTakenOver();
    void wrongValueIsNamedWithItsOption_data();
    void wrongValueIsNamedWithItsOption();
    void boundsOfThePictureArePartOfTheRange_data();
    void boundsOfThePictureArePartOfTheRange();
    void outputThatCannotBeWrittenIsFoundAtOnce();
    void checkingAnOutputLeavesTheOldFileAsItWas();
    void helpNamesEveryOption();
    void versionIsAnswered();

private:
    static std::optional<Options> read(const QStringList& arguments, QString* error);

    QTemporaryDir m_dir;
};

std::optional<Options> tst_Options::read(const QStringList& arguments, QString* error)
{
    return Options::read(QStringList(QStringLiteral("varundo-simulator")) + arguments, error);
}

void tst_Options::emptyCommandLineHasTheDocumentedDefaults()
{
    QString error;
    const auto options = read({}, &error);
    QVERIFY2(options, qPrintable(error));
    QVERIFY(!options->interface.has_value());
    QCOMPARE(options->tcpPort, 9998);
    QCOMPARE(options->pictureSize, QSize(720, 576));
    QVERIFY(!options->clock.isValid());
    QVERIFY(options->settingsFile.isEmpty() && options->profileFile.isEmpty());
    QVERIFY(options->pictureFile.isEmpty() && options->stateFile.isEmpty());
    QVERIFY(options->answer.isEmpty());
}

void tst_Options::everyOptionIsTakenOver()
{
    const QString picture = m_dir.filePath(QStringLiteral("a.png"));
    const QString state = m_dir.filePath(QStringLiteral("a.json"));
    QString error;
    const auto options =
        read({QStringLiteral("--interface=Udp"), QStringLiteral("--tcp-port"), QStringLiteral("0"),
              QStringLiteral("--settings=s"), QStringLiteral("--profile=p"),
              QStringLiteral("--size=1280x720"), QStringLiteral("--seed-clock=2026-03-15T12:34:56"),
              QStringLiteral("--snapshot=") + picture, QStringLiteral("--state=") + state},
             &error);
    QVERIFY2(options, qPrintable(error));
    QCOMPARE(options->interface.value(), Runner::Udp);
    QCOMPARE(options->tcpPort, 0);
    QCOMPARE(options->settingsFile, QStringLiteral("s"));
    QCOMPARE(options->profileFile, QStringLiteral("p"));
    QCOMPARE(options->pictureSize, QSize(1280, 720));
    QCOMPARE(options->clock, QDateTime({2026, 3, 15}, {12, 34, 56}));
    QCOMPARE(options->pictureFile, picture);
    QCOMPARE(options->stateFile, state);
    QVERIFY(!QFile::exists(picture) && !QFile::exists(state));
}

void tst_Options::wrongValueIsNamedWithItsOption_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QStringList>("named");
    const auto row = [](const char* argument, const QStringList& named) {
        QTest::newRow(argument) << QString::fromLatin1(argument) << named;
    };
    const auto port = QStringLiteral("--tcp-port: expected a number from 0 to 65535, got \"%1\"");
    const auto size = QStringLiteral("--size: expected WIDTHxHEIGHT from 160x120 to 3840x2160, got \"%1\"");
    row("--tcp-port=65536", {port.arg(65536)});
    row("--tcp-port=-1", {port.arg(-1)});
    row("--tcp-port=http", {port.arg(QStringLiteral("http"))});
    row("--tcp-port=", {port.arg(QString())});
    row("--interface=tcp", {QStringLiteral("--interface: expected Serial, Tcp or Udp, got \"tcp\"")});
    row("--interface=1", {QStringLiteral("--interface"), QStringLiteral("\"1\"")});
    row("--size=720", {size.arg(720)});
    row("--size=720x576x3", {size.arg(QStringLiteral("720x576x3"))});
    row("--size=159x120", {size.arg(QStringLiteral("159x120"))});
    row("--size=99999x99999", {size.arg(QStringLiteral("99999x99999"))});
    row("--seed-clock=2026-02-30T12:00:00", {QStringLiteral("--seed-clock"), QStringLiteral("2026-02-30T")});
    row("--seed-clock=noon", {QStringLiteral("--seed-clock"), QStringLiteral("\"noon\"")});
    row("--colour=red", {QStringLiteral("colour")});
    row("9998", {QStringLiteral("unexpected argument \"9998\"")});
    row("--size", {QStringLiteral("size")}); // without a value
}

void tst_Options::wrongValueIsNamedWithItsOption()
{
    QFETCH(QString, argument);
    QFETCH(QStringList, named);
    QString error;
    QVERIFY(!read({argument}, &error));
    for (const QString& part : named) {
        QVERIFY2(error.contains(part), qPrintable(error));
    }
}

void tst_Options::boundsOfThePictureArePartOfTheRange_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smallest") << Options::SmallestPicture;
    QTest::newRow("largest") << Options::LargestPicture;
}

void tst_Options::boundsOfThePictureArePartOfTheRange()
{
    QFETCH(QSize, size);
    QString error;
    const auto options = read({QStringLiteral("--size=%1x%2").arg(size.width()).arg(size.height())}, &error);
    QVERIFY2(options, qPrintable(error));
    QCOMPARE(options->pictureSize, size);
}

void tst_Options::outputThatCannotBeWrittenIsFoundAtOnce()
{
    const QString missing = m_dir.filePath(QStringLiteral("missing/x"));
    for (const QString& name : {QStringLiteral("--snapshot"), QStringLiteral("--state")}) {
        QString error;
        QVERIFY(!read({name, missing}, &error));
        QVERIFY2(error.startsWith(name + QStringLiteral(": cannot write ") + missing), qPrintable(error));
        QVERIFY(!read({name, m_dir.path()}, &error));
        QCOMPARE(error, name + QStringLiteral(": cannot write %1: it is a directory").arg(m_dir.path()));
    }
}

void tst_Options::checkingAnOutputLeavesTheOldFileAsItWas()
{
    const QString name = m_dir.filePath(QStringLiteral("kept"));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("old") == 3);
    file.close();
    QString error;
    QVERIFY(read({QStringLiteral("--state"), name}, &error));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("old"));
    QCOMPARE(QDir(m_dir.path()).entryList({QStringLiteral("kept*")}), QStringList(QStringLiteral("kept")));
}

void tst_Options::helpNamesEveryOption()
{
    QString error;
    const auto options = read({QStringLiteral("--help")}, &error);
    QVERIFY(options);
    for (const char* const name : {"--interface", "--tcp-port", "--settings", "--profile", "--size",
                                   "--seed-clock", "--snapshot", "--state"}) {
        QVERIFY2(options->answer.contains(QLatin1String(name)), name);
    }
}

void tst_Options::versionIsAnswered()
{
    QCoreApplication::setApplicationVersion(QStringLiteral("4.5.6"));
    QString error;
    const auto options = read({QStringLiteral("--version")}, &error);
    QVERIFY(options);
    QCOMPARE(options->answer, QStringLiteral("varundo-simulator 4.5.6\n"));
}

QTEST_GUILESS_MAIN(tst_Options)
#include "tst_options.moc"
