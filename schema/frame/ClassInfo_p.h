#pragma once

// The layout of the field tables that generated classes fill and the runtime
// reads. Internal to the library: users read tables through Reflection.h.

#include <QString>
#include <QStringList>

#include <EmitterDossierDoc/frame/Reflection.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

class Record;
struct Payload;

// Operations on a nested record held by value in a payload.
struct ChildOps {
    const ClassInfo& (*childClass)();
    Record& (*get)(void* field);
    const Record& (*cget)(const void* field);
    void (*reset)(void* field);  // assigns a fresh default object
};

// Operations on a QVector of nested records held in a payload.
struct ListOps {
    const ClassInfo& (*itemClass)();
    int (*size)(const void* list);
    Record& (*at)(void* list, int index);
    const Record& (*cat)(const void* list, int index);
    void (*reserve)(void* list, int count);
    Record& (*appendDefault)(void* list);
    void (*append)(void* list, const Record& item);  // shares the item's payload
    void (*removeLast)(void* list);
    void (*clear)(void* list);
    void (*trim)(void* list);  // gives back room well beyond the items held
    const QString& (*itemName)();
};

// The names of an enumeration and the payload member that holds it.
struct EnumInfo {
    const QStringList* names;  // in index order
    const char* memberName;    // m_<property>, as reports spell it
};

// A QVector of enumeration values held in a payload, with the names of its enumeration.
struct EnumListInfo {
    EnumInfo names;
    int (*size)(const void* list);
    quint8 (*at)(const void* list, int index);
    void (*append)(void* list, quint8 value);
    void (*reserve)(void* list, int count);
    void (*clear)(void* list);
};

// Rules of a field that do not follow from its kind and presence.
enum FieldFlag : quint8 {
    NoFieldFlags = 0,
    // The tagged form has the list's record only when it holds items, with no
    // test of the presence bit for them; the raw form has its count and items
    // only under the presence bit.
    OmitWhenEmpty = 1,
    // The XML writer does not report the list's incomplete items.
    NoIncompleteItemReport = 2,
};

// Whether a field must be present. Field tables name it; the row keeps it as
// the bool `mandatory`.
struct Presence {
    enum Value : bool { Optional = false, Mandatory = true };
};

// One row of a class's field table.
struct FieldInfo {
    const QString* name;  // property name, also its XML name
    quint32 tag;          // tag of the tagged form
    quint16 offset;       // of the field within the payload
    quint8 bit;           // presence bit, also the raw form's order
    Kind kind;
    XmlForm xml;
    bool mandatory;
    quint8 flags;     // FieldFlag
    const void* aux;  // EnumInfo for Enum, ChildOps for Child, ListOps for List, EnumListInfo for EnumList

    bool has(FieldFlag flag) const { return (flags & flag) != 0; }
    const EnumInfo& enumInfo() const
    {
        return kind == Kind::EnumList ? static_cast<const EnumListInfo*>(aux)->names
                                      : *static_cast<const EnumInfo*>(aux);
    }
    const EnumListInfo& enumListInfo() const { return *static_cast<const EnumListInfo*>(aux); }
    const ChildOps& childOps() const { return *static_cast<const ChildOps*>(aux); }
    const ListOps& listOps() const { return *static_cast<const ListOps*>(aux); }
};

// The schema version that a root class carries beside its properties: written
// first in every form, compared with the version of what is read (the version gate).
struct VersionInfo {
    const QString* text;   // the version of this library's schema
    quint32 tag;           // of the version's record in the tagged form
    quint16 offset;        // QString member holding the version
    quint16 loadedOffset;  // QString member holding the version last read
};

// The description of one class: everything the runtime needs to handle it.
struct ClassInfo {
    const char* name;
    QString (*objectName)();
    qint64 id;
    const FieldInfo* fields;  // in the order of writing (XML and tagged form)
    const quint8* byBit;      // row index of each presence bit, bit 0 first
    quint8 fieldCount;
    bool leaf;                   // attributes and text content, no child elements
    bool hasChildren;            // a child or list field: flag and logger are handed down
    const VersionInfo* version;  // the root's version, null for other classes
    Payload* (*createPayload)();

    const FieldInfo& field(int bit) const { return fields[byBit[bit]]; }
    int bitmapBytes() const { return (fieldCount + 7) / 8; }
};

// The version of a class that is not a root.
constexpr const VersionInfo* NoVersion = nullptr;

// A class's description from its rows: the field count, whether it is a leaf
// and whether it has children follow from the rows and are computed here, once
// for every class.
template <int N>
ClassInfo makeClassInfo(const char* name, QString (*objectName)(), qint64 id, const FieldInfo (&fields)[N],
                        const quint8 (&byBit)[N], const VersionInfo* version, Payload* (*createPayload)())
{
    bool leaf = false;
    bool hasChildren = false;
    for (const FieldInfo& f : fields) {
        leaf = leaf || f.xml == XmlForm::Content;
        hasChildren = hasChildren || f.kind == Kind::Child || f.kind == Kind::List;
    }
    return {name, objectName, id, fields, byBit, quint8(N), leaf, hasChildren, version, createPayload};
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
