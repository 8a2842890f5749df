#include <Tolvar/Varundo/ReadCommandParser.h>

#include "CommandTable.h"
#include "ParserLog.h"
#include "Payload.h"

#include <Tolvar/Varundo/ReadCommandResponder.h>

#include <limits>

namespace Tolvar::Varundo {

namespace {

using R = ReadCommandResponder;
using Handler = void (*)(R&, const QByteArray& payload);

/// A line number, as controllers send it: the payload's hexadecimal digits read as a decimal number (0x12 is
/// line 12, 0x01 0x02 is line 102). Deliberate; a payload with a digit above 9, or without any, is line 0.
int packedDecimal(const QByteArray& payload)
{
    qint64 number = 0;
    for (const char pair : payload) {
        const int high = static_cast<quint8>(pair) >> 4;
        const int low = static_cast<quint8>(pair) & 0x0F;
        number = number * 100 + high * 10 + low;
        if (high > 9 || low > 9 || number > std::numeric_limits<int>::max()) {
            return 0;
        }
    }
    return static_cast<int>(number);
}

template <void (R::*slot)()>
void answer(R& responder, const QByteArray&)
{
    (responder.*slot)();
}

template <void (R::*slot)(int)>
void answerLine(R& responder, const QByteArray& payload)
{
    (responder.*slot)(packedDecimal(payload));
}

template <void (R::*slot)(unsigned char)>
void answerIndex(R& responder, const QByteArray& payload)
{
    (responder.*slot)(Payload(payload).byteAt(0));
}

constexpr CommandRow<Handler> rows[] = {
    {0x01, answer<&R::onReadTextCodec>},
    {0x30, answer<&R::onReadMeterCounter1Value>},
    {0x31, answer<&R::onReadMeterCounter1State>},
    {0x36, answer<&R::onReadMeterCounter2Value>},
    {0x37, answer<&R::onReadMeterCounter2State>},
    {0x3B, answer<&R::onReadMeterCounter3Value>},
    {0x3C, answer<&R::onReadMeterCounter3State>},
    {0x40, answer<&R::onReadDateValue>},
    {0x41, answer<&R::onReadDateState>},
    {0x50, answer<&R::onReadTimeValue>},
    {0x51, answer<&R::onReadTimeState>},
    {0x70, answer<&R::onReadVideoCounterValue>},
    {0x71, answer<&R::onReadVideoCounterState>},
    {0x90, answerLine<&R::onReadStatusLineText>},
    {0x92, answerLine<&R::onReadStatusLineState>},
    {0x98, answerLine<&R::onReadLine>},
    {0xC0, answer<&R::onReadCrawlerTemperatureValue>},
    {0xC1, answer<&R::onReadCrawlerTemperatureState>},
    {0xC2, answer<&R::onReadCrawlerPressureValue>},
    {0xC3, answer<&R::onReadCrawlerPressureState>},
    {0xC4, answer<&R::onReadCrawlerRollValue>},
    {0xC5, answer<&R::onReadCrawlerRollState>},
    {0xC6, answer<&R::onReadCableSpeedValue>},
    {0xC7, answer<&R::onReadCableSpeedState>},
    {0xD4, answer<&R::onRead3DMeasurementValues>},
    {0xF0, answer<&R::onReadPanPositionValue>},
    {0xF1, answer<&R::onReadPanPositionState>},
    {0xF3, answer<&R::onReadTiltPositionValue>},
    {0xF4, answer<&R::onReadTiltPositionState>},
    {0xF5, answer<&R::onReadExtTemperatureValue>}, // its state is 0xF8, behind the camera's pair
    {0xF6, answer<&R::onReadCameraTemperatureValue>},
    {0xF7, answer<&R::onReadCameraTemperatureState>},
    {0xF8, answer<&R::onReadExtTemperatureState>},
    {0xF9, answer<&R::onReadPressureValue>},
    {0xFA, answer<&R::onReadPressureState>},
    {0xFB, answer<&R::onReadInclinationValue>},
    {0xFC, answer<&R::onReadInclinationState>},
    {0xFD, answerIndex<&R::onReadLaserCalibrationValue>},
    {0xFF, answer<&R::onReadSoftwareID>},
};
static_assert(idsAscend(rows), "the rows are sorted by id");

constexpr CommandTable commands(rows);

} // namespace

ReadCommandParser::ReadCommandParser(ReadCommandResponder* responder, QObject* parent)
    : QObject(parent)
    , m_responder(responder)
{}

void ReadCommandParser::parseCommandMessage(CommandMessage cmdmsg)
{
    if (const Handler handler = commands.find(cmdmsg.cmdId)) {
        handler(*m_responder, cmdmsg.data);
    } else {
        logUnknownCommand("read", cmdmsg.cmdId);
    }
}

} // namespace Tolvar::Varundo
