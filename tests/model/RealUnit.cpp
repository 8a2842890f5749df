#include "RealUnit.h"

#include "ProfileJson.h"

#include <Mavril/SystemDateTime.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QTimerEvent>

namespace Tolvar::Varundo::Model {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;

namespace {

constexpr int Never = 24 * 3600 * 1000;

void fire(QTimer& timer)
{
    QTimerEvent itIsTime(timer.timerId());
    QCoreApplication::sendEvent(&timer, &itIsTime);
}

} // namespace

RealUnit::RealUnit()
{
    QCoreApplication::setApplicationVersion(QStringLiteral("3.1"));
    m_settings.storeInterface(QStringLiteral("Tcp"));
    Mavril::SystemDateTime::install(this);
    m_overlay.setElementAccessor(&m_accessor);
    m_runner =
        std::make_unique<Runner>(static_cast<CVideoOverlayControlBackend*>(this), &m_overlay, &m_accessor);
    listenToRunner();
    takeOverCleaning();
    static_cast<void>(
        apply(happening(Step::Kind::SetClock, ClockAtStart[3],
                        {static_cast<double>(ClockAtStart[0]), static_cast<double>(ClockAtStart[1]),
                         static_cast<double>(ClockAtStart[2]), 0})));
    connectController();
}

/// The Runner's server outlives it; moved to any other port, it leaves the usual one to the next unit.
RealUnit::~RealUnit()
{
    m_controller.reset();
    m_runner->setZelTcpPort(0);
    m_runner.reset();
    Mavril::SystemDateTime::install(nullptr);
    QCoreApplication::processEvents();
}

/// The Runner's timer is put off, so that a step, not the machine's speed, decides when it fires.
void RealUnit::takeOverCleaning()
{
    constexpr int Usual = 200;
    m_cleaning = m_runner->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    if (m_cleaning == nullptr || !m_cleaning->isActive() || m_cleaning->interval() != Usual) {
        m_problem = QStringLiteral("the unit does not look for empty texts every 200 ms");
        return;
    }
    m_cleaning->setInterval(Never);
}

void RealUnit::connectController()
{
    auto controller = std::make_unique<Tests::ControllerLink>(static_cast<quint16>(m_runner->zelTcpPort()));
    if (!controller->isConnected()) {
        m_problem = QStringLiteral("no connection");
    }
    m_controller = std::move(controller);
}

bool RealUnit::apply(const Step& step)
{
    m_replies.clear();
    m_told.clear();
    switch (step.kind) {
    case Step::Kind::Send:
        send(step.bytes());
        break;
    case Step::Kind::Read:
        read(static_cast<Reading>(step.which), step.numbers);
        break;
    case Step::Kind::LoadProfile:
        loadProfile(step.which);
        break;
    case Step::Kind::RemoveProfile:
        m_overlay.removeProfile();
        break;
    case Step::Kind::CleanUp:
        fire(*m_cleaning);
        break;
    case Step::Kind::HideTimedOut:
        hideTimedOut();
        break;
    case Step::Kind::MoveElement:
    case Step::Kind::SwitchElement:
    case Step::Kind::EditText:
    case Step::Kind::DeleteElement:
        editElement(step);
        break;
    case Step::Kind::SelectInterface:
        m_runner->setInterface(static_cast<Runner::SelectedInterface>(step.which));
        break;
    case Step::Kind::Connect:
        connectController();
        break;
    case Step::Kind::SetClock:
        m_clock.reset();
        m_clock.emplace(QDateTime(QDate(static_cast<int>(step.numbers[0]), static_cast<int>(step.numbers[1]),
                                        static_cast<int>(step.numbers[2])),
                                  QTime(0, 0).addSecs(step.which)));
        break;
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    putOffTimeouts();
    return m_problem.isEmpty();
}

/// Texts that show for a while hide when a step says so, not when the machine has taken long enough.
void RealUnit::putOffTimeouts()
{
    for (QTimer* const timer : timeouts()) {
        if (timer->interval() != Never) {
            timer->start(Never);
        }
    }
}

void RealUnit::hideTimedOut()
{
    for (QTimer* const timer : timeouts()) {
        fire(*timer);
    }
}

/// The timers that run.
QList<QTimer*> RealUnit::timeouts() const
{
    QList<QTimer*> timers;
    for (CVideoOverlayElement* const element : elements()) {
        const auto* const text = qobject_cast<CVideoOverlayText*>(element);
        auto* const timer = text != nullptr && text->timeout() > 0 ? text->findChild<QTimer*>() : nullptr;
        if (timer != nullptr && timer->isActive()) {
            timers.append(timer);
        }
    }
    return timers;
}

void RealUnit::send(const Bytes& bytes)
{
    const QByteArray sent(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
    if (!sent.isEmpty() && !m_controller->send(sent)) {
        m_problem = QStringLiteral("the unit does not take what is sent");
    }
    m_replies = m_controller->takeReceived();
}

void RealUnit::loadProfile(int variant)
{
    QString error;
    if (!m_overlay.loadProfileData(profileJson(profileVariant(variant)), QStringLiteral("profile"), &error)) {
        m_problem = error;
    }
}

void RealUnit::editElement(const Step& step)
{
    const auto all = elements();
    if (all.isEmpty()) {
        return;
    }
    CVideoOverlayElement* const element = all.at(step.which % all.size());
    if (step.kind == Step::Kind::MoveElement) {
        element->setColumn(static_cast<int>(step.numbers[0]));
        element->setRow(static_cast<int>(step.numbers[1]));
    } else if (step.kind == Step::Kind::SwitchElement) {
        element->setEnabled(step.numbers[0] != 0.0);
    } else if (step.kind == Step::Kind::DeleteElement) {
        m_overlay.deleteElementFromModel(element);
    } else if (auto* const text = qobject_cast<CVideoOverlayText*>(element)) {
        text->setText(
            QString::fromUtf16(HostTexts[static_cast<std::size_t>(step.numbers[0]) % HostTexts.size()]));
    }
}

} // namespace Tolvar::Varundo::Model
