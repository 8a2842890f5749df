#ifndef TOLVAR_VARUNDO_TEST_FUZZINPUT_H
#define TOLVAR_VARUNDO_TEST_FUZZINPUT_H

#include <QByteArray>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Tolvar::Varundo::Test {

/// Takes an input apart, from its beginning. Whoever asks for more than there is gets zeroes or less.
class FuzzInput
{
public:
    FuzzInput(const std::uint8_t* data, std::size_t size)
        : m_data(data)
        , m_size(size)
    {}

    bool isEmpty() const { return m_size == 0; }

    std::uint8_t byte()
    {
        if (m_size == 0) {
            return 0;
        }
        --m_size;
        return *m_data++;
    }

    QByteArray bytes(std::size_t count)
    {
        const std::size_t taken = std::min(count, m_size);
        const QByteArray result(reinterpret_cast<const char*>(m_data), static_cast<int>(taken));
        m_data += taken;
        m_size -= taken;
        return result;
    }

    /// A length, and so many bytes.
    QByteArray piece() { return bytes(byte()); }
    QByteArray rest() { return bytes(m_size); }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

} // namespace Tolvar::Varundo::Test

#endif
