#pragma once

// The reading side of the binary forms. Internal to the library.

#include <cstring>
#include <type_traits>
#include <typeinfo>

#include <QBuffer>
#include <QDataStream>
#include <QtEndian>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Reads numbers from a QDataStream exactly as its operators do: the same
// bytes consumed, the same value and status when the input runs out.
//
// When the stream reads a plain QBuffer with its usual settings, the numbers
// are taken straight from the buffer's bytes and the buffer is moved once, at
// the end; the device's read path costs more than the numbers themselves.
// Any other device is read through the stream. Texts, byte arrays and dates
// are always read by Qt's own operators, through stream().
class DataIn {
public:
    explicit DataIn(QDataStream& stream) : m_stream(stream)
    {
        QIODevice* device = stream.device();
        if (device && typeid(*device) == typeid(QBuffer) && device->isReadable() &&
            !(device->openMode() & QIODevice::Text) && !device->isTransactionStarted() &&
            stream.version() >= QDataStream::Qt_4_6 &&
            stream.floatingPointPrecision() == QDataStream::DoublePrecision) {
            const QByteArray& bytes = static_cast<QBuffer*>(device)->data();
            m_data = bytes.constData();
            m_size = bytes.size();
            m_pos = device->pos();
            m_direct = m_pos <= m_size;
            m_swap = (stream.byteOrder() == QDataStream::BigEndian) != (Q_BYTE_ORDER == Q_BIG_ENDIAN);
        }
    }
    ~DataIn() { handBack(); }
    DataIn(const DataIn&) = delete;
    DataIn& operator=(const DataIn&) = delete;

    DataIn& operator>>(qint8& v) { return read(v); }
    DataIn& operator>>(bool& v) { return read(v); }
    DataIn& operator>>(qint32& v) { return read(v); }
    DataIn& operator>>(qint64& v) { return read(v); }
    DataIn& operator>>(double& v) { return read(v); }
    // As QDataStream::readRawData: what there is of `size` bytes, ReadPastEnd if short.
    void readRaw(char* data, int size)
    {
        if (!m_direct) {
            m_stream.readRawData(data, size);
            return;
        }
        const int n = int(qMin<qint64>(size, m_size - m_pos));
        std::memcpy(data, m_data + m_pos, size_t(n));
        m_pos += n;
        if (n != size)
            m_stream.setStatus(QDataStream::ReadPastEnd);
    }

    bool atEnd() const { return m_direct ? m_pos >= m_size : m_stream.atEnd(); }
    // Bytes the input can still deliver, or -1 if its device cannot tell.
    qint64 bytesLeft() const
    {
        if (m_direct)
            return m_size - m_pos;
        const QIODevice* device = m_stream.device();
        return !device || device->isSequential() ? -1 : device->bytesAvailable();
    }
    QDataStream::Status status() const { return m_stream.status(); }
    void setStatus(QDataStream::Status status) { m_stream.setStatus(status); }

    // A byte array as QDataStream writes it, when it is not null and lies
    // whole in memory: its bytes where they lie, consumed. False, with
    // nothing consumed, otherwise; Qt's own operator reads it then.
    bool takeBytes(const char*& data, int& size)
    {
        if (!m_direct || m_size - m_pos < 4)
            return false;
        quint32 n;
        std::memcpy(&n, m_data + m_pos, 4);
        if (m_swap)
            n = qbswap(n);
        if (n == 0xFFFFFFFFu || qint64(n) > m_size - m_pos - 4)
            return false;
        data = m_data + m_pos + 4;
        size = int(n);
        m_pos += 4 + qint64(n);
        return true;
    }

    // The stream, standing where this reader stands, for Qt's own operators.
    template <class Read>
    void viaStream(Read&& read)
    {
        handBack();
        read(m_stream);
        if (m_direct)
            m_pos = m_stream.device()->pos();
    }

private:
    template <class T>
    DataIn& read(T& v)
    {
        if (!m_direct) {
            m_stream >> v;
            return *this;
        }
        if (m_size - m_pos < qint64(sizeof v)) {
            // As the stream's operators: what is left is consumed, the value is zero.
            m_pos = m_size;
            m_stream.setStatus(QDataStream::ReadPastEnd);
            v = T(0);
            return *this;
        }
        if constexpr (sizeof v == 1) {
            const char c = m_data[m_pos];
            v = std::is_same<T, bool>::value ? T(c != 0) : T(c);
        } else {
            std::memcpy(&v, m_data + m_pos, sizeof v);
            if (m_swap)
                swapBytes(v);
        }
        m_pos += qint64(sizeof v);
        return *this;
    }
    static void swapBytes(qint32& v) { v = qbswap(v); }
    static void swapBytes(qint64& v) { v = qbswap(v); }
    static void swapBytes(double& v)
    {
        quint64 bits;
        std::memcpy(&bits, &v, sizeof v);
        bits = qbswap(bits);
        std::memcpy(&v, &bits, sizeof v);
    }
    void handBack()
    {
        if (m_direct)
            m_stream.device()->seek(m_pos);
    }

    QDataStream& m_stream;
    const char* m_data = nullptr;
    qint64 m_size = 0;
    qint64 m_pos = 0;
    bool m_direct = false;
    bool m_swap = false;
};

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
