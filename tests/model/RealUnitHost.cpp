#include "ModelNumbers.h"
#include "RealUnit.h"

#include <CTolvarLibrary.h>

#include <QDateTime>

/// What the unit has around it: its devices, its clock, and a host that writes down what it is told.
namespace Tolvar::Varundo::Model {

void RealUnit::read(Reading reading, const std::array<double, 4>& numbers)
{
    const double number = numbers[0];
    const auto value = static_cast<float>(number);
    switch (reading) {
    case Reading::ReelSpeed:
        return m_devices.reel.calculatedReelSpeedChanged(value);
    case Reading::RtsTemperature:
        return m_devices.rts.rtsTemperatureChanged(value);
    case Reading::CrawlerTemperature:
        return m_devices.crawler.crawlerTemperatureChanged(static_cast<int>(number));
    case Reading::CrawlerPressure:
        return m_devices.crawler.crawlerPressureChanged(static_cast<int>(number));
    case Reading::CrawlerRoll:
        return m_devices.crawler.crawlerRollChanged(value);
    case Reading::CrawlerPitch:
        m_devices.crawler.pitch = value;
        return m_devices.crawler.crawlerPitchChanged();
    case Reading::CameraPan:
        return m_devices.camera.panPositionChanged(static_cast<short>(number));
    case Reading::CameraTilt:
        return m_devices.camera.tiltPositionChanged(static_cast<short>(number));
    case Reading::CameraTemperature:
        return m_devices.camera.cameraTemperatureChanged(static_cast<int>(number));
    case Reading::CameraPressure:
        return m_devices.camera.cameraPressureChanged(static_cast<int>(number));
    case Reading::ReelDistances:
        m_devices.reel.section = value;
        m_devices.reel.sat = static_cast<float>(numbers[1]);
        m_devices.reel.total = static_cast<float>(numbers[2]);
        return CTolvarLibrary::setReel(&m_devices.reel);
    case Reading::LaserCalibration:
        m_devices.camera.laserFirst = numbers[0];
        m_devices.camera.laserSecond = numbers[1];
        return CTolvarLibrary::setCamera(&m_devices.camera);
    case Reading::PositionSensor:
        m_devices.positionSensor.x = numbers[0];
        m_devices.positionSensor.y = numbers[1];
        m_devices.positionSensor.z = numbers[2];
        m_devices.positionSensor.turn = static_cast<float>(numbers[3]);
        return CTolvarLibrary::setCameraPositionSensor(&m_devices.positionSensor);
    case Reading::NoReel:
        return CTolvarLibrary::setReel(nullptr);
    case Reading::NoCamera:
        return CTolvarLibrary::setCamera(nullptr);
    case Reading::NoPositionSensor:
        return CTolvarLibrary::setCameraPositionSensor(nullptr);
    }
}

void RealUnit::setDateTime(const QDateTime& dateTime)
{
    m_told.push_back(dateTime.isValid()
                         ? dateTime.toString(QStringLiteral("'clock date' yyyy-MM-dd hh:mm:ss")).toStdString()
                         : "clock date invalid");
}

void RealUnit::setTime(const QTime& time)
{
    m_told.push_back(time.isValid() ? time.toString(QStringLiteral("'clock time' hh:mm:ss")).toStdString()
                                    : "clock time invalid");
}

void RealUnit::setOverlayVisible(bool show)
{
    m_told.emplace_back(show ? "overlay on" : "overlay off");
}

/// Bit by bit: a number that is none has to arrive as well.
void RealUnit::tellNumbers(const char* what, std::initializer_list<Bytes> numbers)
{
    m_told.emplace_back(what);
    for (const Bytes& number : numbers) {
        m_told.back() += ' ' + hexDigits(number, number.size());
    }
}

void RealUnit::listenToRunner()
{
    const auto on = [this](auto signal, auto action) {
        QObject::connect(m_runner.get(), signal, m_runner.get(), action);
    };
    on(&Runner::setDistanceCounterSection,
       [this](float metres) { tellNumbers("section", {bytesOf(metres)}); });
    on(&Runner::setDistanceCounterSat, [this](float metres) { tellNumbers("sat", {bytesOf(metres)}); });
    on(&Runner::setDistanceCounterTotal, [this](float metres) { tellNumbers("total", {bytesOf(metres)}); });
    on(&Runner::writeVideoCounter, [this](int hours, int minutes, int seconds) {
        m_told.push_back("video-counter " + std::to_string(hours) + ' ' + std::to_string(minutes) + ' ' +
                         std::to_string(seconds));
    });
    on(&Runner::writeMeasurement3DPosition, [this](double x, double y, double z) {
        tellNumbers("3d position", {bytesOf(x), bytesOf(y), bytesOf(z)});
    });
    on(&Runner::writeMeasurement3DOrientation, [this](float xyAngle, float zAngle) {
        tellNumbers("3d orientation", {bytesOf(xyAngle), bytesOf(zAngle)});
    });
    on(&Runner::execute3dMeasurementMainPipeActivate, [this] { m_told.emplace_back("3d main-pipe"); });
    on(&Runner::execute3dMeasurementLateralActivate, [this] { m_told.emplace_back("3d lateral"); });
    on(&Runner::execute3dMeasurementDeactivate, [this] { m_told.emplace_back("3d off"); });
    on(&Runner::interfaceChanged, [this](Runner::SelectedInterface selected) {
        m_told.push_back("interface " + std::to_string(static_cast<int>(selected)));
    });
}

} // namespace Tolvar::Varundo::Model
