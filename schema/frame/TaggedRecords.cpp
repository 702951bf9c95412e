// The records of the tagged form, walked as the reader splits them, with
// their values read as far as their lengths allow.

#include <EmitterDossierDoc/frame/TaggedRecords.h>

#include <QtEndian>

#include "schema/frame/ClassInfo_p.h"
#include "schema/frame/Limits_p.h"
#include "schema/frame/TaggedWalk_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

TaggedVisitor::~TaggedVisitor() = default;
void TaggedVisitor::record(const TaggedRecord&, const TaggedValue&) {}
void TaggedVisitor::item(const TaggedItem&) {}
void TaggedVisitor::enumValue(const TaggedItem&, const TaggedValue&) {}
void TaggedVisitor::fault(const TaggedFault&) {}

namespace {

// Big-endian words from bytes, up to a limit that the walk moves as it goes
// into blocks and records. As the reader's input, a word that passes the
// limit leaves the status ReadPastEnd.
class Bytes {
public:
    explicit Bytes(const QByteArray& bytes) : m_data(bytes.constData()), m_end(bytes.size()) {}

    qint64 pos() const { return m_pos; }
    qint64 end() const { return m_end; }
    qint64 left() const { return m_end - m_pos; }
    void seek(qint64 pos) { m_pos = pos; }
    void setEnd(qint64 end) { m_end = end; }

    Bytes& operator>>(qint32& value)
    {
        if (!word(value)) {
            m_pos = m_end;
            m_status = QDataStream::ReadPastEnd;
        }
        return *this;
    }
    bool atEnd() const { return m_pos >= m_end; }
    QDataStream::Status status() const { return m_status; }

    // A word if one lies before the limit; nothing moves otherwise.
    bool word(qint32& value)
    {
        value = 0;
        if (left() < 4)
            return false;
        value = qFromBigEndian<qint32>(m_data + m_pos);
        m_pos += 4;
        return true;
    }
    const char* take(qint64 count)
    {
        const char* at = m_data + m_pos;
        m_pos += count;
        return at;
    }

private:
    const char* m_data;
    qint64 m_pos = 0;
    qint64 m_end = 0;
    QDataStream::Status m_status = QDataStream::Ok;
};

class Walker {
public:
    Walker(const QByteArray& bytes, TaggedVisitor& visitor) : m_in(bytes), m_visitor(visitor) {}

    bool run(const ClassInfo& info, qint64 start, qint64 end)
    {
        m_in.seek(start);
        m_in.setEnd(end);
        return block(info, end, 0);
    }

private:
    // The records of a block that ends at `end`; false at the first fault.
    bool block(const ClassInfo& info, qint64 end, int depth)
    {
        const qint64 outerEnd = m_in.end();
        m_in.setEnd(end);
        qint64 at = m_in.pos();
        const TaggedWalk walk = walkTaggedBlock(m_in, info, end - at, [&](const TaggedHead& head) {
            const bool ok = record(head, at, end, depth);
            at = m_in.pos();
            return ok;
        });
        m_in.setEnd(outerEnd);
        switch (walk.end) {
        case TaggedWalkEnd::Done: return true;
        case TaggedWalkEnd::Stopped: return false;
        case TaggedWalkEnd::HeaderCut: {
            TaggedFault f;
            f.left = end - at;
            return fault(TaggedFaultKind::HeaderCut, at, f);
        }
        case TaggedWalkEnd::NegativeLength: {
            TaggedFault f;
            f.record = recordOf(walk.head, at, depth);
            f.count = walk.head.size;
            return fault(TaggedFaultKind::NegativeLength, at, f);
        }
        }
        return false;
    }

    static TaggedRecord recordOf(const TaggedHead& head, qint64 at, int depth)
    {
        TaggedRecord r;
        r.offset = at;
        r.tag = head.tag;
        r.length = head.size;
        r.field = head.field;
        r.version = head.version;
        r.depth = depth;
        return r;
    }

    bool fault(TaggedFaultKind kind, qint64 at, TaggedFault f = TaggedFault())
    {
        f.kind = kind;
        f.offset = at;
        m_visitor.fault(f);
        return false;
    }

    bool record(const TaggedHead& head, qint64 at, qint64 end, int depth)
    {
        const TaggedRecord r = recordOf(head, at, depth);
        // A record that runs past its block is walked as far as the block
        // goes; the fault is where it starts.
        const bool cut = head.size > head.room;
        if (cut) {
            TaggedFault f;
            f.record = r;
            f.count = head.size;
            f.left = head.room;
            fault(TaggedFaultKind::PastBlock, at, f);
        }
        const qint64 recordEnd = cut ? end : m_in.pos() + head.size;
        m_in.setEnd(recordEnd);
        bool ok = true;
        if (head.version) {
            TaggedValue value;
            ok = bytes(value, true);
            if (ok)
                m_visitor.record(r, value);
        } else if (!head.field) {
            // A record of a newer writer: the reader passes over its payload.
            m_visitor.record(r, TaggedValue());
            m_in.seek(recordEnd);
        } else {
            ok = fieldRecord(r, *head.field, recordEnd);
        }
        m_in.setEnd(end);
        if (!ok || cut)
            return false;
        if (m_in.pos() != recordEnd) {
            TaggedFault f;
            f.count = head.size;
            f.left = m_in.pos() - (recordEnd - head.size);
            return fault(TaggedFaultKind::PayloadLength, at, f);
        }
        return true;
    }

