#ifndef TOLVAR_VARUNDO_TESTS_FAKESERIALUNIT_H
#define TOLVAR_VARUNDO_TESTS_FAKESERIALUNIT_H

#include "FakeUnit.h"

#include <QSocketNotifier>
#include <QString>

#include <memory>
#include <termios.h>

namespace Tolvar::Varundo::Tests {

/// A unit at the far end of a serial line: a pseudo-terminal, which the controller opens by its device name.
class FakeSerialUnit final : public FakeUnit
{
    Q_OBJECT

public:
    FakeSerialUnit();
    ~FakeSerialUnit() override;
    Q_DISABLE_COPY_MOVE(FakeSerialUnit)

    [[nodiscard]] QString device() const { return m_device; }

    /// What the controller has set on the line.
    [[nodiscard]] termios lineSettings() const;

    void say(const QByteArray& bytes) override;
    void hangUp() override;

private:
    void read();

    QString m_device;
    int m_line = -1;
    int m_otherEnd = -1; // held open, so that the line outlives a controller that leaves
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Tolvar::Varundo::Tests

#endif
