#ifndef TOLVAR_VARUNDO_PARSER_PAYLOAD_H
#define TOLVAR_VARUNDO_PARSER_PAYLOAD_H

#include <QByteArray>
#include <QtGlobal>

#include <cstring>

namespace Tolvar::Varundo {

/// Reads a command's payload within its bounds: every byte past the end counts as 0. Bytes are unsigned;
/// numbers of several bytes are big-endian, unlike the frame's length field. The byte array must outlive the
/// reader.
class Payload
{
public:
    explicit Payload(const QByteArray& bytes)
        : m_bytes(bytes)
    {}

    int size() const { return m_bytes.size(); }

    quint8 byteAt(int index) const
    {
        return index < size() ? static_cast<quint8>(m_bytes.at(index)) : quint8{0};
    }

    float singleAt(int index) const { return numberAt<float, quint32>(index); }
    double doubleAt(int index) const { return numberAt<double, quint64>(index); }

    /// Where the last so many bytes begin; the beginning if there are fewer.
    int lastBytes(int count) const { return qMax(0, size() - count); }

    /// Where the bytes from an index on begin, and how many there are; none if it lies past the end.
    const char* from(int index) const { return m_bytes.constData() + qMin(index, size()); }
    int sizeFrom(int index) const { return qMax(0, size() - index); }

private:
    template <class Number, class Bits>
    Number numberAt(int index) const
    {
        static_assert(sizeof(Number) == sizeof(Bits), "the number is read as its bit pattern");
        Bits bits = 0;
        for (int i = 0; i < static_cast<int>(sizeof(Bits)); ++i) {
            bits = static_cast<Bits>(bits << 8) | byteAt(index + i);
        }
        Number number;
        std::memcpy(&number, &bits, sizeof number);
        return number;
    }

    const QByteArray& m_bytes;
};

} // namespace Tolvar::Varundo

#endif
