#include "BenchUnit.h"
#include "Operation.h"

#include <Tolvar/Varundo/DataManager.h>

#include <initializer_list>

namespace Tolvar::Varundo::Bench {

namespace {

using Frames = QVector<QByteArray>;

/// Feeds one frame a run, in turn, so that each changes something.
OperationMaker feeding(const std::string& name, const Frames& frames, int codec = DataManager::Latin9)
{
    return {name, [=]() -> Operation {
                const auto unit = std::make_shared<BenchUnit>();
                unit->runner->getDataManager()->setTextCodec(static_cast<DataManager::TextCodec>(codec));
                const auto turn = std::make_shared<int>(0);
                return {[unit, frames, turn] {
                    unit->feed(frames.at(*turn));
                    *turn = (*turn + 1) % frames.size();
                }};
            }};
}

QByteArray write(int command, const QByteArray& payload)
{
    return BenchUnit::frame(command, Protocol::Write, payload);
}

QByteArray read(int command, const QByteArray& payload = {})
{
    return BenchUnit::frame(command, Protocol::Read, payload);
}

Frames statusLine(int codec)
{
    DataManager model;
    model.setTextCodec(static_cast<DataManager::TextCodec>(codec));
    Frames frames;
    for (const char* const text : {"Gr\u00f6\u00dfe pr\u00fcfen, 12 mm", "Riss, l\u00e4ngs, 3 mm  \u2013"}) {
        frames.append(write(0x90, "\1" + model.convertByteArrayFromText(QString::fromUtf8(text))));
    }
    return frames;
}

/// A device says something, and the data model knows it.
template <class Emit>
OperationMaker reporting(const std::string& name, Emit emitReading)
{
    return {name, [=]() -> Operation {
                const auto unit = std::make_shared<BenchUnit>();
                const auto reading = std::make_shared<int>(0);
                return {[unit, reading, emitReading] {
                    *reading = *reading % 90 + 1;
                    emitReading(unit->devices, *reading);
                }};
            }};
}

} // namespace

void addUnitOperations(std::vector<OperationMaker>& list)
{
    const QByteArray line1(1, '\1');
    list.insert(list.end(),
                {feeding("execute: toggle an element", {BenchUnit::frame(0x32, Protocol::Execute)}),
                 feeding("write a position",
                         {write(0x32, QByteArray("\12\2", 2)), write(0x32, QByteArray("\13\3", 2))}),
                 feeding("write a colour pair",
                         {write(0xE5, QByteArray("\0\x1D", 2)), write(0xE5, QByteArray("\0\x2F", 2))}),
                 feeding("write a text in Latin-9", statusLine(DataManager::Latin9), DataManager::Latin9),
                 feeding("write a text in UTF-8", statusLine(DataManager::Utf8), DataManager::Utf8),
                 feeding("write a text in UTF-16", statusLine(DataManager::Utf16), DataManager::Utf16),
                 feeding("read a state", {read(0x31)}), feeding("read a measured value", {read(0xF0)}),
                 feeding("read a distance", {read(0x30)}), feeding("read a text", {read(0x90, line1)}),
                 feeding("an unknown command", {write(0x02, QByteArray("\1\2", 2))}),
                 reporting("a device's signal: pan",
                           [](Test::FakeDevices& devices, int reading) {
                               emit devices.camera.panPositionChanged(static_cast<short>(reading));
                           }),
                 reporting("a device's signal: temperature", [](Test::FakeDevices& devices, int reading) {
                     emit devices.crawler.crawlerTemperatureChanged(reading);
                 })});
}

void addSocketOperations(std::vector<OperationMaker>& list)
{
    const auto talking = [](const std::string& name, const Frames& requests, int replySize) {
        return OperationMaker{name, [=]() -> Operation {
                                  const auto unit = std::make_shared<BenchUnit>();
                                  unit->connectOverTcp();
                                  const auto turn = std::make_shared<int>(0);
                                  return {[=] {
                                      unit->talk(requests.at(*turn), replySize);
                                      *turn = (*turn + 1) % requests.size();
                                  }};
                              }};
    };
    list.insert(list.end(),
                {talking("over TCP: execute", {BenchUnit::frame(0x32, Protocol::Execute)}, 1),
                 talking("over TCP: write a position",
                         {write(0x32, QByteArray("\12\2", 2)), write(0x32, QByteArray("\13\3", 2))}, 1),
                 talking("over TCP: read a measured value", {read(0xF0)}, 11),
                 talking("over TCP: read a state", {read(0x31)}, 11),
                 talking("over TCP: read a text", {read(0x90, QByteArray(1, '\1'))}, 12),
                 talking("over TCP: an unknown command", {write(0x02, QByteArray("\1\2", 2))}, 1)});
}

} // namespace Tolvar::Varundo::Bench
