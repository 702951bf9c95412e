#include <EmitterDossierDoc/frame/Record.h>

#include <QBuffer>
#include <QDataStream>
#include <QObject>

#include "schema/frame/Payload_p.h"
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

// --- Lifecycle ---------------------------------------------------------------------

Record::Record(const ClassInfo& info)
{
    SetObjectName(info.objectName());
    m_classId = info.id;
}

Record::Record(const Record& other, const ClassInfo& info)
    : IRKObject(other.GetObjectType()), d(other.d)
{
    if (d)
        d->ref.ref();
    SetObjectName(info.objectName());
    m_classId = info.id;
    // As SetValidate(other.GetValidate()) does, without the virtual call that a
    // constructor cannot make yet: the copy detaches and hands the flag down.
    IRKObject::SetValidate(other.GetValidate());
    if (d) {
        Internal::detach(*this);
        for (int i = 0; i < info.fieldCount; ++i) {
            const FieldInfo& f = info.fields[i];
            if (f.kind == Kind::Child) {
                Runtime::child(*d, f).SetValidate(other.GetValidate());
            } else if (f.kind == Kind::List) {
                void* list = Runtime::field(*d, f);
                const ListOps& ops = f.listOps();
                for (int k = 0, n = ops.size(list); k < n; ++k)
                    ops.at(list, k).SetValidate(other.GetValidate());
            }
        }
    }
}

Record::~Record()
{
    // The last handle frees the payload; a handle that holds it alone needs
    // no atomic step to know that it is the last.
    if (d && (d->ref.loadAcquire() == 1 || !d->ref.deref()))
        delete d;
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
                Runtime::adopt(r, Runtime::child(*d, info.fields[i]));
    return *d;
}

void Record::InitData() const { Internal::payload(*this); }

void Record::ConstNoClearReset() const { Runtime::resetFields(*d, GetClassInfo()); }

bool Record::IsInitialized() const { return d != nullptr; }

void Record::Reset()
{
    if (!Runtime::existing(*this))
        return;
    d->presence = 0;
    ConstNoClearReset();
}

void Record::ResetToDefault()
{
    const bool existed = d != nullptr;
    InitData();
    if (existed)
        Reset();
}

void Record::SetObjectType(RECORDKIT::ObjectTypes) {}

void Record::SetValidate(bool validate) const
{
    IRKObject::SetValidate(validate);
    Payload* p = Runtime::existing(*this);
    if (!p)
        return;
    const ClassInfo& info = GetClassInfo();
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        if (f.kind == Kind::Child) {
            Runtime::child(*p, f).SetValidate(validate);
        } else if (f.kind == Kind::List) {
            void* list = Runtime::field(*p, f);
            const ListOps& ops = f.listOps();
            for (int k = 0, n = ops.size(list); k < n; ++k)
                ops.at(list, k).SetValidate(validate);
        }
    }
}

