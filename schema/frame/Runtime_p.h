#pragma once

// The rules of the frame, written once and driven by the field tables.
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

class Runtime {
public:
    // --- Payload access ---------------------------------------------------------
    static Payload& payload(const Record& r) { return Internal::payload(r); }
    // The payload if there is one (detached), without creating it.
    static Payload* existing(const Record& r) { return Internal::existing(r); }
    static void* field(Payload& p, const FieldInfo& f) { return reinterpret_cast<char*>(&p) + f.offset; }
    template <class T>
    static T& value(Payload& p, const FieldInfo& f)
    {
        return *static_cast<T*>(field(p, f));
    }
    static Record& child(Payload& p, const FieldInfo& f) { return f.childOps().get(field(p, f)); }

    // --- Flag and logger --------------------------------------------------------
    // Hands the object's validate flag and logger down its whole tree.
    static void handDown(const Record& r)
    {
        r.SetValidate(r.GetValidate());
        r.SetLogger(r.GetLogger());
    }
    // Gives a fresh item, which has no payload and so no children yet, the flag
    // and logger of the object that holds it.
    static void adopt(const Record& owner, const Record& item)
    {
        item.RECORDKIT::IRKObject::SetValidate(owner.GetValidate());
        if (const auto& logger = Internal::RecordAccess::loggerOf(owner))
            item.RECORDKIT::IRKObject::SetLogger(logger);
    }

    // --- Reporting ----------------------------------------------------------------
    // A fault of a setter, an append or a writer: raised with validation on, a warning without.
    static void report(const Record& r, RKException& e);
    // A fault found by Check: raised unless only tracing.
    static void reportCheck(const Record& r, RKException& e, bool traceOnly)
    {
        Internal::RecordAccess::traceOrThrow(r, RECORDKIT::ERROR, e, !traceOnly, true);
    }
    // A fault that is logged and never raised: an error with validation on, a warning without.
    static void reportSoft(const Record& r, RKException& e);
    [[noreturn]] static void lengthError(const Record& r);
    static QString objectName(const Record& r) { return r.GetObjectName(); }

    // --- Field rules ------------------------------------------------------------------
    // Whether a writer puts out a plain field: mandatory numbers, names and texts
    // always, with whatever they hold; optional ones, booleans and dates only when set.
    static bool written(const Payload& p, const FieldInfo& f)
    {
        return p.test(f.bit) || (f.mandatory && f.kind != Kind::Bool && f.kind != Kind::DateTime);
    }
    static bool hasData(const Record& r);
    static bool anyData(const Record& r);
    // Check of a record; without `descend` only its own fields, not what its children and items hold.
    static void check(const Record& r, bool traceOnly, bool descend = true);
    static bool equal(const Record& a, const Record& b);
    static void resetFields(Payload& p, const ClassInfo& info);
    static void merge(Record& target, const Record& source);

    static void storeText(Record& r, Payload& p, const FieldInfo& f, const QString& value);
    static void storeEnum(Record& r, Payload& p, const FieldInfo& f, quint8 value);
    static bool enumValid(const FieldInfo& f, quint8 value);
    // The index of `name` in the field's name list, 0xFF if it is not there.
    static quint8 enumIndex(const FieldInfo& f, const QString& name);
    static quint8 enumIndex(const FieldInfo& f, QLatin1String name);
    static quint8 enumIndex(const FieldInfo& f, const QStringRef& name);
    // Appends a copy of `item`, with the test of completeness.
    static void append(Record& owner, Payload& p, const FieldInfo& f, const Record& item);
    // Appends an enumeration value to a list of them, with the test of validity.
    static void appendEnumValue(Record& owner, Payload& p, const FieldInfo& f, quint8 value);

    // --- Schema version of a root class ---------------------------------------------
    static const QString& version(Payload& p, const VersionInfo& v) { return *reinterpret_cast<QString*>(reinterpret_cast<char*>(&p) + v.offset); }
    // Keeps the version of what is read and clears the record when it is older than the schema.
    static void versionGate(Record& r, Payload& p, const QString& loaded);
    // True when the version last read is not older than the schema.
    static bool claimsCurrentVersion(Payload& p, const VersionInfo& v);

    // --- Forms ----------------------------------------------------------------------
    static void writeXml(const Record& r, QXmlStreamWriter& writer);
    static void writeXml(const Record& r, QXmlStreamWriter& writer, TextRoom& room);
    static void readXml(Record& r, QXmlStreamReader& reader);
    static void readXmlAttributes(Record& r, Payload& p, QXmlStreamReader& reader);
    static void readXmlChildElement(Record& r, QXmlStreamReader& reader);
    static void readLeafXml(Record& r, QXmlStreamReader& reader);

    static bool writeTagged(const Record& r, QDataStream& stream, int tag, bool withTag);
    static bool writeTagged(const Record& r, DataOut& out, int tag, bool withTag);
    static void readTagged(Record& r, QDataStream& stream, qint64 length);
    static void readTagged(Record& r, DataIn& in, qint64 length);

    static void writeRaw(const Record& r, QDataStream& stream);
    static void writeRaw(const Record& r, DataOut& out);
    static void readRaw(Record& r, QDataStream& stream);
    static void readRaw(Record& r, DataIn& in);
};

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
