#include "WriteBench.h"

#include <QtTest>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

/// Numbers, dates and times that a write command carries.
class WriteCommandParserValuesTest : public QObject
{
    Q_OBJECT

private slots:
    void distanceArrivesBitForBit_data();
    void distanceArrivesBitForBit();
    void dateIsDayMonthCenturyYear_data();
    void dateIsDayMonthCenturyYear();
    void timeIsHourMinuteSecond_data();
    void timeIsHourMinuteSecond();
    void everyTimeOfTheDayArrives();
    void position3DArrivesBitForBit_data();
    void position3DArrivesBitForBit();
    void position3DTakesItsThirdValueFromTheEnd();
    void orientation3DArrivesBitForBit_data();
    void orientation3DArrivesBitForBit();
    void orientation3DTakesItsSecondValueFromTheEnd();

private:
    static QString emittedBy(int id, const QByteArray& payload)
    {
        WriteBench bench;
        return bench.emittedBy(id, payload).join(QLatin1Char(';'));
    }
};

void WriteCommandParserValuesTest::distanceArrivesBitForBit_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* name, const char* hex) {
        QTest::newRow(name) << QByteArray::fromHex(hex) << QStringLiteral("float ") + QLatin1String(hex);
    };
    row("zero", "00000000");
    row("negative zero", "80000000");
    row("smallest denormal", "00000001");
    row("negative denormal", "807fffff");
    row("largest", "7f7fffff");
    row("infinity", "7f800000");
    row("negative infinity", "ff800000");
    row("quiet NaN", "7fc00000");
    row("NaN with a payload", "7fdeadbf");
    row("negative NaN with a payload", "ffc0ffee");
    row("bytes above 0x7F", "c2f6e979");
    QTest::newRow("ten") << QByteArray::fromHex("41200000") << asText(10.0F);
    QTest::newRow("minus a hundred and a half") << QByteArray::fromHex("c2c90000") << asText(-100.5F);
    QTest::newRow("what follows is ignored") << QByteArray::fromHex("41200000ff") << asText(10.0F);
}

void WriteCommandParserValuesTest::distanceArrivesBitForBit()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, value);
    QCOMPARE(emittedBy(0x30, payload), QStringLiteral("setDistanceCounterSection(%1)").arg(value));
    QCOMPARE(emittedBy(0x36, payload), QStringLiteral("setDistanceCounterSat(%1)").arg(value));
    QCOMPARE(emittedBy(0x3C, payload), QStringLiteral("setDistanceCounterTotal(%1)").arg(value));
}

void WriteCommandParserValuesTest::dateIsDayMonthCenturyYear_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("date");
    QTest::newRow("in this century") << QByteArray("\x0F\x03\x14\x1A") << "2026-03-15";
    QTest::newRow("in the last century") << QByteArray("\x01\x0C\x13\x63") << "1999-12-01";
    QTest::newRow("first day of a century") << QByteArray("\x01\x01\x14\x00", 4) << "2000-01-01";
    QTest::newRow("leap day") << QByteArray("\x1D\x02\x14\x18") << "2024-02-29";
    QTest::newRow("early century") << QByteArray("\x05\x06\x01\x02") << "0102-06-05";
    QTest::newRow("what follows is ignored") << QByteArray("\x0F\x03\x14\x1A\xFF") << "2026-03-15";
    QTest::newRow("leap day of no leap year") << QByteArray("\x1D\x02\x14\x17") << "no date";
    QTest::newRow("month 13") << QByteArray("\x01\x0D\x13\x63") << "no date";
    QTest::newRow("month 0") << QByteArray("\x01\x00\x13\x63", 4) << "no date";
    QTest::newRow("day 0") << QByteArray("\x00\x01\x13\x63", 4) << "no date";
    QTest::newRow("day 32") << QByteArray("\x20\x01\x13\x63") << "no date";
    QTest::newRow("day of three digits") << QByteArray("\x64\x01\x13\x63") << "no date";
    QTest::newRow("century of three digits") << QByteArray("\x01\x01\x64\x63") << "no date";
    QTest::newRow("year of three digits") << QByteArray("\x01\x01\x14\x64") << "no date";
    QTest::newRow("bytes above 0x7F") << QByteArray("\xFF\xFF\xFF\xFF") << "no date";
}

void WriteCommandParserValuesTest::dateIsDayMonthCenturyYear()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, date);
    QCOMPARE(emittedBy(0x40, payload), QStringLiteral("writeDateValue(%1)").arg(date));
}

void WriteCommandParserValuesTest::timeIsHourMinuteSecond_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("time");
    QTest::newRow("morning") << QByteArray("\x09\x05\x00", 3) << "09:05:00.000";
    QTest::newRow("midnight") << QByteArray(3, '\0') << "00:00:00.000";
    QTest::newRow("last second") << QByteArray("\x17\x3B\x3B") << "23:59:59.000";
    QTest::newRow("what follows is ignored") << QByteArray("\x17\x3B\x3B\xFF") << "23:59:59.000";
    QTest::newRow("hour 24") << QByteArray("\x18\x00\x00", 3) << "no time";
    QTest::newRow("minute 60") << QByteArray("\x00\x3C\x00", 3) << "no time";
    QTest::newRow("second 60") << QByteArray("\x00\x00\x3C", 3) << "no time";
    QTest::newRow("hour of three digits") << QByteArray("\x64\x00\x00", 3) << "no time";
    QTest::newRow("bytes above 0x7F") << QByteArray("\xFF\x80\x80") << "no time";
}

