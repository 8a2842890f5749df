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

    /// A frame of any length but for its end, from a few bytes: command, group, length, and a piece that is
    /// repeated for as long as the length says.
    QByteArray frameWithoutEnd()
    {
        QByteArray frame(1, '\x02');
        frame += bytes(2);
        const int low = byte();
        const int high = byte();
        frame.append(static_cast<char>(low)).append(static_cast<char>(high));
        const QByteArray pattern = piece();
        QByteArray payload(low + 256 * high, 'x');
        for (int i = 0; !pattern.isEmpty() && i < payload.size(); ++i) {
            payload[i] = pattern.at(i % pattern.size());
        }
        return frame + payload;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

} // namespace Tolvar::Varundo::Test

#endif
