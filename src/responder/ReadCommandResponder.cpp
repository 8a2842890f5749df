#include <Tolvar/Varundo/ReadCommandResponder.h>

#include <Tolvar/Varundo/ColorNumbers.h>
#include <Tolvar/Varundo/DataManager.h>
#include <Tolvar/Varundo/Protocol.h>

#include <CTolvarLibrary.h>
#include <ITolvarCamera.h>
#include <ITolvarCameraPositionSensor.h>
#include <ITolvarReel.h>

#include <QDate>
#include <QLoggingCategory>
#include <QPointer>
#include <QTime>
#include <QtEndian>

#include <cmath>
#include <cstring>
#include <utility>

namespace Tolvar::Varundo {

Q_LOGGING_CATEGORY(responderLog, "varundo.responder", QtWarningMsg)

namespace {

char lowByte(int number)
{
    return static_cast<char>(number & 0xFF);
}

/// A payload of one byte for each number.
template <class... Numbers>
QByteArray lowBytes(Numbers... numbers)
{
    const char bytes[] = {lowByte(numbers)...};
    return QByteArray(bytes, static_cast<int>(sizeof bytes));
}

/// A number's bit pattern, most significant byte first; the frame's own length field is the other way round.
template <class Bits, class Number>
QByteArray bigEndian(Number number)
{
    static_assert(sizeof(Bits) == sizeof(Number), "the number is sent as its bit pattern");
    Bits bits;
    std::memcpy(&bits, &number, sizeof bits);
    bits = qToBigEndian(bits);
    return QByteArray(reinterpret_cast<const char*>(&bits), static_cast<int>(sizeof bits));
}

QByteArray singleBytes(float number)
{
    return bigEndian<quint32>(number);
}

QByteArray doubleBytes(double number)
{
    return bigEndian<quint64>(number);
}

/// A missing device is told once in the life of the process, not once a request.
template <class Device>
bool present(const Device* device, const char* name)
{
    if (device) {
        return true;
    }
    static bool told = false;
    if (!told) {
        told = true;
        qCWarning(responderLog, "the unit has no %s; its values are answered as 0", name);
    }
    return false;
}

struct StatusLine
{
    QString (DataManager::*text)() const;
    ColorPair (DataManager::*colors)() const;
    bool (DataManager::*visible)() const;
};

constexpr StatusLine statusLines[] = {
    {&DataManager::statusLine1Text, &DataManager::statusLine1ColorPair, &DataManager::statusLine1Visible},
    {&DataManager::statusLine2Text, &DataManager::statusLine2ColorPair, &DataManager::statusLine2Visible},
    {&DataManager::statusLine3Text, &DataManager::statusLine3ColorPair, &DataManager::statusLine3Visible},
    {&DataManager::statusLine4Text, &DataManager::statusLine4ColorPair, &DataManager::statusLine4Visible},
};

/// Lines are counted from 1; null for a line that does not exist.
const StatusLine* statusLine(int line)
{
    return line >= 1 && line <= 4 ? &statusLines[line - 1] : nullptr;
}

} // namespace

ReadCommandResponder::ReadCommandResponder(DataManager* dataManager, QObject* parent)
    : QObject(parent)
    , m_dataManager(dataManager)
{}

CommandMessage ReadCommandResponder::createCommand(char cmdId, QByteArray data, char grpId)
{
    const auto length = static_cast<quint16>(data.size() & 0xFFFF);
    return {static_cast<quint8>(cmdId), static_cast<quint8>(grpId), length, std::move(data)};
}

// States: format, visible, column, row. A number beyond a byte is cut to its low byte, on purpose.

// clang-format off
void ReadCommandResponder::onReadMeterCounter1State()       { answerState(0x31, m_dataManager->meterCounter1Format(),      m_dataManager->meterCounter1Visible(),      m_dataManager->meterCounter1Position()); }
void ReadCommandResponder::onReadMeterCounter2State()       { answerState(0x37, m_dataManager->meterCounter2Format(),      m_dataManager->meterCounter2Visible(),      m_dataManager->meterCounter2Position()); }
void ReadCommandResponder::onReadMeterCounter3State()       { answerState(0x3C, m_dataManager->meterCounter3Format(),      m_dataManager->meterCounter3Visible(),      m_dataManager->meterCounter3Position()); }
void ReadCommandResponder::onReadDateState()                { answerState(0x41, m_dataManager->dateFormat(),               m_dataManager->dateVisible(),               m_dataManager->datePosition()); }
void ReadCommandResponder::onReadTimeState()                { answerState(0x51, m_dataManager->timeFormat(),               m_dataManager->timeVisible(),               m_dataManager->timePosition()); }
void ReadCommandResponder::onReadVideoCounterState()        { answerState(0x71, m_dataManager->videoCounterFormat(),       m_dataManager->videoCounterVisible(),       m_dataManager->videoCounterPosition()); }
void ReadCommandResponder::onReadCrawlerTemperatureState()  { answerState(0xC1, m_dataManager->crawlerTemperatureFormat(), m_dataManager->crawlerTemperatureVisible(), m_dataManager->crawlerTemperaturePosition()); }
void ReadCommandResponder::onReadCrawlerPressureState()     { answerState(0xC3, m_dataManager->crawlerPressureFormat(),    m_dataManager->crawlerPressureVisible(),    m_dataManager->crawlerPressurePosition()); }
void ReadCommandResponder::onReadCrawlerRollState()         { answerState(0xC5, m_dataManager->crawlerRollFormat(),        m_dataManager->crawlerRollVisible(),        m_dataManager->crawlerRollPosition()); }
void ReadCommandResponder::onReadCableSpeedState()          { answerState(0xC7, m_dataManager->cableSpeedFormat(),         m_dataManager->cableSpeedVisible(),         m_dataManager->cableSpeedPosition()); }
void ReadCommandResponder::onReadPanPositionState()         { answerState(0xF1, m_dataManager->panPositionFormat(),        m_dataManager->panVisible(),                m_dataManager->panPosition()); }
void ReadCommandResponder::onReadTiltPositionState()        { answerState(0xF4, m_dataManager->tiltPositionFormat(),       m_dataManager->tiltVisible(),               m_dataManager->tiltPosition()); }
void ReadCommandResponder::onReadCameraTemperatureState()   { answerState(0xF7, m_dataManager->cameraTemperatureFormat(),  m_dataManager->cameraTemperatureVisible(),  m_dataManager->cameraTemperaturePosition()); }
void ReadCommandResponder::onReadExtTemperatureState()      { answerState(0xF8, m_dataManager->extTemperatureFormat(),     m_dataManager->extTemperatureVisible(),     m_dataManager->extTemperaturePosition()); }
void ReadCommandResponder::onReadPressureState()            { answerState(0xFA, m_dataManager->pressureFormat(),           m_dataManager->pressureVisible(),           m_dataManager->pressurePosition()); }
void ReadCommandResponder::onReadInclinationState()         { answerState(0xFC, m_dataManager->inclinationFormat(),        m_dataManager->inclinationVisible(),        m_dataManager->inclinationPosition()); }
// clang-format on

// Values: singles, as they are stored.

// clang-format off
void ReadCommandResponder::onReadCrawlerTemperatureValue()  { answerValue(0xC0, m_dataManager->crawlerTemperature()); }
void ReadCommandResponder::onReadCrawlerPressureValue()     { answerValue(0xC2, m_dataManager->crawlerPressure()); }
void ReadCommandResponder::onReadCrawlerRollValue()         { answerValue(0xC4, m_dataManager->crawlerRollValue()); }
void ReadCommandResponder::onReadCableSpeedValue()          { answerValue(0xC6, m_dataManager->cableSpeedValue()); }
void ReadCommandResponder::onReadPanPositionValue()         { answerValue(0xF0, m_dataManager->panPositionValue()); }
void ReadCommandResponder::onReadTiltPositionValue()        { answerValue(0xF3, m_dataManager->tiltPositionValue()); }
void ReadCommandResponder::onReadExtTemperatureValue()      { answerValue(0xF5, m_dataManager->extTemperatureValue()); }
void ReadCommandResponder::onReadCameraTemperatureValue()   { answerValue(0xF6, m_dataManager->cameraTemperatureValue()); }
void ReadCommandResponder::onReadPressureValue()            { answerValue(0xF9, m_dataManager->pressureValue()); }
// clang-format on

/// Format 0 is the gradient in percent; every other format is the angle in degrees.
void ReadCommandResponder::onReadInclinationValue()
{
    constexpr float radiansPerDegree = 0.017453292F;
    const float degrees = m_dataManager->inclinationValue();
    answerValue(0xFB, m_dataManager->inclinationFormat() == 0 ? std::tan(degrees * radiansPerDegree) * 100.0F
                                                              : degrees);
}

// Meter counters: the reel's own distances in metres, not the data model's.

void ReadCommandResponder::onReadMeterCounter1Value()
{
    answerDistance(0x30, &ITolvarReel::sectionDistance);
}

void ReadCommandResponder::onReadMeterCounter2Value()
{
    answerDistance(0x36, &ITolvarReel::satDistance);
}

void ReadCommandResponder::onReadMeterCounter3Value()
{
    answerDistance(0x3B, &ITolvarReel::totalDistance);
}

// The unit's clock, not the data model.

void ReadCommandResponder::onReadDateValue()
{
    constexpr int century = 20;
    // Adding 48 and letting the byte overflow takes 2000 off, and is right until 2207; the year byte that a
    // controller sees for a wrong clock depends on it.
    constexpr int yearOffset = 48;
    const QDate today = QDate::currentDate();
    answer(0x40, lowBytes(today.day(), today.month(), century, today.year() + yearOffset));
}

void ReadCommandResponder::onReadTimeValue()
{
    const QTime now = QTime::currentTime();
    answer(0x50, lowBytes(now.hour(), now.minute(), now.second(), 0));
}

void ReadCommandResponder::onReadVideoCounterValue()
{
    answer(0x70, lowBytes(m_dataManager->videoCounterHours(), m_dataManager->videoCounterMinutes(),
                          m_dataManager->videoCounterSeconds(), m_dataManager->videoCounterFrames()));
}

// Texts.

void ReadCommandResponder::onReadStatusLineText(int line)
{
    QByteArray payload;
    if (const StatusLine* const status = statusLine(line)) {
        payload = m_dataManager->convertByteArrayFromText((m_dataManager->*status->text)());
    }
    answer(0x90, payload.prepend(lowByte(line)));
}

void ReadCommandResponder::onReadStatusLineState(int line)
{
    QByteArray payload(5, '\0');
    payload[0] = lowByte(line);
    if (const StatusLine* const status = statusLine(line)) {
        const ColorPair colors = (m_dataManager->*status->colors)();
        payload[1] = lowByte(numberFromColor(colors.first) << 4 | numberFromColor(colors.second));
        payload[2] = lowByte((m_dataManager->*status->visible)());
    }
    answer(0x92, payload);
}

void ReadCommandResponder::onReadLine(int line)
{
    QByteArray payload;
    const QStringList lines = m_dataManager->lineText();
    if (line >= 0 && line < lines.size()) {
        payload = m_dataManager->convertByteArrayFromText(lines.at(line));
    }
    answer(0x98, payload.prepend(lowByte(line)));
}

void ReadCommandResponder::onReadSoftwareID()
{
    answer(0xFF, m_dataManager->convertByteArrayFromText(m_dataManager->softwareID()));
}

void ReadCommandResponder::onReadTextCodec()
{
    answer(0x01, lowBytes(m_dataManager->textCodec()));
}

// Measurement devices. Who asks one calls the host, which may do anything meanwhile: take the device away, or
// destroy the responder.

void ReadCommandResponder::onReadLaserCalibrationValue(unsigned char index)
{
    double first = 0.0;
    double second = 0.0;
    const QPointer<ReadCommandResponder> self(this);
    const ITolvarCamera* const camera = CTolvarLibrary::getCamera();
    if (present(camera, "camera")) {
        camera->laserCalibration(first, second);
    }
    if (!self) {
        return;
    }
    QByteArray payload(1, static_cast<char>(index));
    if (index == 1) {
        payload += doubleBytes(first / 100.0);
    } else if (index == 2) {
        payload += doubleBytes(second / 100000.0);
    }
    answer(0xFD, payload);
}

/// The one request that may stay without an answer: most cameras have no position sensor, and controllers
/// take the silence for exactly that.
void ReadCommandResponder::onRead3DMeasurementValues()
{
    const QPointer<ReadCommandResponder> self(this);
    const QPointer<const ITolvarCameraPositionSensor> sensor = CTolvarLibrary::getCameraPositionSensor();
    const Position3D position = sensor ? sensor->position() : Position3D{};
    if (!sensor) {
        qCDebug(responderLog, "no camera position sensor; the request is not answered");
        return;
    }
    const float angle = sensor->angle();
    if (!self) {
        return;
    }
    answer(0xD4,
           doubleBytes(position.x) + doubleBytes(position.y) + doubleBytes(position.z) + singleBytes(angle));
}

// The shapes of an answer.

void ReadCommandResponder::answerState(quint8 cmdId, int format, bool visible, const QPoint& position)
{
    answer(cmdId, lowBytes(format, visible, position.x(), position.y()));
}

void ReadCommandResponder::answerValue(quint8 cmdId, float value)
{
    answer(cmdId, singleBytes(value));
}

void ReadCommandResponder::answerDistance(quint8 cmdId, float (ITolvarReel::*distance)() const)
{
    const QPointer<ReadCommandResponder> self(this);
    const ITolvarReel* const reel = CTolvarLibrary::getReel();
    const float metres = present(reel, "reel") ? (reel->*distance)() : 0.0F;
    if (self) {
        answerValue(cmdId, metres);
    }
}

void ReadCommandResponder::answer(quint8 cmdId, const QByteArray& payload)
{
    emit commandReady(createCommand(static_cast<char>(cmdId), payload, Protocol::Read));
}

} // namespace Tolvar::Varundo
