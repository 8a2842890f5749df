#ifndef TOLVAR_VARUNDO_CLIENT_PAYLOADDECODER_H
#define TOLVAR_VARUNDO_CLIENT_PAYLOADDECODER_H

#include <Tolvar/Varundo/Client/Export.h>
#include <Tolvar/Varundo/Client/TextCodec.h>

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

#include <optional>

/// What the bytes of a payload say, one function per layout. Pure functions; usable from any thread.
/// Each yields nothing when the payload has not the size of its layout.
namespace Tolvar::Varundo::Client::PayloadDecoder {

struct Position
{
    int column = 0;
    int row = 0;
};

struct ElementState
{
    int format = 0;
    bool visible = false;
    Position position; ///< the low bytes only: column 300 is answered as 44
};

struct Colors
{
    quint8 text = 0;
    quint8 background = 0;
};

struct NumberedColors
{
    int number = 0;
    Colors colors;
};

struct StatusLineState
{
    int line = 0;
    Colors colors;
    bool visible = false;
};

struct LineText
{
    int line = 0;
    QString text;
};

struct FreeText
{
    int durationSeconds = 0;
    QStringList lines;
};

struct VideoCounter
{
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    std::optional<int> frames; ///< only in an answer
};

struct Point3D
{
    double x = 0;
    double y = 0;
    double z = 0;
};

struct Orientation
{
    float first = 0;
    float second = 0;
};

struct Measurement3D
{
    Point3D point;
    float angle = 0;
};

struct LaserCalibration
{
    int index = 0;
    std::optional<double> value; ///< only for the indexes 1 and 2
};

[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<int> number(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<TextCodec> codec(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<float> single(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<Position> position(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<ElementState> elementState(const QByteArray& payload);

/// A date or time of the right size that does not exist (month 13) yields an invalid QDate or QTime.
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<QDate> date(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<QTime> time(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<VideoCounter> videoCounter(const QByteArray& payload);

/// Reads the one-byte and the two-byte form as the unit does.
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<Colors> colors(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<NumberedColors> numberedColors(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<StatusLineState> statusLineState(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<LineText> lineText(const QByteArray& payload, TextCodec codec);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<FreeText> freeText(const QByteArray& payload, TextCodec codec);

/// 0 for what is not a decimal number, as the unit takes it.
[[nodiscard]] ZEL_CLIENT_EXPORT int packedNumber(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<Point3D> point3D(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<Orientation> orientation(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<Measurement3D> measurement3D(const QByteArray& payload);
[[nodiscard]] ZEL_CLIENT_EXPORT std::optional<LaserCalibration> laserCalibration(const QByteArray& payload);

} // namespace Tolvar::Varundo::Client::PayloadDecoder

#endif
