// dossier inspect: the tagged form as it stands in the bytes, record by
// record, with the first place where the lengths do not add up.

#include "Tool.h"

#include <QtEndian>

namespace dossier_tool {

using namespace EMITTERDOSSIERDOC;
using Frame::ClassInfo;
using Frame::FieldInfo;
using Frame::Kind;

namespace {

constexpr int MaxShownBytes = 60;

// Reads big-endian words from the bytes and knows where it stands.
class Cursor {
public:
    explicit Cursor(const QByteArray& bytes) : m_bytes(bytes) {}
    qint64 pos() const { return m_pos; }
    qint64 left(qint64 end) const { return end - m_pos; }
    bool word(qint32& value, qint64 end)
    {
        if (left(end) < 4)
            return false;
        value = qFromBigEndian<qint32>(m_bytes.constData() + m_pos);
        m_pos += 4;
        return true;
    }
    QByteArray take(qint64 count)
    {
        const QByteArray part = m_bytes.mid(int(m_pos), int(count));
        m_pos += count;
        return part;
    }
    void seek(qint64 pos) { m_pos = pos; }

private:
    const QByteArray& m_bytes;
    qint64 m_pos = 0;
};

class BlockWalker {
public:
    explicit BlockWalker(const QByteArray& bytes) : m_cursor(bytes) {}

    // Prints the records of the block from `start` to `end`; false at the first fault.
    bool run(const ClassInfo* info, qint64 start, qint64 end)
    {
        m_cursor.seek(start);
        return block(info, end, 1);
    }

    // Prints the records of a block that ends at `end`; false at the first fault.
    bool block(const ClassInfo* info, qint64 end, int depth)
    {
        while (m_cursor.pos() < end) {
            const qint64 at = m_cursor.pos();
            qint32 tag = 0, size = 0;
            if (!m_cursor.word(tag, end) || !m_cursor.word(size, end))
                return fault(at, QStringLiteral("%1 bytes left in the block, too few for a record header").arg(end - at));
            const FieldInfo* field = info ? fieldByTag(*info, quint32(tag)) : nullptr;
            const bool version = info && info->version && quint32(tag) == info->version->tag;
            const QString name = field ? *field->name : version ? QStringLiteral("Version") : QStringLiteral("unknown");
            const QString head = QStringLiteral("%1%2: 0x%3 %4, length %5")
                                     .arg(QString(depth * 2, QLatin1Char(' ')))
                                     .arg(at)
                                     .arg(quint32(tag), 8, 16, QLatin1Char('0'))
                                     .arg(name)
                                     .arg(size);
            if (size < 0) {
                out(head);
                return fault(at, QStringLiteral("a record cannot have a negative length"));
            }
            // A record that runs past its block is shown as far as the block
            // goes; the fault is where it starts.
            const bool cut = size > m_cursor.left(end);
            if (cut)
                fault(at, QStringLiteral("the record of %1 bytes runs past its block, which has %2 bytes left")
                              .arg(size)
                              .arg(m_cursor.left(end)));
            const qint64 recordEnd = cut ? end : m_cursor.pos() + size;
            bool ok = true;
            if (version)
                ok = value(head, QStringLiteral("string"), recordEnd);
            else if (!field) {
                // A record of a newer writer: the reader passes over its payload, and so do we.
                out(head + QStringLiteral(" (skipped)"));
                m_cursor.seek(recordEnd);
            } else
                ok = fieldRecord(*info, *field, head, recordEnd, depth);
            if (!ok || cut)
                return false;
            if (m_cursor.pos() != recordEnd)
                return fault(at, QStringLiteral("the payload takes %1 bytes, the record says %2")
                                     .arg(m_cursor.pos() - (recordEnd - size))
                                     .arg(size));
        }
        return true;
    }

