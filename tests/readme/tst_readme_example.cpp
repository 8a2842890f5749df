#include "PipedProcess.h"

#include <Tolvar/Varundo/FrameCodec.h>

#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

using namespace Tolvar::Varundo;

namespace {

bool connects(QTcpSocket& controller)
{
    controller.abort();
    controller.connectToHost(QStringLiteral("127.0.0.1"), Protocol::DefaultTcpPort);
    return controller.waitForConnected(1000);
}

} // namespace

/// The host of the README, as a newcomer would run it.
class TestReadmeExample : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void identifiesItselfOverTcp();
    void saysWhatIsWrongWithItsProfile();

private:
    void start(const QString& profileFile);

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<Test::PipedProcess> m_host;
};

void TestReadmeExample::init()
{
    if (!qEnvironmentVariable("VARUNDO_TEST_ISOLATION").contains(QLatin1String("net"))) {
        QSKIP("needs a network of its own for port 9998, which is not permitted here");
    }
    m_home = std::make_unique<QTemporaryDir>();
    m_host = std::make_unique<Test::PipedProcess>();
    m_host->setVariable("XDG_CONFIG_HOME", QFile::encodeName(m_home->path()));
}

void TestReadmeExample::cleanup()
{
    m_host.reset();
    m_home.reset();
}

void TestReadmeExample::start(const QString& profileFile)
{
    QVERIFY(m_host->start(QStringLiteral(README_EXAMPLE), {profileFile}));
}

void TestReadmeExample::identifiesItselfOverTcp()
{
    const QString profileFile = m_home->filePath(QStringLiteral("overlay.json"));
    QFile file(profileFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"({"elements": [{"kind": "static", "id": 1, "row": 1, "text": "ready"}]})");
    file.close();
    start(profileFile);

    QTcpSocket controller;
    QTRY_VERIFY_WITH_TIMEOUT(connects(controller), 10000);
    controller.write(QByteArray::fromHex("02ff01000003"));
    const QByteArray text = "Tolvar QR740 ZEL-interface: V2.4.0 - 20180828 - 12:00";
    const QByteArray expected = QByteArray(1, Protocol::Ack) +
                                encodeFrame({0xFF, Protocol::Read, static_cast<quint16>(text.size()), text});
    QByteArray received;
    while (received.size() < expected.size() && controller.waitForReadyRead(5000)) {
        received += controller.readAll();
    }
    QCOMPARE(received.toHex(' '), expected.toHex(' '));
}

void TestReadmeExample::saysWhatIsWrongWithItsProfile()
{
    start(QStringLiteral("/nonexistent.json"));
    QByteArray output;
    QTRY_VERIFY_WITH_TIMEOUT((output += m_host->readErrors()).contains("/nonexistent.json: cannot be read"),
                             10000);
}

QTEST_GUILESS_MAIN(TestReadmeExample)
#include "tst_readme_example.moc"
