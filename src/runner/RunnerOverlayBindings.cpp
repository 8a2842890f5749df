#include <Tolvar/Varundo/Runner.h>

#include "HostMistakes.h"
#include "InTurn.h"

#include <Mavril/VideoOverlay/CVideoOverlayManager.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/ElementParam.h>

#include <Tolvar/Varundo/DataManager.h>
#include <Tolvar/Varundo/ZelVideoOverlayElementAccessor.h>

#include <QMutexLocker>

namespace Tolvar::Varundo {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayManager;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

using D = DataManager;

namespace {

// What a protocol command changes comes back from the data model as a signal with the element's name; these
// are its shapes.
using PositionChanged = void (D::*)(const QString&, const QPoint&);
using VisibleChanged = void (D::*)(const QString&, bool);
using ColorPairChanged = void (D::*)(const QString&, const ColorPair&);
using TextChanged = void (D::*)(const QString&, const QString&);

QString fahrenheit()
{
    return QStringLiteral("\u00B0F");
}

QString celsius()
{
    return QStringLiteral("\u00B0C");
}

constexpr int fahrenheitFormat = 1; // every other format is Celsius

} // namespace

/// The data model's side of an element that is bound to a data column.
struct Runner::ElementBinding
{
    const QString* column;
    void (D::*setPosition)(const QPoint&);
    void (D::*setVisible)(bool);
    void (D::*setColorPair)(const ColorPair&);
    ColorPairChanged colorPairChanged;
    PositionChanged positionChanged;
    VisibleChanged visibleChanged;
};

/// The data model's side of a static text.
struct Runner::StatusLineBinding
{
    void (D::*setText)(QString);
    void (D::*setVisible)(bool);
    void (D::*setColorPair)(const ColorPair&);
    VisibleChanged visibleChanged;
    TextChanged textChanged;
    ColorPairChanged colorPairChanged;
};

/// What the data model takes over from an element.
struct Runner::ElementState
{
    explicit ElementState(const CVideoOverlayText& element)
        : position(element.column(), element.row())
        , visible(element.enabled())
        , colors(element.textColor(), element.backgroundColor())
        , text(element.text())
        , unit(element.unit())
    {}

