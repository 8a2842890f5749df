#ifndef ITOLVARCAMERAPOSITIONSENSOR_H
#define ITOLVARCAMERAPOSITIONSENSOR_H

#include <VarundoPlatformExport.h>

#include <Position3D.h>
#include <QObject>

/// Where the camera is in space. Most units have none.
class VARUNDO_PLATFORM_EXPORT ITolvarCameraPositionSensor : public QObject
{
    Q_OBJECT

public:
    explicit ITolvarCameraPositionSensor(QObject* parent = nullptr);
    ~ITolvarCameraPositionSensor() override;

    virtual Position3D position() const = 0;
    virtual float angle() const = 0;
};

#endif
