#ifndef ITOLVARRTS_H
#define ITOLVARRTS_H

#include <VarundoPlatformExport.h>

#include <QObject>

/// The RTS sensor: the temperature outside the unit.
class VARUNDO_PLATFORM_EXPORT ITolvarRts : public QObject
{
    Q_OBJECT

public:
    explicit ITolvarRts(QObject* parent = nullptr);
    ~ITolvarRts() override;

signals:
    void rtsTemperatureChanged(float temperature); ///< degrees Celsius
};

#endif
