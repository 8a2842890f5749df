// mistaken_host MISTAKE VERDICT-FILE: a unit whose host does in a call of the library's what it may not, or
// what it may and is much like it. Exits 0 if it came to that and the unit went on; what it was stopped with
// stands in the file.

#include "Controller.h"
#include "HookedHost.h"
#include "HookedSettings.h"
#include "Isolation.h"

#include <CApplicationSettings.h>
#include <Tolvar/Varundo/CommandParser.h>
#include <Tolvar/Varundo/DataManager.h>
#include <Tolvar/Varundo/ExecuteCommandParser.h>
#include <Tolvar/Varundo/ReadCommandParser.h>
#include <Tolvar/Varundo/ReadCommandResponder.h>
#include <Tolvar/Varundo/WriteCommandParser.h>

#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <map>
#include <unistd.h>

using namespace Tolvar::Varundo;
using namespace Tolvar::Varundo::Test;

namespace {

QString verdictFile;

void noteFatal(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    QFile verdict(verdictFile);
    if (type == QtFatalMsg && verdict.open(QIODevice::WriteOnly)) {
        verdict.write(text.toUtf8());
    }
}

constexpr const char* Listed = "manager.getElementList";
constexpr const char* Read = "bound.column";

/// A whole unit without its clean-up, so that nothing comes in but what is wanted, and its controller.
struct Unit
{
    Unit() { cleanUp().stop(); }

    QTimer& cleanUp() { return *host.runner->findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly); }

    /// Whether the host came to do it, and was not stopped.
    template <class Deed>
    bool within(const char* point, const Deed& deed)
    {
        bool isDone = false;
        host.manager->load();
        host.points.arm(point, [&] { isDone = deed(); });
        emit host.manager->profileLoaded();
        return isDone;
    }

    [[nodiscard]] bool isServed()
    {
        controller.send(inertFrame());
        const bool served = spinUntil([this] { return controller.take() == Ack; });
        controller.forget();
        return served;
    }

    template <class Owned>
    bool deleteOwned()
    {
        return inSignal([this] { delete host.runner->findChild<Owned*>(); });
    }

    template <class Deed>
    bool inSignal(const Deed& deed)
    {
        bool isDone = false;
        QObject::connect(host.runner.get(), &Runner::interfaceChanged, [&] {
            deed();
            isDone = true;
        });
        host.runner->setInterface(Runner::Udp);
        return isDone;
    }

    HookedHost host;
    TcpController controller{9998};
};

bool frameComes(const char* point)
{
    Unit unit;
    return unit.controller.arriveAndWait() && unit.within(point, [&] { return unit.isServed(); });
}

bool frameComesOverAnUnselectedRoad()
{
    Unit unit;
    unit.host.runner->setInterface(Runner::Serial);
    return unit.controller.arriveAndWait() && unit.within(Listed, [&] { return unit.isServed(); });
}

bool characterComes()
{
    Unit unit;
    unit.host.manager->makesTexts = false;
    return unit.controller.arriveAndWait() && unit.within(Listed, [&] {
        unit.controller.send("q");
        return unit.isServed();
    });
}

bool cleanUpComes()
{
    Unit unit;
    unit.cleanUp().start();
    return unit.within(Listed, [] {
        spin(3 * Runner::CleanUpIntervalMs);
        return true;
    });
}

/// What is done by one call, and not by what an event loop brings.
bool isDoneWithin(const char* point, void (*deed)(HookedHost&))
{
    Unit unit;
    return unit.within(point, [&] {
        deed(unit.host);
        return true;
    });
}

bool eventLoopTurnsAfterReading()
{
    Unit unit;
    return unit.controller.arriveAndWait() && unit.within(Listed, [] { return true; }) && unit.isServed();
}

/// The profile goes while it is bound, and the Runner's work ends early.
bool eventLoopTurnsAfterBindingEndedEarly()
{
    Unit unit;
    HookedHost& host = unit.host;
    const auto changed = &DataManager::meterCounter1PositionChanged;
    host.manager->load();
    QObject::connect(host.runner->getDataManager(), changed, [&] { host.points.reached("model"); });
    host.manager->elements().first()->setRow(9);
    bool isServed = false;
    host.points.arm("model", [&] {
        host.manager->remove();
        isServed = unit.isServed();
    });
    if (!unit.controller.arriveAndWait()) {
        return false;
    }
    emit host.manager->profileLoaded();
    return isServed && unit.isServed();
}

/// A manager that ends itself, and has nothing to give afterwards.
class VanishingManager : public HookedManager
{
public:
    using HookedManager::HookedManager;
    Text* createText() override
    {
        delete this;
        return nullptr;
    }
};

bool managerGoesInCreateText()
{
    HookPoints points;
    const QPointer<HookedManager> manager = new VanishingManager(points, nullptr);
    Runner runner(nullptr, manager, nullptr);
    runner.onPrintableCharReceived('q');
    return !manager;
}

bool managerGoesWhileATextIsMade()
{
    Unit unit;
    unit.host.points.arm("created.setRow", [&] { unit.host.manager.reset(); });
    unit.host.runner->onPrintableCharReceived('q');
    return unit.host.points.isLeft();
}