void Record::SetLogger(std::shared_ptr<RECORDKIT::Logger> logger) const
{
    Payload* p = Runtime::existing(*this);
    if (p) {
        const ClassInfo& info = GetClassInfo();
        for (int i = 0; i < info.fieldCount; ++i) {
            const FieldInfo& f = info.fields[i];
            if (f.kind == Kind::Child) {
                Runtime::child(*p, f).SetLogger(logger);
            } else if (f.kind == Kind::List) {
                void* list = Runtime::field(*p, f);
                const ListOps& ops = f.listOps();
                for (int k = 0, n = ops.size(list); k < n; ++k)
                    ops.at(list, k).SetLogger(logger);
            }
        }
    }
    IRKObject::SetLogger(std::move(logger));
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
    void* slot = Runtime::field(*p, f);
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

void Internal::setText(Record& r, int bit, const QString& value)
{
    Payload& p = payload(r);
    Runtime::storeText(r, p, r.GetClassInfo().field(bit), value);
}

void Internal::setEnum(Record& r, int bit, quint8 value)
{
    Payload& p = payload(r);
    Runtime::storeEnum(r, p, r.GetClassInfo().field(bit), value);
}

void Internal::appendEnum(Record& r, int bit, quint8 value)
{
    Payload& p = payload(r);
    Runtime::appendEnumValue(r, p, r.GetClassInfo().field(bit), value);
}

void Internal::appendItem(Record& r, int bit, const Record& item)
{
    Payload& p = payload(r);
    Runtime::append(r, p, r.GetClassInfo().field(bit), item);
}

QString Internal::enumName(const Record& r, int bit, quint8 value)
{
    const QStringList& names = *r.GetClassInfo().field(bit).enumInfo().names;
    const qint8 index = qint8(value);
    return index >= 0 && index < names.size() ? names.at(index) : QString();
}

quint8 Internal::enumIndex(const Record& r, int bit, const QString& name)
{
    return Runtime::enumIndex(r.GetClassInfo().field(bit), name);
}

bool Internal::enumValid(const Record& r, int bit, quint8 value)
{
    return Runtime::enumValid(r.GetClassInfo().field(bit), value);
}

const QString& Internal::schemaVersion(const Record& r)
{
    return Runtime::version(payload(r), *r.GetClassInfo().version);
}

const QString& Internal::loadedVersion(const Record& r)
{
    const VersionInfo& v = *r.GetClassInfo().version;
    return *reinterpret_cast<const QString*>(reinterpret_cast<const char*>(&payload(r)) + v.loadedOffset);
}

void Internal::readLeafXml(Record& r, QXmlStreamReader& reader) { Runtime::readLeafXml(r, reader); }

// --- Whole-object rules ------------------------------------------------------------------

bool Record::HasData() const { return Runtime::hasData(*this); }
bool Record::AnyData() const { return Runtime::anyData(*this); }
bool Internal::equals(const Record& a, const Record& b) { return Runtime::equal(a, b); }

bool Record::IsEqualTo(const Record& other) const
{
    return &GetClassInfo() == &other.GetClassInfo() && Runtime::equal(*this, other);
}

void Record::Check() const { Check(false); }

void Record::Check(bool traceOnly) const
{
    Runtime::handDown(*this);
    Runtime::check(*this, traceOnly);
}

bool Record::MergeRKObject(const RECORDKIT::IRKObject& other)
{
    const auto* source = dynamic_cast<const Record*>(&other);
    if (!source || source->m_classId != m_classId || &source->GetClassInfo() != &GetClassInfo())
        return false;
    try {
        Runtime::merge(*this, *source);
    } catch (const RKException& e) {
        Trace(RECORDKIT::ERROR, e);
        return false;
    }
    return true;
}

// --- Forms -------------------------------------------------------------------------------

void Record::GetXml(QXmlStreamWriter& writer) const
{
    Runtime::handDown(*this);
    if (GetValidate())
        Runtime::check(*this, false);  // the first fault raises before anything is written
    Runtime::writeXml(*this, writer);
}

void Record::ProcessXml(QXmlStreamReader& reader) { Runtime::readXml(*this, reader); }

void Record::ProcessXmlStartElement(QXmlStreamReader& reader) { Runtime::readXmlChildElement(*this, reader); }

bool Record::GetBinary(QDataStream& stream, int tag, bool withTag) const
{
    Runtime::handDown(*this);
    if (GetValidate())
        Runtime::check(*this, false);  // the first fault raises before anything is written
    return Runtime::writeTagged(*this, stream, tag, withTag);
}

void Record::SetBinary(QDataStream& stream, int length)
{
    Runtime::handDown(*this);
    InitData();
    Runtime::readTagged(*this, stream, length);
}

void Record::GetVersionSpecificBinaryWithoutValidation(QDataStream& stream) const { Runtime::writeRaw(*this, stream); }

void Record::SetVersionSpecificBinaryWithoutValidation(QDataStream& stream) { Runtime::readRaw(*this, stream); }

QByteArray RawFormBytes(const Record& record)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    record.GetVersionSpecificBinaryWithoutValidation(stream);
    return bytes;
}

void ReadRawForm(Record& record, const QByteArray& bytes)
{
    QByteArray copy = bytes;  // shares the data; QBuffer wants a non-const array
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    record.SetVersionSpecificBinaryWithoutValidation(stream);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
