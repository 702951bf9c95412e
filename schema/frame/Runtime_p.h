#pragma once

// The rules of the frame, written once and driven by the field tables: free
// functions of Frame::Internal, each group in the file its heading names.
// Internal to the library.

#include <QDataStream>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include "schema/frame/ClassInfo_p.h"
#include "schema/frame/Payload_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

class DataIn;
class DataOut;
struct TextRoom;

namespace Internal {

// An item that a reader makes in place at the end of a list and reads there.
// It stays only if its read completes and the list's append rule takes it: an
// item whose read raises is taken out again on the way out, so that the list
// holds what it would hold had the item been read apart and then appended.
class PendingItem {
public:
    PendingItem(Record& owner, Payload& payload, const FieldInfo& field);
    ~PendingItem();
    PendingItem(const PendingItem&) = delete;
    PendingItem& operator=(const PendingItem&) = delete;

    // The new item, with the owner's flag and logger.
    Record& item() { return m_item; }
    // Applies the append rule to the item that has been read: an incomplete
    // one is kept with a warning, or refused with the validate flag on.
    void finish();

private:
    Record& m_owner;
    Payload& m_payload;
    const FieldInfo& m_field;
    Record& m_item;
    bool m_finished = false;
};

// --- The fields of a payload -----------------------------------------------------------
inline void* field(Payload& p, const FieldInfo& f) { return at(p, f.offset); }
template <class T>
T& value(Payload& p, const FieldInfo& f)
{
    return *static_cast<T*>(field(p, f));
}
inline Record& child(Payload& p, const FieldInfo& f) { return f.childOps().get(field(p, f)); }

// --- Flag and logger (Payload.cpp) -------------------------------------------------
// Calls `visit` on every child and every list item the payload holds: the walk
// by which a record hands its flag and logger down.
template <class Visit>
void forEachChildRecord(Payload& p, const ClassInfo& info, Visit visit)
{
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        if (f.kind == Kind::Child) {
            visit(child(p, f));
        } else if (f.kind == Kind::List) {
            void* list = field(p, f);
            const ListOps& ops = f.listOps();
            for (int k = 0, n = ops.size(list); k < n; ++k)
                visit(ops.at(list, k));
        }
    }
}
// Hands the object's validate flag and logger down its whole tree.
inline void handDown(const Record& r)
{
    r.SetValidate(r.GetValidate());
    r.SetLogger(r.GetLogger());
}
// Gives a fresh item, which has no payload and so no children yet, the flag
// and logger of the object that holds it.
inline void adopt(const Record& owner, const Record& item)
{
    item.RECORDKIT::IRKObject::SetValidate(owner.GetValidate());
    if (const auto& logger = RecordAccess::loggerOf(owner))
        item.RECORDKIT::IRKObject::SetLogger(logger);
}

// --- Reporting (Reporting.cpp) -------------------------------------------------------
// A fault of a setter, an append or a writer: raised with validation on, a warning without.
void report(const Record& r, RKException& e);
// A fault found by Check: raised unless only tracing.
inline void reportCheck(const Record& r, RKException& e, bool traceOnly)
{
    RecordAccess::traceOrThrow(r, RECORDKIT::ERROR, e, !traceOnly, true);
}
// A fault that is logged and never raised: an error with validation on, a warning without.
void reportSoft(const Record& r, RKException& e);
// The length error of the tagged reader, raised.
[[noreturn]] void lengthError(const Record& r);

// --- Presence and Check (PresenceAndCheck.cpp) ---------------------------------------
// Whether a writer puts out a plain field: mandatory numbers, names and texts
// always, with whatever they hold; optional ones, booleans and dates only when set.
inline bool written(const Payload& p, const FieldInfo& f)
{
    return p.test(f.bit) || (f.mandatory && f.kind != Kind::Bool && f.kind != Kind::DateTime);
}
bool hasData(const Record& r);
bool anyData(const Record& r);
// Check of a record; without `descend` only its own fields, not what its children and items hold.
void check(const Record& r, bool traceOnly, bool descend = true);

// --- Compare and merge (CompareAndMerge.cpp) -----------------------------------------
bool equal(const Record& a, const Record& b);
void merge(Record& target, const Record& source);

// --- Field values (FieldValues.cpp) --------------------------------------------------
// Puts one field to its initial value; its presence bit is left alone.
void resetValue(Payload& p, const FieldInfo& f);
// Puts every field to its initial value; the presence bits are left alone.
void resetFields(Payload& p, const ClassInfo& info);
void storeText(Record& r, Payload& p, const FieldInfo& f, const QString& value);
void storeEnum(Record& r, Payload& p, const FieldInfo& f, quint8 value);
bool enumValid(const FieldInfo& f, quint8 value);
// The name of an enumeration value, null when the value is invalid (0xFF,
// any byte from 0x80 up, or an index past the names).
const QString* enumName(const EnumInfo& names, quint8 value);
// The index of `name` in the field's name list, 0xFF if it is not there.
quint8 enumIndex(const FieldInfo& f, const QString& name);
quint8 enumIndex(const FieldInfo& f, QLatin1String name);
quint8 enumIndex(const FieldInfo& f, QStringView name);

// --- Lists (Lists.cpp) -----------------------------------------------------------------
// Appends a copy of `item`, with the test of completeness.
void append(Record& owner, Payload& p, const FieldInfo& f, const Record& item);
// Appends an enumeration value to a list of them, with the test of validity.
void appendEnumValue(Record& owner, Payload& p, const FieldInfo& f, quint8 value);

// --- Version gate of a root class (VersionGate.cpp) ---------------------------------------
// The version of the schema that the payload carries, and the version of what was last read.
inline QString& schemaVersionOf(Payload& p, const VersionInfo& v) { return *static_cast<QString*>(at(p, v.offset)); }
inline QString& loadedVersionOf(Payload& p, const VersionInfo& v)
{
    return *static_cast<QString*>(at(p, v.loadedOffset));
}
// Keeps the version of what is read and clears the record when it is older than the schema.
void versionGate(Record& r, Payload& p, const QString& loaded);
// True when the version last read is not older than the schema.
bool claimsCurrentVersion(Payload& p, const VersionInfo& v);

// --- Forms (XmlCodec.cpp, TaggedCodec.cpp, RawCodec.cpp) ------------------------------------
void writeXml(const Record& r, QXmlStreamWriter& writer);
void writeXml(const Record& r, QXmlStreamWriter& writer, TextRoom& room);
void readXml(Record& r, QXmlStreamReader& reader);
void readXmlAttributes(Record& r, Payload& p, QXmlStreamReader& reader);
void readXmlChildElement(Record& r, QXmlStreamReader& reader);

bool writeTagged(const Record& r, QDataStream& stream, int tag, bool withTag);
bool writeTagged(const Record& r, DataOut& out, int tag, bool withTag);
void readTagged(Record& r, QDataStream& stream, qint64 length);
void readTagged(Record& r, DataIn& in, qint64 length);

void writeRaw(const Record& r, QDataStream& stream);
void writeRaw(const Record& r, DataOut& out);
void readRaw(Record& r, QDataStream& stream);
void readRaw(Record& r, DataIn& in);

}  // namespace Internal

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