    QPoint position;
    bool visible;
    ColorPair colors;
    QString text;
    QString unit;
};

/// An element as it was while the overlay stood still, and what it is to the protocol. Without a binding of
/// either kind it is the free text box.
struct Runner::ReadElement
{
    const ElementBinding* binding;
    const StatusLineBinding* statusLine;
    ElementState state;
};

/// Null for a column that is nothing to the protocol.
const Runner::ElementBinding* Runner::elementBinding(const QString& column)
{
    // The section distance is meter counter 1, SAT is 2, total is 3.
    // clang-format off
    static constexpr ElementBinding bindings[] = {
    {&ElementParam::NAME_TOTAL_DISTANCE_COUNTER, &D::setMeterCounter3Position, &D::setMeterCounter3Visible, &D::setMeterCounter3ColorPair, &D::meterCounter3ColorPairChanged, &D::meterCounter3PositionChanged, &D::meterCounter3VisibleChanged},
        {&ElementParam::NAME_SECTION_DISTANCE_COUNTER, &D::setMeterCounter1Position, &D::setMeterCounter1Visible, &D::setMeterCounter1ColorPair, &D::meterCounter1ColorPairChanged, &D::meterCounter1PositionChanged, &D::meterCounter1VisibleChanged},
        {&ElementParam::NAME_SAT_DISTANCE_COUNTER, &D::setMeterCounter2Position, &D::setMeterCounter2Visible, &D::setMeterCounter2ColorPair, &D::meterCounter2ColorPairChanged, &D::meterCounter2PositionChanged, &D::meterCounter2VisibleChanged},
        {&ElementParam::NAME_SPEED, &D::setCableSpeedPosition, &D::setCableSpeedVisible, &D::setCableSpeedColorPair, &D::cableSpeedColorPairChanged, &D::cableSpeedPositionChanged, &D::cableSpeedVisibleChanged},
        {&ElementParam::NAME_DATE, &D::setDatePosition, &D::setDateVisible, &D::setDateColorPair, &D::dateColorPairChanged, &D::datePositionChanged, &D::dateVisibleChanged},
        {&ElementParam::NAME_TIME, &D::setTimePosition, &D::setTimeVisible, &D::setTimeColorPair, &D::timeColorPairChanged, &D::timePositionChanged, &D::timeVisibleChanged},
        {&ElementParam::NAME_VIDEO_TIME_COUNTER, &D::setVideoCounterPosition, &D::setVideoCounterVisible, &D::setVideoCounterColorPair, &D::videoCounterColorPairChanged, &D::videoCounterPositionChanged, &D::videoCounterVisibleChanged},
        {&ElementParam::NAME_CAMERA_TILT, &D::setTiltPosition, &D::setTiltVisible, &D::setTiltColorPair, &D::tiltColorPairChanged, &D::tiltPositionChanged, &D::tiltVisibleChanged},
        {&ElementParam::NAME_CAMERA_TEMPERATURE, &D::setCameraTemperaturePosition, &D::setCameraTemperatureVisible, &D::setCameraTemperatureColorPair, &D::cameraTemperatureColorPairChanged, &D::cameraTemperaturePositionChanged, &D::cameraTemperatureVisibleChanged},
        {&ElementParam::NAME_CAMERA_PAN, &D::setPanPosition, &D::setPanVisible, &D::setPanPositionColorPair, &D::panPositionColorPairChanged, &D::panPositionChanged, &D::panPositionVisibleChanged},
        {&ElementParam::NAME_CAMERA_PRESSURE, &D::setPressurePosition, &D::setPressureVisible, &D::setPressureColorPair, &D::pressureColorPairChanged, &D::pressurePositionChanged, &D::pressureVisibleChanged},
        {&ElementParam::NAME_CRAWLER_PITCH, &D::setInclinationPosition, &D::setInclinationVisible, &D::setInclinationColorPair, &D::inclinationColorPairChanged, &D::inclinationPositionChanged, &D::inclinationVisibleChanged},
        {&ElementParam::NAME_CRAWLER_ROLL, &D::setCrawlerRollPosition, &D::setCrawlerRollVisible, &D::setCrawlerRollColorPair, &D::crawlerRollColorPairChanged, &D::crawlerRollPositionChanged, &D::crawlerRollVisibleChanged},
        {&ElementParam::NAME_CRAWLER_TEMPERATURE, &D::setCrawlerTemperaturePosition, &D::setCrawlerTemperatureVisible, &D::setCrawlerTemperatureColorPair, &D::crawlerTemperatureColorPairChanged, &D::crawlerTemperaturePositionChanged, &D::crawlerTemperatureVisibleChanged},
        {&ElementParam::NAME_CRAWLER_PRESSURE, &D::setCrawlerPressurePosition, &D::setCrawlerPressureVisible, &D::setCrawlerPressureColorPair, &D::crawlerPressureColorPairChanged, &D::crawlerPressurePositionChanged, &D::crawlerPressureVisibleChanged},
        {&ElementParam::NAME_OBJECT_TEMPERATURE, &D::setExtTemperaturePosition, &D::setExtTemperatureVisible, &D::setExtTemperatureColorPair, &D::extTemperatureColorPairChanged, &D::extTemperaturePositionChanged, &D::extTemperatureVisibleChanged},
    };
    // clang-format on
    for (const ElementBinding& binding : bindings) {
        if (column == *binding.column) {
            return &binding;
        }
    }
    return nullptr;
}

/// Null for a static text of the host's own.
const Runner::StatusLineBinding* Runner::statusLineBinding(int staticId)
{
    // clang-format off
    static constexpr StatusLineBinding bindings[] = {
    {&D::setStatusLine1Text, &D::setStatusLine1Visible, &D::setStatusLine1ColorPair, &D::statusLine1VisibleChanged, &D::statusLine1TextChanged, &D::statusLine1ColorPairChanged},
        {&D::setStatusLine2Text, &D::setStatusLine2Visible, &D::setStatusLine2ColorPair, &D::statusLine2VisibleChanged, &D::statusLine2TextChanged, &D::statusLine2ColorPairChanged},
        {&D::setStatusLine3Text, &D::setStatusLine3Visible, &D::setStatusLine3ColorPair, &D::statusLine3VisibleChanged, &D::statusLine3TextChanged, &D::statusLine3ColorPairChanged},
        {&D::setStatusLine4Text, &D::setStatusLine4Visible, &D::setStatusLine4ColorPair, &D::statusLine4VisibleChanged, &D::statusLine4TextChanged, &D::statusLine4ColorPairChanged},
    };
    // clang-format on
    return staticId >= 1 && staticId <= 4 ? &bindings[staticId - 1] : nullptr;
}

void Runner::createOverlayManagerConnections()
{
    if (!m_overlayManager) {
        return;
    }
    connect(m_overlayManager, &CVideoOverlayManager::profileLoaded, this, [this] { bindProfile(); });
    connect(m_overlayManager, &CVideoOverlayManager::beforeRemoveElements, this, [this] {
        refuseWhileElementsAreRead(m_readsElements);
        disconnectVarundo();
    });
    connect(m_overlayManager, &CVideoOverlayManager::beforeRemoveElement, this,
            [this](CVideoOverlayElement* element) { forgetCustomText(element); });
}

/// Ends early when another profile has come meanwhile, whose elements are bound by then, or this one has
/// gone.
void Runner::bindProfile()
{
    refuseWhileElementsAreRead(m_readsElements);
    const QPointer<Runner> self(this);
    const quint32 profile = ++m_profile;
    const bool isLoaded = m_overlayManager->currentProfile();
    inTurn([&] { return isLoaded && self && m_profile == profile; }, [&] { initDataManager(); },
           [&] { connectVarundo(); });
}

/// The elements are read under the manager's mutex, and bound without it: the data model announces what it
/// takes over, and whoever hears of that may change the overlay.
void Runner::connectVarundo()
{
    refuseWhileElementsAreRead(m_readsElements);
    const QPointer<Runner> self(this);
    const quint32 profile = m_profile;
    const auto elements = readElements(self);
    for (const ReadElement& element : elements) {
        if (!self || m_profile != profile) {
            return;
        }
        if (element.binding) {
            bindElement(element.state, *element.binding);
        } else if (element.statusLine) {
            bindStatusLine(element.state, *element.statusLine);
        } else {
            connectFreeText();
        }
    }
}

void Runner::disconnectVarundo()
{
    ++m_profile;
    disconnect(m_dataManager, nullptr, nullptr, nullptr);
}

/// Finds out what each text is; one that is nothing to the protocol is left out. The Runner may go while it
/// is asked.
QVector<Runner::ReadElement> Runner::readElements(const QPointer<Runner>& runner)
{
    QVector<ReadElement> found;
    const QPointer<CVideoOverlayManager> asked = runner->m_overlayManager;
    if (!asked) {
        return found;
    }
    QMutex* const mutex = asked->mutex();
    refuseEndOfManager(asked);
    if (!asked) {
        return found;
    }
    const QMutexLocker locker(mutex);
    if (runner) {
        runner->m_readsElements = true;
    }
    const auto elements = asked->getElementList();
    refuseEndOfManager(asked);
    for (CVideoOverlayElement* const element : elements) {
        auto* const text = qobject_cast<CVideoOverlayText*>(element);
        if (!text) {
            continue;
        }
        const ElementParam& params = text->getParamObject();
        if (const auto* const binding =
                elementBinding(params.value(ElementParam::NAME_COLUMNBOUND).toString())) {
            found.append({binding, nullptr, ElementState(*text)});
        } else if (text->caption() == ElementParam::NAME_OSD_FREE_TEXT_BOX) {
            found.append({nullptr, nullptr, ElementState(*text)});
        } else if (const auto* const statusLine =
                       statusLineBinding(params.value(ElementParam::NAME_STATIC_ID).toInt())) {
            found.append({nullptr, statusLine, ElementState(*text)});
        }
    }
    if (runner) {
        runner->m_readsElements = false;
    }
    return found;
}

/// Takes the element's state over before it connects, so that the state does not echo back to the element.
/// The external temperature alone also follows its format, which decides the unit on the screen.
void Runner::bindElement(const ElementState& state, const ElementBinding& binding)
{
    const QPointer<Runner> self(this);
    const quint32 profile = m_profile;
    DataManager& model = *m_dataManager;
    const bool hasUnit = binding.positionChanged == &D::extTemperaturePositionChanged;
    inTurn([&] { return self && m_profile == profile; },
           [&] { (model.*binding.setPosition)(state.position); },
           [&] { (model.*binding.setVisible)(state.visible); },
           [&] { (model.*binding.setColorPair)(state.colors); },
           [&] {
               if (hasUnit) {
                   model.setExtTemperatureFormat(state.unit == fahrenheit() ? fahrenheitFormat : 0);
               }
           },
           [&] { follow(binding); },
           [&] {
               if (hasUnit) {
                   followUnit();
               }
           });
}

void Runner::follow(const ElementBinding& binding)
{
    followColors(binding.colorPairChanged);
    connect(
        m_dataManager, binding.positionChanged, m_dataManager,
        [this](const QString& name, const QPoint& position) { setOsdElementPosition(name, position); },
        Qt::DirectConnection);
    followVisibility(binding.visibleChanged);
}

void Runner::followUnit()
{
    connect(
        m_dataManager, &D::extTemperatureFormatChanged, m_dataManager,
        [this](const QString& name, int format) { setOsdElementUnit(name, format); }, Qt::DirectConnection);
}

// clang-format off
void Runner::connectTotalDistanceCounter(CVideoOverlayText* element)   { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_TOTAL_DISTANCE_COUNTER)); }
void Runner::connectSectionDistanceCounter(CVideoOverlayText* element) { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_SECTION_DISTANCE_COUNTER)); }
void Runner::connectSATDistanceCounter(CVideoOverlayText* element)     { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_SAT_DISTANCE_COUNTER)); }
void Runner::connectCableSpeed(CVideoOverlayText* element)             { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_SPEED)); }
void Runner::connectDate(CVideoOverlayText* element)                   { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_DATE)); }
void Runner::connectTime(CVideoOverlayText* element)                   { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_TIME)); }
void Runner::connectVideoTimeCounter(CVideoOverlayText* element)       { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_VIDEO_TIME_COUNTER)); }
void Runner::connectCameraTilt(CVideoOverlayText* element)             { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CAMERA_TILT)); }
void Runner::connectCameraTemperature(CVideoOverlayText* element)      { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CAMERA_TEMPERATURE)); }
void Runner::connectCameraPan(CVideoOverlayText* element)              { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CAMERA_PAN)); }
void Runner::connectCameraPressure(CVideoOverlayText* element)         { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CAMERA_PRESSURE)); }
void Runner::connectCrawlerPitch(CVideoOverlayText* element)           { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CRAWLER_PITCH)); }
void Runner::connectCrawlerRoll(CVideoOverlayText* element)            { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CRAWLER_ROLL)); }
void Runner::connectCrawlerTemperature(CVideoOverlayText* element)     { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CRAWLER_TEMPERATURE)); }
void Runner::connectCrawlerPressure(CVideoOverlayText* element)        { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_CRAWLER_PRESSURE)); }
void Runner::connectObjectTemperature(CVideoOverlayText* element)      { bindElement(ElementState(*element), *elementBinding(ElementParam::NAME_OBJECT_TEMPERATURE)); }
void Runner::connectStaticText1(CVideoOverlayText* element) { bindStatusLine(ElementState(*element), *statusLineBinding(1)); }
void Runner::connectStaticText2(CVideoOverlayText* element) { bindStatusLine(ElementState(*element), *statusLineBinding(2)); }
void Runner::connectStaticText3(CVideoOverlayText* element) { bindStatusLine(ElementState(*element), *statusLineBinding(3)); }
void Runner::connectStaticText4(CVideoOverlayText* element) { bindStatusLine(ElementState(*element), *statusLineBinding(4)); }
// clang-format on

