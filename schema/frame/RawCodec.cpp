// The raw form: the presence bitmap, then the fields in bit order, with no
// tags, no lengths and no text. Exact, compact, and tied to this layout.

#include "schema/frame/DataIn_p.h"
#include "schema/frame/DataOut_p.h"
#include "schema/frame/Limits_p.h"
#include "schema/frame/RawDateTime_p.h"
#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

void Internal::writeRaw(const Record& r, QDataStream& stream)
{
    DataOut out(stream);
    writeRaw(r, out);
}

void Internal::writeRaw(const Record& r, DataOut& out)
{
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    // The bitmap: bit i at byte i / 8, least significant bit first.
    char bitmap[4];
    for (int i = 0; i < info.bitmapBytes(); ++i)
        bitmap[i] = char(p.presence >> (8 * i));
    out.writeRaw(bitmap, info.bitmapBytes());
    if (info.version)
        out.viaStream([&](QDataStream& stream) { stream << schemaVersionOf(p, *info.version); });
    for (int bit = 0; bit < info.fieldCount; ++bit) {
        const FieldInfo& f = info.field(bit);
        const bool present = written(p, f);
        switch (f.kind) {
        case Kind::Double:
            if (present)
                out << value<double>(p, f);
            break;
        case Kind::UInt64:
            if (present)
                out << qint64(value<quint64>(p, f));
            break;
        case Kind::Enum:
            if (present)
                out << qint8(value<quint8>(p, f));
            break;
        case Kind::Text:
            if (present)
                out.viaStream([&](QDataStream& stream) { stream << value<QString>(p, f); });
            break;
        case Kind::DateTime:
            if (present)
                out.viaStream([&](QDataStream& stream) { writeRawDateTime(stream, value<QDateTime>(p, f)); });
            break;
        case Kind::Bool:
            if (present)
                out << value<bool>(p, f);
            break;
        case Kind::Child:
            if (p.test(bit))
                writeRaw(child(p, f), out);
            break;
        case Kind::List: {
            if (f.has(OmitWhenEmpty) && !p.test(bit))
                break;
            const void* list = field(p, f);
            const ListOps& ops = f.listOps();
            const int n = ops.size(list);
            out << qint32(n);
            if (p.test(bit))
                for (int k = 0; k < n; ++k)
                    writeRaw(ops.cat(list, k), out);
            break;
        }
        case Kind::EnumList: {
            const void* list = field(p, f);
            const EnumListInfo& values = f.enumListInfo();
            const int n = values.size(list);
            out << qint32(n);
            for (int k = 0; k < n; ++k)
                out << qint8(values.at(list, k));
            break;
        }
        }
    }
}

// The item count of a list; a negative one is no count a writer makes.
static qint32 readCount(DataIn& in)
{
    qint32 count = 0;
    in >> count;
    if (count < 0) {
        in.setStatus(QDataStream::ReadCorruptData);
        return 0;
    }
    return count;
}

// A list that ends before its count leaves the stream failed, as a string cut
// short does: the input was too short for the record.
static void endList(DataIn& in, qint32 read, qint32 count)
{
    if (read < count)
        in.setStatus(QDataStream::ReadPastEnd);
}

void Internal::readRaw(Record& r, QDataStream& stream)
{
    DataIn in(stream);
    readRaw(r, in);
}

void Internal::readRaw(Record& r, DataIn& in)
{
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    uchar bitmap[4] = {0, 0, 0, 0};
    in.readRaw(reinterpret_cast<char*>(bitmap), info.bitmapBytes());
    quint32 presence = 0;
    for (int i = 0; i < info.bitmapBytes(); ++i)
        presence |= quint32(bitmap[i]) << (8 * i);
    p.presence = presence & ((quint64(1) << info.fieldCount) - 1);
    if (info.version) {
        // A record of an older version is cleared here, its bitmap with it.
        QString loaded;
        in.viaStream([&](QDataStream& stream) { stream >> loaded; });
        versionGate(r, p, loaded);
    }
    for (int bit = 0; bit < info.fieldCount; ++bit) {
        const FieldInfo& f = info.field(bit);
        const bool present = f.mandatory || p.test(bit);
        switch (f.kind) {
        case Kind::Double:
            if (present)
                in >> value<double>(p, f);
            break;
        case Kind::UInt64:
            if (present) {
                qint64 v = 0;
                in >> v;
                value<quint64>(p, f) = quint64(v);
            }
            break;
        case Kind::Enum:
            if (present) {
                qint8 v = -1;
                in >> v;
                value<quint8>(p, f) = quint8(v);
            }
            break;
        case Kind::Text:
            if (present)
                in.viaStream([&](QDataStream& stream) { stream >> value<QString>(p, f); });
            break;
        case Kind::DateTime:
            // Read as QDataStream serialises it, except that the record's zone
            // id never names a file for Qt to open: see RawDateTime.cpp.
            if (p.test(bit))
                in.viaStream([&](QDataStream& stream) { readRawDateTime(stream, value<QDateTime>(p, f)); });
            break;
        case Kind::Bool:
            if (present)
                in >> value<bool>(p, f);
            break;
        case Kind::Child:
            if (present)
                readRaw(child(p, f), in);
            break;
        case Kind::List: {
            if (f.has(OmitWhenEmpty) && !p.test(bit))
                break;
            const qint32 count = readCount(in);
            void* list = field(p, f);
            const ListOps& ops = f.listOps();
            ops.reserve(list, ops.size(list) + reservableItems(in.bytesLeft(), count, MinRawItemBytes));
            qint32 k = 0;
            for (; k < count && in.status() == QDataStream::Ok && !in.atEnd(); ++k) {
                Internal::PendingItem item(r, p, f);
                readRaw(item.item(), in);
                item.finish();
            }
            endList(in, k, count);
            break;
        }
        case Kind::EnumList: {
            const qint32 count = readCount(in);
            void* list = field(p, f);
            f.enumListInfo().reserve(list, reservableItems(in.bytesLeft(), count, 1));
            qint32 k = 0;
            for (; k < count && in.status() == QDataStream::Ok && !in.atEnd(); ++k) {
                qint8 v = -1;
                in >> v;
                appendEnumValue(r, p, f, quint8(v));
            }
            endList(in, k, count);
            break;
        }
        }
    }
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
