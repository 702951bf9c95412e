// The reflection face, on the same field tables and rules as the forms.

#include "schema/frame/Reflection.h"

#include "schema/frame/Runtime.h"
#include "schema/frame/TextForms.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

bool IsFieldSet(const Record& record, const FieldInfo& field)
{
    Payload* p = Runtime::existing(record);
    return p && p->test(field.bit);
}

QString FieldText(const Record& record, const FieldInfo& field)
{
    return fieldText(Runtime::payload(record), field);
}

double FieldDouble(const Record& record, const FieldInfo& field)
{
    return field.kind == Kind::Double ? Runtime::value<double>(Runtime::payload(record), field) : 0.0;
}

const Record& ChildOf(const Record& record, const FieldInfo& field)
{
    return field.childOps().cget(Runtime::field(Runtime::payload(record), field));
}

int ItemCount(const Record& record, const FieldInfo& field)
{
    const void* list = Runtime::field(Runtime::payload(record), field);
    if (field.kind == Kind::List)
        return field.listOps().size(list);
    if (field.kind == Kind::EnumList)
        return field.enumListInfo().size(list);
    return 0;
}

const Record& ItemOf(const Record& record, const FieldInfo& field, int index)
{
    return field.listOps().cat(Runtime::field(Runtime::payload(record), field), index);
}

QString EnumItemText(const Record& record, const FieldInfo& field, int index)
{
    const EnumListInfo& values = field.enumListInfo();
    const qint8 value = qint8(values.at(Runtime::field(Runtime::payload(record), field), index));
    const QStringList& names = *values.names.names;
    return value >= 0 && value < names.size() ? names.at(value) : QString();
}

const FieldInfo& FieldByBit(const ClassInfo& info, int bit) { return info.field(bit); }

void CheckOwnFields(const Record& record, bool traceOnly) { Runtime::check(record, traceOnly, false); }

static void visitChecked(const Record& record, const QString& path,
                         const std::function<void(const QString&, const Record&)>& visit)
{
    visit(path, record);
    const ClassInfo& info = record.GetClassInfo();
    const QString prefix = path.isEmpty() ? QString() : path + QLatin1Char('/');
    for (int bit = 0; bit < info.fieldCount; ++bit) {
        const FieldInfo& f = info.field(bit);
        if (!f.mandatory && !IsFieldSet(record, f))
            continue;
        if (f.kind == Kind::Child) {
            visitChecked(ChildOf(record, f), prefix + *f.name, visit);
        } else if (f.kind == Kind::List) {
            const QString itemName = f.listOps().itemName();
            for (int k = 0, n = ItemCount(record, f); k < n; ++k)
                visitChecked(ItemOf(record, f, k), prefix + QStringLiteral("%1[%2]").arg(itemName).arg(k), visit);
        }
    }
}

void ForEachChecked(const Record& root, const std::function<void(const QString& path, const Record& record)>& visit)
{
    visitChecked(root, QString(), visit);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
