#ifndef ITOLVARCRAWLER_H
#define ITOLVARCRAWLER_H

#include <VarundoPlatformExport.h>

#include <QObject>

/// The crawler that carries the camera.
class VARUNDO_PLATFORM_EXPORT ITolvarCrawler : public QObject
{
    Q_OBJECT

public:
    explicit ITolvarCrawler(QObject* parent = nullptr);
    ~ITolvarCrawler() override;

    virtual float crawlerPitch() const = 0; ///< degrees

signals:
    void crawlerTemperatureChanged(int temperature); ///< degrees Celsius
    void crawlerPressureChanged(int pressure);
    void crawlerRollChanged(float roll); ///< degrees
    void crawlerPitchChanged();          ///< the value is crawlerPitch()
};

#endif
