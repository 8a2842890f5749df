#ifndef TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCAMERA_H
#define TOLVAR_VARUNDO_SIMULATOR_SIMULATEDCAMERA_H

#include <ITolvarCamera.h>

namespace Tolvar::Varundo::Simulator {

/// The camera and its pan and tilt head. Every setter reports, also what has not changed. GUI thread; owned
/// by SimulatedDevices.
class SimulatedCamera final : public ITolvarCamera
{
    Q_OBJECT

public:
    explicit SimulatedCamera(QObject* parent = nullptr);

    void laserCalibration(double& first, double& second) const override;
    short pan() const { return m_pan; }
    short tilt() const { return m_tilt; }
    int temperature() const { return m_temperature; }
    int pressure() const { return m_pressure; }

    void setLaserCalibration(double first, double second);
    void setPan(short degrees);
    void setTilt(short degrees);
    void setTemperature(int celsius);
    void setPressure(int pressure);

    void announce(); ///< reports every reading as it stands

private:
    double m_firstLaser = 4000.0;
    double m_secondLaser = 1250.0;
    short m_pan = 0;
    short m_tilt = 15;
    int m_temperature = 36;
    int m_pressure = 1240;
};

} // namespace Tolvar::Varundo::Simulator

#endif
