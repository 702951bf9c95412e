// The payload of a record: sharing, detaching, making, and the accessors of generated classes.

#include <QDateTime>
#include <QObject>

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

Payload::~Payload() = default;

QStringList Internal::translatedNames(const QStringList& names)
{
    QStringList shown;
    shown.reserve(names.size());
    for (const QString& name : names)
        shown.append(QObject::tr(name.toUtf8().constData(), nullptr, -1));
    return shown;
}

void Internal::assign(Record& target, const Record& source)
{
    Payload*& d = RecordAccess::slot(target);
    Payload* const shared = RecordAccess::slot(source);
    if (d == shared)
        return;
    Payload* old = d;
    d = shared;
    if (d)
        d->ref.ref();
    if (old && !old->ref.deref())
        delete old;
}

void Internal::detach(const Record& r)
{
    Payload*& d = RecordAccess::slot(r);
    if (d && d->ref.loadRelaxed() != 1) {
        Payload* copy = d->clone();
        copy->ref.ref();
        if (!d->ref.deref())
            delete d;
        d = copy;
    }
}

Payload& Internal::payload(const Record& r)
{
    detach(r);
    Payload*& d = RecordAccess::slot(r);
    if (d)
        return *d;
    const ClassInfo& info = r.GetClassInfo();
    d = info.createPayload();
    d->ref.storeRelaxed(1);  // no other handle can see it yet
    // Fresh children take this object's flag and logger. Being fresh, they
    // hold the defaults already and have no payloads of their own to walk.
    if (info.hasChildren && (r.GetValidate() || RecordAccess::loggerOf(r)))
        for (int i = 0; i < info.fieldCount; ++i)
            if (info.fields[i].kind == Kind::Child)
                Internal::adopt(r, Internal::child(*d, info.fields[i]));
    return *d;
}

// --- Accessor support ------------------------------------------------------------------

bool Internal::isSet(const Record& r, int bit)
{
    const Payload* p = existing(r);
    return p && p->test(bit);
}

void Internal::resetField(Record& r, int bit)
{
    Payload* p = existing(r);
    if (!p)
        return;
    const FieldInfo& f = r.GetClassInfo().field(bit);
    p->clear(bit);
    resetValue(*p, f);
}

void Internal::setText(Record& r, int bit, const QString& value)
{
    Payload& p = payload(r);
    Internal::storeText(r, p, r.GetClassInfo().field(bit), value);
}

void Internal::setEnum(Record& r, int bit, quint8 value)
{
    Payload& p = payload(r);
    Internal::storeEnum(r, p, r.GetClassInfo().field(bit), value);
}

void Internal::appendEnum(Record& r, int bit, quint8 value)
{
    Payload& p = payload(r);
    Internal::appendEnumValue(r, p, r.GetClassInfo().field(bit), value);
}

void Internal::appendItem(Record& r, int bit, const Record& item)
{
    Payload& p = payload(r);
    Internal::append(r, p, r.GetClassInfo().field(bit), item);
}

QString Internal::enumName(const Record& r, int bit, quint8 value)
{
    const QString* name = enumName(r.GetClassInfo().field(bit).enumInfo(), value);
    return name ? *name : QString();
}

quint8 Internal::enumIndex(const Record& r, int bit, const QString& name)
{
    return Internal::enumIndex(r.GetClassInfo().field(bit), name);
}

bool Internal::enumValid(const Record& r, int bit, quint8 value)
{
    return Internal::enumValid(r.GetClassInfo().field(bit), value);
}

bool Internal::equals(const Record& a, const Record& b) { return Internal::equal(a, b); }

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
