#include <Tolvar/Varundo/WriteCommandParser.h>

#include "CommandTable.h"
#include "ParserLog.h"
#include "Payload.h"

#include <Tolvar/Varundo/ColorNumbers.h>
#include <Tolvar/Varundo/DataManager.h>

#include <QPoint>
#include <QStringList>

#include <algorithm>

namespace Tolvar::Varundo {

namespace {

using D = DataManager;
using P = WriteCommandParser;
using Handler = void (*)(P&, D&, const Payload&);

// What a payload holds.

/// One byte: text colour in the high nibble, background in the low one. Two bytes: background, then text; the
/// high nibble of the first is ORed into the text colour, which is deliberate. No byte: both transparent.
ColorPair decodeColorPair(const Payload& payload, int index)
{
    const int pair = payload.byteAt(index + 1) << 4 | payload.byteAt(index);
    return {colorFromNumber(static_cast<quint8>(pair >> 4 & 0x0F)),
            colorFromNumber(static_cast<quint8>(pair & 0x0F))};
}

QString twoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

/// Day, month, century, year of the century. Going by way of text makes a byte above 99 an invalid date.
QDate decodeDate(const Payload& payload)
{
    const QString text = twoDigits(payload.byteAt(2)) + twoDigits(payload.byteAt(3)) + QLatin1Char('-') +
                         twoDigits(payload.byteAt(1)) + QLatin1Char('-') + twoDigits(payload.byteAt(0));
    return QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
}

QTime decodeTime(const Payload& payload)
{
    return QTime(payload.byteAt(0), payload.byteAt(1), payload.byteAt(2));
}

/// Decodes first, then removes: under a wide codec a zero byte is half a character.
QString decodeTextWithoutNul(const D& model, const Payload& payload, int from)
{
    QString text = model.convertTextToCodec(payload.from(from), payload.sizeFrom(from));
    text.remove(QChar(QChar::Null));
    return text;
}

// The commands. What only sets a property or passes a number on is a template; the others have a name.

template <void (D::*set)(QPoint const&)>
void position(P&, D& model, const Payload& payload)
{
    (model.*set)(QPoint(payload.byteAt(0), payload.byteAt(1)));
}

template <void (D::*set)(int)>
void format(P&, D& model, const Payload& payload)
{
    (model.*set)(payload.byteAt(0));
}

template <void (P::*announce)(float)>
void distance(P& parser, D&, const Payload& payload)
{
    (parser.*announce)(payload.singleAt(0));
}

void textCodec(P&, D& model, const Payload& payload)
{
    model.setTextCodec(static_cast<D::TextCodec>(payload.byteAt(0)));
}

void date(P& parser, D&, const Payload& payload)
{
    emit parser.writeDateValue(decodeDate(payload));
}

void time(P& parser, D&, const Payload& payload)
{
    emit parser.writeTimeValue(decodeTime(payload));
}

void cursor(P&, D& model, const Payload& payload)
{
    model.setCursorPosition(payload.byteAt(0), payload.byteAt(1));
}

void videoCounter(P& parser, D&, const Payload& payload)
{
    emit parser.writeVideoCounter(payload.byteAt(0), payload.byteAt(1), payload.byteAt(2));
}

/// Not trimmed, unlike the other texts: a status line's blanks are its layout.
void statusLineText(P&, D& model, const Payload& payload)
{
    const auto text = [&] {
        return decodeTextWithoutNul(model, payload, 1);
    };
    switch (payload.byteAt(0)) {
    case 1:
        return model.setStatusLine1Text(text());
    case 2:
        return model.setStatusLine2Text(text());
    case 3:
        return model.setStatusLine3Text(text());
    case 4:
        return model.setStatusLine4Text(text());
    default:
        return;
    }
}

void statusLineColors(P&, D& model, const Payload& payload)
{
    const ColorPair pair = decodeColorPair(payload, 1);
    switch (payload.byteAt(0)) {
    case 1:
        return model.setStatusLine1ColorPair(pair);
    case 2:
        return model.setStatusLine2ColorPair(pair);
    case 3:
        return model.setStatusLine3ColorPair(pair);
    case 4:
        return model.setStatusLine4ColorPair(pair);
    default:
        return;
    }
}

void freeTextColors(P&, D& model, const Payload& payload)
{
    model.setLineColorPair(decodeColorPair(payload, 0));
}

/// Neither trimmed nor freed of NUL characters; what they mean is decided where the text is written.
void textAtCursor(P& parser, D& model, const Payload& payload)
{
    emit parser.writeTextOnCursorPosition(model.convertTextToCodec(payload.from(0), payload.size()));
}

void line(P& parser, D& model, const Payload& payload)
{
    emit parser.writeLine(payload.byteAt(0), decodeTextWithoutNul(model, payload, 1).trimmed());
}

void measurementPosition(P& parser, D&, const Payload& payload)
{
    // The third number is the payload's last, whatever stands between.
    emit parser.writeMeasurement3DPosition(payload.doubleAt(0), payload.doubleAt(8),
                                           payload.doubleAt(payload.lastBytes(8)));
}

void measurementOrientation(P& parser, D&, const Payload& payload)
{
    emit parser.writeMeasurement3DOrientation(payload.singleAt(0), payload.singleAt(payload.lastBytes(4)));
}

/// Bytes 0 and 2 are not read. The bytes are split before they are decoded, so under a wide codec a zero byte
/// within a character splits too; controllers that use free text with UTF-16 depend on the order all the
/// same.
void freeText(P&, D& model, const Payload& payload)
{
    constexpr int lineCount = 5;
    const char* piece = payload.from(3);
    const char* const end = piece + payload.sizeFrom(3);
    QStringList lines;
    lines.reserve(lineCount);
    for (int i = 0; i < lineCount; ++i) {
        const char* const pieceEnd = std::find(piece, end, '\0');
        lines.append(model.convertTextToCodec(piece, static_cast<int>(pieceEnd - piece)).trimmed());
        piece = pieceEnd == end ? end : pieceEnd + 1;
    }
    model.setLineText(lines, payload.byteAt(1));
}

using ColorPairSetter = void (D::*)(ColorPair const&);

/// By element number; null where no element has the number. Meter counter 3 came last and sits apart.
constexpr ColorPairSetter elementColorSetters[] = {
    &D::setMeterCounter1ColorPair,      //  0
    &D::setMeterCounter2ColorPair,      //  1
    &D::setTimeColorPair,               //  2
    &D::setDateColorPair,               //  3
    nullptr,                            //  4
    nullptr,                            //  5
    nullptr,                            //  6
    nullptr,                            //  7
    nullptr,                            //  8
    nullptr,                            //  9
    &D::setPanPositionColorPair,        // 10
    &D::setTiltColorPair,               // 11
    &D::setVideoCounterColorPair,       // 12
    &D::setCameraTemperatureColorPair,  // 13
    &D::setInclinationColorPair,        // 14
    &D::setPressureColorPair,           // 15
    &D::setExtTemperatureColorPair,     // 16
    &D::setCrawlerTemperatureColorPair, // 17
    &D::setCrawlerPressureColorPair,    // 18
    &D::setCrawlerRollColorPair,        // 19
    &D::setCableSpeedColorPair,         // 20
    &D::setMeterCounter3ColorPair,      // 21
};
constexpr int elementCount = sizeof(elementColorSetters) / sizeof(elementColorSetters[0]);

void elementColors(P&, D& model, const Payload& payload)
{
    const int element = payload.byteAt(0);
    if (element < elementCount && elementColorSetters[element]) {
        (model.*elementColorSetters[element])(decodeColorPair(payload, 1));
    }
}

constexpr CommandRow<Handler> rows[] = {
    {0x01, textCodec},
    {0x30, distance<&P::setDistanceCounterSection>},
    {0x32, position<&D::setMeterCounter1Position>},
    {0x36, distance<&P::setDistanceCounterSat>},
    {0x38, position<&D::setMeterCounter2Position>},
    {0x3C, distance<&P::setDistanceCounterTotal>},
    {0x3E, position<&D::setMeterCounter3Position>},
    {0x40, date},
    {0x42, position<&D::setDatePosition>},
    {0x50, time},
    {0x52, position<&D::setTimePosition>},
    {0x62, cursor},
    {0x70, videoCounter},
    {0x72, position<&D::setVideoCounterPosition>},
    {0x90, statusLineText},
    {0x92, freeTextColors},
    {0x95, textAtCursor},
    {0x98, line},
    {0x99, statusLineColors},
    {0xC0, position<&D::setCrawlerTemperaturePosition>},
    {0xC2, position<&D::setCrawlerPressurePosition>},
    {0xC4, position<&D::setCrawlerRollPosition>},
    {0xC6, position<&D::setCableSpeedPosition>},
    {0xD4, measurementPosition},
    {0xD5, measurementOrientation},
    {0xD7, freeText},
    {0xE5, elementColors},
    {0xF0, position<&D::setPanPosition>},
    {0xF3, position<&D::setTiltPosition>},
    {0xF5, format<&D::setExtTemperatureFormat>},
    {0xF6, position<&D::setCameraTemperaturePosition>},
    {0xF9, position<&D::setPressurePosition>},
    {0xFB, position<&D::setExtTemperaturePosition>},
    {0xFC, position<&D::setInclinationPosition>},
    {0xFD, format<&D::setInclinationFormat>},
};
static_assert(idsAscend(rows), "the rows are sorted by id");

constexpr CommandTable commands(rows);

} // namespace

WriteCommandParser::WriteCommandParser(DataManager* dataManager, QObject* parent)
    : QObject(parent)
    , m_dataManager(dataManager)
{}

void WriteCommandParser::parseCommandMessage(CommandMessage cmdmsg)
{
    if (const Handler handler = commands.find(cmdmsg.cmdId)) {
        handler(*this, *m_dataManager, Payload(cmdmsg.data));
    } else {
        logUnknownCommand("write", cmdmsg.cmdId);
    }
}

} // namespace Tolvar::Varundo