    // A byte array, or with `utf16` a string, up to the limit.
    bool bytes(TaggedValue& value, bool utf16)
    {
        const qint64 at = m_in.pos();
        qint32 count = 0;
        if (!m_in.word(count))
            return fault(TaggedFaultKind::NoByteCount, at);
        if (count == -1) {
            value.kind = TaggedValueKind::Null;
            return true;
        }
        if (count < 0 || count > m_in.left()) {
            TaggedFault f;
            f.count = count;
            f.left = m_in.left();
            return fault(TaggedFaultKind::ByteCount, at, f);
        }
        const char* data = m_in.take(count);
        value.kind = TaggedValueKind::Text;
        value.bytes = QByteArray(data, count);
        if (utf16) {
            // UTF-16 code units in the stream's byte order.
            for (int i = 0; i + 1 < count; i += 2)
                value.text += QChar(qFromBigEndian<quint16>(data + i));
        } else {
            value.text = QString::fromUtf8(data, count);
        }
        return true;
    }

    bool fieldRecord(const TaggedRecord& r, const FieldInfo& f, qint64 end)
    {
        const qint64 at = m_in.pos();
        TaggedValue value;
        switch (f.kind) {
        case Kind::Double:
        case Kind::Text:
        case Kind::DateTime:
        case Kind::Enum:
            if (!bytes(value, false))
                return false;
            m_visitor.record(r, value);
            return true;
        case Kind::UInt64:
            if (m_in.left() < 8) {
                TaggedFault fault8;
                fault8.left = m_in.left();
                return fault(TaggedFaultKind::IntegerCut, at, fault8);
            }
            value.kind = TaggedValueKind::Integer;
            value.integer = qFromBigEndian<quint64>(m_in.take(8));
            m_visitor.record(r, value);
            return true;
        case Kind::Bool:
            if (m_in.left() < 1)
                return fault(TaggedFaultKind::BooleanCut, at);
            value.kind = TaggedValueKind::Boolean;
            value.boolean = *m_in.take(1) != 0;
            m_visitor.record(r, value);
            return true;
        case Kind::Child:
            // The record is the child's block: the field's tag and length head its records.
            value.kind = TaggedValueKind::Block;
            m_visitor.record(r, value);
            return block(f.childOps().childClass(), end, r.depth + 1);
        case Kind::List: return list(r, f, value);
        case Kind::EnumList: return enumList(r, value);
        }
        return true;
    }

    bool list(const TaggedRecord& r, const FieldInfo& field, TaggedValue& value)
    {
        const qint64 at = m_in.pos();
        if (!m_in.word(value.count))
            return fault(TaggedFaultKind::NoItemCount, at);
        value.kind = TaggedValueKind::Items;
        m_visitor.record(r, value);
        const qint32 count = value.count;
        // Every item needs at least its length word.
        if (count < 0 || count * MinTaggedItemBytes > m_in.left()) {
            TaggedFault f;
            f.count = count;
            f.left = m_in.left();
            return fault(TaggedFaultKind::ItemCount, at, f);
        }
        const ClassInfo& itemClass = field.listOps().itemClass();
        for (qint32 k = 0; k < count; ++k) {
            TaggedItem item;
            item.field = r.field;
            item.offset = m_in.pos();
            item.index = k;
            item.depth = r.depth + 1;
            if (!m_in.word(item.length)) {
                TaggedFault f;
                f.index = k;
                return fault(TaggedFaultKind::NoItemLength, item.offset, f);
            }
            m_visitor.item(item);
            if (item.length < 0 || item.length > m_in.left()) {
                TaggedFault f;
                f.index = k;
                f.count = item.length;
                f.left = m_in.left();
                return fault(TaggedFaultKind::ItemLength, item.offset, f);
            }
            if (!block(itemClass, m_in.pos() + item.length, r.depth + 2))
                return false;
        }
        return true;
    }

    bool enumList(const TaggedRecord& r, TaggedValue& value)
    {
        const qint64 at = m_in.pos();
        if (!m_in.word(value.count))
            return fault(TaggedFaultKind::NoValueCount, at);
        value.kind = TaggedValueKind::Values;
        m_visitor.record(r, value);
        const qint64 recordEnd = m_in.end();
        for (qint32 k = 0; k < value.count; ++k) {
            TaggedItem item;
            item.field = r.field;
            item.offset = m_in.pos();
            item.index = k;
            item.depth = r.depth + 1;
            if (!m_in.word(item.length)) {
                TaggedFault f;
                f.index = k;
                return fault(TaggedFaultKind::NoValueLength, item.offset, f);
            }
            // Its length word counts the byte count and the bytes.
            if (item.length < 4 || item.length > m_in.left()) {
                TaggedFault f;
                f.index = k;
                f.count = item.length;
                f.left = m_in.left();
                return fault(TaggedFaultKind::ValueLength, item.offset, f);
            }
            m_in.setEnd(m_in.pos() + item.length);
            TaggedValue text;
            const bool ok = bytes(text, false);
            m_in.setEnd(recordEnd);
            if (!ok)
                return false;
            m_visitor.enumValue(item, text);
        }
        return true;
    }

    Bytes m_in;
    TaggedVisitor& m_visitor;
};

}  // namespace

bool TaggedBlockHead(const QByteArray& bytes, quint32& classId, qint32& length)
{
    if (bytes.size() < 8)
        return false;
    classId = qFromBigEndian<quint32>(bytes.constData());
    length = qFromBigEndian<qint32>(bytes.constData() + 4);
    return true;
}

bool WalkTaggedRecords(const QByteArray& bytes, const ClassInfo& info, TaggedVisitor& visitor)
{
    quint32 id = 0;
    qint32 length = 0;
    if (!TaggedBlockHead(bytes, id, length))
        return false;
    const qint64 available = bytes.size() - 8;
    Walker walker(bytes, visitor);
    return walker.run(info, 8, 8 + qBound(qint64(0), qint64(length), available));
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
