#include <EmitterDossierDoc/recordkit/Input.h>

#include <atomic>
#include <limits>

#include <QBuffer>
#include <QXmlStreamReader>
#include <QtEndian>

#include <zlib.h>

#include "recordkit/XmlGuard_p.h"

namespace RECORDKIT {

namespace {

std::atomic<qint64> maxUnpackedSize{DefaultMaxUnpackedSize};

// zlib cannot expand data by more than about 1032 to 1; a compressed form that
// states more than that of its bytes is refused before anything is allocated.
constexpr qint64 MaxCompressionRatio = 1032;
constexpr qint64 CompressionSlack = 1024;
// The most a QByteArray holds.
constexpr qint64 MaxByteArraySize = std::numeric_limits<int>::max() - 64;

}  // namespace

qint64 MaxUnpackedSize() { return maxUnpackedSize.load(std::memory_order_relaxed); }

void SetMaxUnpackedSize(qint64 bytes)
{
    maxUnpackedSize.store(bytes < 0 ? DefaultMaxUnpackedSize : bytes, std::memory_order_relaxed);
}

bool LooksLikeXml(const QByteArray& bytes)
{
    const XmlUnits units = detectXmlUnits(bytes.constData(), bytes.size());
    const int width = units.width;
    // The code unit at `i`, in the detected encoding.
    auto unitAt = [&](qint64 i) {
        char32_t value = 0;
        for (int k = 0; k < width; ++k)
            value = (value << 8) | uchar(bytes.at(int(i * width + (units.bigEndian ? k : width - 1 - k))));
        return value;
    };
    const qint64 count = bytes.size() / width;
    qint64 i = 0;
    if (width == 1 && bytes.startsWith("\xEF\xBB\xBF"))
        i = 3;
    else if (count > 0 && unitAt(0) == 0xFEFF)
        i = 1;
    for (; i < count; ++i) {
        const char32_t c = unitAt(i);
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
            return c == '<';
    }
    return false;
}

QString XmlRootElement(const QByteArray& bytes, QString& problem)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    GuardedXmlDevice guarded(&buffer);
    guarded.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    QXmlStreamReader reader(&guarded);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement)
            return reader.name().toString();
    }
    problem = reader.hasError() ? xmlErrorText(reader, guarded.guard())
                                : QStringLiteral("the XML text holds no element");
    return QString();
}

bool LooksCompressed(const QByteArray& bytes)
{
    if (bytes.size() < 6)
        return false;
    // A zlib header: deflate, and check bits that make it a multiple of 31.
    const uchar cmf = uchar(bytes.at(4));
    const uchar flg = uchar(bytes.at(5));
    return (cmf & 0x0F) == 8 && (cmf * 256 + flg) % 31 == 0;
}

bool Uncompress(const QByteArray& packed, QByteArray& plain, QString& problem)
{
    if (packed.size() < 4) {
        problem = QStringLiteral("the compressed form ends inside its size word");
        return false;
    }
    const qint64 stated = qFromBigEndian<quint32>(packed.constData());
    const qint64 body = packed.size() - 4;
    const qint64 limit = qMin(MaxUnpackedSize(), MaxByteArraySize);
    if (stated > limit) {
        problem = QStringLiteral("the compressed form states %1 bytes, more than the limit of %2 bytes")
                      .arg(stated)
                      .arg(limit);
        return false;
    }
    if (stated > body * MaxCompressionRatio + CompressionSlack) {
        problem = QStringLiteral("the compressed form states %1 bytes, more than %2 compressed bytes can hold")
                      .arg(stated)
                      .arg(body);
        return false;
    }
    // Pages of the buffer that the inflation does not reach are never touched.
    QByteArray out(int(stated), Qt::Uninitialized);
    char spare = 0;  // somewhere to point at for a stated size of 0
    z_stream z{};
    if (inflateInit(&z) != Z_OK) {
        problem = QStringLiteral("the compressed form cannot be decompressed: zlib cannot start");
        return false;
    }
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.constData() + 4));
    z.avail_in = uInt(body);
    z.next_out = reinterpret_cast<Bytef*>(stated > 0 ? out.data() : &spare);
    z.avail_out = uInt(stated);
    const int result = inflate(&z, Z_FINISH);
    const qint64 produced = qint64(z.total_out);
    const QString zlibMessage = z.msg ? QString::fromLatin1(z.msg) : QString();
    inflateEnd(&z);
    if (result == Z_STREAM_END) {
        out.resize(int(produced));
        plain = out;
        return true;
    }
    if (result == Z_BUF_ERROR && z.avail_out == 0) {
        problem = QStringLiteral("the compressed form unpacks to more than the %1 bytes it states").arg(stated);
        return false;
    }
    problem = zlibMessage.isEmpty()
                  ? QStringLiteral("the compressed form cannot be decompressed: it ends before its zlib stream does")
                  : QStringLiteral("the compressed form cannot be decompressed: %1").arg(zlibMessage);
    return false;
}

}  // namespace RECORDKIT
