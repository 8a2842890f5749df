// A host that chooses another interface while one is being chosen.

#include "HookedHost.h"
#include "HookedSettings.h"
#include "Isolation.h"

#include <CApplicationSettings.h>

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

class TestInterfaceSlots : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void laterChoiceStandsWhenTheStoreLeadsToIt();
    void laterChoiceStandsWhenTheSignalLeadsToIt();
    void choiceIsStoredBeforeItIsAnnounced();
    void runnerMayGoWhileItsChoiceIsStored();

private:
    static QString stored()
    {
        return CApplicationSettings::instance()->getCustomSetting(QStringLiteral("ZEL_INTERFACE"), QString());
    }

    std::unique_ptr<HookedHost> m_host;
    QList<int> m_announced;
};

void TestInterfaceSlots::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestInterfaceSlots::init()
{
    CApplicationSettings::instance()->setCustomSetting(QStringLiteral("ZEL_INTERFACE"),
                                                       QStringLiteral("Serial"));
    m_host = std::make_unique<HookedHost>();
    m_announced.clear();
    hookSettings(&m_host->points);
    connect(m_host->runner.get(), &Runner::interfaceChanged, this,
            [this](Runner::SelectedInterface selected) { m_announced.append(selected); });
}

void TestInterfaceSlots::cleanup()
{
    hookSettings(nullptr);
    m_host.reset();
}

void TestInterfaceSlots::laterChoiceStandsWhenTheStoreLeadsToIt()
{
    m_host->points.arm("settings.setCustomSetting", [this] { m_host->runner->setInterface(Runner::Udp); });
    m_host->runner->setInterface(Runner::Tcp);
    QVERIFY(m_host->points.isLeft());
    QCOMPARE(m_host->runner->interface(), Runner::Udp);
    QCOMPARE(stored(), QStringLiteral("Udp"));
    QCOMPARE(m_announced, QList<int>{Runner::Udp});
}

void TestInterfaceSlots::laterChoiceStandsWhenTheSignalLeadsToIt()
{
    const auto connection = connect(m_host->runner.get(), &Runner::interfaceChanged, this, [this] {
        if (m_announced.size() == 1) {
            m_host->runner->setInterface(Runner::Udp);
        }
    });
    m_host->runner->setInterface(Runner::Tcp);
    disconnect(connection);
    QCOMPARE(m_host->runner->interface(), Runner::Udp);
    QCOMPARE(stored(), QStringLiteral("Udp"));
    QCOMPARE(m_announced, (QList<int>{Runner::Tcp, Runner::Udp}));
}

void TestInterfaceSlots::choiceIsStoredBeforeItIsAnnounced()
{
    QList<int> selectedWhileStored;
    m_host->points.arm("settings.setCustomSetting",
                       [&] { selectedWhileStored.append(m_host->runner->interface()); });
    m_host->runner->setInterface(Runner::Tcp);
    QCOMPARE(selectedWhileStored, QList<int>{Runner::Serial});
    QCOMPARE(m_announced, QList<int>{Runner::Tcp});
}

void TestInterfaceSlots::runnerMayGoWhileItsChoiceIsStored()
{
    m_host->points.arm("settings.setCustomSetting", [this] { m_host->runner.reset(); });
    m_host->runner->setInterface(Runner::Tcp);
    QVERIFY(m_host->points.isLeft());
    QCOMPARE(stored(), QStringLiteral("Tcp"));
    QCOMPARE(m_announced, QList<int>{});
}

QTEST_MAIN(TestInterfaceSlots)
#include "tst_interface_slots.moc"
