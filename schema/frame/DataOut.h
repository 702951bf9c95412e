#pragma once

// The writing side of the raw form. Internal to the library.

#include <cstring>

#include <QDataStream>
#include <QtEndian>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Writes numbers to a QDataStream as its operators write them, gathered in
// pieces of a few kilobytes that go to the device in one call each: the
// device's write path costs more than the numbers themselves. With settings
// under which a number takes another shape (single precision doubles, the
// oldest stream versions) every number goes through the stream's operators.
// Texts and dates are always written by Qt's operators, through viaStream().
class DataOut {
public:
    explicit DataOut(QDataStream& stream)
        : m_stream(stream),
          m_gathered(stream.version() >= QDataStream::Qt_4_6 &&
                     stream.floatingPointPrecision() == QDataStream::DoublePrecision),
          m_swap((stream.byteOrder() == QDataStream::BigEndian) != (Q_BYTE_ORDER == Q_BIG_ENDIAN))
    {
    }
    ~DataOut() { flush(); }
    DataOut(const DataOut&) = delete;
    DataOut& operator=(const DataOut&) = delete;

    DataOut& operator<<(qint8 v) { return write(v); }
    DataOut& operator<<(bool v) { return write(qint8(v ? 1 : 0)); }
    DataOut& operator<<(qint32 v) { return write(v); }
    DataOut& operator<<(qint64 v) { return write(v); }
    DataOut& operator<<(double v)
    {
        if (!m_gathered) {
            m_stream << v;
            return *this;
        }
        quint64 bits;
        std::memcpy(&bits, &v, sizeof bits);
        return write(bits);
    }
    void writeRaw(const char* data, int size)
    {
        if (!m_gathered || size > Capacity) {
            flush();
            m_stream.writeRawData(data, size);
            return;
        }
        room(size);
        std::memcpy(m_bytes + m_size, data, size_t(size));
        m_size += size;
    }

    // The stream, with everything gathered so far written, for Qt's own operators.
    template <class Write>
    void viaStream(Write&& write)
    {
        flush();
        write(m_stream);
    }

private:
    static constexpr int Capacity = 8192;

    template <class T>
    DataOut& write(T v)
    {
        if (!m_gathered) {
            m_stream << v;
            return *this;
        }
        if (m_swap)
            v = qbswap(v);
        room(int(sizeof v));
        std::memcpy(m_bytes + m_size, &v, sizeof v);
        m_size += int(sizeof v);
        return *this;
    }
    void room(int size)
    {
        if (m_size + size > Capacity)
            flush();
    }
    void flush()
    {
        if (m_size > 0)
            m_stream.writeRawData(m_bytes, m_size);
        m_size = 0;
    }

    QDataStream& m_stream;
    const bool m_gathered;
    const bool m_swap;
    int m_size = 0;
    char m_bytes[Capacity];
};

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
