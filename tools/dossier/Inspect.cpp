// dossier inspect: the tagged form as it stands in the bytes, record by
// record, with the first place where the lengths do not add up.

#include "Tool.h"

#include <EmitterDossierDoc/frame/TaggedRecords.h>

namespace DossierTool {

using namespace EMITTERDOSSIERDOC;
using Frame::TaggedFault;
using Frame::TaggedFaultKind;
using Frame::TaggedItem;
using Frame::TaggedRecord;
using Frame::TaggedValue;
using Frame::TaggedValueKind;

namespace {

constexpr int MaxShownBytes = 60;

QString indent(int depth) { return QString((depth + 1) * 2, QLatin1Char(' ')); }

// Prints the records the library walks, one line each, and keeps the first
// fault: the place where the lengths stop adding up.
class Printer : public Frame::TaggedVisitor {
public:
    QString problem;

    void record(const TaggedRecord& r, const TaggedValue& value) override
    {
        const QString head = headOf(r);
        switch (value.kind) {
        case TaggedValueKind::Skipped: out(head + QStringLiteral(" (skipped)")); return;
        case TaggedValueKind::Text:
        case TaggedValueKind::Null: out(head + valueText(value, r.version)); return;
        case TaggedValueKind::Integer: out(head + QStringLiteral(" %1").arg(value.integer)); return;
        case TaggedValueKind::Boolean:
            out(head + (value.boolean ? QStringLiteral(" true") : QStringLiteral(" false")));
            return;
        case TaggedValueKind::Block:
            out(head + QStringLiteral(", block of %1").arg(Frame::ClassName(*Frame::ItemClass(*r.field))));
            return;
        case TaggedValueKind::Items: out(head + QStringLiteral(", %1 items").arg(value.count)); return;
        case TaggedValueKind::Values: out(head + QStringLiteral(", %1 values").arg(value.count)); return;
        }
    }

    void item(const TaggedItem& item) override
    {
        out(QStringLiteral("%1%2: %3[%4], length %5")
                .arg(indent(item.depth))
                .arg(item.offset)
                .arg(Frame::ClassName(*Frame::ItemClass(*item.field)))
                .arg(item.index)
                .arg(item.length));
    }

    void enumValue(const TaggedItem& item, const TaggedValue& value) override
    {
        out(QStringLiteral("%1%2: [%3]").arg(indent(item.depth)).arg(item.offset).arg(item.index) +
            valueText(value, false));
    }

    void fault(const TaggedFault& f) override
    {
        if (f.kind == TaggedFaultKind::NegativeLength)
            out(headOf(f.record));
        if (problem.isEmpty())
            problem = QStringLiteral("lengths do not add up at offset %1: %2").arg(f.offset).arg(faultText(f));
    }

private:
    static QString headOf(const TaggedRecord& r)
    {
        const QString name = r.field     ? Frame::FieldName(*r.field)
                             : r.version ? QStringLiteral("Version")
                                         : QStringLiteral("unknown");
        return QStringLiteral("%1%2: 0x%3 %4, length %5")
            .arg(indent(r.depth))
            .arg(r.offset)
            .arg(r.tag, 8, 16, QLatin1Char('0'))
            .arg(name)
            .arg(r.length);
    }

    // A string as it decodes; a byte array as far as its first NUL byte.
    static QString valueText(const TaggedValue& value, bool string)
    {
        if (value.kind == TaggedValueKind::Null)
            return QStringLiteral(" null");
        // Qt 6's fromUtf8 of a byte array reads past a NUL byte, Qt 5's stops
        // there: the cut is made here, so that both builds show the same.
        const int nul = value.bytes.indexOf('\0');
        QString text = string ? value.text : QString::fromUtf8(nul < 0 ? value.bytes : value.bytes.left(nul));
        if (text.size() > MaxShownBytes)
            text = text.left(MaxShownBytes) + QStringLiteral("...");
        return QStringLiteral(" \"%1\"").arg(text);
    }

    static QString faultText(const TaggedFault& f)
    {
        switch (f.kind) {
        case TaggedFaultKind::HeaderCut:
            return QStringLiteral("%1 bytes left in the block, too few for a record header").arg(f.left);
        case TaggedFaultKind::NegativeLength: return QStringLiteral("a record cannot have a negative length");
        case TaggedFaultKind::PastBlock:
            return QStringLiteral("the record of %1 bytes runs past its block, which has %2 bytes left")
                .arg(f.count)
                .arg(f.left);
        case TaggedFaultKind::NoByteCount: return QStringLiteral("no room for the byte count");
        case TaggedFaultKind::ByteCount:
            return QStringLiteral("a byte count of %1 with %2 bytes left").arg(f.count).arg(f.left);
        case TaggedFaultKind::IntegerCut: return QStringLiteral("an integer needs 8 bytes, %1 left").arg(f.left);
        case TaggedFaultKind::BooleanCut: return QStringLiteral("a boolean needs 1 byte");
        case TaggedFaultKind::NoItemCount: return QStringLiteral("no room for the item count");
        case TaggedFaultKind::ItemCount:
            return QStringLiteral("%1 items cannot fit in %2 bytes").arg(f.count).arg(f.left);
        case TaggedFaultKind::NoItemLength: return QStringLiteral("no room for the length of item %1").arg(f.index);
        case TaggedFaultKind::ItemLength:
            return QStringLiteral("item %1 of %2 bytes runs past its record, which has %3 bytes left")
                .arg(f.index)
                .arg(f.count)
                .arg(f.left);
        case TaggedFaultKind::NoValueCount: return QStringLiteral("no room for the value count");
        case TaggedFaultKind::NoValueLength: return QStringLiteral("no room for the length of value %1").arg(f.index);
        case TaggedFaultKind::ValueLength:
            return QStringLiteral("value %1 has the length %2 with %3 bytes left")
                .arg(f.index)
                .arg(f.count)
                .arg(f.left);
        case TaggedFaultKind::PayloadLength:
            return QStringLiteral("the payload takes %1 bytes, the record says %2").arg(f.left).arg(f.count);
        }
        return QString();
    }
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
    const qint64 packedSize = bytes.size();
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
    quint32 id = 0;
    qint32 length = 0;
    if (!Frame::TaggedBlockHead(bytes, id, length)) {
        error(QStringLiteral("%1: lengths do not add up at offset 0: the file ends inside the block header").arg(path));
        return Unreadable;
    }
    out(QStringLiteral("0: block of %1 (0x%2), length %3")
            .arg(Frame::ClassName(entry->info()))
            .arg(id, 8, 16, QLatin1Char('0'))
            .arg(length));
    // The records of the block as far as the bytes go; what a reader would
    // find wrong is the first fault.
    const qint64 available = bytes.size() - 8;
    Printer body;
    const bool recordsFit = Frame::WalkTaggedRecords(bytes, entry->info(), body);
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
    // Bytes after the block are shown, and make the file as damaged as check finds it.
    if (8 + length != bytes.size()) {
        const qint64 after = bytes.size() - 8 - length;
        out(QStringLiteral("%1 bytes follow the block").arg(after));
        error(bytesAfterTaggedForm(path, after, *entry, form));
        return Unreadable;
    }
    return Success;
}

}  // namespace DossierTool
