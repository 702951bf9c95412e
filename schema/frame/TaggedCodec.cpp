// The tagged form: an object block is a length word and field records, each
// record a tag, a length word and a payload. The length of a block or a list
// is written as a placeholder and patched once its payload is complete: among
// the bytes still gathered, or else by seeking back on the device.

#include "schema/frame/DataIn_p.h"
#include "schema/frame/DataOut_p.h"
#include "schema/frame/Limits_p.h"
#include "schema/frame/Runtime_p.h"
#include "schema/frame/TaggedWalk_p.h"
#include "schema/frame/TextForms_p.h"
#include <EmitterDossierDoc/recordkit/Converters.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

namespace {

// A length word written as 0 and patched with the count of the bytes behind it.
class LengthWord {
public:
    explicit LengthWord(DataOut& out) : m_out(out)
    {
        m_out << qint32(0);
        m_start = m_out.position();
    }
    void patch() { m_out.patch(m_start - 4, qint32(m_out.position() - m_start)); }

private:
    DataOut& m_out;
    qint64 m_start = 0;
};

// Records whose payload size is known ahead are written with their length
// at once; only blocks and lists are patched.

// A byte array: its length word, then the array.
void writeSizedBytes(DataOut& out, const QByteArray& bytes)
{
    out << qint32(4 + bytes.size());
    out.writeBytes(bytes);
}

void writeBytesRecord(DataOut& out, quint32 tag, const QByteArray& bytes)
{
    out << qint32(tag);
    writeSizedBytes(out, bytes);
}

// A double as the UTF-8 bytes of its two-decimal text.
void writeDoubleRecord(DataOut& out, quint32 tag, double value)
{
    char text[DoubleTextCapacity];
    const int n = doubleTextFast(value, text);
    if (n < 0) {
        writeBytesRecord(out, tag, doubleText(value).toUtf8());
        return;
    }
    out << qint32(tag) << qint32(4 + n) << qint32(n);
    out.writeRaw(text, n);
}

void writeRawRecord(DataOut& out, quint32 tag, qint64 value) { out << qint32(tag) << qint32(8) << value; }
void writeRawRecord(DataOut& out, quint32 tag, bool value) { out << qint32(tag) << qint32(1) << value; }

void writeRawRecord(DataOut& out, quint32 tag, const QString& value)
{
    out << qint32(tag);
    LengthWord length(out);
    out.viaStream([&](QDataStream& stream) { stream << value; });
    length.patch();
}

}  // namespace

bool Internal::writeTagged(const Record& r, QDataStream& stream, int tag, bool withTag)
{
    // Lengths are patched on the device once a block's payload is written,
    // which needs a device that can seek back. For one that cannot, a pipe or
    // a socket, the form is gathered whole and written in one piece.
    QIODevice* device = stream.device();
    if (device && device->isSequential()) {
        QByteArray bytes;
        QDataStream gathered(&bytes, QIODevice::WriteOnly);
        gathered.setVersion(stream.version());
        gathered.setByteOrder(stream.byteOrder());
        gathered.setFloatingPointPrecision(stream.floatingPointPrecision());
        const bool written = writeTagged(r, gathered, tag, withTag);
        stream.writeRawData(bytes.constData(), bytes.size());
        return written;
    }
    DataOut out(stream);
    return writeTagged(r, out, tag, withTag);
}

bool Internal::writeTagged(const Record& r, DataOut& out, int tag, bool withTag)
{
    // Flag and logger have been handed down and the tree checked where the write began.
    if (r.GetValidate() && !r.HasData())
        return false;
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    if (withTag)
        out << qint32(tag);
    LengthWord block(out);
    if (info.version)
        writeRawRecord(out, info.version->tag, schemaVersionOf(p, *info.version));
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        const bool set = p.test(f.bit);
        switch (f.kind) {
        case Kind::Double:
            if (written(p, f))
                writeDoubleRecord(out, f.tag, value<double>(p, f));
            break;
        case Kind::Enum:
        case Kind::Text:
        case Kind::DateTime:
            if (written(p, f))
                writeBytesRecord(out, f.tag, fieldText(p, f).toUtf8());
            break;
        case Kind::UInt64:
            if (written(p, f))
                writeRawRecord(out, f.tag, qint64(value<quint64>(p, f)));
            break;
        case Kind::Bool:
            if (written(p, f))
                writeRawRecord(out, f.tag, value<bool>(p, f));
            break;
        case Kind::Child:
            if (set)
                writeTagged(child(p, f), out, int(f.tag), true);
            break;
        case Kind::List: {
            const void* list = field(p, f);
            const ListOps& ops = f.listOps();
            const int n = ops.size(list);
            const bool omitWhenEmpty = f.has(OmitWhenEmpty);
            if (omitWhenEmpty && n == 0)
                break;
            out << qint32(f.tag);
            LengthWord length(out);
            out << qint32(n);
            if (set || omitWhenEmpty)
                for (int k = 0; k < n; ++k)
                    writeTagged(ops.cat(list, k), out, int(f.tag), false);
            length.patch();
            break;
        }
        case Kind::EnumList: {
            const void* list = field(p, f);
            const EnumListInfo& values = f.enumListInfo();
            const int n = values.size(list);
            out << qint32(f.tag);
            LengthWord length(out);
            out << qint32(n);
            for (int k = 0; k < n; ++k) {
                const QString* name = Internal::enumName(values.names, values.at(list, k));
                writeSizedBytes(out, name ? name->toUtf8() : QByteArray());
            }
            length.patch();
            break;
        }
        }
    }
    block.patch();
    return true;
}

