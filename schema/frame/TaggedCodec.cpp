// The tagged form: an object block is a length word and field records, each
// record a tag, a length word and a payload. Lengths are written as
// placeholders and patched by seeking back once the payload is complete.

#include "recordkit/Converters.h"
#include "schema/frame/Limits.h"
#include "schema/frame/Runtime.h"
#include "schema/frame/TextForms.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

namespace {

// A length word written as 0 and patched with the count of the bytes behind it.
class LengthWord {
public:
    explicit LengthWord(QDataStream& stream) : m_stream(stream)
    {
        m_stream << qint32(0);
        m_start = m_stream.device()->pos();
    }
    void patch()
    {
        QIODevice* device = m_stream.device();
        const qint64 end = device->pos();
        device->seek(m_start - 4);
        m_stream << qint32(end - m_start);
        device->seek(end);
    }

private:
    QDataStream& m_stream;
    qint64 m_start = 0;
};

void writeBytesRecord(QDataStream& stream, quint32 tag, const QByteArray& bytes)
{
    stream << qint32(tag);
    LengthWord length(stream);
    stream << bytes;
    length.patch();
}

// A double as the UTF-8 bytes of its two-decimal text.
void writeDoubleRecord(QDataStream& stream, quint32 tag, double value)
{
    stream << qint32(tag);
    LengthWord length(stream);
    char text[DoubleTextCapacity];
    const int n = doubleTextFast(value, text);
    if (n >= 0) {
        stream << qint32(n);
        stream.writeRawData(text, n);
    } else {
        stream << doubleText(value).toUtf8();
    }
    length.patch();
}

template <class T>
void writeRawRecord(QDataStream& stream, quint32 tag, T value)
{
    stream << qint32(tag);
    LengthWord length(stream);
    stream << value;
    length.patch();
}

const FieldInfo* fieldByTag(const ClassInfo& info, quint32 tag)
{
    for (int i = 0; i < info.fieldCount; ++i)
        if (info.fields[i].tag == tag)
            return &info.fields[i];
    return nullptr;
}

}  // namespace

bool Runtime::writeTagged(const Record& r, QDataStream& stream, int tag, bool withTag)
{
    // Flag and logger have been handed down and the tree checked where the write began.
    if (r.GetValidate() && !r.HasData())
        return false;
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    if (withTag)
        stream << qint32(tag);
    LengthWord block(stream);
    if (info.version)
        writeRawRecord(stream, info.version->tag, version(p, *info.version));
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        const bool set = p.test(f.bit);
        switch (f.kind) {
        case Kind::Double:
            if (written(p, f))
                writeDoubleRecord(stream, f.tag, value<double>(p, f));
            break;
        case Kind::Enum:
        case Kind::Text:
        case Kind::DateTime:
            if (written(p, f))
                writeBytesRecord(stream, f.tag, fieldText(p, f).toUtf8());
            break;
        case Kind::UInt64:
            if (written(p, f))
                writeRawRecord(stream, f.tag, qint64(value<quint64>(p, f)));
            break;
        case Kind::Bool:
            if (written(p, f))
                writeRawRecord(stream, f.tag, value<bool>(p, f));
            break;
        case Kind::Child:
            if (set)
                writeTagged(child(p, f), stream, int(f.tag), true);
            break;
        case Kind::List: {
            const void* list = field(p, f);
            const ListOps& ops = f.listOps();
            const int n = ops.size(list);
            const bool omitWhenEmpty = f.has(OmitWhenEmpty);
            if (omitWhenEmpty && n == 0)
                break;
            stream << qint32(f.tag);
            LengthWord length(stream);
            stream << qint32(n);
            if (set || omitWhenEmpty)
                for (int k = 0; k < n; ++k)
                    writeTagged(ops.cat(list, k), stream, int(f.tag), false);
            length.patch();
            break;
        }
        case Kind::EnumList: {
            const void* list = field(p, f);
            const EnumListInfo& values = f.enumListInfo();
            const QStringList& names = *values.names.names;
            const int n = values.size(list);
            stream << qint32(f.tag);
            LengthWord length(stream);
            stream << qint32(n);
            for (int k = 0; k < n; ++k) {
                const qint8 index = qint8(values.at(list, k));
                LengthWord valueLength(stream);
                stream << (index >= 0 && index < names.size() ? names.at(index).toUtf8() : QByteArray());
                valueLength.patch();
            }
            length.patch();
            break;
        }
        }
    }
    block.patch();
    return true;
}

