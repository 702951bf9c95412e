#pragma once

// Read-only access to any record through its class's field table, for tools
// that handle records of every class alike: a viewer, a differ, a checker that
// names the object of each fault. Reading a field never sets a presence bit;
// it may create an empty payload, as the const accessors do.

#include <functional>

#include <QString>

#include "edd_export.h"
#include "schema/frame/ClassInfo.h"
#include "schema/frame/Record.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Whether the field's presence bit is set.
EDD_EXPORT bool IsFieldSet(const Record& record, const FieldInfo& field);

// A plain field's value as the XML form writes it: doubles with two places,
// enumerations by name (empty when invalid), booleans as "true" or "false".
// Empty for children and lists.
EDD_EXPORT QString FieldText(const Record& record, const FieldInfo& field);

// The double of a Double field, exact; 0 for other kinds.
EDD_EXPORT double FieldDouble(const Record& record, const FieldInfo& field);

// The child object of a Child field.
EDD_EXPORT const Record& ChildOf(const Record& record, const FieldInfo& field);

// The items of a List field, or the values of an EnumList field.
EDD_EXPORT int ItemCount(const Record& record, const FieldInfo& field);
EDD_EXPORT const Record& ItemOf(const Record& record, const FieldInfo& field, int index);
// The name of a value of an EnumList field, empty when it is invalid.
EDD_EXPORT QString EnumItemText(const Record& record, const FieldInfo& field, int index);

// The fields of a class in the order of their presence bits.
EDD_EXPORT const FieldInfo& FieldByBit(const ClassInfo& info, int bit);

// What `Check(traceOnly)` tests of this record's own fields, without going
// into its children and items: faults are raised or logged as Check does.
EDD_EXPORT void CheckOwnFields(const Record& record, bool traceOnly);

// Visits `root` and every record below it that Check goes into (a child when
// it is mandatory or set, the items of a list when it is mandatory or set),
// parent first, in the order of the presence bits. `path` names the record
// from below the root: "ELINTParameter/Sequence/PulseList/PulseItem[17]",
// items counted from 0; it is empty for the root.
EDD_EXPORT void ForEachChecked(const Record& root,
                               const std::function<void(const QString& path, const Record& record)>& visit);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
