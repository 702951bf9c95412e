// Equality of two records and the merge of one into another, field by field.

#include <QDateTime>

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

// --- Comparison -------------------------------------------------------------------------

static bool sameValue(Payload& a, Payload& b, const FieldInfo& f)
{
    switch (f.kind) {
    case Kind::Double: return Internal::value<double>(a, f) == Internal::value<double>(b, f);
    case Kind::UInt64: return Internal::value<quint64>(a, f) == Internal::value<quint64>(b, f);
    case Kind::Bool: return Internal::value<bool>(a, f) == Internal::value<bool>(b, f);
    case Kind::Text: return Internal::value<QString>(a, f) == Internal::value<QString>(b, f);
    case Kind::DateTime: return Internal::value<QDateTime>(a, f) == Internal::value<QDateTime>(b, f);
    case Kind::Enum: return Internal::value<quint8>(a, f) == Internal::value<quint8>(b, f);
    case Kind::Child: return Internal::equal(Internal::child(a, f), Internal::child(b, f));
    case Kind::List:
    case Kind::EnumList: break;
    }
    return false;
}

static bool isRepeated(const FieldInfo& f) { return f.kind == Kind::List || f.kind == Kind::EnumList; }

static int repeatedSize(Payload& p, const FieldInfo& f)
{
    return f.kind == Kind::List ? f.listOps().size(Internal::field(p, f))
                                : f.enumListInfo().size(Internal::field(p, f));
}

static bool sameItem(Payload& a, Payload& b, const FieldInfo& f, int k)
{
    if (f.kind == Kind::List)
        return Internal::equal(f.listOps().cat(Internal::field(a, f), k), f.listOps().cat(Internal::field(b, f), k));
    return f.enumListInfo().at(Internal::field(a, f), k) == f.enumListInfo().at(Internal::field(b, f), k);
}

bool Internal::equal(const Record& a, const Record& b)
{
    const ClassInfo& info = a.GetClassInfo();
    // A root compares its schema versions first.
    if (info.version && Internal::schemaVersion(a) != Internal::schemaVersion(b))
        return false;
    Payload* pa = existing(a);
    Payload* pb = existing(b);
    if (!pa && !pb)
        return true;
    // Properties other than lists, in bit order; a missing payload counts as all unset.
    for (int bit = 0; bit < info.fieldCount; ++bit) {
        const FieldInfo& f = info.field(bit);
        if (isRepeated(f))
            continue;
        const bool setA = pa && pa->test(bit);
        const bool setB = pb && pb->test(bit);
        if (setA != setB)
            return false;
        if (setA && !sameValue(*pa, *pb, f))
            return false;
    }
    // Lists come last, compared item by item in order.
    for (int bit = 0; bit < info.fieldCount; ++bit) {
        const FieldInfo& f = info.field(bit);
        if (!isRepeated(f))
            continue;
        const int n = pa ? repeatedSize(*pa, f) : 0;
        if (!(pb && pb->test(bit))) {
            if (n != 0)
                return false;
            continue;
        }
        if (repeatedSize(*pb, f) != n)
            return false;
        for (int k = 0; k < n; ++k)
            if (!sameItem(*pa, *pb, f, k))
                return false;
    }
    return true;
}

// --- Merge ---------------------------------------------------------------------------

void Internal::merge(Record& target, const Record& source)
{
    Payload* from = existing(source);
    if (!from)
        return;
    Payload& to = payload(target);
    const ClassInfo& info = target.GetClassInfo();
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        if (!from->test(f.bit))
            continue;
        void* slot = field(to, f);
        const void* other = field(*from, f);
        switch (f.kind) {
        case Kind::Double: *static_cast<double*>(slot) = *static_cast<const double*>(other); break;
        case Kind::UInt64: *static_cast<quint64*>(slot) = *static_cast<const quint64*>(other); break;
        case Kind::Bool: *static_cast<bool*>(slot) = *static_cast<const bool*>(other); break;
        case Kind::Text: *static_cast<QString*>(slot) = *static_cast<const QString*>(other); break;
        case Kind::DateTime: *static_cast<QDateTime*>(slot) = *static_cast<const QDateTime*>(other); break;
        case Kind::Enum: *static_cast<quint8*>(slot) = *static_cast<const quint8*>(other); break;
        case Kind::Child: merge(child(to, f), child(*from, f)); break;
        case Kind::List: {
            const ListOps& ops = f.listOps();
            // Count first: merging an object into itself appends each item once.
            const int n = ops.size(other);
            for (int k = 0; k < n; ++k)
                ops.append(slot, ops.cat(other, k));
            break;
        }
        case Kind::EnumList: {
            const EnumListInfo& values = f.enumListInfo();
            const int n = values.size(other);
            for (int k = 0; k < n; ++k)
                values.append(slot, values.at(other, k));
            break;
        }
        }
        to.set(f.bit);
    }
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
