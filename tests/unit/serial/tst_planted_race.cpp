// Races on purpose: two threads count in one plain number, both called by Qt's event loop, one of them by a
// queued call from the other; and in another number, one of them from a destructor that ~QObject() has
// called. It passes as a test when the thread sanitizer reports them.

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <cstdio>

namespace {

/// Lives in a thread of its own, as the watcher does, and tells the event-loop thread what it did.
class RacingCounter : public QObject
{
    Q_OBJECT

public:
    static constexpr int LastCount = 200;

    void countInBothThreads()
    {
        ++m_count; // without a lock
        emit counted();
    }
    void countEndsInBothThreads() { ++m_ends; }
    [[nodiscard]] bool isDone() const { return m_count >= LastCount; }

signals:
    void counted();

private:
    int m_count = 0;
    int m_ends = 0;
};

class CountedEnd final : public QObject
{
public:
    CountedEnd(RacingCounter& counter, QObject* parent)
        : QObject(parent)
        , m_counter(counter)
    {}
    ~CountedEnd() override { m_counter.countEndsInBothThreads(); }

private:
    RacingCounter& m_counter;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QThread thread;
    RacingCounter counter;
    counter.moveToThread(&thread);

    auto* const there = new QTimer;
    new CountedEnd(counter, there);
    there->moveToThread(&thread);
    QObject::connect(&thread, &QThread::started, there, [there] { there->start(1); });
    QObject::connect(&thread, &QThread::finished, there, &QObject::deleteLater);
    QObject::connect(there, &QTimer::timeout, &counter, &RacingCounter::countInBothThreads);

    QObject::connect(&counter, &RacingCounter::counted, &application, [&] {
        if (counter.isDone()) {
            QCoreApplication::quit();
        }
    });
    QTimer here;
    QObject::connect(&here, &QTimer::timeout, &application, [&counter] { counter.countInBothThreads(); });
    here.start(1);
    thread.start();
    QCoreApplication::exec();
    counter.countEndsInBothThreads();
    thread.quit();
    thread.wait();
    std::puts("the race was run");
    return 0;
}

#include "tst_planted_race.moc"
