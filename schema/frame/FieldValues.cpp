// The values of plain fields: initial values, enumeration names and the setters' tests.

#include <QDateTime>

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

// --- Initial values -------------------------------------------------------------------

void Internal::resetValue(Payload& p, const FieldInfo& f)
{
    void* slot = field(p, f);
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

void Internal::resetFields(Payload& p, const ClassInfo& info)
{
    for (int i = 0; i < info.fieldCount; ++i)
        resetValue(p, info.fields[i]);
}

// --- Enumerations --------------------------------------------------------------------------

const QString* Internal::enumName(const EnumInfo& names, quint8 value)
{
    // 0xFF is the invalid value; any byte from 0x80 up is as invalid.
    const qint8 index = qint8(value);
    return index >= 0 && index < names.names->size() ? &names.names->at(index) : nullptr;
}

bool Internal::enumValid(const FieldInfo& f, quint8 value) { return enumName(f.enumInfo(), value) != nullptr; }

// The index of `name` in the field's name list, 0xFF if it is not there, for
// a name held in any of Qt's string types.
template <class Name>
static quint8 indexOfName(const FieldInfo& f, const Name& name)
{
    const QStringList& names = *f.enumInfo().names;
    for (int i = 0; i < names.size(); ++i)
        if (names.at(i) == name)
            return quint8(i);
    return quint8(0xFF);
}

quint8 Internal::enumIndex(const FieldInfo& f, const QString& name) { return indexOfName(f, name); }
quint8 Internal::enumIndex(const FieldInfo& f, QStringView name) { return indexOfName(f, name); }
quint8 Internal::enumIndex(const FieldInfo& f, QLatin1String name) { return indexOfName(f, name); }

// --- Setters with a test -----------------------------------------------------------------------

void Internal::storeText(Record& r, Payload& p, const FieldInfo& f, const QString& text)
{
    if (text.isNull()) {
        OutOfRangeException e(r.GetObjectName() +
                              QStringLiteral(": Please set %1 properly (origin: Setter).").arg(*f.name));
        report(r, e);
    }
    value<QString>(p, f) = text;
    p.set(f.bit);
}

void Internal::storeEnum(Record& r, Payload& p, const FieldInfo& f, quint8 v)
{
    if (!enumValid(f, v)) {
        OutOfRangeException e(QStringLiteral("enum is not valid (classname=%1,membername=%2)")
                                  .arg(QLatin1String(r.GetClassInfo().name), QLatin1String(f.enumInfo().memberName)));
        report(r, e);
    }
    value<quint8>(p, f) = v;
    p.set(f.bit);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
