#include <Tolvar/Varundo/Client/PayloadDecoder.h>

#include <QtEndian>

#include <cstring>

namespace Tolvar::Varundo::Client::PayloadDecoder {

namespace {

constexpr int DateSize = 4;
constexpr int TimeSize = 3;
constexpr int StateSize = 4;
constexpr int StatusLineStateSize = 5;
constexpr int FreeTextHeader = 3;

int byteAt(const QByteArray& payload, int at)
{
    return at < payload.size() ? static_cast<quint8>(payload.at(at)) : 0;
}

/// The caller has checked the size.
template <class Number, class Bits>
Number bigEndianAt(const QByteArray& payload, int at)
{
    static_assert(sizeof(Bits) == sizeof(Number));
    const Bits bits = qFromBigEndian<Bits>(payload.constData() + at);
    Number number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

float singleAt(const QByteArray& payload, int at)
{
    return bigEndianAt<float, quint32>(payload, at);
}

double doubleAt(const QByteArray& payload, int at)
{
    return bigEndianAt<double, quint64>(payload, at);
}

Point3D pointAt(const QByteArray& payload, int at)
{
    constexpr int Size = sizeof(double);
    return {doubleAt(payload, at), doubleAt(payload, at + Size), doubleAt(payload, at + 2 * Size)};
}

Colors packedColors(int byte)
{
    return {static_cast<quint8>((byte >> 4) & 0x0F), static_cast<quint8>(byte & 0x0F)};
}

} // namespace

std::optional<int> number(const QByteArray& payload)
{
    return payload.size() == 1 ? std::optional<int>(byteAt(payload, 0)) : std::nullopt;
}

std::optional<TextCodec> codec(const QByteArray& payload)
{
    const auto value = number(payload);
    return value ? std::optional(textCodecFromNumber(static_cast<quint8>(*value))) : std::nullopt;
}

std::optional<float> single(const QByteArray& payload)
{
    return payload.size() == sizeof(float) ? std::optional(singleAt(payload, 0)) : std::nullopt;
}

std::optional<Position> position(const QByteArray& payload)
{
    if (payload.size() != 2) {
        return std::nullopt;
    }
    return Position{byteAt(payload, 0), byteAt(payload, 1)};
}

std::optional<ElementState> elementState(const QByteArray& payload)
{
    if (payload.size() != StateSize) {
        return std::nullopt;
    }
    return ElementState{
        byteAt(payload, 0), byteAt(payload, 1) != 0, {byteAt(payload, 2), byteAt(payload, 3)}};
}

std::optional<QDate> date(const QByteArray& payload)
{
    if (payload.size() != DateSize) {
        return std::nullopt;
    }
    return QDate(byteAt(payload, 2) * 100 + byteAt(payload, 3), byteAt(payload, 1), byteAt(payload, 0));
}

std::optional<QTime> time(const QByteArray& payload)
{
    if (payload.size() != TimeSize && payload.size() != TimeSize + 1) {
        return std::nullopt;
    }
    return QTime(byteAt(payload, 0), byteAt(payload, 1), byteAt(payload, 2));
}

std::optional<VideoCounter> videoCounter(const QByteArray& payload)
{
    if (payload.size() != TimeSize && payload.size() != TimeSize + 1) {
        return std::nullopt;
    }
    VideoCounter counter{byteAt(payload, 0), byteAt(payload, 1), byteAt(payload, 2), std::nullopt};
    if (payload.size() > TimeSize) {
        counter.frames = byteAt(payload, TimeSize);
    }
    return counter;
}

std::optional<Colors> colors(const QByteArray& payload)
{
    if (payload.size() == 1) {
        return packedColors(byteAt(payload, 0));
    }
    if (payload.size() == 2) {
        return packedColors((byteAt(payload, 1) << 4) | byteAt(payload, 0));
    }
    return std::nullopt;
}

std::optional<NumberedColors> numberedColors(const QByteArray& payload)
{
    const auto pair = colors(payload.mid(1));
    return pair ? std::optional(NumberedColors{byteAt(payload, 0), *pair}) : std::nullopt;
}

std::optional<StatusLineState> statusLineState(const QByteArray& payload)
{
    if (payload.size() != StatusLineStateSize) {
        return std::nullopt;
    }
    return StatusLineState{byteAt(payload, 0), packedColors(byteAt(payload, 1)), byteAt(payload, 2) != 0};
}

std::optional<LineText> lineText(const QByteArray& payload, TextCodec codec)
{
    if (payload.isEmpty()) {
        return std::nullopt;
    }
    return LineText{byteAt(payload, 0), decodeText(payload.mid(1), codec)};
}

std::optional<FreeText> freeText(const QByteArray& payload, TextCodec codec)
{
    if (payload.size() < FreeTextHeader) {
        return std::nullopt;
    }
    FreeText result{byteAt(payload, 1), {}};
    const QByteArray body = payload.mid(FreeTextHeader);
    if (!body.isEmpty()) {
        for (const QByteArray& piece : body.split('\0')) {
            result.lines.append(decodeText(piece, codec));
        }
    }
    return result;
}

int packedNumber(const QByteArray& payload)
{
    bool isDecimal = false;
    const int value = payload.toHex().toInt(&isDecimal);
    return isDecimal ? value : 0;
}

std::optional<Point3D> point3D(const QByteArray& payload)
{
    return payload.size() == 3 * sizeof(double) ? std::optional(pointAt(payload, 0)) : std::nullopt;
}

std::optional<Orientation> orientation(const QByteArray& payload)
{
    if (payload.size() != 2 * sizeof(float)) {
        return std::nullopt;
    }
    return Orientation{singleAt(payload, 0), singleAt(payload, sizeof(float))};
}

std::optional<Measurement3D> measurement3D(const QByteArray& payload)
{
    constexpr int PointSize = 3 * sizeof(double);
    if (payload.size() != PointSize + static_cast<int>(sizeof(float))) {
        return std::nullopt;
    }
    return Measurement3D{pointAt(payload, 0), singleAt(payload, PointSize)};
}

std::optional<LaserCalibration> laserCalibration(const QByteArray& payload)
{
    if (payload.size() == 1) {
        return LaserCalibration{byteAt(payload, 0), std::nullopt};
    }
    if (payload.size() == 1 + static_cast<int>(sizeof(double))) {
        return LaserCalibration{byteAt(payload, 0), doubleAt(payload, 1)};
    }
    return std::nullopt;
}

} // namespace Tolvar::Varundo::Client::PayloadDecoder
