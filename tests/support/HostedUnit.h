#ifndef TOLVAR_VARUNDO_TEST_HOSTEDUNIT_H
#define TOLVAR_VARUNDO_TEST_HOSTEDUNIT_H

#include "FakeDevices.h"
#include "Isolation.h"
#include "RecordingHost.h"
#include "RecordingOverlayManager.h"
#include "StoredSettings.h"

#include <Mavril/VideoOverlay/ElementParam.h>
#include <Tolvar/Varundo/CommandParser.h>
#include <Tolvar/Varundo/DataManager.h>
#include <Tolvar/Varundo/Protocol.h>
#include <Tolvar/Varundo/Runner.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QVariant>

#include <memory>
#include <optional>
#include <vector>

namespace Tolvar::Varundo::Test {

/// No two Runners of a program can listen on one port: their TCP servers outlive them.
inline int portOfItsOwn()
{
    static int lastPort = 20000;
    return ++lastPort;
}

/// A host of recording parts, and the Runner in it.
class HostedUnit
{
public:
    /// Whose devices the Runner finds: a complete set of the host's, or what the test has installed, if
    /// anything.
    enum class Devices : quint8 { Complete, OfTheTest };

    explicit HostedUnit(const QString& storedInterface = QStringLiteral("Tcp"),
                        Devices whose = Devices::Complete)
        : manager(log)
    {
        if (whose == Devices::Complete) {
            m_devices.emplace();
        }
        settings.storeInterface(storedInterface);
        runner = std::make_unique<Runner>(&backend, &manager, &accessor);
        runner->setZelTcpPort(port);
    }

    DataManager& model() const { return *runner->getDataManager(); }

    /// A command as if it had come over the selected interface.
    void command(Protocol::Group group, quint8 id, const QByteArray& payload = QByteArray())
    {
        runner->findChild<CommandParser*>()->onCommandMessageReceived(
            CommandMessage{id, group, static_cast<quint16>(payload.size()), payload});
    }

    /// A text of the profile with one parameter, under its key.
    RecordingText* addText(const QString& name, const QString& parameter, const QVariant& value)
    {
        auto* const text = add<RecordingText>(name);
        text->getParamObject().insert(parameter, value);
        registerUnderItsKey(text);
        return text;
    }
    RecordingText* addBoundText(const QString& column)
    {
        return addText(column, Mavril::VideoOverlay::ElementParam::NAME_COLUMNBOUND, column);
    }
    template <class Element>
    Element* add(const QString& name)
    {
        auto element = std::make_unique<Element>(name, log);
        Element* const added = element.get();
        m_profile.push_back(std::move(element));
        manager.elements.append(added);
        return added;
    }
    void registerUnderItsKey(Mavril::VideoOverlay::CVideoOverlayElement* element)
    {
        accessor.registerElement(accessor.generateElementKey(element->getParamObject()), element);
    }

    /// The profile is loaded; what it did to the elements is forgotten.
    void loadProfile()
    {
        emit manager.profileLoaded();
        discardCalls();
    }
    void discardCalls() { static_cast<void>(log.take()); }

    StoredSettings settings;
    CallLog log;
    RecordingControlBackend backend;
    RecordingOverlayManager manager;
    ZelVideoOverlayElementAccessor accessor;
    const int port = portOfItsOwn();

private:
    std::optional<FakeDevices> m_devices;
    std::vector<std::unique_ptr<Mavril::VideoOverlay::CVideoOverlayElement>> m_profile;

public:
    std::unique_ptr<Runner> runner; // goes first
};

} // namespace Tolvar::Varundo::Test

#endif
