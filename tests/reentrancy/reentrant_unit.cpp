// reentrant_unit tcp|serial TRIGGER ACTION VERDICT-FILE: a whole unit whose host does one thing from within
// one of the library's calls, and a controller that goes on sending. Exits 0 if every frame was acknowledged
// once and acted upon in order; what went wrong instead stands in the file.

#include "Controller.h"
#include "HookedHost.h"
#include "HookedSettings.h"
#include "HostActions.h"
#include "HostTriggers.h"
#include "Isolation.h"

#include <CApplicationSettings.h>

#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;
using Mavril::VideoOverlay::ElementParam;

namespace {

constexpr int isolationMissing = 77;
constexpr int dialogMs = 30;
constexpr int tcpPort = 20001;

/// Meter counter 3 is set to a number; the host notes which.
QByteArray numbered(quint8 number)
{
    QByteArray payload(4, '\0');
    const float value = number;
    quint32 bits = 0;
    memcpy(&bits, &value, sizeof bits);
    for (int i = 0; i < 4; ++i) {
        payload[i] = static_cast<char>(bits >> (24 - 8 * i) & 0xFF);
    }
    return frame(Protocol::Write, 0x3C, payload);
}

const QByteArray readCodec = frame(Protocol::Read, 0x01);
const QByteArray codecAnswer = frame(Protocol::Read, 0x01, QByteArray(1, '\0'));

/// How many of the bytes' frames are acknowledged; typed characters are not.
int frameCount(const QByteArray& bytes)
{
    int count = 0;
    for (int at = 0; at < bytes.size(); ++at) {
        if (bytes.at(at) == static_cast<char>(Protocol::Stx)) {
            at += Protocol::FrameOverhead - 1 + static_cast<quint8>(bytes.at(at + 3));
            ++count;
        }
    }
    return count;
}

class Trial
{
public:
    Trial(const HostTrigger& trigger, const HostAction& action, Controller& controller)
        : m_trigger(trigger)
        , m_action(action)
        , m_controller(controller)
    {}

    /// Empty when all went well.
    QByteArray run()
    {
        hookSettings(&m_host.points);
        m_host.runner->setZelTcpPort(tcpPort);
        if (!m_controller.arriveAndWait()) {
            return "the unit does not serve its controller";
        }
        m_host.manager->load();
        connectSignals();
        m_controller.send(m_trigger.prepare);
        if (!spinUntil([this] { return m_controller.take().size() == frameCount(m_trigger.prepare); })) {
            return "the preparation was not acknowledged";
        }
        m_controller.forget();
        m_host.points.arm(m_trigger.point, [this] { act(); });
        provoke();
        if (m_complaint.isEmpty() && !m_action.quits) {
            checkAfterwards();
        }
        hookSettings(nullptr);
        return m_complaint;
    }

private:
    bool isInFrame() const { return !m_trigger.call; }
    bool isSerial() const { return dynamic_cast<SerialController*>(&m_controller) != nullptr; }

    void reach(const char* point) { m_host.points.reached(point); }

    template <class Sender, class... Arguments>
    void watch(Sender* sender, void (Sender::*signal)(Arguments...), const char* point)
    {
        QObject::connect(sender, signal, [this, point] { reach(point); });
    }

