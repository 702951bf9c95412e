// Presence of data (HasData, AnyData) and Check, by field kind and presence.

#include <QDateTime>

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

using RECORDKIT::ERROR;

// --- Presence ----------------------------------------------------------------------

static bool holdsValue(Payload& p, const FieldInfo& f)
{
    switch (f.kind) {
    case Kind::Text: return !Internal::value<QString>(p, f).isNull();
    case Kind::Child: return Internal::child(p, f).HasData();
    case Kind::List: return f.listOps().size(Internal::field(p, f)) > 0;
    case Kind::EnumList: return f.enumListInfo().size(Internal::field(p, f)) > 0;
    default: return p.test(f.bit);
    }
}

bool Internal::hasData(const Record& r)
{
    // A class with nothing mandatory always has its data, with or without a payload.
    Payload* p = existing(r);
    const ClassInfo& info = r.GetClassInfo();
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        if (f.mandatory && (!p || !holdsValue(*p, f)))
            return false;
    }
    return true;
}

bool Internal::anyData(const Record& r)
{
    Payload* p = existing(r);
    if (!p)
        return false;
    const ClassInfo& info = r.GetClassInfo();
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        const bool holds = f.kind == Kind::Child ? child(*p, f).AnyData() : holdsValue(*p, f);
        if (holds)
            return true;
    }
    return false;
}

// --- Check ---------------------------------------------------------------------------

static void reportUnset(const Record& r, const FieldInfo& f, bool traceOnly)
{
    OutOfRangeException e(r.GetObjectName() + QStringLiteral(": Please set %1 properly.").arg(*f.name));
    Internal::reportCheck(r, e, traceOnly);
}

void Internal::check(const Record& r, bool traceOnly, bool descend)
{
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    for (int bit = 0; bit < info.fieldCount; ++bit) {
        const FieldInfo& f = info.field(bit);
        const bool set = p.test(bit);
        switch (f.kind) {
        case Kind::Double:
        case Kind::UInt64:
        case Kind::Bool:
        case Kind::DateTime:
            if (f.mandatory && !set)
                reportUnset(r, f, traceOnly);
            break;
        case Kind::Text:
            if ((f.mandatory || set) && (!set || value<QString>(p, f).isNull()))
                reportUnset(r, f, traceOnly);
            break;
        case Kind::Enum:
            if ((f.mandatory || set) && (!set || !enumValid(f, value<quint8>(p, f))))
                reportUnset(r, f, traceOnly);
            break;
        case Kind::Child:
            if (descend && (f.mandatory || set))
                check(child(p, f), traceOnly);
            break;
        case Kind::List: {
            if (f.mandatory && !set)
                reportUnset(r, f, traceOnly);
            if (descend && (f.mandatory || set)) {
                const void* list = field(p, f);
                const ListOps& ops = f.listOps();
                for (int k = 0; k < ops.size(list); ++k)
                    check(ops.cat(list, k), traceOnly);
            }
            break;
        }
        case Kind::EnumList: {
            if (f.mandatory && !set)
                reportUnset(r, f, traceOnly);
            if (f.mandatory || set) {
                const void* list = field(p, f);
                const EnumListInfo& values = f.enumListInfo();
                for (int k = 0; k < values.size(list); ++k)
                    if (!enumValid(f, values.at(list, k)))
                        reportUnset(r, f, traceOnly);
            }
            break;
        }
        }
    }
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
