#include "SequenceText.h"

#include <Tolvar/Varundo/Client/FrameMeaning.h>

namespace Tolvar::Varundo::Model {

namespace {

constexpr int HeaderSize = 5;

QByteArray asByteArray(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

QString hex(const Bytes& bytes)
{
    return QString::fromLatin1(asByteArray(bytes).toHex(' ').toUpper());
}

Client::TextCodec textCodec(int number)
{
    return number == 1   ? Client::TextCodec::Utf8
           : number == 2 ? Client::TextCodec::Utf16
                         : Client::TextCodec::Latin9;
}

/// On one line, and without a NUL character, at which a report would end.
QString printable(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        result += character.isPrint()
                      ? QString(character)
                      : QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
    }
    return result;
}

QString meaning(const Bytes& piece, int codec)
{
    const QByteArray bytes = asByteArray(piece);
    const int length = bytes.size() - HeaderSize - 1;
    if (length < 0 || piece.front() != 0x02 || piece.back() != 0x03 || length != piece[3] + 256 * piece[4]) {
        return piece.empty() ? QStringLiteral("nothing") : QStringLiteral("no frame");
    }
    const CommandMessage message{piece[1], piece[2], static_cast<quint16>(length),
                                 bytes.mid(HeaderSize, length)};
    return Client::frameMeaning(message, Client::Sender::Controller, textCodec(codec));
}

QString sent(const Step& step, int codec)
{
    QStringList meanings;
    for (const Bytes& piece : step.pieces) {
        meanings.append(meaning(piece, codec));
    }
    return QStringLiteral("> %1    # %2")
        .arg(hex(step.bytes()), printable(meanings.join(QStringLiteral("; "))));
}

QString numbers(const Step& step, int count)
{
    QString text;
    for (int at = 0; at < count; ++at) {
        text += QLatin1Char(' ') + QString::number(step.numbers[static_cast<std::size_t>(at)], 'g', 9);
    }
    return text;
}

QString readingText(const Step& step)
{
    struct Row
    {
        const char* name;
        int numbers;
    };
    constexpr Row Rows[Readings] = {
        {"reel speed", 1},         {"rts temperature", 1}, {"crawler temperature", 1},
        {"crawler pressure", 1},   {"crawler roll", 1},    {"crawler pitch", 1},
        {"camera pan", 1},         {"camera tilt", 1},     {"camera temperature", 1},
        {"camera pressure", 1},    {"reel distances", 3},  {"laser calibration", 2},
        {"position sensor", 4},    {"no reel", 0},         {"no camera", 0},
        {"no position sensor", 0},
    };
    return QLatin1String(Rows[step.which].name) + numbers(step, Rows[step.which].numbers);
}

QString happened(const Step& step)
{
    const QString which = QString::number(step.which);
    switch (step.kind) {
    case Step::Kind::Read:
        return readingText(step);
    case Step::Kind::LoadProfile:
        return QStringLiteral("profile %1 loaded").arg(step.which % ProfileVariants);
    case Step::Kind::RemoveProfile:
        return QStringLiteral("profile removed");
    case Step::Kind::CleanUp:
        return QStringLiteral("empty texts removed");
    case Step::Kind::HideTimedOut:
        return QStringLiteral("what shows for a while is over");
    case Step::Kind::MoveElement:
        return QStringLiteral("host moves element ") + which + QStringLiteral(" to") + numbers(step, 2);
    case Step::Kind::SwitchElement:
        return QStringLiteral("host switches element ") + which + numbers(step, 1);
    case Step::Kind::EditText:
        return QStringLiteral("host gives element %1 its text").arg(which) + numbers(step, 1);
    case Step::Kind::DeleteElement:
        return QStringLiteral("host deletes element ") + which;
    case Step::Kind::SelectInterface:
        return QStringLiteral("interface ") + which;
    case Step::Kind::SetClock:
        return QStringLiteral("clock") + numbers(step, 3) + QLatin1Char(' ') + which;
    case Step::Kind::Connect:
    case Step::Kind::Send:
        break;
    }
    return {};
}

} // namespace

QStringList inWords(const Sequence& sequence)
{
    QStringList lines;
    UnitModel model;
    for (const Step& step : sequence) {
        if (step.kind == Step::Kind::Send) {
            lines.append(sent(step, model.codec()));
        } else if (step.kind == Step::Kind::Connect) {
            lines.append(QStringLiteral("connect"));
        } else {
            lines.append(QStringLiteral("! ") + happened(step));
        }
        model.apply(step);
    }
    return lines;
}

} // namespace Tolvar::Varundo::Model