    QString problem;

private:
    static const FieldInfo* fieldByTag(const ClassInfo& info, quint32 tag)
    {
        for (int i = 0; i < info.fieldCount; ++i)
            if (info.fields[i].tag == tag)
                return &info.fields[i];
        return nullptr;
    }

    // Keeps the first fault: the place where the lengths stop adding up.
    bool fault(qint64 at, const QString& text)
    {
        if (problem.isEmpty())
            problem = QStringLiteral("lengths do not add up at offset %1: %2").arg(at).arg(text);
        return false;
    }

    // A byte array or string payload, shown decoded.
    bool value(const QString& head, const QString& kind, qint64 end)
    {
        const qint64 at = m_cursor.pos();
        qint32 count = 0;
        if (!m_cursor.word(count, end))
            return fault(at, QStringLiteral("no room for the byte count"));
        if (count == -1) {
            out(head + QStringLiteral(" null"));
            return true;
        }
        if (count < 0 || count > m_cursor.left(end))
            return fault(at, QStringLiteral("a byte count of %1 with %2 bytes left").arg(count).arg(m_cursor.left(end)));
        const QByteArray bytes = m_cursor.take(count);
        QString text;
        if (kind == QLatin1String("string")) {
            // UTF-16 code units in the stream's byte order.
            for (int i = 0; i + 1 < bytes.size(); i += 2)
                text += QChar(qFromBigEndian<quint16>(bytes.constData() + i));
        } else {
            text = QString::fromUtf8(bytes);
        }
        if (text.size() > MaxShownBytes)
            text = text.left(MaxShownBytes) + QStringLiteral("...");
        out(head + QStringLiteral(" \"%1\"").arg(text));
        return true;
    }

    bool fieldRecord(const ClassInfo& owner, const FieldInfo& f, const QString& head, qint64 end, int depth)
    {
        const qint64 at = m_cursor.pos();
        switch (f.kind) {
        case Kind::Double:
        case Kind::Text:
        case Kind::DateTime:
        case Kind::Enum: return value(head, QStringLiteral("bytes"), end);
        case Kind::UInt64: {
            if (m_cursor.left(end) < 8)
                return fault(at, QStringLiteral("an integer needs 8 bytes, %1 left").arg(m_cursor.left(end)));
            out(head + QStringLiteral(" %1").arg(qFromBigEndian<quint64>(m_cursor.take(8).constData())));
            return true;
        }
        case Kind::Bool: {
            if (m_cursor.left(end) < 1)
                return fault(at, QStringLiteral("a boolean needs 1 byte"));
            out(head + (m_cursor.take(1).at(0) ? QStringLiteral(" true") : QStringLiteral(" false")));
            return true;
        }
        case Kind::Child: {
            // The record is the child's block: the field's tag and length head its records.
            const ClassInfo& child = childClass(owner, f);
            out(head + QStringLiteral(", block of %1").arg(QLatin1String(child.name)));
            return block(&child, end, depth + 1);
        }
        case Kind::List: {
            qint32 count = 0;
            if (!m_cursor.word(count, end))
                return fault(at, QStringLiteral("no room for the item count"));
            const ClassInfo& item = childClass(owner, f);
            out(head + QStringLiteral(", %1 items").arg(count));
            if (count < 0 || count > m_cursor.left(end) / 4)
                return fault(at, QStringLiteral("%1 items cannot fit in %2 bytes").arg(count).arg(m_cursor.left(end)));
            for (qint32 k = 0; k < count; ++k) {
                const qint64 itemAt = m_cursor.pos();
                qint32 length = 0;
                if (!m_cursor.word(length, end))
                    return fault(itemAt, QStringLiteral("no room for the length of item %1").arg(k));
                out(QStringLiteral("%1%2: %3[%4], length %5")
                        .arg(QString((depth + 1) * 2, QLatin1Char(' ')))
                        .arg(itemAt)
                        .arg(QLatin1String(item.name))
                        .arg(k)
                        .arg(length));
                if (length < 0 || length > m_cursor.left(end))
                    return fault(itemAt, QStringLiteral("item %1 of %2 bytes runs past its record, which has %3 bytes left")
                                             .arg(k)
                                             .arg(length)
                                             .arg(m_cursor.left(end)));
                if (!block(&item, m_cursor.pos() + length, depth + 2))
                    return false;
            }
            return true;
        }
        case Kind::EnumList: {
            qint32 count = 0;
            if (!m_cursor.word(count, end))
                return fault(at, QStringLiteral("no room for the value count"));
            out(head + QStringLiteral(", %1 values").arg(count));
            for (qint32 k = 0; k < count; ++k) {
                const qint64 valueAt = m_cursor.pos();
                qint32 length = 0;
                if (!m_cursor.word(length, end))
                    return fault(valueAt, QStringLiteral("no room for the length of value %1").arg(k));
                if (length < 4 || length > m_cursor.left(end))
                    return fault(valueAt, QStringLiteral("value %1 has the length %2 with %3 bytes left")
                                              .arg(k)
                                              .arg(length)
                                              .arg(m_cursor.left(end)));
                if (!value(QStringLiteral("%1%2: [%3]").arg(QString((depth + 1) * 2, QLatin1Char(' '))).arg(valueAt).arg(k),
                           QStringLiteral("bytes"), m_cursor.pos() + length))
                    return false;
            }
            return true;
        }
        }
        return true;
    }

