#include <Tolvar/Varundo/ExecuteCommandParser.h>

#include "CommandTable.h"
#include "ParserLog.h"

#include <Tolvar/Varundo/DataManager.h>

namespace Tolvar::Varundo {

namespace {

using Handler = void (*)(ExecuteCommandParser&, DataManager&);
using Setter = void (DataManager::*)(bool);
using Getter = bool (DataManager::*)() const;
using Action = void (ExecuteCommandParser::*)();

template <Setter set>
void on(ExecuteCommandParser&, DataManager& model)
{
    (model.*set)(true);
}

template <Setter set>
void off(ExecuteCommandParser&, DataManager& model)
{
    (model.*set)(false);
}

template <Setter set, Getter get>
void toggle(ExecuteCommandParser&, DataManager& model)
{
    (model.*set)(!(model.*get)());
}

template <Action action>
void announce(ExecuteCommandParser& parser, DataManager&)
{
    (parser.*action)();
}

using D = DataManager;
using P = ExecuteCommandParser;

// clang-format off
constexpr CommandRow<Handler> rows[] = {
    {0x30, on<&D::setMeterCounter1Visible>},       {0x31, off<&D::setMeterCounter1Visible>},       {0x32, toggle<&D::setMeterCounter1Visible, &D::meterCounter1Visible>},
    {0x36, on<&D::setMeterCounter2Visible>},       {0x37, off<&D::setMeterCounter2Visible>},       {0x38, toggle<&D::setMeterCounter2Visible, &D::meterCounter2Visible>},
    {0x39, on<&D::setMeterCounter3Visible>},       {0x3A, off<&D::setMeterCounter3Visible>},       {0x3B, toggle<&D::setMeterCounter3Visible, &D::meterCounter3Visible>},
    {0x40, on<&D::setDateVisible>},                {0x41, off<&D::setDateVisible>},                {0x42, toggle<&D::setDateVisible, &D::dateVisible>},
    {0x50, on<&D::setTimeVisible>},                {0x51, off<&D::setTimeVisible>},                {0x52, toggle<&D::setTimeVisible, &D::timeVisible>},
    {0x70, on<&D::setVideoCounterVisible>},        {0x71, off<&D::setVideoCounterVisible>},        {0x72, toggle<&D::setVideoCounterVisible, &D::videoCounterVisible>},
    {0x80, announce<&P::executeScreenOverlayOn>},
    {0x81, announce<&P::executeScreenOverlayOff>},
    {0x88, announce<&P::executeScreenOverlayClearEdit>},
    {0x90, on<&D::setStatusLine1Visible>},         {0x91, off<&D::setStatusLine1Visible>},         {0x92, toggle<&D::setStatusLine1Visible, &D::statusLine1Visible>},
    {0x93, on<&D::setStatusLine2Visible>},         {0x94, off<&D::setStatusLine2Visible>},         {0x95, toggle<&D::setStatusLine2Visible, &D::statusLine2Visible>},
    {0x96, on<&D::setStatusLine3Visible>},         {0x97, off<&D::setStatusLine3Visible>},         {0x98, toggle<&D::setStatusLine3Visible, &D::statusLine3Visible>},
    {0x99, on<&D::setStatusLine4Visible>},         {0x9A, off<&D::setStatusLine4Visible>},         {0x9B, toggle<&D::setStatusLine4Visible, &D::statusLine4Visible>},
    {0xB8, on<&D::setCrawlerTemperatureVisible>},  {0xB9, off<&D::setCrawlerTemperatureVisible>},  {0xBA, toggle<&D::setCrawlerTemperatureVisible, &D::crawlerTemperatureVisible>},
    {0xBB, on<&D::setCrawlerPressureVisible>},     {0xBC, off<&D::setCrawlerPressureVisible>},     {0xBD, toggle<&D::setCrawlerPressureVisible, &D::crawlerPressureVisible>},
    {0xCC, on<&D::setCableSpeedVisible>},          {0xCD, off<&D::setCableSpeedVisible>},          {0xCE, toggle<&D::setCableSpeedVisible, &D::cableSpeedVisible>},
    {0xD4, announce<&P::execute3dMeasurementMainPipeActivate>},
    {0xD5, announce<&P::execute3dMeasurementLateralActivate>},
    {0xD6, announce<&P::execute3dMeasurementDeactivate>},
    {0xDA, on<&D::setExtTemperatureVisible>},      {0xDB, off<&D::setExtTemperatureVisible>},      {0xDC, toggle<&D::setExtTemperatureVisible, &D::extTemperatureVisible>},
    {0xDD, on<&D::setCrawlerRollVisible>},         {0xDE, off<&D::setCrawlerRollVisible>},         {0xDF, toggle<&D::setCrawlerRollVisible, &D::crawlerRollVisible>},
    {0xF0, on<&D::setPanVisible>},                 {0xF1, off<&D::setPanVisible>},                 {0xF2, toggle<&D::setPanVisible, &D::panVisible>},
    {0xF3, on<&D::setTiltVisible>},                {0xF4, off<&D::setTiltVisible>},                {0xF5, toggle<&D::setTiltVisible, &D::tiltVisible>},
    {0xF6, on<&D::setCameraTemperatureVisible>},   {0xF7, off<&D::setCameraTemperatureVisible>},   {0xF8, toggle<&D::setCameraTemperatureVisible, &D::cameraTemperatureVisible>},
    {0xF9, on<&D::setPressureVisible>},            {0xFA, off<&D::setPressureVisible>},            {0xFB, toggle<&D::setPressureVisible, &D::pressureVisible>},
    {0xFC, on<&D::setInclinationVisible>},         {0xFD, off<&D::setInclinationVisible>},         {0xFE, toggle<&D::setInclinationVisible, &D::inclinationVisible>},
};
// clang-format on
static_assert(idsAscend(rows), "the rows are sorted by id");

constexpr CommandTable commands(rows);

} // namespace

ExecuteCommandParser::ExecuteCommandParser(DataManager* dataManager, QObject* parent)
    : QObject(parent)
    , m_dataManager(dataManager)
{}

void ExecuteCommandParser::parseCommandMessage(CommandMessage cmdmsg)
{
    if (const Handler handler = commands.find(cmdmsg.cmdId)) {
        handler(*this, *m_dataManager);
    } else {
        logUnknownCommand("execute", cmdmsg.cmdId);
    }
}

} // namespace Tolvar::Varundo
