// A whole unit with the reference platform, over real sockets: bytes cut anywhere, and what happens at the
// unit in between. Every reply is checked against a model of the decoder.
//
// Input: steps, each a byte that says what happens and what that needs.

#include "FuzzInput.h"
#include "FuzzedUnit.h"

#include <QGuiApplication>

#include <cstring>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

FuzzedUnit& unit()
{
    static int argc = 1;
    static char name[] = "fuzz_runner";
    static char* argv[] = {name, nullptr};
    static const bool prepared = qputenv("QT_QPA_PLATFORM", "offscreen") &&
                                 qputenv("QT_LOGGING_RULES", "varundo.*=false") &&
                                 qputenv("QT_NO_GLIB", "1"); // an event loop that costs less
    Q_UNUSED(prepared)
    static QGuiApplication application(argc, argv);
    static FuzzedUnit theUnit;
    return theUnit;
}

constexpr int noProfile = 0xFE; ///< this number of a profile and the one above

void whatTimeDoes(int which, FuzzInput& input, FuzzedUnit& unit)
{
    switch (which % 4) {
    case 0:
        unit.runner().clearEmptyTexts();
        break;
    case 1:
        unit.letTimeOut();
        break;
    case 2: {
        double value = 0.0;
        const QByteArray bytes = input.bytes(sizeof value);
        std::memcpy(&value, bytes.constData(), static_cast<std::size_t>(bytes.size()));
        unit.setMeasurement(value);
        break;
    }
    default: {
        const int command = input.byte();
        const int line = input.byte();
        unit.flood(static_cast<quint8>(command), static_cast<quint8>(line), input.byte() % 96);
    }
    }
}

void step(FuzzInput& input, FuzzedUnit& unit)
{
    switch (const int what = input.byte(); what % 16) {
    case 8:
        unit.send(input.frameWithoutEnd() + '\x03');
        break;
    case 9:
        unit.runner().setInterface(static_cast<Runner::SelectedInterface>(input.byte() % 4));
        break;
    case 10:
        if (const int number = input.byte(); number < noProfile) {
            unit.loadProfile(number);
        } else {
            unit.removeProfile();
        }
        break;
    case 11:
        unit.deleteElement(input.byte());
        break;
    case 12:
        unit.disconnectNewest();
        unit.connectController();
        break;
    case 13:
        if (what < 128) {
            unit.connectController();
        } else {
            unit.sendFromOldest(input.piece());
        }
        break;
    case 14: {
        const int kind = input.byte();
        const int high = input.byte();
        if (kind >= 0xF0) {
            unit.setDevicePresent(kind, high % 2 == 0);
        } else {
            unit.emitReadings(kind, static_cast<qint16>(high * 256 + input.byte()));
        }
        break;
    }
    case 15:
        whatTimeDoes(what / 16, input, unit);
        break;
    default:
        unit.send(input.piece());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedUnit& theUnit = unit();
    FuzzInput input(data, size);
    theUnit.begin();
    while (!input.isEmpty()) {
        step(input, theUnit);
    }
    theUnit.restore();
    return 0;
}
