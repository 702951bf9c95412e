// Presence, comparison, validation and the setters' tests, by field kind.

#include <QDateTime>

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

using RECORDKIT::ERROR;
using RECORDKIT::WARNING;

// --- Reporting ---------------------------------------------------------------------

void Runtime::report(const Record& r, RKException& e)
{
    if (r.GetValidate())
        Internal::RecordAccess::traceOrThrow(r, ERROR, e, true, true);
    else
        Internal::RecordAccess::trace(r, WARNING, e);
}

void Runtime::reportSoft(const Record& r, RKException& e)
{
    if (r.GetValidate())
        Internal::RecordAccess::traceOrThrow(r, ERROR, e, false, true);
    else
        Internal::RecordAccess::trace(r, WARNING, e);
}

void Runtime::lengthError(const Record& r)
{
    BinaryParsingException e(
        r.GetObjectName() +
        QStringLiteral("::SetBinary(...): Length error occurred during processing of binary representation"));
    Internal::RecordAccess::traceOrThrow(r, ERROR, e, true, true);
    e.Raise();  // not reached: TraceOrThrow raises
}

// --- Presence ----------------------------------------------------------------------

static bool holdsValue(Payload& p, const FieldInfo& f)
{
    switch (f.kind) {
    case Kind::Text: return !Runtime::value<QString>(p, f).isNull();
    case Kind::Child: return Runtime::child(p, f).HasData();
    case Kind::List: return f.listOps().size(Runtime::field(p, f)) > 0;
    case Kind::EnumList: return f.enumListInfo().size(Runtime::field(p, f)) > 0;
    default: return p.test(f.bit);
    }
}

bool Runtime::hasData(const Record& r)
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

bool Runtime::anyData(const Record& r)
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
    OutOfRangeException e(Runtime::objectName(r) + QStringLiteral(": Please set %1 properly.").arg(*f.name));
    Runtime::reportCheck(r, e, traceOnly);
}

void Runtime::check(const Record& r, bool traceOnly, bool descend)
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

// --- Comparison -------------------------------------------------------------------------

static bool sameValue(Payload& a, Payload& b, const FieldInfo& f)
{
    switch (f.kind) {
    case Kind::Double: return Runtime::value<double>(a, f) == Runtime::value<double>(b, f);
    case Kind::UInt64: return Runtime::value<quint64>(a, f) == Runtime::value<quint64>(b, f);
    case Kind::Bool: return Runtime::value<bool>(a, f) == Runtime::value<bool>(b, f);
    case Kind::Text: return Runtime::value<QString>(a, f) == Runtime::value<QString>(b, f);
    case Kind::DateTime: return Runtime::value<QDateTime>(a, f) == Runtime::value<QDateTime>(b, f);
    case Kind::Enum: return Runtime::value<quint8>(a, f) == Runtime::value<quint8>(b, f);
    case Kind::Child: return Runtime::equal(Runtime::child(a, f), Runtime::child(b, f));
    case Kind::List:
    case Kind::EnumList: break;
    }
    return false;
}

static bool isRepeated(const FieldInfo& f) { return f.kind == Kind::List || f.kind == Kind::EnumList; }

static int repeatedSize(Payload& p, const FieldInfo& f)
{
    return f.kind == Kind::List ? f.listOps().size(Runtime::field(p, f))
                                : f.enumListInfo().size(Runtime::field(p, f));
}

static bool sameItem(Payload& a, Payload& b, const FieldInfo& f, int k)
{
    if (f.kind == Kind::List)
        return Runtime::equal(f.listOps().cat(Runtime::field(a, f), k), f.listOps().cat(Runtime::field(b, f), k));
    return f.enumListInfo().at(Runtime::field(a, f), k) == f.enumListInfo().at(Runtime::field(b, f), k);
}

bool Runtime::equal(const Record& a, const Record& b)
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

// --- Reset and merge ------------------------------------------------------------------------

void Runtime::resetFields(Payload& p, const ClassInfo& info)
{
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        void* slot = field(p, f);
        switch (f.kind) {
        case Kind::Double: *static_cast<double*>(slot) = 0.0; break;
        case Kind::UInt64: *static_cast<quint64*>(slot) = 0; break;
        case Kind::Bool: *static_cast<bool*>(slot) = false; break;
        case Kind::Text: *static_cast<QString*>(slot) = QString(); break;
        case Kind::DateTime: *static_cast<QDateTime*>(slot) = QDateTime(); break;
        case Kind::Enum: *static_cast<quint8*>(slot) = 0xFF; break;
        case Kind::Child: f.childOps().reset(slot); break;
        case Kind::List: f.listOps().clear(slot); break;
        case Kind::EnumList: f.enumListInfo().clear(slot); break;
        }
    }
}

