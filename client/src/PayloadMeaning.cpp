#include <Tolvar/Varundo/Client/PayloadMeaning.h>

#include <Tolvar/Varundo/Client/ColorTable.h>
#include <Tolvar/Varundo/Client/PayloadDecoder.h>

#include <QJsonArray>
#include <QJsonValue>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Tolvar::Varundo::Client {

namespace {

using namespace PayloadDecoder;

QJsonValue jsonNumber(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

/// As the single reads in decimal, not with the digits that its conversion to a double adds.
QJsonValue jsonNumber(float value)
{
    return jsonNumber(plainNumber(value).toDouble());
}

/// A picture of what would end the line: a peer must not be able to begin lines of its own in somebody's log.
QChar onOneLine(QChar character)
{
    constexpr ushort firstPicture = 0x2400; // those of 0x00 to 0x1F, in their order
    constexpr ushort nextLine = 0x85;
    const ushort code = character.unicode();
    if (code >= '\n' && code <= '\r') {
        return QChar(static_cast<ushort>(firstPicture + code));
    }
    const bool endsLine = code == nextLine || character.category() == QChar::Separator_Line ||
                          character.category() == QChar::Separator_Paragraph;
    return endsLine ? QChar(QChar::ReplacementCharacter) : character;
}

/// So that a command line reader gives the same text back: a quote inside is written three times. The end
/// of a line cannot be typed, and is only shown.
QString quoted(const QString& text)
{
    QString inner = text;
    std::transform(inner.begin(), inner.end(), inner.begin(), onOneLine);
    inner.replace(QLatin1Char('"'), QStringLiteral("\"\"\""));
    return QLatin1Char('"') + inner + QLatin1Char('"');
}

PayloadMeaning plain(const QJsonObject& fields, const QString& text, int index = -1)
{
    return {true, index, fields, text, text};
}

PayloadMeaning ofText(const QString& text, QJsonObject fields = {}, int index = -1)
{
    fields.insert(QStringLiteral("text"), text);
    return {true, index, fields, text, quoted(text)};
}

QString twoDigits(int value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

QString visibleText(bool visible)
{
    return visible ? QStringLiteral("yes") : QStringLiteral("no");
}

PayloadMeaning meaning(int number, const QString& name)
{
    return plain({{name, number}}, QString::number(number));
}

PayloadMeaning meaning(TextCodec codec)
{
    const QString name = textCodecName(codec);
    return plain({{QStringLiteral("value"), name}}, name);
}

PayloadMeaning meaning(float value)
{
    return plain({{QStringLiteral("value"), jsonNumber(value)}}, plainNumber(value));
}

PayloadMeaning meaning(const Position& position)
{
    return plain({{QStringLiteral("column"), position.column}, {QStringLiteral("row"), position.row}},
                 QStringLiteral("%1 %2").arg(position.column).arg(position.row));
}

PayloadMeaning meaning(const QDate& date)
{
    const QString text = date.isValid() ? date.toString(Qt::ISODate) : QStringLiteral("invalid");
    return plain({{QStringLiteral("value"), date.isValid() ? QJsonValue(text) : QJsonValue()}}, text);
}

PayloadMeaning meaning(const QTime& time)
{
    const QString text = time.isValid() ? time.toString(Qt::ISODate) : QStringLiteral("invalid");
    return plain({{QStringLiteral("value"), time.isValid() ? QJsonValue(text) : QJsonValue()}}, text);
}

PayloadMeaning meaning(const VideoCounter& counter)
{
    QJsonObject fields{{QStringLiteral("hours"), counter.hours},
                       {QStringLiteral("minutes"), counter.minutes},
                       {QStringLiteral("seconds"), counter.seconds}};
    if (!counter.frames) {
        return plain(fields,
                     QStringLiteral("%1 %2 %3").arg(counter.hours).arg(counter.minutes).arg(counter.seconds));
    }
    fields.insert(QStringLiteral("frames"), *counter.frames);
    return plain(fields, QStringLiteral("%1:%2:%3.%4")
                             .arg(twoDigits(counter.hours), twoDigits(counter.minutes),
                                  twoDigits(counter.seconds), twoDigits(*counter.frames)));
}

PayloadMeaning meaning(const LineText& line)
{
    return ofText(line.text, {{QStringLiteral("line"), line.line}}, line.line);
}

QJsonObject colorFields(const Colors& colors)
{
    return {{QStringLiteral("textColor"), QString(colorName(colors.text))},
            {QStringLiteral("backgroundColor"), QString(colorName(colors.background))}};
}

QString colorText(const Colors& colors)
{
    return QStringLiteral("%1 %2").arg(QString(colorName(colors.text)),
                                       QString(colorName(colors.background)));
}

PayloadMeaning meaning(const Colors& colors)
{
    return plain(colorFields(colors), colorText(colors));
}

PayloadMeaning meaning(const NumberedColors& numbered)
{
    QJsonObject fields = colorFields(numbered.colors);
    fields.insert(QStringLiteral("number"), numbered.number);
    return plain(fields, colorText(numbered.colors), numbered.number);
}

PayloadMeaning meaning(const StatusLineState& state)
{
    QJsonObject fields = colorFields(state.colors);
    fields.insert(QStringLiteral("line"), state.line);
    fields.insert(QStringLiteral("visible"), state.visible);
    return plain(
        fields,
        QStringLiteral("colour %1, visible %2").arg(colorText(state.colors), visibleText(state.visible)),
        state.line);
}

PayloadMeaning meaning(const ElementState& state)
{
    return plain({{QStringLiteral("format"), state.format},
                  {QStringLiteral("visible"), state.visible},
                  {QStringLiteral("column"), state.position.column},
                  {QStringLiteral("row"), state.position.row}},
                 QStringLiteral("format %1, visible %2, position %3 %4")
                     .arg(state.format)
                     .arg(visibleText(state.visible))
                     .arg(state.position.column)
                     .arg(state.position.row));
}

PayloadMeaning meaning(const FreeText& freeText)
{
    QStringList shown;
    for (const QString& line : freeText.lines) {
        shown.append(quoted(line));
    }
    const QString text =
        (QStringList(QString::number(freeText.durationSeconds)) + shown).join(QLatin1Char(' '));
    return plain({{QStringLiteral("duration"), freeText.durationSeconds},
                  {QStringLiteral("lines"), QJsonArray::fromStringList(freeText.lines)}},
                 text);
}

QJsonObject pointFields(const Point3D& point)
{
    return {{QStringLiteral("x"), jsonNumber(point.x)},
            {QStringLiteral("y"), jsonNumber(point.y)},
            {QStringLiteral("z"), jsonNumber(point.z)}};
}

PayloadMeaning meaning(const Point3D& point)
{
    return plain(
        pointFields(point),
        QStringLiteral("%1 %2 %3").arg(plainNumber(point.x), plainNumber(point.y), plainNumber(point.z)));
}

PayloadMeaning meaning(const Orientation& orientation)
{
    return plain(
        {{QStringLiteral("first"), jsonNumber(orientation.first)},
         {QStringLiteral("second"), jsonNumber(orientation.second)}},
        QStringLiteral("%1 %2").arg(plainNumber(orientation.first), plainNumber(orientation.second)));
}

PayloadMeaning meaning(const Measurement3D& measurement)
{
    QJsonObject fields = pointFields(measurement.point);
    fields.insert(QStringLiteral("angle"), jsonNumber(measurement.angle));
    return plain(fields, meaning(measurement.point).text + QLatin1Char(' ') + plainNumber(measurement.angle));
}

PayloadMeaning meaning(const LaserCalibration& laser)
{
    return plain({{QStringLiteral("index"), laser.index},
                  {QStringLiteral("value"), laser.value ? jsonNumber(*laser.value) : QJsonValue()}},
                 laser.value ? plainNumber(*laser.value) : QStringLiteral("none"), laser.index);
}

template <class Value, class... Name>
PayloadMeaning ifValid(const std::optional<Value>& value, const Name&... name)
{
    return value ? meaning(*value, name...) : PayloadMeaning();
}

/// The digits that give the very number back; at most as many as the type may need.
template <class Number>
QString shortest(Number value, int digits, int maxDigits)
{
    QString text = QString::number(static_cast<double>(value), 'g', digits);
    while (digits < maxDigits && static_cast<Number>(text.toDouble()) != value) {
        text = QString::number(static_cast<double>(value), 'g', ++digits);
    }
    return text;
}

} // namespace

PayloadMeaning payloadMeaning(PayloadKind kind, const QByteArray& payload, TextCodec codec)
{
    switch (kind) {
    case PayloadKind::None:
        return {payload.isEmpty(), -1, {}, {}, {}};
    case PayloadKind::Codec:
        return ifValid(PayloadDecoder::codec(payload));
    case PayloadKind::Format:
        return ifValid(number(payload), QStringLiteral("format"));
    case PayloadKind::Single:
        return ifValid(single(payload));
    case PayloadKind::Position:
        return ifValid(position(payload));
    case PayloadKind::Date:
        return ifValid(date(payload));
    case PayloadKind::Time:
        return ifValid(time(payload));
    case PayloadKind::VideoCounter:
        return ifValid(videoCounter(payload));
    case PayloadKind::Text:
        return ofText(decodeText(payload, codec));
    case PayloadKind::LineText:
        return ifValid(lineText(payload, codec));
    case PayloadKind::Colors:
        return ifValid(colors(payload));
    case PayloadKind::NumberedColors:
        return ifValid(numberedColors(payload));
    case PayloadKind::Point3D:
        return ifValid(point3D(payload));
    case PayloadKind::Orientation:
        return ifValid(orientation(payload));
    case PayloadKind::FreeText:
        return ifValid(freeText(payload, codec));
    case PayloadKind::PackedNumber:
        return {!payload.isEmpty(),
                packedNumber(payload),
                {{QStringLiteral("line"), packedNumber(payload)}},
                {},
                {}};
    case PayloadKind::Index: {
        const int index = payload.isEmpty() ? 0 : static_cast<quint8>(payload.at(0));
        return {!payload.isEmpty(), index, {{QStringLiteral("index"), index}}, {}, {}};
    }
    case PayloadKind::State:
        return ifValid(elementState(payload));
    case PayloadKind::StatusLineState:
        return ifValid(statusLineState(payload));
    case PayloadKind::Laser:
        return ifValid(laserCalibration(payload));
    case PayloadKind::Measurement3D:
        return ifValid(measurement3D(payload));
    }
    return {};
}

QString plainNumber(float value)
{
    return shortest(value, 6, 9);
}

QString plainNumber(double value)
{
    return shortest(value, 15, 17);
}

} // namespace Tolvar::Varundo::Client
