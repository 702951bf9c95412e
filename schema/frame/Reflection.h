#pragma once

// The read-only reflection view: the classes of the library, their fields as
// the field tables describe them, and the values of any record read through
// them. For tools that handle records of every class alike: a viewer, a
// differ, a checker that names the object of each fault.
//
// ClassInfo and FieldInfo are opaque: a class's table is had from
// `C::StaticClassInfo()`, `record.GetClassInfo()` or AllClasses(), and read
// with the functions below. Reading a field's value never sets a presence
// bit; it may create an empty payload, as the const accessors do.

#include <functional>

#include <QString>
#include <QStringList>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/frame/Record.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

/// The description of one field in a class's field table; read it through the functions below.
struct FieldInfo;

/// What a field holds.
enum class Kind : quint8 {
    Double,    ///< double; decimal text with two places in XML and the tagged form
    UInt64,    ///< quint64; ids, indices and counts
    Bool,      ///< bool
    Text,      ///< QString
    DateTime,  ///< QDateTime, through Converters
    Enum,      ///< one byte, an index into the field's name list
    Child,     ///< a nested record held by value
    List,      ///< a QVector of nested records
    EnumList,  ///< a QVector of enumeration values
};

/// Where a field stands in the XML form of its class.
enum class XmlForm : quint8 {
    Attribute,  ///< attribute of the element (also accepted as a child element when reading)
    Element,    ///< text child element named after the field
    Content,    ///< the text content of a leaf element
    Child,      ///< the child's own element
    List,       ///< one element per item
};

// --- Classes -------------------------------------------------------------------------

/// The class name, which is also the name of its element.
EDD_EXPORT QString ClassName(const ClassInfo& info);
/// The class id, also the tag of the class's block in the tagged form.
EDD_EXPORT qint64 ClassId(const ClassInfo& info);
/// True for a class of attributes and text content, without child elements.
EDD_EXPORT bool IsLeafClass(const ClassInfo& info);
/// The schema version that a root class writes first in every form; empty for other classes.
EDD_EXPORT QString ClassSchemaVersion(const ClassInfo& info);
/// The tag of the version's record in the tagged form; 0 for classes without a version.
EDD_EXPORT quint32 ClassVersionTag(const ClassInfo& info);

/// The number of fields, which is also the number of presence bits.
EDD_EXPORT int FieldCount(const ClassInfo& info);
/// The fields in the order of writing (XML and tagged form), 0 to FieldCount - 1.
EDD_EXPORT const FieldInfo& FieldAt(const ClassInfo& info, int index);
/// The fields in the order of their presence bits, which is the raw form's order.
EDD_EXPORT const FieldInfo& FieldByBit(const ClassInfo& info, int bit);
/// The field of that name; null if the class has none.
EDD_EXPORT const FieldInfo* FindField(const ClassInfo& info, const QString& name);
/// The field of that tag; null if the class has none.
EDD_EXPORT const FieldInfo* FindFieldByTag(const ClassInfo& info, quint32 tag);

// --- Fields --------------------------------------------------------------------------

/// The property name, also its XML name.
EDD_EXPORT const QString& FieldName(const FieldInfo& field);
/// The tag of the field's record in the tagged form.
EDD_EXPORT quint32 FieldTag(const FieldInfo& field);
/// The presence bit, also the field's place in the raw form.
EDD_EXPORT int FieldBit(const FieldInfo& field);
/// What the field holds.
EDD_EXPORT Kind FieldKind(const FieldInfo& field);
/// Where the field stands in the XML form.
EDD_EXPORT XmlForm FieldXmlForm(const FieldInfo& field);
/// True for a mandatory field, which is written whether its bit is set or not.
EDD_EXPORT bool IsMandatory(const FieldInfo& field);
/// The names of an Enum or EnumList field in index order; empty for other kinds.
EDD_EXPORT QStringList EnumNames(const FieldInfo& field);
/// The class of a Child field's object or of a List field's items; null for other kinds.
EDD_EXPORT const ClassInfo* ItemClass(const FieldInfo& field);

// --- Values --------------------------------------------------------------------------

/// Whether the field's presence bit is set.
EDD_EXPORT bool IsFieldSet(const Record& record, const FieldInfo& field);

/// A plain field's value as the XML form writes it: doubles with two places,
///< enumerations by name (empty when invalid), booleans as "true" or "false".
/// Empty for children and lists.
EDD_EXPORT QString FieldText(const Record& record, const FieldInfo& field);

/// The double of a Double field, exact; 0 for other kinds.
EDD_EXPORT double FieldDouble(const Record& record, const FieldInfo& field);

/// The child object of a Child field.
EDD_EXPORT const Record& ChildOf(const Record& record, const FieldInfo& field);

/// The number of items of a List field, or of values of an EnumList field.
EDD_EXPORT int ItemCount(const Record& record, const FieldInfo& field);
/// Item `index` of a List field, from 0 to ItemCount - 1.
EDD_EXPORT const Record& ItemOf(const Record& record, const FieldInfo& field, int index);
/// The name of a value of an EnumList field, empty when it is invalid.
EDD_EXPORT QString EnumItemText(const Record& record, const FieldInfo& field, int index);

/// What `Check(traceOnly)` tests of this record's own fields, without going
/// into its children and items: faults are raised or logged as Check does.
EDD_EXPORT void CheckOwnFields(const Record& record, bool traceOnly);

/// Visits `root` and every record below it that Check goes into (a child when
/// it is mandatory or set, the items of a list when it is mandatory or set),
/// parent first, in the order of the presence bits. `path` names the record
/// from below the root: "ELINTParameter/Sequence/PulseList/PulseItem[17]",
/// items counted from 0; it is empty for the root.
EDD_EXPORT void ForEachChecked(const Record& root,
                               const std::function<void(const QString& path, const Record& record)>& visit);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
