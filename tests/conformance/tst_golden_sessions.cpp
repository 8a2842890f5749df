#include "SessionPlayer.h"
#include "SessionScript.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Tolvar::Varundo::Tests;

/// Replays the sessions/*.zel files against a whole unit over TCP.
class TestGoldenSessions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void sessionGoesAsRecorded_data();
    void sessionGoesAsRecorded();
};

void TestGoldenSessions::initTestCase()
{
    if (!qEnvironmentVariable("VARUNDO_TEST_ISOLATION").contains(QLatin1String("net"))) {
        QSKIP("needs a network of its own: port 9998 is fixed");
    }
}

void TestGoldenSessions::sessionGoesAsRecorded_data()
{
    QTest::addColumn<QString>("fileName");
    const QDir sessions(QStringLiteral(VARUNDO_SESSIONS_DIR));
    const QStringList names = sessions.entryList({QStringLiteral("*.zel")}, QDir::Files, QDir::Name);
    constexpr int Fewest = 12; // a directory that was not found must not pass for one without errors
    QVERIFY2(names.size() >= Fewest, qPrintable(sessions.path()));
    for (const QString& name : names) {
        QTest::newRow(qPrintable(name)) << sessions.filePath(name);
    }
}

void TestGoldenSessions::sessionGoesAsRecorded()
{
    QFETCH(QString, fileName);
    QFile file(fileName);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    const SessionScript script = SessionScript::parse(QString::fromUtf8(file.readAll()), fileName);
    const QString failure = SessionPlayer().play(script);
    QVERIFY2(failure.isEmpty(), qPrintable(failure));
}

QTEST_MAIN(TestGoldenSessions)
#include "tst_golden_sessions.moc"
