// Everything else that reads what others have written: texts under each codec, recorded bytes, hexadecimal
// digits, device files, settings.
//
// Input: one byte that says who reads, then the text.

#include "Demand.h"
#include "DeviceScript.h"
#include "Frames.h"
#include "FuzzInput.h"
#include "HexBytes.h"
#include "Printer.h"

#include <CApplicationSettings.h>
#include <Tolvar/Varundo/Client/FrameMeaning.h>
#include <Tolvar/Varundo/Client/ResponseDecoder.h>
#include <Tolvar/Varundo/Client/TextCodec.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <iterator>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

/// Where files for readers stand: in memory, since there is a new one for each input.
QString fileName()
{
    static const QTemporaryDir directory(QStringLiteral("/dev/shm/varundo-fuzz"));
    return directory.filePath(QStringLiteral("input"));
}

QString fileWith(const QByteArray& content)
{
    QFile file(fileName());
    demand(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "memory is there");
    return fileName();
}

Client::TextCodec codecOf(int number)
{
    return Client::textCodecFromNumber(static_cast<quint8>(number % 3));
}

void sayNothingWrong(const QString& meaning)
{
    demand(!meaning.isNull() && !meaning.contains(QChar(u'\n')), "a meaning is one line");
}

void readText(FuzzInput& input)
{
    const Client::TextCodec codec = codecOf(input.byte());
    const QString text = Client::decodeText(input.rest(), codec);
    QString error;
    if (const auto bytes = Client::encodeText(text, codec, &error)) {
        demand(Client::decodeText(*bytes, codec) == text, "what was encoded decodes to itself");
    } else {
        demand(!error.isEmpty(), "it is said which character the codec lacks");
    }
}

void readResponses(FuzzInput& input)
{
    Client::ResponseDecoder decoder;
    QByteArray seen;
    QByteArray told;
    while (!input.isEmpty()) {
        const QByteArray read = input.piece();
        seen += read;
        for (const Client::Response& response : decoder.decode(read)) {
            told += response.bytes;
            sayNothingWrong(
                Client::frameMeaning(response.frame, Client::Sender::Unit, Client::TextCodec::Utf8));
        }
    }
    demand(told + decoder.incompleteFrame() == seen, "no byte of the unit's is lost or made up");
}

void readRecording(FuzzInput& input)
{
    const Client::TextCodec codec = codecOf(input.byte());
    const QByteArray bytes = input.rest();
    QByteArray told;
    for (const Zelctl::Frames::Piece& piece : Zelctl::Frames::split(bytes)) {
        told += piece.bytes;
        sayNothingWrong(Zelctl::Frames::meaning(piece, Client::Sender::Unit, codec));
        sayNothingWrong(Zelctl::Frames::meaning(piece, Client::Sender::Controller, codec));
        if (piece.kind == Zelctl::Frames::Kind::Frame) {
            sayNothingWrong(Client::frameMeaning(piece.frame, Client::likelySender(piece.frame), codec));
        }
    }
    demand(told == bytes, "no byte of a recording is lost or made up");
}

void readHex(FuzzInput& input)
{
    const QString text = QString::fromUtf8(input.rest());
    QString error;
    const auto bytes = Zelctl::hexBytes(text, &error);
    demand(bytes.has_value() == error.isEmpty(), "hexadecimal digits are read, or it is said why not");
    if (bytes) {
        demand(Zelctl::hexBytes(Zelctl::Printer::hex(*bytes), &error) == bytes,
               "what is printed can be read");
    }
}

void readDevices(FuzzInput& input)
{
    QString error;
    const auto script = Simulator::DeviceScript::readFile(fileWith(input.rest()), &error);
    demand(script.has_value() == error.isEmpty(), "a device file is read, or it is said why not");
    int last = 0;
    for (int i = 0; script && i < script->steps().size(); ++i) {
        demand(script->steps().at(i).atMs >= last, "steps are in order");
        last = script->steps().at(i).atMs;
    }
}

/// What was on the disk when the power went is read as far as it goes, and what is set then is there.
void readSettings(FuzzInput& input)
{
    const QString key = QStringLiteral("ZEL_INTERFACE");
    auto* const settings = CApplicationSettings::instance();
    settings->setFileName(fileWith(input.rest()));
    const QString stored = settings->getCustomSetting(key, QStringLiteral("none"));
    settings->setCustomSetting(key, stored + QLatin1Char('2'));
    settings->setFileName(fileName());
    demand(settings->getCustomSetting(key, QString()) == stored + QLatin1Char('2'),
           "a setting is read as it was set");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_text";
    static char* argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    static const bool quiet = qputenv("QT_LOGGING_RULES", "varundo.*=false");
    Q_UNUSED(quiet)

    constexpr void (*readers[])(FuzzInput&) = {readText, readResponses, readRecording,
                                               readHex,  readDevices,   readSettings};
    FuzzInput input(data, size);
    readers[input.byte() % std::size(readers)](input);
    return 0;
}
