#include "BytePump.h"

#include <cerrno>
#include <unistd.h>

namespace Tolvar::Varundo::Simulator {

namespace {

bool isOver(ssize_t result)
{
    return result == 0 || (result < 0 && errno != EAGAIN && errno != EINTR);
}

} // namespace

BytePump::BytePump(int from, int to, QObject* parent)
    : QObject(parent)
    , m_from(from)
    , m_to(to)
    , m_readable(from, QSocketNotifier::Read)
    , m_writable(to == Nowhere ? from : to, QSocketNotifier::Write)
{
    m_writable.setEnabled(false);
    connect(&m_readable, &QSocketNotifier::activated, this, &BytePump::take);
    connect(&m_writable, &QSocketNotifier::activated, this, &BytePump::give);
}

BytePump::BytePump(int from, QObject* parent)
    : BytePump(from, Nowhere, parent)
{}

void BytePump::take()
{
    char bytes[MaxBytes];
    const ssize_t count = read(m_from, bytes, sizeof bytes);
    if (isOver(count)) {
        m_readable.setEnabled(false); // a dead end would report itself without end
    }
    if (count <= 0) {
        return;
    }
    emit taken();
    if (m_to != Nowhere) {
        m_pending.append(bytes, static_cast<int>(count));
        give();
    }
}

void BytePump::give()
{
    const ssize_t count = write(m_to, m_pending.constData(), static_cast<size_t>(m_pending.size()));
    if (count > 0) {
        m_pending.remove(0, static_cast<int>(count));
    } else if (isOver(count)) {
        m_pending.clear(); // nobody will ever take them
    }
    m_writable.setEnabled(!m_pending.isEmpty());
    m_readable.setEnabled(m_pending.isEmpty());
}

} // namespace Tolvar::Varundo::Simulator
