#include <Mavril/VideoOverlay/ElementParam.h>

#include <QSet>
#include <QtTest>

using Mavril::VideoOverlay::ElementParam;

class TestPlatformElementParam : public QObject
{
    Q_OBJECT

private slots:
    void allTwentyOneElementNamesAreDistinctAndNotEmpty();
    void theThreeParameterNamesAreDistinct();
    void theNameOfStatusTextNIsTheKeyOfStaticIdN();
    void aMissingParameterIsAnInvalidVariant();
    void anInsertedValueIsContainedAndReplacesAnEarlierOne();
    void aCopyIsOfItsOwn();
};

void TestPlatformElementParam::allTwentyOneElementNamesAreDistinctAndNotEmpty()
{
    const QSet<QString> names{
        ElementParam::NAME_SECTION_DISTANCE_COUNTER,
        ElementParam::NAME_SAT_DISTANCE_COUNTER,
        ElementParam::NAME_TOTAL_DISTANCE_COUNTER,
        ElementParam::NAME_DATE,
        ElementParam::NAME_TIME,
        ElementParam::NAME_VIDEO_TIME_COUNTER,
        ElementParam::NAME_STATUS_TEXT_1,
        ElementParam::NAME_STATUS_TEXT_2,
        ElementParam::NAME_STATUS_TEXT_3,
        ElementParam::NAME_STATUS_TEXT_4,
        ElementParam::NAME_CRAWLER_TEMPERATURE,
        ElementParam::NAME_CRAWLER_PRESSURE,
        ElementParam::NAME_CRAWLER_ROLL,
        ElementParam::NAME_CRAWLER_PITCH,
        ElementParam::NAME_CAMERA_TILT,
        ElementParam::NAME_CAMERA_PAN,
        ElementParam::NAME_CAMERA_TEMPERATURE,
        ElementParam::NAME_CAMERA_PRESSURE,
        ElementParam::NAME_OBJECT_TEMPERATURE,
        ElementParam::NAME_SPEED,
        ElementParam::NAME_OSD_FREE_TEXT_BOX,
    };
    QCOMPARE(names.size(), 21);
    QVERIFY(!names.contains(QString()));
}

void TestPlatformElementParam::theThreeParameterNamesAreDistinct()
{
    const QSet<QString> names{ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_STATIC_ID,
                              ElementParam::NAME_COLUMNCAPTION};
    QCOMPARE(names.size(), 3);
    QVERIFY(!names.contains(QString()));
}

/// Deliberate: a status line is addressed by its name and registered by its static id.
void TestPlatformElementParam::theNameOfStatusTextNIsTheKeyOfStaticIdN()
{
    QCOMPARE(ElementParam::NAME_STATUS_TEXT_1, QVariant(1).toString());
    QCOMPARE(ElementParam::NAME_STATUS_TEXT_2, QVariant(2).toString());
    QCOMPARE(ElementParam::NAME_STATUS_TEXT_3, QVariant(3).toString());
    QCOMPARE(ElementParam::NAME_STATUS_TEXT_4, QVariant(4).toString());
}

void TestPlatformElementParam::aMissingParameterIsAnInvalidVariant()
{
    const ElementParam params;
    QVERIFY(!params.contains(ElementParam::NAME_STATIC_ID));
    QVERIFY(!params.value(ElementParam::NAME_STATIC_ID).isValid());
}

void TestPlatformElementParam::anInsertedValueIsContainedAndReplacesAnEarlierOne()
{
    ElementParam params;
    params.insert(ElementParam::NAME_STATIC_ID, 3);
    QVERIFY(params.contains(ElementParam::NAME_STATIC_ID));
    QVERIFY(!params.contains(ElementParam::NAME_COLUMNBOUND));
    params.insert(ElementParam::NAME_STATIC_ID, QStringLiteral("four"));
    QCOMPARE(params.value(ElementParam::NAME_STATIC_ID), QVariant(QStringLiteral("four")));
}

void TestPlatformElementParam::aCopyIsOfItsOwn()
{
    ElementParam params;
    const ElementParam before = params;
    params.insert(ElementParam::NAME_STATIC_ID, 1);
    QVERIFY(!before.contains(ElementParam::NAME_STATIC_ID));
}

QTEST_GUILESS_MAIN(TestPlatformElementParam)
#include "tst_platform_elementparam.moc"
