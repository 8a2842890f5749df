#include "PayloadArguments.h"

#include "ArgumentReader.h"

#include <Tolvar/Varundo/Client/PayloadBuilder.h>

#include <array>

namespace Tolvar::Varundo::Zelctl::PayloadArguments {

using Client::CommandInfo;
using Client::PayloadKind;
namespace Build = Client::PayloadBuilder;

namespace {

struct FormatName
{
    const char* element;
    const char* name;
    quint8 number;
};

// Any other number is Celsius, or degrees.
constexpr std::array FormatNames{
    FormatName{"external-temperature", "celsius", 0},
    FormatName{"external-temperature", "fahrenheit", 1},
    FormatName{"inclination", "percent", 0},
    FormatName{"inclination", "degrees", 1},
};

QString say(const char* words)
{
    return QString::fromLatin1(words);
}

QByteArray format(ArgumentReader& arguments, const ElementName& element)
{
    for (const FormatName& known : FormatNames) {
        if (element.name() == QLatin1String(known.element) && arguments.peek() == QLatin1String(known.name)) {
            arguments.word(say("the format"));
            return Build::number(known.number);
        }
    }
    return Build::number(arguments.byte(say("the format")));
}

QByteArray codecNumber(ArgumentReader& arguments)
{
    const QString name = arguments.word(say("the codec"));
    const auto codec = Client::textCodecFromName(name);
    if (!codec) {
        arguments.fail(QStringLiteral("the codec '%1': expected latin9, utf8 or utf16").arg(name));
    }
    return Build::codec(codec.value_or(Client::TextCodec::Latin9));
}

QByteArray encoded(ArgumentReader& arguments, const QString& text, Client::TextCodec codec)
{
    QString error;
    const auto bytes = Client::encodeText(text, codec, &error);
    if (!bytes) {
        arguments.fail(error);
    }
    return bytes.value_or(QByteArray());
}

/// A status line without a text is cleared. A script could not say so otherwise, since it has no way to write
/// an empty word. Elsewhere, a missing text is a mistake.
QByteArray lineText(ArgumentReader& arguments, const ElementName& element, Client::TextCodec codec)
{
    const bool isCleared = element.name() == QLatin1String("status-line") && arguments.atEnd();
    const QString text = isCleared ? QString() : arguments.text(say("the text"));
    // Of an empty text, UTF-16 would still send its byte order mark.
    const QByteArray bytes = text.isEmpty() ? QByteArray() : encoded(arguments, text, codec);
    return Build::lineText(static_cast<quint8>(element.index()), bytes);
}

QByteArray freeText(ArgumentReader& arguments, Client::TextCodec codec)
{
    const quint8 duration = arguments.byte(say("the duration in seconds"));
    QString error;
    const auto payload = Build::freeText(duration, arguments.rest(), codec, &error);
    if (!payload) {
        arguments.fail(error);
    }
    return payload.value_or(QByteArray());
}

struct ColorNumbers
{
    quint8 text;
    quint8 background;
};

ColorNumbers colors(ArgumentReader& arguments)
{
    const quint8 text = arguments.color(say("the text colour"));
    const quint8 background = arguments.atEnd() ? quint8(0) : arguments.color(say("the background colour"));
    return {text, background};
}

QByteArray numberedColors(ArgumentReader& arguments, const ElementName& element)
{
    const auto [text, background] = colors(arguments);
    const auto number = element.index() >= 0 ? static_cast<quint8>(element.index())
                                             : Client::elementColorNumber(element.name()).value_or(0);
    return Build::numberedColors(number, text, background);
}

// Braced initialisation evaluates left to right, as the arguments are to be read; a call would not.
struct Triple
{
    double x;
    double y;
    double z;
};

QByteArray point(ArgumentReader& arguments)
{
    const Triple at{arguments.real(say("X")), arguments.real(say("Y")), arguments.real(say("Z"))};
    return Build::point3D(at.x, at.y, at.z);
}

QByteArray orientation(ArgumentReader& arguments)
{
    const float first = arguments.single(say("the first angle"));
    return Build::orientation(first, arguments.single(say("the second angle")));
}

QByteArray position(ArgumentReader& arguments)
{
    const quint8 column = arguments.byte(say("the column"));
    return Build::position(column, arguments.byte(say("the row")));
}

QByteArray videoCounter(ArgumentReader& arguments)
{
    const quint8 hours = arguments.byte(say("the hours"));
    const quint8 minutes = arguments.byte(say("the minutes"));
    return Build::videoCounter(hours, minutes, arguments.byte(say("the seconds")));
}

} // namespace

bool needsCodec(PayloadKind kind)
{
    return kind == PayloadKind::Text || kind == PayloadKind::LineText || kind == PayloadKind::FreeText;
}

QByteArray build(ArgumentReader& arguments, const CommandInfo& command, const ElementName& element,
                 Client::TextCodec codec)
{
    switch (command.request) {
    case PayloadKind::Codec:
        return codecNumber(arguments);
    case PayloadKind::Format:
        return format(arguments, element);
    case PayloadKind::Single:
        return Build::single(arguments.single(say("the value")));
    case PayloadKind::Position:
        return position(arguments);
    case PayloadKind::Date:
        return Build::date(arguments.date(say("the date")));
    case PayloadKind::Time:
        return Build::time(arguments.time(say("the time")));
    case PayloadKind::VideoCounter:
        return videoCounter(arguments);
    case PayloadKind::Text:
        return encoded(arguments, arguments.text(say("the text")), codec);
    case PayloadKind::LineText:
        return lineText(arguments, element, codec);
    case PayloadKind::Colors: {
        const auto [text, background] = colors(arguments);
        return Build::colors(text, background);
    }
    case PayloadKind::NumberedColors:
        return numberedColors(arguments, element);
    case PayloadKind::Point3D:
        return point(arguments);
    case PayloadKind::Orientation:
        return orientation(arguments);
    case PayloadKind::FreeText:
        return freeText(arguments, codec);
    case PayloadKind::PackedNumber:
        return Build::packedNumber(element.index());
    case PayloadKind::Index:
        return Build::number(static_cast<quint8>(element.index()));
    default:
        return QByteArray(); // no arguments, or a layout that only answers have
    }
}

QString usage(PayloadKind kind)
{
    switch (kind) {
    case PayloadKind::Codec:
        return say("latin9|utf8|utf16");
    case PayloadKind::Format:
        return say("N");
    case PayloadKind::Single:
        return say("NUMBER");
    case PayloadKind::Position:
        return say("COLUMN ROW");
    case PayloadKind::Date:
        return say("YYYY-MM-DD|today");
    case PayloadKind::Time:
        return say("HH:MM:SS|now");
    case PayloadKind::VideoCounter:
        return say("HOURS MINUTES SECONDS");
    case PayloadKind::Text:
    case PayloadKind::LineText:
        return say("TEXT");
    case PayloadKind::Colors:
    case PayloadKind::NumberedColors:
        return say("TEXT-COLOUR [BACKGROUND]");
    case PayloadKind::Point3D:
        return say("X Y Z");
    case PayloadKind::Orientation:
        return say("A B");
    case PayloadKind::FreeText:
        return say("SECONDS LINE...");
    default:
        return QString();
    }
}

} // namespace Tolvar::Varundo::Zelctl::PayloadArguments
