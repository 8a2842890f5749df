// A host that removes a text while the library is still making it, and deletes it when the event loop turns.

#include "HookedHost.h"
#include "Isolation.h"

#include <Tolvar/Varundo/DataManager.h>

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

class TestTextSlots : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void removedTextIsNotWrittenToAnyMore_data();
    void removedTextIsNotWrittenToAnyMore();
};

void TestTextSlots::initTestCase()
{
    if (!hasOwn("net")) {
        QSKIP(NeedsOwnNetwork);
    }
    if (!hasOwn("dev")) {
        QSKIP(NeedsOwnDevices);
    }
}

void TestTextSlots::removedTextIsNotWrittenToAnyMore_data()
{
    QTest::addColumn<QByteArray>("point");
    for (const char* const setter : {"setRow", "setColumn", "setVisible", "setTextColor",
                                     "setBackgroundColor", "setEnabled", "setText", "setType"}) {
        QTest::newRow(setter) << QByteArray("created.") + setter;
    }
}

void TestTextSlots::removedTextIsNotWrittenToAnyMore()
{
    QFETCH(QByteArray, point);
    HookedHost host;
    host.manager->load();
    host.manager->deletesLater = true;
    host.runner->getDataManager()->setCursorPosition(3, 4);
    host.points.arm(point, [&] { host.manager->deleteElementFromModel(host.manager->elements().last()); });
    host.runner->onPrintableCharReceived('a');
    QVERIFY(host.points.isLeft());
    const int profileSize = host.manager->elements().size();
    host.runner->onPrintableCharReceived('b');
    QCOMPARE(host.manager->elements().size(), profileSize + 1);
    const auto* const text = static_cast<HookedText*>(host.manager->elements().last());
    QVERIFY(text->isCreated());
    QCOMPARE(text->text(), QStringLiteral("b"));
    QCOMPARE(QPoint(text->column(), text->row()), QPoint(3, 4));
}

QTEST_MAIN(TestTextSlots)
#include "tst_text_slots.moc"