    Cursor m_cursor;
};

}  // namespace

int runInspect(const QStringList& args)
{
    const Arguments a = parseArguments(args, {}, {QStringLiteral("--max-size")});
    if (!a.problem.isEmpty() || a.positional.size() != 1) {
        error(a.problem.isEmpty() ? QStringLiteral("inspect needs one file") : a.problem);
        return Unreadable;
    }
    if (!takeMaxSize(a))
        return Unreadable;
    const QString path = a.positional.first();
    QByteArray bytes;
    QString problem;
    if (!readInput(path, bytes, problem)) {
        error(problem);
        return Unreadable;
    }
    const int packedSize = bytes.size();
    Form form;
    const ClassEntry* entry = findTagged(bytes, form, problem);
    if (!entry) {
        if (problem.isEmpty())
            problem = QStringLiteral("not a tagged or compressed record of a known class");
        error(QStringLiteral("%1: %2").arg(path, problem));
        return Unreadable;
    }
    if (form == Form::Compressed)
        out(QStringLiteral("compressed form, %1 bytes, %2 bytes unpacked").arg(packedSize).arg(bytes.size()));
    Cursor header(bytes);
    qint32 id = 0, length = 0;
    if (!header.word(id, bytes.size()) || !header.word(length, bytes.size())) {
        error(QStringLiteral("%1: lengths do not add up at offset 0: the file ends inside the block header").arg(path));
        return Unreadable;
    }
    out(QStringLiteral("0: block of %1 (0x%2), length %3")
            .arg(QLatin1String(entry->info().name))
            .arg(quint32(id), 8, 16, QLatin1Char('0'))
            .arg(length));
    // The records of the block as far as the bytes go; what a reader would
    // find wrong is the first fault.
    const qint64 available = bytes.size() - 8;
    BlockWalker body(bytes);
    const bool recordsFit = body.run(&entry->info(), 8, 8 + qBound<qint64>(0, length, available));
    if (length < 0 || length > available) {
        error(QStringLiteral("%1: lengths do not add up at offset 0: the block states %2 bytes, %3 follow")
                  .arg(path)
                  .arg(length)
                  .arg(available));
        return Unreadable;
    }
    if (!recordsFit) {
        error(QStringLiteral("%1: %2").arg(path, body.problem));
        return Unreadable;
    }
    if (8 + length != bytes.size())
        out(QStringLiteral("%1 bytes follow the block").arg(bytes.size() - 8 - length));
    return Success;
}

}  // namespace dossier_tool