static void readTaggedList(Record& r, Payload& p, const FieldInfo& f, QDataStream& stream, qint64 room)
{
    qint32 count = 0;
    stream >> count;
    // Every item needs at least its length word: a count the block cannot hold
    // is refused before anything is reserved.
    const qint64 left = bytesLeft(stream);
    if (stream.status() != QDataStream::Ok || count < 0 || count * MinTaggedItemBytes > room - 4 ||
        (left >= 0 && count * MinTaggedItemBytes > left))
        Runtime::lengthError(r);
    void* list = Runtime::field(p, f);
    const ListOps& ops = f.listOps();
    ops.reserve(list, ops.size(list) + reservableItems(stream, count, MinTaggedItemBytes));
    for (qint32 k = 0; k < count; ++k) {
        qint32 itemSize = 0;
        stream >> itemSize;
        if (stream.status() != QDataStream::Ok)
            Runtime::lengthError(r);
        PendingItem item(r, p, f);
        Runtime::readTagged(item.item(), stream, itemSize);
        item.finish();
    }
}

static void readTaggedEnumList(Record& r, Payload& p, const FieldInfo& f, QDataStream& stream, qint64 room)
{
    qint32 count = 0;
    stream >> count;
    // Each value needs its length word and its byte count.
    constexpr qint64 MinValueBytes = 8;
    const qint64 left = bytesLeft(stream);
    if (stream.status() != QDataStream::Ok || count < 0 || count * MinValueBytes > room - 4 ||
        (left >= 0 && count * MinValueBytes > left))
        Runtime::lengthError(r);
    f.enumListInfo().reserve(Runtime::field(p, f), reservableItems(stream, count, MinValueBytes));
    for (qint32 k = 0; k < count; ++k) {
        qint32 valueLength = 0;
        QByteArray name;
        stream >> valueLength >> name;
        if (stream.status() != QDataStream::Ok)
            Runtime::lengthError(r);
        Runtime::appendEnumValue(r, p, f, Runtime::enumIndex(f, decodeUtf8(name)));
    }
}

void Runtime::readTagged(Record& r, QDataStream& stream, qint64 length)
{
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    qint64 remaining = length;
    while (remaining > 0 && !stream.atEnd()) {
        qint32 tag = 0;
        qint32 size = 0;
        stream >> tag >> size;
        if (stream.status() != QDataStream::Ok || size < 0)
            break;
        const qint64 room = remaining - 8;  // what the block has left for this record's payload
        remaining -= 8 + qint64(size);
        if (info.version && quint32(tag) == info.version->tag) {
            QString loaded;
            stream >> loaded;
            versionGate(r, p, loaded);
            continue;
        }
        const FieldInfo* f = fieldByTag(info, quint32(tag));
        if (!f) {
            r.skipCurrentElement(stream, size, tag);
            continue;
        }
        switch (f->kind) {
        case Kind::Double:
        case Kind::Enum:
        case Kind::Text:
        case Kind::DateTime: {
            QByteArray bytes;
            stream >> bytes;
            const QString text = decodeUtf8(bytes);
            if (f->kind == Kind::Enum) {
                storeEnum(r, p, *f, enumIndex(*f, text));
            } else if (f->kind == Kind::Text) {
                storeText(r, p, *f, text);
            } else {
                if (f->kind == Kind::Double)
                    value<double>(p, *f) = text.toDouble();
                else
                    value<QDateTime>(p, *f) = Converters::ToDateTime(text);
                p.set(f->bit);
            }
            break;
        }
        case Kind::UInt64: {
            qint64 v = 0;
            stream >> v;
            value<quint64>(p, *f) = quint64(v);
            p.set(f->bit);
            break;
        }
        case Kind::Bool:
            stream >> value<bool>(p, *f);
            p.set(f->bit);
            break;
        case Kind::Child:
            readTagged(child(p, *f), stream, size);
            p.set(f->bit);
            break;
        case Kind::List:
            readTaggedList(r, p, *f, stream, qMin<qint64>(size, room));
            break;
        case Kind::EnumList:
            readTaggedEnumList(r, p, *f, stream, qMin<qint64>(size, room));
            break;
        }
    }
    // A short block, a record running past the block or a premature end of the stream.
    if (remaining != 0 || stream.status() != QDataStream::Ok)
        lengthError(r);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
