#include "ExampleUnit.h"

#include "UnitElement.h"

#include <CApplicationSettings.h>
#include <Mavril/SystemDateTime.h>
#include <Mavril/VideoOverlay/CVideoOverlayText.h>
#include <Mavril/VideoOverlay/ElementParam.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Tolvar::Varundo::Tests {

using Mavril::VideoOverlay::CVideoOverlayElement;
using Mavril::VideoOverlay::CVideoOverlayText;
using Mavril::VideoOverlay::ElementParam;

namespace {

QJsonObject textAt(const QString& kind, int column, int row, bool shown)
{
    return {{QStringLiteral("kind"), kind},
            {QStringLiteral("column"), column},
            {QStringLiteral("row"), row},
            {QStringLiteral("enabled"), shown},
            {QStringLiteral("visible"), true},
            {QStringLiteral("textColor"), QStringLiteral("white")},
            {QStringLiteral("backgroundColor"), QStringLiteral("blue")}};
}

QJsonArray profileElements()
{
    QJsonArray elements;
    for (const UnitElement& element : UnitElement::all()) {
        QJsonObject text = textAt(element.isStatusLine() ? QStringLiteral("static") : QStringLiteral("bound"),
                                  element.column, element.row, element.shown);
        if (element.isStatusLine()) {
            text.insert(QStringLiteral("id"), element.key->toInt());
            text.insert(QStringLiteral("text"), QStringLiteral("Line ") + *element.key);
        } else {
            text.insert(QStringLiteral("binding"), *element.key);
        }
        if (element.key == &ElementParam::NAME_OBJECT_TEMPERATURE) {
            text.insert(QStringLiteral("unit"), QStringLiteral("\u00B0C"));
        }
        elements.append(text);
    }
    elements.append(textAt(QStringLiteral("free"), 5, 12, false));
    return elements;
}

bool isWritten(CVideoOverlayElement& element)
{
    const ElementParam& params = element.getParamObject();
    return !params.contains(ElementParam::NAME_COLUMNBOUND) &&
           !params.contains(ElementParam::NAME_STATIC_ID) &&
           !params.contains(ElementParam::NAME_COLUMNCAPTION);
}

QString inWords(const ColorPair& colors)
{
    return colors.first.name(QColor::HexArgb) + QLatin1Char('/') + colors.second.name(QColor::HexArgb);
}

QString inWords(const CVideoOverlayElement& element)
{
    const auto* const text = qobject_cast<const CVideoOverlayText*>(&element);
    return QStringLiteral("element %1,%2 %3 %4 %5 %6 %7 %8")
        .arg(element.column())
        .arg(element.row())
        .arg(element.enabled())
        .arg(element.type())
        .arg(text->timeout())
        .arg(inWords({text->textColor(), text->backgroundColor()}), text->unit(), text->text());
}

} // namespace

ExampleUnit::ExampleUnit()
{
    QCoreApplication::setApplicationVersion(softwareVersion());
    CApplicationSettings::instance()->setFileName(m_directory.filePath(QStringLiteral("settings")));
    CApplicationSettings::instance()->setCustomSetting(QStringLiteral("ZEL_INTERFACE"),
                                                       QStringLiteral("Tcp"));
    Mavril::SystemDateTime::install(this);
    m_overlay.setElementAccessor(&m_accessor);
    m_runner = std::make_unique<Runner>(static_cast<Tolvar::VideoOverlay::CVideoOverlayControlBackend*>(this),
                                        &m_overlay, &m_accessor);
    listenToRunner();
    loadProfile();
    m_devices.report();
}

/// The Runner's server outlives it; moved to any other port, it leaves the usual one to the next unit.
ExampleUnit::~ExampleUnit()
{
    m_runner->setZelTcpPort(0);
    m_runner.reset();
    Mavril::SystemDateTime::install(nullptr);
}

void ExampleUnit::loadProfile()
{
    const QJsonObject profile{{QStringLiteral("name"), QStringLiteral("example")},
                              {QStringLiteral("elements"), profileElements()}};
    QFile file(m_directory.filePath(QStringLiteral("profile.json")));
    QString error;
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(profile).toJson()) < 0) {
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    }
    file.close();
    if (!m_overlay.loadProfile(file.fileName(), &error)) {
        qFatal("%s", qPrintable(error));
    }
}

CVideoOverlayText* ExampleUnit::element(const QString& key) const
{
    for (CVideoOverlayElement* const element : m_overlay.getElementList()) {
        const ElementParam& params = element->getParamObject();
        for (const QString& name : {ElementParam::NAME_COLUMNBOUND, ElementParam::NAME_STATIC_ID,
                                    ElementParam::NAME_COLUMNCAPTION}) {
            if (params.value(name).toString() == key) {
                return qobject_cast<CVideoOverlayText*>(element);
            }
        }
    }
    return nullptr;
}