bool modelIsDeletedWithoutAProfile()
{
    Unit unit;
    unit.host.manager->load();
    unit.host.manager->remove();
    return unit.inSignal([&] { delete unit.host.runner->getDataManager(); });
}

bool modelIsDeletedLater()
{
    Unit unit;
    const QPointer<DataManager> model = unit.host.runner->getDataManager();
    return unit.inSignal([&] { model->deleteLater(); }) && spinUntil([&] { return !model; });
}

template <class Owned>
bool isDeleted()
{
    Unit unit;
    return unit.deleteOwned<Owned>();
}

bool runnerGoesInItsSignal()
{
    Unit unit;
    unit.host.manager->load();
    return unit.inSignal([&] { unit.host.runner.reset(); }) && !unit.host.runner;
}

bool runnerGoesInTheModelsSignal()
{
    Unit unit;
    unit.host.manager->load();
    DataManager* const model = unit.host.runner->getDataManager();
    QObject::connect(model, &DataManager::cursorPositionChanged, [&] { unit.host.runner.reset(); });
    model->setCursorPosition(3, 4);
    return !unit.host.runner;
}

bool runnerGoesWithItsParent()
{
    auto parent = std::make_unique<QObject>();
    const QPointer<Runner> runner = new Runner(nullptr, nullptr, nullptr, parent.get());
    parent.reset();
    return !runner;
}

// clang-format off
const std::map<QByteArray, std::function<bool()>>& deeds()
{
    static const std::map<QByteArray, std::function<bool()>> all{
        {"a frame comes while the elements are listed", [] { return frameComes(Listed); }},
        {"a frame comes over a road that is not selected while the elements are listed", frameComesOverAnUnselectedRoad},
        {"a frame comes while an element is read", [] { return frameComes(Read); }},
        {"a character comes while the elements are listed", characterComes},
        {"the clean-up comes while the elements are listed", cleanUpComes},
        {"texts are cleared while the elements are listed", [] { return isDoneWithin(Listed, [](HookedHost& host) { host.runner->clearCustomElements(); }); }},
        {"a profile is removed while an element is read", [] { return isDoneWithin(Read, [](HookedHost& host) { emit host.manager->beforeRemoveElements(); }); }},
        {"no profile is announced while the elements are listed", [] { return isDoneWithin(Listed, [](HookedHost& host) { host.manager->hasProfile = false; emit host.manager->profileLoaded(); }); }},
        {"the profile is announced while the elements are listed", [] { return isDoneWithin(Listed, [](HookedHost& host) { emit host.manager->profileLoaded(); }); }},
        {"the elements are bound while they are listed", [] { return isDoneWithin(Listed, [](HookedHost& host) { host.runner->connectVarundo(); }); }},
        {"an element is deleted while another is read", [] { return isDoneWithin(Read, [](HookedHost& host) { host.manager->deleteElementFromModel(host.manager->elements().last()); }); }},
        {"an event loop turns while the mutex is asked for", [] { return frameComes("manager.mutex"); }},
        {"an event loop turns when the elements were read", eventLoopTurnsAfterReading},
        {"an event loop turns when nothing was bound to the end", eventLoopTurnsAfterBindingEndedEarly},
        {"the Runner is destroyed while the elements are listed", [] { return isDoneWithin(Listed, [](HookedHost& host) { host.runner.reset(); }); }},
        {"the manager goes in mutex()", [] { return isDoneWithin("manager.mutex", [](HookedHost& host) { host.manager.reset(); }); }},
        {"the manager goes in getElementList()", [] { return isDoneWithin(Listed, [](HookedHost& host) { host.manager.reset(); }); }},
        {"the manager goes in createText()", managerGoesInCreateText},
        {"the manager goes while a text is being made", managerGoesWhileATextIsMade},
        {"the data model is deleted", isDeleted<DataManager>},
        {"the data model is deleted when a profile was removed", modelIsDeletedWithoutAProfile},
        {"the data model is deleted later", modelIsDeletedLater},
        {"the command parser is deleted", isDeleted<CommandParser>},
        {"the execute parser is deleted", isDeleted<ExecuteCommandParser>},
        {"the read parser is deleted", isDeleted<ReadCommandParser>},
        {"the write parser is deleted", isDeleted<WriteCommandParser>},
        {"the responder is deleted", isDeleted<ReadCommandResponder>},
        {"the Runner is destroyed in its own signal", runnerGoesInItsSignal},
        {"the Runner is destroyed in the data model's signal", runnerGoesInTheModelsSignal},
        {"the Runner is destroyed with its parent", runnerGoesWithItsParent},
    };
    return all;
}
// clang-format on

} // namespace

int main(int argc, char** argv)
{
    alarm(240); // who hangs is ended
    const QGuiApplication application(argc, argv);
    const auto deed = argc == 3 ? deeds().find(argv[1]) : deeds().end();
    if (deed == deeds().end()) {
        std::fprintf(stderr, "usage: mistaken_host MISTAKE VERDICT-FILE\n");
        return 2;
    }
    verdictFile = QFile::decodeName(argv[2]);
    qInstallMessageHandler(noteFatal);
    CApplicationSettings::instance()->setCustomSetting(QStringLiteral("ZEL_INTERFACE"),
                                                       QStringLiteral("Tcp"));
    return deed->second() ? 0 : 1;
}
