#ifndef TOLVAR_VARUNDO_TEST_RECORDINGHOST_H
#define TOLVAR_VARUNDO_TEST_RECORDINGHOST_H

#include <Mavril/SystemClock.h>
#include <Mavril/SystemDateTime.h>
#include <Tolvar/VideoOverlay/CVideoOverlayControlBackend.h>

#include <QDateTime>
#include <QList>
#include <QTime>

namespace Tolvar::Varundo::Test {

/// The switch for the whole overlay; it writes down how it was switched.
class RecordingControlBackend : public Tolvar::VideoOverlay::CVideoOverlayControlBackend
{
public:
    void setOverlayVisible(bool show) override { switched.append(show); }

    QList<bool> switched;
};

/// The unit's clock for as long as it lives; it writes down what it is set to.
class RecordingClock : public Mavril::SystemClock
{
public:
    RecordingClock() { Mavril::SystemDateTime::install(this); }
    ~RecordingClock() override { Mavril::SystemDateTime::install(nullptr); }
    RecordingClock(const RecordingClock&) = delete;
    RecordingClock& operator=(const RecordingClock&) = delete;

    void setDateTime(const QDateTime& dateTime) override { dateTimes.append(dateTime); }
    void setTime(const QTime& time) override { times.append(time); }

    QList<QDateTime> dateTimes;
    QList<QTime> times;
};

} // namespace Tolvar::Varundo::Test

#endif
