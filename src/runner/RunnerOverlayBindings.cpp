#include <Tolvar/Varundo/Runner.h>

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

void Runner::createOverlayManagerConnections()
{
    if (!m_overlayManager) {
        return;
    }
    connect(m_overlayManager, &CVideoOverlayManager::profileLoaded, this, [this] {
        if (m_overlayManager->currentProfile()) {
            initDataManager();
            connectVarundo();
        }
    });
    connect(m_overlayManager, &CVideoOverlayManager::beforeRemoveElements, this,
            [this] { disconnectVarundo(); });
    connect(m_overlayManager, &CVideoOverlayManager::beforeRemoveElement, this,
            [this](CVideoOverlayElement* element) { forgetCustomText(element); });
}

void Runner::connectVarundo()
{
    if (!m_overlayManager) {
        return;
    }
    const QMutexLocker locker(m_overlayManager->mutex());
    const auto elements = m_overlayManager->getElementList();
    for (CVideoOverlayElement* const element : elements) {
        if (auto* const text = qobject_cast<CVideoOverlayText*>(element)) {
            bindTextElement(text);
        }
    }
}

void Runner::disconnectVarundo()
{
    disconnect(m_dataManager, nullptr, nullptr, nullptr);
}

/// Finds out what a text is and binds it; a text that is nothing to the protocol stays unbound.
void Runner::bindTextElement(CVideoOverlayText* element)
{
    struct Row
    {
        const QString* column;
        void (Runner::*connectElement)(CVideoOverlayText*);
    };
    // The section distance is meter counter 1, SAT is 2, total is 3: see their bindings.
    static constexpr Row rows[] = {
        {&ElementParam::NAME_TOTAL_DISTANCE_COUNTER, &Runner::connectTotalDistanceCounter},
        {&ElementParam::NAME_SECTION_DISTANCE_COUNTER, &Runner::connectSectionDistanceCounter},
        {&ElementParam::NAME_SAT_DISTANCE_COUNTER, &Runner::connectSATDistanceCounter},
        {&ElementParam::NAME_SPEED, &Runner::connectCableSpeed},
        {&ElementParam::NAME_DATE, &Runner::connectDate},
        {&ElementParam::NAME_TIME, &Runner::connectTime},
        {&ElementParam::NAME_VIDEO_TIME_COUNTER, &Runner::connectVideoTimeCounter},
        {&ElementParam::NAME_CAMERA_TILT, &Runner::connectCameraTilt},
        {&ElementParam::NAME_CAMERA_TEMPERATURE, &Runner::connectCameraTemperature},
        {&ElementParam::NAME_CAMERA_PAN, &Runner::connectCameraPan},
        {&ElementParam::NAME_CAMERA_PRESSURE, &Runner::connectCameraPressure},
        {&ElementParam::NAME_CRAWLER_PITCH, &Runner::connectCrawlerPitch},
        {&ElementParam::NAME_CRAWLER_ROLL, &Runner::connectCrawlerRoll},
        {&ElementParam::NAME_CRAWLER_TEMPERATURE, &Runner::connectCrawlerTemperature},
        {&ElementParam::NAME_CRAWLER_PRESSURE, &Runner::connectCrawlerPressure},
        {&ElementParam::NAME_OBJECT_TEMPERATURE, &Runner::connectObjectTemperature},
    };

    const ElementParam& params = element->getParamObject();
    const QString column = params.value(ElementParam::NAME_COLUMNBOUND).toString();
    for (const Row& row : rows) {
        if (column == *row.column) {
            (this->*row.connectElement)(element);
            return;
        }
    }
    if (element->caption() == ElementParam::NAME_OSD_FREE_TEXT_BOX) {
        connectFreeText();
    } else if (params.contains(ElementParam::NAME_STATIC_ID)) {
        connectStaticText(element);
    }
}

/// Takes the element's state over before it connects, so that the state does not echo back to the element.
void Runner::bindElement(CVideoOverlayText* element, const ElementBinding& binding)
{
    takeOver(element, binding);
    follow(binding);
}