CVideoOverlayText* ExampleUnit::writtenText(int column, int row) const
{
    for (CVideoOverlayElement* const element : m_overlay.getElementList()) {
        if (isWritten(*element) && element->column() == column && element->row() == row) {
            return qobject_cast<CVideoOverlayText*>(element);
        }
    }
    return nullptr;
}

int ExampleUnit::writtenTexts() const
{
    int count = 0;
    for (CVideoOverlayElement* const element : m_overlay.getElementList()) {
        count += isWritten(*element) ? 1 : 0;
    }
    return count;
}

QStringList ExampleUnit::snapshot() const
{
    const DataManager& data = model();
    QStringList facts = m_told;
    for (const UnitElement& element : UnitElement::all()) {
        const QPoint at = element.position ? (data.*element.position)() : QPoint();
        facts.append(
            QStringLiteral("%1 %2,%3 %4 %5 %6 %7")
                .arg(QLatin1String(element.name))
                .arg(at.x())
                .arg(at.y())
                .arg((data.*element.visible)())
                .arg(element.format ? (data.*element.format)() : 0)
                .arg(inWords((data.*element.colors)()), element.text ? (data.*element.text)() : QString()));
    }
    facts.append(QStringLiteral("codec %1").arg(data.textCodec()));
    facts.append(
        QStringLiteral("cursor %1,%2").arg(data.cursorPosition().x()).arg(data.cursorPosition().y()));
    facts.append(QStringLiteral("lines %1").arg(data.lineText().join(QLatin1Char('|'))));
    facts.append(QStringLiteral("line colours %1").arg(inWords(data.lineColorPair())));
    facts.append(QStringLiteral("overlay switched %1 times").arg(m_overlaySwitched));
    for (const CVideoOverlayElement* const element : m_overlay.getElementList()) {
        facts.append(inWords(*element));
    }
    return facts;
}

void ExampleUnit::setDateTime(const QDateTime& dateTime)
{
    const QDate date = dateTime.date();
    tell(QStringLiteral("clock date ") +
         (date.isValid() ? date.toString(Qt::ISODate) : QStringLiteral("invalid")));
}

void ExampleUnit::setTime(const QTime& time)
{
    tell(QStringLiteral("clock time ") +
         (time.isValid() ? time.toString(Qt::ISODate) : QStringLiteral("invalid")));
}

void ExampleUnit::setOverlayVisible(bool show)
{
    m_overlayOn = show;
    ++m_overlaySwitched;
}

void ExampleUnit::listenToRunner()
{
    Runner* const runner = m_runner.get();
    const auto on = [&](auto signal, auto action) {
        QObject::connect(runner, signal, runner, action);
    };
    on(&Runner::setDistanceCounterSection,
       [this](float metres) { tell(QStringLiteral("section-distance"), {static_cast<double>(metres)}); });
    on(&Runner::setDistanceCounterSat,
       [this](float metres) { tell(QStringLiteral("sat-distance"), {static_cast<double>(metres)}); });
    on(&Runner::setDistanceCounterTotal,
       [this](float metres) { tell(QStringLiteral("total-distance"), {static_cast<double>(metres)}); });
    on(&Runner::writeVideoCounter, [this](int hours, int minutes, int seconds) {
        tell(QStringLiteral("video-counter"),
             {static_cast<double>(hours), static_cast<double>(minutes), static_cast<double>(seconds)});
    });
    on(&Runner::writeMeasurement3DPosition, [this](double x, double y, double z) {
        tell(QStringLiteral("3d position"), {x, y, z});
    });
    on(&Runner::writeMeasurement3DOrientation, [this](float xyAngle, float zAngle) {
        tell(QStringLiteral("3d orientation"), {static_cast<double>(xyAngle), static_cast<double>(zAngle)});
    });
    on(&Runner::execute3dMeasurementMainPipeActivate, [this] { tell(QStringLiteral("3d main-pipe")); });
    on(&Runner::execute3dMeasurementLateralActivate, [this] { tell(QStringLiteral("3d lateral")); });
    on(&Runner::execute3dMeasurementDeactivate, [this] { tell(QStringLiteral("3d off")); });
}

void ExampleUnit::tell(const QString& what, std::initializer_list<double> numbers)
{
    QString told = what;
    for (const double number : numbers) {
        told += QLatin1Char(' ') + QString::number(number);
    }
    m_told.append(told);
}

} // namespace Tolvar::Varundo::Tests
