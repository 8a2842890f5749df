#include <Mavril/VideoOverlay/CVideoOverlayElement.h>

#include <QtTest>

#include <memory>

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::ElementParam;

class TestPlatformElement : public QObject
{
    Q_OBJECT

private slots:
    void aNewElementStandsAtTheOriginAndIsNotShown();
    void whatIsSetIsHeld();
    void enabledAndVisibleAreTwoFlags();
    void theParameterSetIsTheElementsOwn();
    void theCaptionIsTheColumnCaptionAsText();
    void aParentOwnsItsElement();
};

void TestPlatformElement::aNewElementStandsAtTheOriginAndIsNotShown()
{
    const CVideoOverlayElement element;
    QCOMPARE(element.column(), 0);
    QCOMPARE(element.row(), 0);
    QCOMPARE(element.type(), 0);
    QCOMPARE(element.width(), 0.0);
    QCOMPARE(element.height(), 0.0);
    QVERIFY(!element.enabled());
    QVERIFY(!element.visible());
    QCOMPARE(element.caption(), QString());
}

void TestPlatformElement::whatIsSetIsHeld()
{
    CVideoOverlayElement element;
    element.setColumn(7);
    element.setRow(-3);
    element.setType(1);
    element.setWidth(12.5);
    element.setHeight(3.25);
    QCOMPARE(element.column(), 7);
    QCOMPARE(element.row(), -3);
    QCOMPARE(element.type(), 1);
    QCOMPARE(element.width(), 12.5);
    QCOMPARE(element.height(), 3.25);
}

void TestPlatformElement::enabledAndVisibleAreTwoFlags()
{
    CVideoOverlayElement element;
    element.setEnabled(true);
    QVERIFY(element.enabled() && !element.visible());
    element.setVisible(true);
    element.setEnabled(false);
    QVERIFY(!element.enabled() && element.visible());
}

void TestPlatformElement::theParameterSetIsTheElementsOwn()
{
    CVideoOverlayElement element;
    element.getParamObject().insert(ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_DATE);
    QCOMPARE(element.getParamObject().value(ElementParam::NAME_COLUMNBOUND).toString(),
             ElementParam::NAME_DATE);
}

void TestPlatformElement::theCaptionIsTheColumnCaptionAsText()
{
    CVideoOverlayElement element;
    element.getParamObject().insert(ElementParam::NAME_COLUMNCAPTION, 42);
    QCOMPARE(element.caption(), QStringLiteral("42"));
}

void TestPlatformElement::aParentOwnsItsElement()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<CVideoOverlayElement> element = new CVideoOverlayElement(parent.get());
    parent.reset();
    QVERIFY(!element);
}

QTEST_GUILESS_MAIN(TestPlatformElement)
#include "tst_platform_element.moc"
