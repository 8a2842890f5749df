#include "SessionPlayer.h"

#include "ControllerLink.h"
#include "ExampleUnit.h"
#include "UnitCheck.h"

#include <QMetaEnum>
#include <QTest>

namespace Tolvar::Varundo::Tests {

namespace {

/// Within this time texts without anything to show are gone from the overlay, with time to spare.
constexpr int CleanUpPatienceMs = 10 * Runner::CleanUpIntervalMs;

QString inHex(const QByteArray& bytes)
{
    constexpr int MaxShown = 200;
    const QByteArray shown = bytes.left(MaxShown).toHex(' ').toUpper();
    return bytes.isEmpty()
               ? QStringLiteral("nothing")
               : QString::fromLatin1(shown) + QLatin1String(bytes.size() > MaxShown ? " ..." : "");
}

QString notTold(const QString& what)
{
    return QStringLiteral("\"%1\" is nothing that happens at a unit").arg(what);
}

} // namespace

SessionPlayer::SessionPlayer() = default;
SessionPlayer::~SessionPlayer() = default;

QString SessionPlayer::play(const SessionScript& script)
{
    if (!script.error().isEmpty()) {
        return script.error();
    }
    QString failure = startUnit();
    for (int i = 0; i < script.steps().size() && failure.isEmpty(); ++i) {
        failure = playStep(script, i);
        if (!failure.isEmpty()) {
            failure.prepend(script.place(script.steps().at(i)));
        }
    }
    if (failure.isEmpty()) {
        failure = olderControllersFailure();
        if (!failure.isEmpty()) {
            failure.prepend(script.place(script.steps().last()));
        }
    }
    m_links.clear();
    m_unit.reset();
    return failure;
}

QString SessionPlayer::playStep(const SessionScript& script, int index)
{
    const SessionScript::Step& step = script.steps().at(index);
    switch (step.action) {
    case SessionScript::Action::Send:
        return send(script, index);
    case SessionScript::Action::Expect:
        return {}; // compared when the bytes before it were sent
    case SessionScript::Action::Check:
        return check(step);
    case SessionScript::Action::Happen:
        return happen(step);
    case SessionScript::Action::Connect:
        return connectController();
    case SessionScript::Action::Reset:
        return startUnit();
    }
    return {};
}

/// Everything that comes back has to be written in the lines below, to the last byte; without such a line,
/// nothing may come back.
QString SessionPlayer::send(const SessionScript& script, int index)
{
    const SessionScript::Step& step = script.steps().at(index);
    if (!m_links.back()->send(step.bytes)) {
        return QStringLiteral("the unit did not take %1").arg(inHex(step.bytes));
    }
    const QByteArray received = m_links.back()->takeReceived();
    int at = 0;
    for (int next = index + 1;
         next < script.steps().size() && script.steps().at(next).action == SessionScript::Action::Expect;
         ++next) {
        const QString failure = compare(script.steps().at(next), received, at);
        if (!failure.isEmpty()) {
            return failure;
        }
    }
    return at == received.size() ? QString()
                                 : QStringLiteral("unexpected: %1 (received in all: %2)")
                                       .arg(inHex(received.mid(at)), inHex(received));
}

QString SessionPlayer::compare(const SessionScript::Step& expected, const QByteArray& received, int& at) const
{
    QByteArray wanted = expected.bytes;
    for (const int wildcard : expected.wildcards) {
        if (at + wildcard < received.size()) {
            wanted[wildcard] = received.at(at + wildcard);
        }
    }
    const QByteArray found = received.mid(at, wanted.size());
    at += found.size();
    return found == wanted ? QString()
                           : QStringLiteral("expected %1, received %2 (in line %3; received in all: %4)")
                                 .arg(inHex(wanted), inHex(found))
                                 .arg(expected.line)
                                 .arg(inHex(received));
}

/// Only what the unit does by itself, by a timer, is given time; everything else has to be true at once.
QString SessionPlayer::check(const SessionScript::Step& step)
{
    QString failure = UnitCheck(*m_unit, step.words).failure();
    if (step.words.first() == QLatin1String("no")) {
        (void)QTest::qWaitFor(
            [&] {
                failure = UnitCheck(*m_unit, step.words).failure();
                return failure.isEmpty();
            },
            CleanUpPatienceMs);
    }
    return failure;
}

QString SessionPlayer::happen(const SessionScript::Step& step)
{
    const QString what = step.words.join(QLatin1Char(' '));
    if (what == QLatin1String("profile loaded")) {
        m_unit->loadProfile();
        return {};
    }
    if (what == QLatin1String("no position sensor")) {
        m_unit->devices().removePositionSensor();
        return {};
    }
    if (step.words.first() == QLatin1String("interface") && step.words.size() == 2) {
        bool isKey = false;
        const int interface = QMetaEnum::fromType<Runner::SelectedInterface>().keyToValue(
            qPrintable(step.words.last()), &isKey);
        if (isKey) {
            m_unit->runner().setInterface(static_cast<Runner::SelectedInterface>(interface));
        }
        return isKey ? QString() : notTold(what);
    }
    return m_unit->devices().move(step.words) ? QString() : notTold(what);
}

QString SessionPlayer::connectController()
{
    m_links.push_back(std::make_unique<ControllerLink>(m_unit->port()));
    return m_links.back()->isConnected() ? QString()
                                         : QStringLiteral("nobody listens on port %1").arg(m_unit->port());
}

QString SessionPlayer::startUnit()
{
    const QString failure = olderControllersFailure();
    m_links.clear();
    m_unit.reset();
    m_unit = std::make_unique<ExampleUnit>();
    return failure.isEmpty() ? connectController() : failure;
}

/// A controller that was superseded keeps its connection, and hears nothing any more.
QString SessionPlayer::olderControllersFailure()
{
    for (std::size_t i = 0; i + 1 < m_links.size(); ++i) {
        if (!m_links[i]->isConnected()) {
            return QStringLiteral("the connection of controller %1 is gone").arg(i + 1);
        }
        const QByteArray heard = m_links[i]->takeReceived();
        if (!heard.isEmpty()) {
            return QStringLiteral("controller %1, which is not the newest, heard %2")
                .arg(i + 1)
                .arg(inHex(heard));
        }
    }
    return {};
}

} // namespace Tolvar::Varundo::Tests