void Runner::connectStaticText(CVideoOverlayText* element)
{
    const int staticId = element->getParamObject().value(ElementParam::NAME_STATIC_ID).toInt();
    if (const auto* const binding = statusLineBinding(staticId)) {
        bindStatusLine(ElementState(*element), *binding);
    }
}

/// Status lines have no position in the protocol; they stay where the profile puts them.
void Runner::bindStatusLine(const ElementState& state, const StatusLineBinding& binding)
{
    const QPointer<Runner> self(this);
    const quint32 profile = m_profile;
    DataManager& model = *m_dataManager;
    const bool isTakenOver =
        inTurn([&] { return self && m_profile == profile; }, [&] { (model.*binding.setText)(state.text); },
               [&] { (model.*binding.setVisible)(state.visible); },
               [&] { (model.*binding.setColorPair)(state.colors); });
    if (!isTakenOver) {
        return;
    }
    followVisibility(binding.visibleChanged);
    connect(
        m_dataManager, binding.textChanged, m_dataManager,
        [this](const QString& name, const QString& text) { setOsdElementText(name, text); },
        Qt::DirectConnection);
    followColors(binding.colorPairChanged);
}

void Runner::connectFreeText()
{
    connect(
        m_dataManager, &D::lineTextChanged, m_dataManager,
        [this](const QString& name, QStringList lines, int duration) {
            for (QString& line : lines) {
                line = line.trimmed();
            }
            lines.removeAll(QString());
            setOsdFreeText(name, duration, lines.join(QLatin1Char('\n')));
        },
        Qt::DirectConnection);
}

