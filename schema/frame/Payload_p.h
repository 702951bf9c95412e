#pragma once

// The payload of a record and the one point through which the runtime and the
// generated accessors reach it. Internal to the library.

#include <QSharedData>
#include <QStringList>
#include <QVector>

#include <EmitterDossierDoc/frame/Record.h>
#include <EmitterDossierDoc/recordkit/RKException.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// The shared, reference-counted state of one record: its presence bits and, in
// the payload type of each class, its fields m_<property>.
struct Payload : QSharedData {
    Payload() = default;
    Payload(const Payload& other) = default;
    Payload& operator=(const Payload&) = delete;
    virtual ~Payload();
    virtual Payload* clone() const = 0;

    bool test(int bit) const { return (presence >> bit) & 1u; }
    void set(int bit) { presence |= 1u << bit; }
    void clear(int bit) { presence &= ~(1u << bit); }

    quint32 presence = 0;  // bit i is the presence of the property with bit i
};

// The payload type of a generated class: the copy that detaching makes.
template <class Data>
struct PayloadOf : Payload {
    Payload* clone() const override { return new Data(static_cast<const Data&>(*this)); }
    static Payload* create() { return new Data(); }
};

namespace Internal {

// What the runtime reaches of a record beyond its public face: the payload
// pointer, and the base layer's logger and reporting.
struct RecordAccess : Record {
    static Payload*& slot(const Record& r) { return payloadSlot(r); }
    static const std::shared_ptr<RECORDKIT::Logger>& loggerOf(const Record& r) { return (r.*&RecordAccess::logger)(); }
    static void trace(const Record& r, RECORDKIT::LogLevel level, const RKException& e)
    {
        (r.*&RecordAccess::Trace)(level, e);
    }
    static void traceOrThrow(const Record& r, RECORDKIT::LogLevel level, RKException& e, bool raise, bool log)
    {
        (r.*&RecordAccess::TraceOrThrow)(level, e, raise, log);
    }
};

// Detaches a shared payload.
void detach(const Record& r);
// The payload, made (with its initial values) if there is none, detached if shared.
Payload& payload(const Record& r);
// The payload if there is one (detached), without making it.
inline Payload* existing(const Record& r)
{
    detach(r);
    return RecordAccess::slot(r);
}

// A member of a payload, by its offset in the payload type.
inline void* at(Payload& p, quint16 offset) { return reinterpret_cast<char*>(&p) + offset; }

// --- For the accessors of generated classes; `bit` names a property. ---------------

// Shares the other record's payload, as operator= does.
void assign(Record& target, const Record& source);
// operator== of two records of one class.
bool equals(const Record& a, const Record& b);

bool isSet(const Record& r, int bit);
void resetField(Record& r, int bit);
// A child or list handed out for change: marked present.
template <class T>
T& marked(const Record& r, int bit, T& field)
{
    RecordAccess::slot(r)->set(bit);
    return field;
}
template <class T>
void setValue(const Record& r, int bit, T& field, const T& value)
{
    field = value;
    RecordAccess::slot(r)->set(bit);
}
void setText(Record& r, int bit, const QString& value);
void setEnum(Record& r, int bit, quint8 value);
void appendItem(Record& r, int bit, const Record& item);
void appendEnum(Record& r, int bit, quint8 value);
QString enumName(const Record& r, int bit, quint8 value);
quint8 enumIndex(const Record& r, int bit, const QString& name);
bool enumValid(const Record& r, int bit, quint8 value);
template <class E>
bool allValid(const Record& r, int bit, const QVector<E>& values)
{
    for (E value : values)
        if (!enumValid(r, bit, value))
            return false;
    return true;
}
// The version of the root's schema, and the version of what was last read.
const QString& schemaVersion(const Record& r);
const QString& loadedVersion(const Record& r);
// The body of ProcessXml for a class of attributes and text content.
void readLeafXml(Record& r, QXmlStreamReader& reader);
// Names of an enumeration passed through QObject::tr, for display.
QStringList translatedNames(const QStringList& names);

}  // namespace Internal
}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