    void connectSignals()
    {
        Runner* const runner = m_host.runner.get();
        watch(runner, &Runner::execute3dMeasurementMainPipeActivate,
              "Runner::execute3dMeasurementMainPipeActivate");
        watch(runner, &Runner::execute3dMeasurementLateralActivate,
              "Runner::execute3dMeasurementLateralActivate");
        watch(runner, &Runner::execute3dMeasurementDeactivate, "Runner::execute3dMeasurementDeactivate");
        watch(runner, &Runner::setDistanceCounterSection, "Runner::setDistanceCounterSection");
        watch(runner, &Runner::setDistanceCounterSat, "Runner::setDistanceCounterSat");
        watch(runner, &Runner::setDistanceCounterTotal, "Runner::setDistanceCounterTotal");
        watch(runner, &Runner::writeVideoCounter, "Runner::writeVideoCounter");
        watch(runner, &Runner::writeMeasurement3DPosition, "Runner::writeMeasurement3DPosition");
        watch(runner, &Runner::writeMeasurement3DOrientation, "Runner::writeMeasurement3DOrientation");
        watch(runner, &Runner::interfaceChanged, "Runner::interfaceChanged");
        QObject::connect(runner, &Runner::setDistanceCounterTotal, [this](float number) {
            if (number > 0) {
                m_numbers.append(static_cast<char>('0' + static_cast<int>(number)));
            }
        });

        DataManager* const model = runner->getDataManager();
        watch(model, &DataManager::meterCounter1PositionChanged, "model.meterCounter1PositionChanged");
        watch(model, &DataManager::meterCounter1VisibleChanged, "model.meterCounter1VisibleChanged");
        watch(model, &DataManager::meterCounter1ColorPairChanged, "model.meterCounter1ColorPairChanged");
        watch(model, &DataManager::statusLine1TextChanged, "model.statusLine1TextChanged");
        watch(model, &DataManager::lineTextChanged, "model.lineTextChanged");
        watch(model, &DataManager::cursorPositionChanged, "model.cursorPositionChanged");
        watch(model, &DataManager::extTemperatureFormatChanged, "model.extTemperatureFormatChanged");
        watch(model, &DataManager::inclinationFormatChanged, "model.inclinationFormatChanged");
        watch(model, &DataManager::cableSpeedValueChanged, "model.cableSpeedValueChanged");
        watch(model, &DataManager::panPositionVvalueChanged, "model.panPositionVvalueChanged");
        watch(model, &DataManager::inclinationValueChanged, "model.inclinationValueChanged");

        using Manager = Mavril::VideoOverlay::CVideoOverlayManager;
        Manager* const manager = m_host.manager.get();
        watch(manager, &Manager::profileLoaded, "manager.profileLoaded");
        watch(manager, &Manager::beforeRemoveElements, "manager.beforeRemoveElements");
        watch(manager, &Manager::beforeRemoveElement, "manager.beforeRemoveElement");
    }

    /// In one read: what makes the library call, and what comes behind it.
    void provoke()
    {
        m_controller.send(m_trigger.frame + numbered(1) + numbered(2) + readCodec);
        if (m_action.quits) {
            QTimer::singleShot(0, QCoreApplication::instance(), [this] {
                if (m_trigger.call) {
                    m_trigger.call(m_host);
                }
            });
            if (QCoreApplication::exec() != 0 || !m_host.points.isLeft()) {
                m_complaint = "the application did not end as it was told";
            }
            return;
        }
        if (m_trigger.call) {
            m_trigger.call(m_host);
        }
        if (!spinUntil([this] { return m_host.points.isLeft(); })) {
            m_complaint = "the host was never called";
        }
    }

    /// The host, from within the library's call.
    void act()
    {
        m_action.act(m_host);
        if (m_trigger.mutex == HostTrigger::Mutex::Held) {
            m_controller.send(numbered(3) + numbered(4));
            return;
        }
        if (m_action.controller == HostAction::End::ReplacedInDialog) {
            spin(dialogMs);
            if (isSerial()) {
                m_controller.leave();
            }
            if (!m_controller.arrive()) {
                m_complaint = "the other controller could not come";
            }
            spin(dialogMs);
        }
        m_controller.send(numbered(3) + numbered(4));
        spin(dialogMs);
        checkWithin();
        if (m_action.controller == HostAction::End::LeavesInDialog) {
            m_controller.leave();
            spin(dialogMs);
        }
    }

    /// A frame's processing ends before the next one's begins, however long the host takes.
    void checkWithin()
    {
        if (!isInFrame() || m_action.quits || m_trigger.point == QByteArray("created.text")) {
            return;
        }
        if (!m_numbers.isEmpty()) {
            m_complaint = "frames were acted upon within a frame: " + m_numbers;
        }
    }

    QByteArray expectedReplies() const
    {
        QByteArray replies(frameCount(m_trigger.frame), static_cast<char>(Protocol::Ack));
        const bool sensorGone = m_action.name == QByteArray("takes the devices away") &&
                                m_trigger.point == QByteArray("sensor.position");
        // What is asked for already is answered on the line also when the line is not listened to any more.
        const bool isAnswered =
            m_action.servesOn || (isSerial() && m_action.name == QByteArray("selects Udp"));
        if (isAnswered && !sensorGone) {
            replies += m_trigger.answer;
        }
        replies += Ack + Ack + Ack;
        if (m_action.servesOn) {
            replies += codecAnswer;
        }
        return replies + Ack + Ack;
    }

