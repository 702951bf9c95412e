#include <EmitterDossierDoc/frame/Record.h>

#include <QBuffer>
#include <QDataStream>

#include "schema/frame/Payload_p.h"
#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

// --- Lifecycle ---------------------------------------------------------------------

Record::Record(const ClassInfo& info)
{
    SetObjectName(info.objectName());
    m_classId = info.id;
}

Record::Record(const Record& other, const ClassInfo& info) : IRKObject(other.GetObjectType()), d(other.d)
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
        const bool validate = other.GetValidate();
        Internal::forEachChildRecord(*d, info, [validate](const Record& child) { child.SetValidate(validate); });
    }
}

// A move hands the object over whole, as moving its bytes would: a container
// that moves its items (a Qt 6 list when it shrinks) leaves each item with its
// logger, where a copy would leave it without one.
Record::Record(Record&& other, const ClassInfo& info) noexcept : IRKObject(other.GetObjectType()), d(other.d)
{
    other.d = nullptr;
    SetObjectName(info.objectName());
    m_classId = info.id;
    IRKObject::SetValidate(other.GetValidate());
    IRKObject::SetLogger(other.logger());
}

Record::~Record()
{
    // The last handle frees the payload; a handle that holds it alone needs
    // no atomic step to know that it is the last.
    if (d && (d->ref.loadAcquire() == 1 || !d->ref.deref()))
        delete d;
}

void Record::InitData() const { Internal::payload(*this); }

void Record::ConstNoClearReset() const { Internal::resetFields(*d, GetClassInfo()); }

bool Record::IsInitialized() const { return d != nullptr; }

void Record::Reset()
{
    if (!Internal::existing(*this))
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
    if (Payload* p = Internal::existing(*this))
        Internal::forEachChildRecord(*p, GetClassInfo(),
                                     [validate](const Record& child) { child.SetValidate(validate); });
}

void Record::SetLogger(std::shared_ptr<RECORDKIT::Logger> logger) const
{
    if (Payload* p = Internal::existing(*this))
        Internal::forEachChildRecord(*p, GetClassInfo(), [&logger](const Record& child) { child.SetLogger(logger); });
    IRKObject::SetLogger(std::move(logger));
}

// --- Whole-object rules ------------------------------------------------------------------

bool Record::HasData() const { return Internal::hasData(*this); }
bool Record::AnyData() const { return Internal::anyData(*this); }

bool Record::IsEqualTo(const Record& other) const
{
    return &GetClassInfo() == &other.GetClassInfo() && Internal::equal(*this, other);
}

void Record::Check() const { Check(false); }

void Record::Check(bool traceOnly) const
{
    Internal::handDown(*this);
    Internal::check(*this, traceOnly);
}

bool Record::MergeRKObject(const RECORDKIT::IRKObject& other)
{
    const auto* source = dynamic_cast<const Record*>(&other);
    if (!source || source->m_classId != m_classId || &source->GetClassInfo() != &GetClassInfo())
        return false;
    try {
        Internal::merge(*this, *source);
    } catch (const RKException& e) {
        Trace(RECORDKIT::ERROR, e);
        return false;
    }
    return true;
}

// --- Forms -------------------------------------------------------------------------------

void Record::GetXml(QXmlStreamWriter& writer) const
{
    Internal::handDown(*this);
    if (GetValidate())
        Internal::check(*this, false);  // the first fault raises before anything is written
    Internal::writeXml(*this, writer);
}

void Record::ProcessXml(QXmlStreamReader& reader) { Internal::readXml(*this, reader); }

void Record::ProcessXmlStartElement(QXmlStreamReader& reader) { Internal::readXmlChildElement(*this, reader); }

bool Record::GetBinary(QDataStream& stream, int tag, bool withTag) const
{
    Internal::handDown(*this);
    if (GetValidate())
        Internal::check(*this, false);  // the first fault raises before anything is written
    return Internal::writeTagged(*this, stream, tag, withTag);
}

void Record::SetBinary(QDataStream& stream, int length)
{
    Internal::handDown(*this);
    InitData();
    Internal::readTagged(*this, stream, length);
}

void Record::GetVersionSpecificBinaryWithoutValidation(QDataStream& stream) const { Internal::writeRaw(*this, stream); }

void Record::SetVersionSpecificBinaryWithoutValidation(QDataStream& stream) { Internal::readRaw(*this, stream); }

QByteArray RawFormBytes(const Record& record)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    stream.setVersion(RECORDKIT::StreamVersion);
    record.GetVersionSpecificBinaryWithoutValidation(stream);
    return bytes;
}

void ReadRawForm(Record& record, const QByteArray& bytes)
{
    QByteArray copy = bytes;  // shares the data; QBuffer wants a non-const array
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    stream.setVersion(RECORDKIT::StreamVersion);
    record.SetVersionSpecificBinaryWithoutValidation(stream);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
