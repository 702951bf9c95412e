#pragma once

// The writing side of the binary forms. Internal to the library.

#include <cstring>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
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
        : m_stream(stream), m_gathered(stream.device() && stream.version() >= QDataStream::Qt_4_6 &&
                                       stream.floatingPointPrecision() == QDataStream::DoublePrecision),
          m_swap((stream.byteOrder() == QDataStream::BigEndian) != (Q_BYTE_ORDER == Q_BIG_ENDIAN)),
          m_base(stream.device() ? stream.device()->pos() : 0)
    {
    }
    ~DataOut() { flush(); }
    DataOut(const DataOut&) = delete;
    DataOut& operator=(const DataOut&) = delete;

    DataOut& operator<<(qint8 v) { return write(v); }
    DataOut& operator<<(quint32 v) { return write(v); }
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
        if (!m_gathered) {
            m_stream.writeRawData(data, size);
            return;
        }
        if (size > Capacity) {
            flush();
            m_stream.writeRawData(data, size);
            m_base = m_stream.device()->pos();
            return;
        }
        room(size);
        std::memcpy(m_bytes + m_size, data, size_t(size));
        m_size += size;
    }

    // A byte array as QDataStream writes it: its count, then its bytes; a
    // null array its count 0xFFFFFFFF alone.
    void writeBytes(const QByteArray& bytes)
    {
        if (!m_gathered) {
            m_stream << bytes;
            return;
        }
        write(bytes.isNull() ? quint32(0xFFFFFFFFu) : quint32(bytes.size()));
        if (!bytes.isEmpty())
            writeRaw(bytes.constData(), bytes.size());
    }

    // The stream, with everything gathered so far written, for Qt's own operators.
    template <class Write>
    void viaStream(Write&& write)
    {
        flush();
        write(m_stream);
        m_base = m_stream.device() ? m_stream.device()->pos() : 0;
    }

    // Where the next byte goes, as the device counts its position.
    qint64 position() const
    {
        if (!m_gathered)
            return m_stream.device() ? m_stream.device()->pos() : 0;
        return m_base + m_size;
    }
    // Writes `value` over the word at an earlier position: among the gathered
    // bytes if it is still there, else on the device, seeking back and forth.
    void patch(qint64 at, qint32 value)
    {
        if (m_gathered && at >= m_base && at - m_base + 4 <= m_size) {
            quint32 word = quint32(value);
            if (m_swap)
                word = qbswap(word);
            std::memcpy(m_bytes + (at - m_base), &word, 4);
            return;
        }
        flush();
        QIODevice* device = m_stream.device();
        if (!device)
            return;
        const qint64 end = device->pos();
        device->seek(at);
        m_stream << value;
        device->seek(end);
        m_base = end;
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
        if (m_size == 0)
            return;
        m_stream.writeRawData(m_bytes, m_size);
        m_size = 0;
        m_base = m_stream.device()->pos();
    }

    QDataStream& m_stream;
    const bool m_gathered;
    const bool m_swap;
    qint64 m_base;  // the device's position at the first gathered byte
    int m_size = 0;
    char m_bytes[Capacity];
};

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