void Runtime::merge(Record& target, const Record& source)
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

// --- Setters with a test -----------------------------------------------------------------------

bool Runtime::enumValid(const FieldInfo& f, quint8 value)
{
    const qint8 index = qint8(value);
    return index >= 0 && index < f.enumInfo().names->size();
}

// The index of `name` in the field's name list, 0xFF if it is not there, for
// a name held in any of Qt's string types.
template <class Name>
static quint8 indexOfName(const FieldInfo& f, const Name& name)
{
    const QStringList& names = *f.enumInfo().names;
    for (int i = 0; i < names.size(); ++i)
        if (names.at(i) == name)
            return quint8(i);
    return quint8(0xFF);
}

quint8 Runtime::enumIndex(const FieldInfo& f, const QString& name) { return indexOfName(f, name); }
quint8 Runtime::enumIndex(const FieldInfo& f, const QStringRef& name) { return indexOfName(f, name); }
quint8 Runtime::enumIndex(const FieldInfo& f, QLatin1String name) { return indexOfName(f, name); }

void Runtime::storeText(Record& r, Payload& p, const FieldInfo& f, const QString& text)
{
    if (text.isNull()) {
        OutOfRangeException e(r.GetObjectName() +
                              QStringLiteral(": Please set %1 properly (origin: Setter).").arg(*f.name));
        report(r, e);
    }
    value<QString>(p, f) = text;
    p.set(f.bit);
}

void Runtime::storeEnum(Record& r, Payload& p, const FieldInfo& f, quint8 v)
{
    if (!enumValid(f, v)) {
        OutOfRangeException e(QStringLiteral("enum is not valid (classname=%1,membername=%2)")
                                  .arg(QLatin1String(r.GetClassInfo().name), QLatin1String(f.enumInfo().memberName)));
        report(r, e);
    }
    value<quint8>(p, f) = v;
    p.set(f.bit);
}

static void reportIncompleteItem(Record& owner, const FieldInfo& f)
{
    // The item's class name; for a list of enumeration values, the enumeration's name.
    const QString& item = f.kind == Kind::List ? f.listOps().itemName() : *f.name;
    IncompleteDefinitionException e(
        owner.GetObjectName() + QStringLiteral(": Tried to append not completely defined or invalid item %1.").arg(item));
    Runtime::report(owner, e);
}

void Runtime::append(Record& owner, Payload& p, const FieldInfo& f, const Record& item)
{
    const bool complete = item.HasData();
    if (complete || !owner.GetValidate()) {
        f.listOps().append(field(p, f), item);
        p.set(f.bit);
    }
    if (!complete)
        reportIncompleteItem(owner, f);
}

void Runtime::appendEnumValue(Record& owner, Payload& p, const FieldInfo& f, quint8 v)
{
    const bool valid = enumValid(f, v);
    if (valid || !owner.GetValidate()) {
        f.enumListInfo().append(field(p, f), v);
        p.set(f.bit);
    }
    if (!valid)
        reportIncompleteItem(owner, f);
}

void Runtime::versionGate(Record& r, Payload& p, const QString& loaded)
{
    const VersionInfo& v = *r.GetClassInfo().version;
    *reinterpret_cast<QString*>(reinterpret_cast<char*>(&p) + v.loadedOffset) = loaded;
    // Versions compare as numbers: text that is no number counts as 0.
    if (version(p, v).toFloat() > loaded.toFloat())
        r.Reset();
}

bool Runtime::claimsCurrentVersion(Payload& p, const VersionInfo& v)
{
    const QString& loaded = *reinterpret_cast<QString*>(reinterpret_cast<char*>(&p) + v.loadedOffset);
    return loaded.toFloat() >= version(p, v).toFloat();
}

PendingItem::PendingItem(Record& owner, Payload& payload, const FieldInfo& field)
    : m_owner(owner),
      m_payload(payload),
      m_field(field),
      m_item(field.listOps().appendDefault(Runtime::field(payload, field)))
{
    Runtime::adopt(owner, m_item);
}

PendingItem::~PendingItem()
{
    if (!m_finished)
        m_field.listOps().removeLast(Runtime::field(m_payload, m_field));
}

void PendingItem::finish()
{
    m_finished = true;
    const bool complete = m_item.HasData();
    if (complete || !m_owner.GetValidate())
        m_payload.set(m_field.bit);
    else
        m_field.listOps().removeLast(Runtime::field(m_payload, m_field));
    if (!complete)
        reportIncompleteItem(m_owner, m_field);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