void Runner::followVisibility(VisibleChanged changed)
{
    connect(
        m_dataManager, changed, m_dataManager,
        [this](const QString& name, bool visible) { setOsdElementVisibility(name, visible); },
        Qt::DirectConnection);
}

void Runner::followColors(ColorPairChanged changed)
{
    connect(
        m_dataManager, changed, m_dataManager,
        [this](const QString& name, ColorPair colours) { setOsdElementColors(name, colours); },
        Qt::DirectConnection);
}

// Without an accessor the overlay does not show what was changed.

void Runner::setOsdElementPosition(const QString& name, QPoint position)
{
    if (m_elementAccessor) {
        m_elementAccessor->setElementPosition(name, position);
    }
}

void Runner::setOsdElementVisibility(const QString& name, bool visible)
{
    if (m_elementAccessor) {
        m_elementAccessor->setElementVisibility(name, visible);
    }
}

void Runner::setOsdElementText(const QString& name, const QString& text)
{
    if (m_elementAccessor) {
        m_elementAccessor->setElementText(name, text);
    }
}

void Runner::setOsdElementColors(const QString& name, ColorPair& colours)
{
    const QPointer<ZelVideoOverlayElementAccessor> accessor = m_elementAccessor;
    inTurn([&] { return !accessor.isNull(); }, [&] { accessor->setElementTextColor(name, colours.first); },
           [&] { accessor->setElementBackgroundColor(name, colours.second); });
}

void Runner::setOsdElementUnit(const QString& name, int format)
{
    if (m_elementAccessor) {
        m_elementAccessor->setElementUnit(name, format == fahrenheitFormat ? fahrenheit() : celsius());
    }
}

void Runner::setOsdFreeText(const QString& name, int timeout, const QString& text)
{
    if (m_elementAccessor) {
        m_elementAccessor->setElementFreeTextEnabled(name, timeout, text);
    }
}

} // namespace Tolvar::Varundo