    void checkAfterwards()
    {
        const QByteArray lateLine = frame(Protocol::Write, 0x98, "\x09late");
        const QByteArray lateMove = frame(Protocol::Write, 0x38, QByteArray::fromHex("0708"));
        QByteArray replies = expectedReplies();
        if (m_action.controller == HostAction::End::LeavesInDialog) {
            spin(dialogMs);
            if (!m_controller.arriveAndWait()) {
                m_complaint = "the unit does not serve the next controller";
                return;
            }
            replies.clear();
        } else if (m_action.controller == HostAction::End::ReplacedInDialog && isSerial()) {
            // What the adapter that was pulled had brought is acted upon, but its replies have nowhere to go.
            spinUntil([this] { return m_controller.take().endsWith(Ack + Ack); });
            m_controller.forget();
            replies.clear();
        }
        m_controller.send(numbered(5) + lateMove + lateLine + numbered(6) + frame(Protocol::Execute, 0x81));
        replies += QByteArray(5, static_cast<char>(Protocol::Ack));
        spinUntil([&] { return m_controller.take().size() >= replies.size(); }, 5000);
        spin(5);
        if (m_controller.take() != replies) {
            m_complaint = "replies " + m_controller.take().toHex() + ", expected " + replies.toHex();
            return;
        }
        const QByteArray numbers = m_action.servesOn ? "123456" : "";
        if (m_numbers != numbers) {
            m_complaint = "acted upon " + m_numbers + ", expected " + numbers;
            return;
        }
        if (m_action.servesOn && m_host.manager) {
            checkOverlay();
        }
    }

    void checkOverlay()
    {
        const auto* const moved = m_host.manager->text(ElementParam::NAME_SAT_DISTANCE_COUNTER);
        if (moved && m_host.accessor && (moved->column() != 7 || moved->row() != 8)) {
            m_complaint = "the element does not follow the model any more";
            return;
        }
        const auto elements = m_host.manager->elements();
        if (m_host.manager->makesTexts && !std::any_of(elements.begin(), elements.end(), isLateLine)) {
            m_complaint = "a line was not written";
            return;
        }
        m_controller.forget();
        m_controller.send(frame(Protocol::Execute, 0x88));
        spinUntil([this] { return m_controller.take() == Ack; });
        for (auto* const element : m_host.manager->elements()) {
            if (static_cast<HookedText*>(element)->isCreated()) {
                m_complaint = "a text was lost sight of";
            }
        }
    }

    static bool isLateLine(Mavril::VideoOverlay::CVideoOverlayElement* element)
    {
        return static_cast<HookedText*>(element)->text() == QLatin1String("late");
    }

    const HostTrigger& m_trigger;
    const HostAction& m_action;
    Controller& m_controller;
    QByteArray m_numbers;
    QByteArray m_complaint;
    HookedHost m_host; // goes first
};

template <class Row>
const Row* rowNamed(const std::vector<Row>& rows, const QByteArray& name)
{
    const auto row =
        std::find_if(rows.begin(), rows.end(), [&](const Row& one) { return nameOf(one) == name; });
    return row == rows.end() ? nullptr : &*row;
}

} // namespace

int main(int argc, char** argv)
{
    alarm(240); // who hangs is ended
    const QGuiApplication application(argc, argv);
    const auto* const trigger = argc == 5 ? rowNamed(hostTriggers(), argv[2]) : nullptr;
    const auto* const action = argc == 5 ? rowNamed(hostActions(), argv[3]) : nullptr;
    if (!trigger || !action) {
        std::fprintf(stderr, "usage: reentrant_unit tcp|serial TRIGGER ACTION VERDICT-FILE\n");
        return 2;
    }
    const bool serial = argv[1] == QByteArray("serial");
    if (!hasOwn("net") || !hasOwn("dev")) {
        return isolationMissing;
    }
    CApplicationSettings::instance()->setCustomSetting(
        QStringLiteral("ZEL_INTERFACE"), serial ? QStringLiteral("Serial") : QStringLiteral("Tcp"));
    std::unique_ptr<Controller> controller;
    if (serial) {
        controller = std::make_unique<SerialController>();
    } else {
        controller = std::make_unique<TcpController>(tcpPort);
    }
    const QByteArray complaint = Trial(*trigger, *action, *controller).run();
    QFile verdict(QFile::decodeName(argv[4]));
    if (!complaint.isEmpty() && verdict.open(QIODevice::WriteOnly)) {
        verdict.write(complaint + '\n');
    }
    return complaint.isEmpty() ? 0 : 1;
}