void Runner::takeOver(const CVideoOverlayText* element, const ElementBinding& binding)
{
    (m_dataManager->*binding.setPosition)(QPoint(element->column(), element->row()));
    (m_dataManager->*binding.setVisible)(element->enabled());
    (m_dataManager->*binding.setColorPair)({element->textColor(), element->backgroundColor()});
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

// clang-format off
void Runner::connectTotalDistanceCounter(CVideoOverlayText* element)   { bindElement(element, {&D::setMeterCounter3Position, &D::setMeterCounter3Visible, &D::setMeterCounter3ColorPair, &D::meterCounter3ColorPairChanged, &D::meterCounter3PositionChanged, &D::meterCounter3VisibleChanged}); }
void Runner::connectSectionDistanceCounter(CVideoOverlayText* element) { bindElement(element, {&D::setMeterCounter1Position, &D::setMeterCounter1Visible, &D::setMeterCounter1ColorPair, &D::meterCounter1ColorPairChanged, &D::meterCounter1PositionChanged, &D::meterCounter1VisibleChanged}); }
void Runner::connectSATDistanceCounter(CVideoOverlayText* element)     { bindElement(element, {&D::setMeterCounter2Position, &D::setMeterCounter2Visible, &D::setMeterCounter2ColorPair, &D::meterCounter2ColorPairChanged, &D::meterCounter2PositionChanged, &D::meterCounter2VisibleChanged}); }
void Runner::connectCableSpeed(CVideoOverlayText* element)             { bindElement(element, {&D::setCableSpeedPosition, &D::setCableSpeedVisible, &D::setCableSpeedColorPair, &D::cableSpeedColorPairChanged, &D::cableSpeedPositionChanged, &D::cableSpeedVisibleChanged}); }
void Runner::connectDate(CVideoOverlayText* element)                   { bindElement(element, {&D::setDatePosition, &D::setDateVisible, &D::setDateColorPair, &D::dateColorPairChanged, &D::datePositionChanged, &D::dateVisibleChanged}); }
void Runner::connectTime(CVideoOverlayText* element)                   { bindElement(element, {&D::setTimePosition, &D::setTimeVisible, &D::setTimeColorPair, &D::timeColorPairChanged, &D::timePositionChanged, &D::timeVisibleChanged}); }
void Runner::connectVideoTimeCounter(CVideoOverlayText* element)       { bindElement(element, {&D::setVideoCounterPosition, &D::setVideoCounterVisible, &D::setVideoCounterColorPair, &D::videoCounterColorPairChanged, &D::videoCounterPositionChanged, &D::videoCounterVisibleChanged}); }
void Runner::connectCameraTilt(CVideoOverlayText* element)             { bindElement(element, {&D::setTiltPosition, &D::setTiltVisible, &D::setTiltColorPair, &D::tiltColorPairChanged, &D::tiltPositionChanged, &D::tiltVisibleChanged}); }
void Runner::connectCameraTemperature(CVideoOverlayText* element)      { bindElement(element, {&D::setCameraTemperaturePosition, &D::setCameraTemperatureVisible, &D::setCameraTemperatureColorPair, &D::cameraTemperatureColorPairChanged, &D::cameraTemperaturePositionChanged, &D::cameraTemperatureVisibleChanged}); }
void Runner::connectCameraPan(CVideoOverlayText* element)              { bindElement(element, {&D::setPanPosition, &D::setPanVisible, &D::setPanPositionColorPair, &D::panPositionColorPairChanged, &D::panPositionChanged, &D::panPositionVisibleChanged}); }
void Runner::connectCameraPressure(CVideoOverlayText* element)         { bindElement(element, {&D::setPressurePosition, &D::setPressureVisible, &D::setPressureColorPair, &D::pressureColorPairChanged, &D::pressurePositionChanged, &D::pressureVisibleChanged}); }
void Runner::connectCrawlerPitch(CVideoOverlayText* element)           { bindElement(element, {&D::setInclinationPosition, &D::setInclinationVisible, &D::setInclinationColorPair, &D::inclinationColorPairChanged, &D::inclinationPositionChanged, &D::inclinationVisibleChanged}); }
void Runner::connectCrawlerRoll(CVideoOverlayText* element)            { bindElement(element, {&D::setCrawlerRollPosition, &D::setCrawlerRollVisible, &D::setCrawlerRollColorPair, &D::crawlerRollColorPairChanged, &D::crawlerRollPositionChanged, &D::crawlerRollVisibleChanged}); }
void Runner::connectCrawlerTemperature(CVideoOverlayText* element)     { bindElement(element, {&D::setCrawlerTemperaturePosition, &D::setCrawlerTemperatureVisible, &D::setCrawlerTemperatureColorPair, &D::crawlerTemperatureColorPairChanged, &D::crawlerTemperaturePositionChanged, &D::crawlerTemperatureVisibleChanged}); }
void Runner::connectCrawlerPressure(CVideoOverlayText* element)        { bindElement(element, {&D::setCrawlerPressurePosition, &D::setCrawlerPressureVisible, &D::setCrawlerPressureColorPair, &D::crawlerPressureColorPairChanged, &D::crawlerPressurePositionChanged, &D::crawlerPressureVisibleChanged}); }
// clang-format on

/// The external temperature alone also follows its format, which decides the unit on the screen.
void Runner::connectObjectTemperature(CVideoOverlayText* element)
{
    static constexpr ElementBinding binding{
        &D::setExtTemperaturePosition,     &D::setExtTemperatureVisible,
        &D::setExtTemperatureColorPair,    &D::extTemperatureColorPairChanged,
        &D::extTemperaturePositionChanged, &D::extTemperatureVisibleChanged};
    takeOver(element, binding);
    m_dataManager->setExtTemperatureFormat(element->unit() == fahrenheit() ? fahrenheitFormat : 0);
    follow(binding);
    connect(
        m_dataManager, &D::extTemperatureFormatChanged, m_dataManager,
        [this](const QString& name, int format) { setOsdElementUnit(name, format); }, Qt::DirectConnection);
}

void Runner::connectStaticText(CVideoOverlayText* element)
{
    switch (element->getParamObject().value(ElementParam::NAME_STATIC_ID).toInt()) {
    case 1:
        return connectStaticText1(element);
    case 2:
        return connectStaticText2(element);
    case 3:
        return connectStaticText3(element);
    case 4:
        return connectStaticText4(element);
    default:
        return; // a text of the host's own
    }
}

// clang-format off
void Runner::connectStaticText1(CVideoOverlayText* element) { bindStatusLine(element, {&D::setStatusLine1Text, &D::setStatusLine1Visible, &D::setStatusLine1ColorPair, &D::statusLine1VisibleChanged, &D::statusLine1TextChanged, &D::statusLine1ColorPairChanged}); }
void Runner::connectStaticText2(CVideoOverlayText* element) { bindStatusLine(element, {&D::setStatusLine2Text, &D::setStatusLine2Visible, &D::setStatusLine2ColorPair, &D::statusLine2VisibleChanged, &D::statusLine2TextChanged, &D::statusLine2ColorPairChanged}); }
void Runner::connectStaticText3(CVideoOverlayText* element) { bindStatusLine(element, {&D::setStatusLine3Text, &D::setStatusLine3Visible, &D::setStatusLine3ColorPair, &D::statusLine3VisibleChanged, &D::statusLine3TextChanged, &D::statusLine3ColorPairChanged}); }
void Runner::connectStaticText4(CVideoOverlayText* element) { bindStatusLine(element, {&D::setStatusLine4Text, &D::setStatusLine4Visible, &D::setStatusLine4ColorPair, &D::statusLine4VisibleChanged, &D::statusLine4TextChanged, &D::statusLine4ColorPairChanged}); }
// clang-format on

/// Status lines have no position in the protocol; they stay where the profile puts them.
void Runner::bindStatusLine(const CVideoOverlayText* element, const StatusLineBinding& binding)
{
    (m_dataManager->*binding.setText)(element->text());
    (m_dataManager->*binding.setVisible)(element->enabled());
    (m_dataManager->*binding.setColorPair)({element->textColor(), element->backgroundColor()});

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

void Runner::setOsdElementPosition(const QString& name, QPoint position)
{
    m_elementAccessor->setElementPosition(name, position);
}

void Runner::setOsdElementVisibility(const QString& name, bool visible)
{
    m_elementAccessor->setElementVisibility(name, visible);
}

void Runner::setOsdElementText(const QString& name, const QString& text)
{
    m_elementAccessor->setElementText(name, text);
}

void Runner::setOsdElementColors(const QString& name, ColorPair& colours)
{
    m_elementAccessor->setElementTextColor(name, colours.first);
    m_elementAccessor->setElementBackgroundColor(name, colours.second);
}

void Runner::setOsdElementUnit(const QString& name, int format)
{
    m_elementAccessor->setElementUnit(name, format == fahrenheitFormat ? fahrenheit() : celsius());
}

void Runner::setOsdFreeText(const QString& name, int timeout, const QString& text)
{
    m_elementAccessor->setElementFreeTextEnabled(name, timeout, text);
}

} // namespace Tolvar::Varundo
