// The reflection face, on the same field tables and rules as the forms.

#include <EmitterDossierDoc/frame/Reflection.h>

#include <EmitterDossierDoc/frame/ClassRegistry.h>

#include "schema/frame/Runtime_p.h"
#include "schema/frame/TextForms_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

QString ClassName(const ClassInfo& info) { return QLatin1String(info.name); }
qint64 ClassId(const ClassInfo& info) { return info.id; }
bool IsLeafClass(const ClassInfo& info) { return info.leaf; }
QString ClassSchemaVersion(const ClassInfo& info) { return info.version ? *info.version->text : QString(); }
quint32 ClassVersionTag(const ClassInfo& info) { return info.version ? info.version->tag : 0; }
int FieldCount(const ClassInfo& info) { return info.fieldCount; }
const FieldInfo& FieldAt(const ClassInfo& info, int index) { return info.fields[index]; }
const FieldInfo& FieldByBit(const ClassInfo& info, int bit) { return info.field(bit); }

const FieldInfo* FindField(const ClassInfo& info, const QString& name)
{
    for (int i = 0; i < info.fieldCount; ++i)
        if (*info.fields[i].name == name)
            return &info.fields[i];
    return nullptr;
}

const FieldInfo* FindFieldByTag(const ClassInfo& info, quint32 tag)
{
    for (int i = 0; i < info.fieldCount; ++i)
        if (info.fields[i].tag == tag)
            return &info.fields[i];
    return nullptr;
}

const QString& FieldName(const FieldInfo& field) { return *field.name; }
quint32 FieldTag(const FieldInfo& field) { return field.tag; }
int FieldBit(const FieldInfo& field) { return field.bit; }
Kind FieldKind(const FieldInfo& field) { return field.kind; }
XmlForm FieldXmlForm(const FieldInfo& field) { return field.xml; }
bool IsMandatory(const FieldInfo& field) { return field.mandatory; }

QStringList EnumNames(const FieldInfo& field)
{
    return field.kind == Kind::Enum || field.kind == Kind::EnumList ? *field.enumInfo().names : QStringList();
}

const ClassInfo* ItemClass(const FieldInfo& field)
{
    if (field.kind == Kind::Child)
        return &field.childOps().childClass();
    if (field.kind == Kind::List)
        return &field.listOps().itemClass();
    return nullptr;
}

const ClassEntry* FindClass(const QString& name)
{
    for (const ClassEntry& entry : AllClasses())
        if (QLatin1String(entry.info().name) == name)
            return &entry;
    return nullptr;
}

const ClassEntry* FindClass(qint64 id)
{
    for (const ClassEntry& entry : AllClasses())
        if (entry.info().id == id)
            return &entry;
    return nullptr;
}

bool IsFieldSet(const Record& record, const FieldInfo& field)
{
    Payload* p = Internal::existing(record);
    return p && p->test(field.bit);
}

QString FieldText(const Record& record, const FieldInfo& field) { return fieldText(Internal::payload(record), field); }

double FieldDouble(const Record& record, const FieldInfo& field)
{
    return field.kind == Kind::Double ? Internal::value<double>(Internal::payload(record), field) : 0.0;
}

const Record& ChildOf(const Record& record, const FieldInfo& field)
{
    return field.childOps().cget(Internal::field(Internal::payload(record), field));
}

int ItemCount(const Record& record, const FieldInfo& field)
{
    const void* list = Internal::field(Internal::payload(record), field);
    if (field.kind == Kind::List)
        return field.listOps().size(list);
    if (field.kind == Kind::EnumList)
        return field.enumListInfo().size(list);
    return 0;
}

const Record& ItemOf(const Record& record, const FieldInfo& field, int index)
{
    return field.listOps().cat(Internal::field(Internal::payload(record), field), index);
}

QString EnumItemText(const Record& record, const FieldInfo& field, int index)
{
    const EnumListInfo& values = field.enumListInfo();
    const QString* name = Internal::enumName(values.names,
                                             values.at(Internal::field(Internal::payload(record), field), index));
    return name ? *name : QString();
}

void CheckOwnFields(const Record& record, bool traceOnly) { Internal::check(record, traceOnly, false); }

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
