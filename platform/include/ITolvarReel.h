#ifndef ITOLVARREEL_H
#define ITOLVARREEL_H

#include <VarundoPlatformExport.h>

#include <QObject>

/// The cable reel: how far the cable is out, and how fast it moves.
class VARUNDO_PLATFORM_EXPORT ITolvarReel : public QObject
{
    Q_OBJECT

public:
    explicit ITolvarReel(QObject* parent = nullptr);
    ~ITolvarReel() override;

    virtual float sectionDistance() const = 0; ///< metres
    virtual float satDistance() const = 0;     ///< metres
    virtual float totalDistance() const = 0;   ///< metres

signals:
    void calculatedReelSpeedChanged(float speed);
};

#endif
