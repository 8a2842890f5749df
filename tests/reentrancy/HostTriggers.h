#ifndef TOLVAR_VARUNDO_TEST_HOSTTRIGGERS_H
#define TOLVAR_VARUNDO_TEST_HOSTTRIGGERS_H

#include "HookedHost.h"
#include "ZelPeer.h"

#include <Tolvar/Varundo/DataManager.h>

#include <vector>

namespace Tolvar::Varundo::Test {

/// One way in which the library comes to call its host, and how to bring it about.
struct HostTrigger
{
    enum class Roads : quint8 { Tcp, Both };
    enum class Mutex : quint8 { Free, Held };

    const char* point;                   ///< what is armed
    QByteArray prepare = {};             ///< frames that are acted upon before
    QByteArray frame = {};               ///< what makes the library call; or, if it is not a frame that does,
    void (*call)(HookedHost&) = nullptr; ///< this
    QByteArray answer = {};              ///< what the frame is answered with, behind its acknowledgement
    Roads roads = Roads::Tcp;            ///< one of each kind is tried with every action, on both roads
    Mutex mutex = Mutex::Free;           ///< whether the library holds the overlay's while it calls
    const char* variant = "";            ///< tells triggers with the same point apart
};

inline const std::vector<HostTrigger>& hostTriggers()
{
    using T = HostTrigger;
    constexpr auto Execute = Protocol::Execute;
    constexpr auto Read = Protocol::Read;
    constexpr auto Write = Protocol::Write;
    const auto hex = [](const char* digits) {
        return QByteArray::fromHex(digits);
    };
    const QByteArray line = frame(Write, 0x98, "\x05line");
    const QByteArray cursor = frame(Write, 0x62, hex("0304"));
    const QByteArray atCursor = frame(Write, 0x95, "text");
    const QByteArray status = frame(Write, 0x90, "\x01status");
    const QByteArray free = frame(Write, 0xD7, hex("000500") + "free");
    const QByteArray move = frame(Write, 0x32, hex("0C0D"));
    const QByteArray colour = frame(Write, 0xE5, hex("000C"));
    const auto profileAgain = [](HookedHost& host) {
        emit host.manager->profileLoaded();
    };

    static const std::vector<HostTrigger> triggers{
        // The Runner's own signals.
        {"Runner::execute3dMeasurementMainPipeActivate", {}, frame(Execute, 0xD4)},
        {"Runner::execute3dMeasurementLateralActivate", {}, frame(Execute, 0xD5)},
        {"Runner::execute3dMeasurementDeactivate", {}, frame(Execute, 0xD6)},
        {"Runner::setDistanceCounterSection", {}, frame(Write, 0x30, hex("3F800000"))},
        {"Runner::setDistanceCounterSat", {}, frame(Write, 0x36, hex("3F800000"))},
        {"Runner::setDistanceCounterTotal", {}, frame(Write, 0x3C, hex("00000000"))},
        {"Runner::writeVideoCounter", {}, frame(Write, 0x70, hex("010203")), nullptr, {}, T::Roads::Both},
        {"Runner::writeMeasurement3DPosition", {}, frame(Write, 0xD4, QByteArray(24, '\0'))},
        {"Runner::writeMeasurement3DOrientation", {}, frame(Write, 0xD5, QByteArray(8, '\0'))},
        {"Runner::interfaceChanged",
         {},
         {},
         [](HookedHost& host) {
             const auto selected = host.runner->interface();
             host.points.pause();
             host.runner->setInterface(Runner::Udp);
             host.points.goOn();
             host.runner->setInterface(selected);
         },
         {},
         T::Roads::Both},
        {"settings.setCustomSetting",
         {},
         {},
         [](HookedHost& host) {
             const auto selected = host.runner->interface();
             host.runner->setInterface(Runner::Udp);
             if (host.runner) {
                 host.runner->setInterface(selected);
             }
         },
         {},
         T::Roads::Tcp},

        // The data model's change signals, one of each shape; last, while a profile is being bound.
        {"model.meterCounter1PositionChanged", {}, move, nullptr, {}, T::Roads::Both},
        {"model.meterCounter1VisibleChanged", {}, frame(Execute, 0x31)},
        {"model.meterCounter1ColorPairChanged", {}, colour},
        {"model.statusLine1TextChanged", {}, status},
        {"model.lineTextChanged", {}, free},
        {"model.cursorPositionChanged", {}, cursor},
        {"model.extTemperatureFormatChanged", {}, frame(Write, 0xF5, hex("01"))},
        {"model.inclinationFormatChanged", {}, frame(Write, 0xFD, hex("01"))},
        {"model.cableSpeedValueChanged",
         {},
         {},
         [](HookedHost& host) { emit host.reel->calculatedReelSpeedChanged(2.0F); },
         {},
         T::Roads::Tcp},
        {"model.panPositionVvalueChanged",
         {},
         {},
         [](HookedHost& host) {
             emit host.camera->panPositionChanged(7);
         }},
        {"model.inclinationValueChanged",
         {},
         {},
         [](HookedHost& host) {
             emit host.crawler->crawlerPitchChanged();
         }},
        {"model.meterCounter1PositionChanged",
         {},
         {},
         [](HookedHost& host) {
             host.manager->elements().first()->setRow(9);
             emit host.manager->profileLoaded();
         },
         {},
         T::Roads::Both,
         T::Mutex::Free,
         "while binding"},
        {"model.statusLine1TextChanged",
         {},
         {},
         [](HookedHost& host) {
             host.manager->text(QStringLiteral("1"))->setText(QStringLiteral("another"));
             emit host.manager->profileLoaded();
         },
         {},
         T::Roads::Tcp,
         T::Mutex::Free,
         "while binding"},
        {"model.extTemperatureFormatChanged",
         frame(Write, 0xF5, hex("01")),
         {},
         profileAgain,
         {},
         T::Roads::Tcp,
         T::Mutex::Free,
         "while starting afresh"},
        {"manager.profileLoaded",
         {},
         {},
         [](HookedHost& host) {
             host.manager->load();
         }},
        {"manager.beforeRemoveElements",
         {},
         {},
         [](HookedHost& host) {
             host.manager->load();
         }},
        {"manager.beforeRemoveElement", line, frame(Execute, 0x88)},

        // What the library asks of the overlay.
        {"manager.currentProfile", {}, {}, profileAgain},
        {"manager.mutex", {}, {}, profileAgain},
        {"manager.getElementList", {}, {}, profileAgain, {}, T::Roads::Tcp, T::Mutex::Held},
        {"bound.getParamObject", {}, {}, profileAgain, {}, T::Roads::Tcp, T::Mutex::Held},
        {"bound.column", {}, {}, profileAgain, {}, T::Roads::Tcp, T::Mutex::Held},
        {"bound.text", {}, {}, profileAgain, {}, T::Roads::Tcp, T::Mutex::Held},
        {"manager.createText", {}, line, nullptr, {}, T::Roads::Both},
        {"manager.createText", cursor, atCursor, nullptr, {}, T::Roads::Tcp, T::Mutex::Free, "at the cursor"},
        {"manager.createText", cursor, "q", nullptr, {}, T::Roads::Tcp, T::Mutex::Free, "for a character"},
        {"manager.deleteElementFromModel", line + line, frame(Execute, 0x88), nullptr, {}, T::Roads::Tcp},
        {"manager.deleteElementFromModel",
         line + line,
         {},
         [](HookedHost& host) {
             for (auto* const element : host.manager->elements().mid(6)) {
                 static_cast<HookedText*>(element)->setText(QString());
             }
             host.runner->clearEmptyTexts();
         },
         {},
         T::Roads::Tcp,
         T::Mutex::Free,
         "of empty texts"},

        // What the library does to an element of the profile.
        {"bound.setColumn", {}, move},
        {"bound.setRow", {}, move},
        {"bound.setEnabled", {}, frame(Execute, 0x31)},
        {"bound.setTextColor", {}, colour, nullptr, {}, T::Roads::Tcp},
        {"bound.setBackgroundColor", {}, colour},
        {"bound.setUnit", {}, frame(Write, 0xF5, hex("01"))},
        {"bound.setText", {}, status, nullptr, {}, T::Roads::Tcp},
        {"bound.setVisible", {}, free},
        {"bound.setTimeout", {}, free},
        {"bound.setText", {}, free, nullptr, {}, T::Roads::Tcp, T::Mutex::Free, "of the free text"},
        {"bound.setEnabled", {}, free, nullptr, {}, T::Roads::Tcp, T::Mutex::Free, "of the free text"},

        // What it does to a text that it has had made.
        {"created.setRow", {}, line, nullptr, {}, T::Roads::Tcp},
        {"created.setColumn", {}, line},
        {"created.setVisible", {}, line},
        {"created.setTextColor", {}, line},
        {"created.setBackgroundColor", {}, line},
        {"created.setEnabled", {}, line},
        {"created.setText", {}, line},
        {"created.setType", {}, line},
        {"created.font", {}, line},
        {"created.setHeight", {}, line},
        {"created.setWidth", {}, line},
        {"created.setRow", cursor, atCursor, nullptr, {}, T::Roads::Tcp, T::Mutex::Free, "at the cursor"},
        {"created.setText", cursor, atCursor, nullptr, {}, T::Roads::Tcp, T::Mutex::Free, "at the cursor"},
        {"created.setType", cursor, "q", nullptr, {}, T::Roads::Tcp, T::Mutex::Free, "for a character"},
        {"created.setText",
         cursor + atCursor,
         atCursor,
         nullptr,
         {},
         T::Roads::Tcp,
         T::Mutex::Free,
         "that stands"},
        {"created.setText",
         cursor + atCursor,
         "q",
         nullptr,
         {},
         T::Roads::Both,
         T::Mutex::Free,
         "that is typed into"},
        {"created.column", cursor + atCursor, atCursor},
        {"created.row", cursor + atCursor, "q"},
        {"created.text", cursor + atCursor + "q", "q"},
        {"created.text",
         line + line,
         {},
         [](HookedHost& host) { host.runner->clearEmptyTexts(); },
         {},
         T::Roads::Tcp,
         T::Mutex::Free,
         "looked through"},

        // The rest of the host.
        {"backend.setOverlayVisible", {}, frame(Execute, 0x80), nullptr, {}, T::Roads::Both},
        {"clock.setDateTime", {}, frame(Write, 0x40, hex("01021412"))},
        {"clock.setTime", {}, frame(Write, 0x50, hex("010203")), nullptr, {}, T::Roads::Tcp},
        {"reel.sectionDistance",
         {},
         frame(Read, 0x30),
         nullptr,
         frame(Read, 0x30, QByteArray(4, '\0')),
         T::Roads::Both},
        {"camera.laserCalibration",
         {},
         frame(Read, 0xFD, hex("01")),
         nullptr,
         frame(Read, 0xFD, '\x01' + QByteArray(8, '\0'))},
        {"sensor.position", {}, frame(Read, 0xD4), nullptr, frame(Read, 0xD4, QByteArray(28, '\0'))},
        {"sensor.angle", {}, frame(Read, 0xD4), nullptr, frame(Read, 0xD4, QByteArray(28, '\0'))},
        {"crawler.crawlerPitch",
         {},
         {},
         [](HookedHost& host) {
             emit host.crawler->crawlerPitchChanged();
         }},
    };
    return triggers;
}

inline QByteArray nameOf(const HostTrigger& trigger)
{
    return *trigger.variant ? QByteArray(trigger.point) + ' ' + trigger.variant : QByteArray(trigger.point);
}

} // namespace Tolvar::Varundo::Test

#endif
