#ifndef ITOLVARCAMERA_H
#define ITOLVARCAMERA_H

#include <VarundoPlatformExport.h>

#include <QObject>

/// The camera and its pan and tilt head.
class VARUNDO_PLATFORM_EXPORT ITolvarCamera : public QObject
{
    Q_OBJECT

public:
    explicit ITolvarCamera(QObject* parent = nullptr);
    ~ITolvarCamera() override;

    /// Leaves what it does not know as it is.
    virtual void laserCalibration(double& first, double& second) const = 0;

signals:
    void panPositionChanged(short pan);             ///< degrees
    void tiltPositionChanged(short tilt);           ///< degrees
    void cameraTemperatureChanged(int temperature); ///< degrees Celsius
    void cameraPressureChanged(int pressure);
};

#endif