void WriteCommandParserValuesTest::timeIsHourMinuteSecond()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, time);
    QCOMPARE(emittedBy(0x50, payload), QStringLiteral("writeTimeValue(%1)").arg(time));
}

void WriteCommandParserValuesTest::everyTimeOfTheDayArrives()
{
    WriteBench bench;
    for (int minuteOfDay = 0; minuteOfDay < 24 * 60; ++minuteOfDay) {
        const int hour = minuteOfDay / 60;
        const int minute = minuteOfDay % 60;
        const int second = minuteOfDay % 59;
        const QByteArray payload{QByteArray(1, char(hour)) + char(minute) + char(second)};
        QCOMPARE(bench.emittedBy(0x50, payload),
                 QStringList{QStringLiteral("writeTimeValue(%1)").arg(asText(QTime(hour, minute, second)))});
    }
}

void WriteCommandParserValuesTest::position3DArrivesBitForBit_data()
{
    QTest::addColumn<QByteArray>("hex");
    QTest::newRow("zero") << QByteArray("0000000000000000");
    QTest::newRow("negative zero") << QByteArray("8000000000000000");
    QTest::newRow("smallest denormal") << QByteArray("0000000000000001");
    QTest::newRow("negative denormal") << QByteArray("800fffffffffffff");
    QTest::newRow("largest") << QByteArray("7fefffffffffffff");
    QTest::newRow("infinity") << QByteArray("7ff0000000000000");
    QTest::newRow("negative infinity") << QByteArray("fff0000000000000");
    QTest::newRow("NaN with a payload") << QByteArray("7ff8deadbeefcafe");
    QTest::newRow("negative NaN with a payload") << QByteArray("fffc0ffee0ddf00d");
    QTest::newRow("ordinary") << QByteArray("c0934a456d5cfaad");
}

void WriteCommandParserValuesTest::position3DArrivesBitForBit()
{
    QFETCH(QByteArray, hex);
    const QByteArray value = QByteArray::fromHex(hex);
    const QByteArray one = QByteArray::fromHex("3ff0000000000000");
    const QByteArray two = QByteArray::fromHex("4000000000000000");
    const QString text = QStringLiteral("double ") + QString::fromLatin1(hex);
    const QString signal = QStringLiteral("writeMeasurement3DPosition(%1, %2, %3)");
    QCOMPARE(emittedBy(0xD4, value + one + two), signal.arg(text, asText(1.0), asText(2.0)));
    QCOMPARE(emittedBy(0xD4, one + value + two), signal.arg(asText(1.0), text, asText(2.0)));
    QCOMPARE(emittedBy(0xD4, one + two + value), signal.arg(asText(1.0), asText(2.0), text));
}

void WriteCommandParserValuesTest::position3DTakesItsThirdValueFromTheEnd()
{
    const QByteArray twentyFour = QByteArray::fromHex("3ff0000000000000"
                                                      "4000000000000000"
                                                      "4008000000000000");
    QCOMPARE(
        emittedBy(0xD4, twentyFour + QByteArray::fromHex("4010000000000000")),
        QStringLiteral("writeMeasurement3DPosition(%1, %2, %3)").arg(asText(1.0), asText(2.0), asText(4.0)));
    // One byte more, and the third value begins one byte later.
    QCOMPARE(emittedBy(0xD4, twentyFour + QByteArray("\x77")),
             QStringLiteral("writeMeasurement3DPosition(%1, %2, double 0800000000000077)")
                 .arg(asText(1.0), asText(2.0)));
    // Between 16 and 23 bytes the third value overlaps the second.
    QCOMPARE(emittedBy(0xD4, twentyFour.left(20)),
             QStringLiteral("writeMeasurement3DPosition(%1, %2, double 0000000040080000)")
                 .arg(asText(1.0), asText(2.0)));
}

void WriteCommandParserValuesTest::orientation3DArrivesBitForBit_data()
{
    distanceArrivesBitForBit_data();
}

void WriteCommandParserValuesTest::orientation3DArrivesBitForBit()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, value);
    const QByteArray four = payload.left(4);
    const QByteArray one = QByteArray::fromHex("3f800000");
    const QString signal = QStringLiteral("writeMeasurement3DOrientation(%1, %2)");
    QCOMPARE(emittedBy(0xD5, four + one), signal.arg(value, asText(1.0F)));
    QCOMPARE(emittedBy(0xD5, one + four), signal.arg(asText(1.0F), value));
}

void WriteCommandParserValuesTest::orientation3DTakesItsSecondValueFromTheEnd()
{
    const QByteArray eight = QByteArray::fromHex("3f80000040000000");
    QCOMPARE(emittedBy(0xD5, eight + QByteArray::fromHex("40400000")),
             QStringLiteral("writeMeasurement3DOrientation(%1, %2)").arg(asText(1.0F), asText(3.0F)));
    QCOMPARE(emittedBy(0xD5, eight.left(6)),
             QStringLiteral("writeMeasurement3DOrientation(%1, float 00004000)").arg(asText(1.0F)));
}

QTEST_GUILESS_MAIN(WriteCommandParserValuesTest)

#include "tst_writecommandparser_values.moc"