static void readTaggedList(Record& r, Payload& p, const FieldInfo& f, DataIn& in, qint64 room)
{
    qint32 count = 0;
    in >> count;
    // Every item needs at least its length word: a count the block cannot hold
    // is refused before anything is reserved.
    const qint64 left = in.bytesLeft();
    if (in.status() != QDataStream::Ok || count < 0 || count * MinTaggedItemBytes > room - 4 ||
        (left >= 0 && count * MinTaggedItemBytes > left))
        Internal::lengthError(r);
    void* list = Internal::field(p, f);
    const ListOps& ops = f.listOps();
    ops.reserve(list, ops.size(list) + reservableItems(left, count, MinTaggedItemBytes));
    for (qint32 k = 0; k < count; ++k) {
        qint32 itemSize = 0;
        in >> itemSize;
        if (in.status() != QDataStream::Ok)
            Internal::lengthError(r);
        Internal::PendingItem item(r, p, f);
        Internal::readTagged(item.item(), in, itemSize);
        item.finish();
    }
}

// The text of a byte-array record, UTF-8.
static QString readText(DataIn& in)
{
    const char* data = nullptr;
    int size = 0;
    if (in.takeBytes(data, size))
        return decodeUtf8(data, size);
    QByteArray bytes;
    in.viaStream([&](QDataStream& stream) { stream >> bytes; });
    return decodeUtf8(bytes);
}

// The index of the enumeration name that a byte-array record holds.
static quint8 readEnumIndex(DataIn& in, const FieldInfo& f)
{
    const char* data = nullptr;
    int size = 0;
    if (!in.takeBytes(data, size)) {
        QByteArray bytes;
        in.viaStream([&](QDataStream& stream) { stream >> bytes; });
        return Internal::enumIndex(f, decodeUtf8(bytes));
    }
    // Names are ASCII: bytes that are too compare as Latin-1, without a decoded copy.
    for (int i = 0; i < size; ++i)
        if (uchar(data[i]) >= 0x80)
            return Internal::enumIndex(f, decodeUtf8(data, size));
    return Internal::enumIndex(f, QLatin1String(data, size));
}

// A double of the tagged form: its two-decimal text.
static double readDouble(DataIn& in)
{
    const char* data = nullptr;
    int size = 0;
    double value = 0;
    if (in.takeBytes(data, size) && parseDoubleTextFast(data, size, value))
        return value;
    if (data)
        return decodeUtf8(data, size).toDouble();
    QByteArray bytes;
    in.viaStream([&](QDataStream& stream) { stream >> bytes; });
    return decodeUtf8(bytes).toDouble();
}

static void readTaggedEnumList(Record& r, Payload& p, const FieldInfo& f, DataIn& in, qint64 room)
{
    qint32 count = 0;
    in >> count;
    // Each value needs its length word and its byte count.
    constexpr qint64 MinValueBytes = 8;
    const qint64 left = in.bytesLeft();
    if (in.status() != QDataStream::Ok || count < 0 || count * MinValueBytes > room - 4 ||
        (left >= 0 && count * MinValueBytes > left))
        Internal::lengthError(r);
    f.enumListInfo().reserve(Internal::field(p, f), reservableItems(left, count, MinValueBytes));
    for (qint32 k = 0; k < count; ++k) {
        qint32 valueLength = 0;
        in >> valueLength;
        const quint8 index = readEnumIndex(in, f);
        if (in.status() != QDataStream::Ok)
            Internal::lengthError(r);
        Internal::appendEnumValue(r, p, f, index);
    }
}

void Internal::readTagged(Record& r, QDataStream& stream, qint64 length)
{
    DataIn in(stream);
    readTagged(r, in, length);
}

void Internal::readTagged(Record& r, DataIn& in, qint64 length)
{
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    const TaggedWalk walk = walkTaggedBlock(in, info, length, [&](const TaggedHead& head) {
        const qint32 size = head.size;
        if (head.version) {
            QString loaded;
            in.viaStream([&](QDataStream& stream) { stream >> loaded; });
            versionGate(r, p, loaded);
            return true;
        }
        const FieldInfo* f = head.field;
        if (!f) {
            in.viaStream([&](QDataStream& stream) { r.skipCurrentElement(stream, size, int(head.tag)); });
            return true;
        }
        switch (f->kind) {
        case Kind::Double:
            value<double>(p, *f) = readDouble(in);
            p.set(f->bit);
            break;
        case Kind::Enum: storeEnum(r, p, *f, readEnumIndex(in, *f)); break;
        case Kind::Text: storeText(r, p, *f, readText(in)); break;
        case Kind::DateTime:
            value<QDateTime>(p, *f) = Converters::ToDateTime(readText(in));
            p.set(f->bit);
            break;
        case Kind::UInt64: {
            qint64 v = 0;
            in >> v;
            value<quint64>(p, *f) = quint64(v);
            p.set(f->bit);
            break;
        }
        case Kind::Bool:
            in >> value<bool>(p, *f);
            p.set(f->bit);
            break;
        case Kind::Child:
            readTagged(child(p, *f), in, size);
            p.set(f->bit);
            break;
        case Kind::List: readTaggedList(r, p, *f, in, qMin<qint64>(size, head.room)); break;
        case Kind::EnumList: readTaggedEnumList(r, p, *f, in, qMin<qint64>(size, head.room)); break;
        }
        return true;
    });
    // A short block, a record running past the block or a premature end of the stream.
    if (walk.remaining != 0 || in.status() != QDataStream::Ok)
        lengthError(r);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
