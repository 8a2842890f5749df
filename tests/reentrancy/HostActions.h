#ifndef TOLVAR_VARUNDO_TEST_HOSTACTIONS_H
#define TOLVAR_VARUNDO_TEST_HOSTACTIONS_H

#include "Controller.h"
#include "HookedHost.h"

#include <QCoreApplication>

#include <vector>

namespace Tolvar::Varundo::Test {

/// What a host does when the library calls it. Afterwards it shows a dialog, whatever it did.
struct HostAction
{
    enum class End : quint8 { Stays, LeavesInDialog, ReplacedInDialog };

    const char* name;
    void (*act)(HookedHost&) = nullptr;
    End controller = End::Stays;
    bool servesOn = true;       ///< whether later frames are acted upon, over the same road
    bool touchesOverlay = true; ///< not to be done by who is called with the overlay's mutex held
    bool quits = false;

    /// Tried with every trigger; the others with one of each kind.
    bool isHarsh() const
    {
        for (const char* const harsh :
             {"deletes all elements", "loads a profile", "selects the other road", "selects Udp and back",
              "destroys the Runner", "destroys the overlay"}) {
            if (qstrcmp(name, harsh) == 0) {
                return true;
            }
        }
        return false;
    }
};

inline void destroyFromDialog(HookedHost& host)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&host] { host.runner.reset(); }, Qt::QueuedConnection);
}

/// The road that is not in use.
inline void selectOtherRoad(HookedHost& host)
{
    host.runner->setInterface(host.runner->interface() == Runner::Tcp ? Runner::Serial : Runner::Tcp);
}

inline void changePortAndBaudRate(HookedHost& host)
{
    host.runner->setZelTcpPort(host.runner->zelTcpPort() + 1);
    host.runner->setBaudrate(19200);
}

inline const std::vector<HostAction>& hostActions()
{
    using A = HostAction;
    static const std::vector<HostAction> actions{
        {"shows a dialog", [](HookedHost&) {}, A::End::Stays, true, false},
        {"shows a dialog, and the controller goes", [](HookedHost&) {}, A::End::LeavesInDialog},
        {"shows a dialog, and another controller comes", [](HookedHost&) {}, A::End::ReplacedInDialog},
        {"deletes all elements",
         [](HookedHost& host) {
             for (auto* const element : host.manager->elements()) {
                 host.manager->deleteElementFromModel(element);
             }
         }},
        {"deletes all elements without a word",
         [](HookedHost& host) {
             for (auto* const element : host.manager->elements()) {
                 host.manager->drop(element);
             }
         }},
        {"clears the custom texts",
         [](HookedHost& host) {
             host.runner->clearCustomElements();
         }},
        {"makes no more texts",
         [](HookedHost& host) {
             host.manager->makesTexts = false;
         }},
        {"selects the other road", selectOtherRoad, A::End::Stays, false, false},
        {"selects Udp", [](HookedHost& host) { host.runner->setInterface(Runner::Udp); }, A::End::Stays,
         false, false},
        {"selects Udp and back",
         [](HookedHost& host) {
             const auto selected = host.runner->interface();
             host.runner->setInterface(Runner::Udp);
             host.runner->setInterface(selected);
         },
         A::End::Stays, true, false},
        {"changes port and baud rate", changePortAndBaudRate, A::End::Stays, true, false},
        {"loads a profile",
         [](HookedHost& host) {
             host.manager->load();
         }},
        {"removes the profile",
         [](HookedHost& host) {
             host.manager->remove();
         }},
        {"destroys the Runner", [](HookedHost& host) { host.runner.reset(); }, A::End::Stays, false, false},
        {"destroys the Runner from the dialog", destroyFromDialog, A::End::Stays, false},
        {"destroys the accessor",
         [](HookedHost& host) {
             host.accessor.reset();
         }},
        {"destroys the overlay",
         [](HookedHost& host) {
             host.manager.reset();
         }},
        {"takes the devices away", [](HookedHost& host) { host.takeDevicesAway(); }, A::End::Stays, true,
         false},
        {"quits", [](HookedHost&) { QCoreApplication::quit(); }, A::End::Stays, false, false, true},
    };
    return actions;
}

inline QByteArray nameOf(const HostAction& action)
{
    return action.name;
}

} // namespace Tolvar::Varundo::Test

#endif
