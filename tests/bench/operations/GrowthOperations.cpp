#include "BenchUnit.h"
#include "Operation.h"

#include <QCoreApplication>

namespace Tolvar::Varundo::Bench {

namespace {

/// In the same column as all others, so that both coordinates of each are looked at.
QByteArray cursorHome()
{
    return BenchUnit::frame(0x62, Protocol::Write, QByteArray("\0\5", 2));
}

std::shared_ptr<BenchUnit> unitWithTexts(int count)
{
    auto unit = std::make_shared<BenchUnit>();
    unit->makeCustomTexts(count);
    unit->feed(cursorHome());
    unit->feed("x"); // the text at the cursor, made last
    return unit;
}

/// The text at the cursor does not grow: it is begun anew with each.
Operation typing(int texts)
{
    const auto unit = unitWithTexts(texts);
    const QByteArray request = cursorHome() + 'x';
    return {[unit, request] {
        unit->feed(request);
    }};
}

Operation writingAtCursor(int texts)
{
    const auto unit = unitWithTexts(texts);
    const QByteArray request = BenchUnit::frame(0x95, Protocol::Write, "some text");
    return {[unit, request] {
        unit->feed(request);
    }};
}

Operation cleaningUp(int texts)
{
    const auto unit = unitWithTexts(texts);
    return {[unit] {
        unit->runner->clearEmptyTexts();
    }};
}

Operation togglingAmongBound(int elements)
{
    const auto unit = std::make_shared<BenchUnit>();
    unit->loadProfile(BenchUnit::profileOfBound(elements));
    const QByteArray request = BenchUnit::frame(0x32, Protocol::Execute);
    return {[unit, request] {
        unit->feed(request);
    }};
}

Operation loadingProfile(int elements)
{
    const auto unit = std::make_shared<BenchUnit>();
    const QByteArray profile = BenchUnit::profileOf(elements);
    return {[unit, profile] {
        unit->loadProfile(profile);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }};
}

} // namespace

void addGrowthOperations(std::vector<OperationMaker>& list)
{
    for (const int count : {10, 1000, 100000}) {
        const std::string among = " among " + std::to_string(count);
        list.insert(list.end(), {{"type a character" + among,
                                  [=] {
                                      return typing(count);
                                  }},
                                 {"write at the cursor" + among,
                                  [=] {
                                      return writingAtCursor(count);
                                  }},
                                 {"clean-up tick" + among,
                                  [=] {
                                      return cleaningUp(count);
                                  }},
                                 {"toggle an element" + among,
                                  [=] {
                                      return togglingAmongBound(count);
                                  }},
                                 {"load a profile of " + std::to_string(count), [=] {
                                      return loadingProfile(count);
                                  }}});
    }
}

std::vector<OperationMaker> allOperations()
{
    std::vector<OperationMaker> list;
    addCodecOperations(list);
    addUnitOperations(list);
    addSocketOperations(list);
    addGrowthOperations(list);
    return list;
}

} // namespace Tolvar::Varundo::Bench
