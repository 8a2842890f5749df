#include <Tolvar/Varundo/Client/TextCodec.h>

#include <QTextCodec>

#include <algorithm>
#include <array>
#include <memory>

namespace Tolvar::Varundo::Client {

namespace {

struct CodecName
{
    const char* name;
    TextCodec codec;
};

// The first name of a codec is the one that is shown.
constexpr std::array CodecNames{
    CodecName{"latin9", TextCodec::Latin9}, CodecName{"iso-8859-15", TextCodec::Latin9},
    CodecName{"utf8", TextCodec::Utf8},     CodecName{"utf-8", TextCodec::Utf8},
    CodecName{"utf16", TextCodec::Utf16},   CodecName{"utf-16", TextCodec::Utf16},
};

constexpr int Latin9Mib = 111;

const QTextCodec* qtCodec(TextCodec codec)
{
    switch (codec) {
    case TextCodec::Utf8:
        return QTextCodec::codecForName("UTF-8");
    case TextCodec::Utf16:
        return QTextCodec::codecForName("UTF-16");
    case TextCodec::Latin9:
        break;
    }
    return QTextCodec::codecForMib(Latin9Mib);
}

/// The first character that the codec lacks, empty if it has them all.
QString firstUnencodable(const QString& text, const QTextCodec& codec)
{
    for (int at = 0; at < text.size();) {
        const bool isPair =
            text.at(at).isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate();
        QString character = text.mid(at, isPair ? 2 : 1);
        if (character.at(0).isSurrogate() != isPair || !codec.canEncode(character)) {
            return character;
        }
        at += character.size();
    }
    return QString();
}

} // namespace

TextCodec textCodecFromNumber(quint8 number)
{
    const auto codec = static_cast<TextCodec>(number);
    return codec == TextCodec::Utf8 || codec == TextCodec::Utf16 ? codec : TextCodec::Latin9;
}

QLatin1String textCodecName(TextCodec codec)
{
    const auto found = std::find_if(CodecNames.begin(), CodecNames.end(),
                                    [&](const CodecName& known) { return known.codec == codec; });
    return QLatin1String(found != CodecNames.end() ? found->name : CodecNames.front().name);
}

std::optional<TextCodec> textCodecFromName(QStringView name)
{
    for (const CodecName& known : CodecNames) {
        if (name.compare(QLatin1String(known.name), Qt::CaseInsensitive) == 0) {
            return known.codec;
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> encodeText(const QString& text, TextCodec codec, QString* error)
{
    const QTextCodec& converter = *qtCodec(codec);
    const QString unencodable = firstUnencodable(text, converter);
    if (!unencodable.isEmpty()) {
        if (error) {
            *error = QStringLiteral("the character '%1' does not exist in %2")
                         .arg(unencodable, QString(textCodecName(codec)));
        }
        return std::nullopt;
    }
    return converter.fromUnicode(text);
}

QString decodeText(const QByteArray& bytes, TextCodec codec)
{
    return qtCodec(codec)->toUnicode(bytes);
}

} // namespace Tolvar::Varundo::Client
