#pragma once

// All schema classes of the library, by name and id, with their field tables.

#include <QString>
#include <QVector>

#include "edd_export.h"
#include "schema/frame/ClassInfo.h"
#include "schema/frame/Record.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

struct ClassEntry {
    const ClassInfo& (*info)();
    Record* (*create)();  // a new default object, owned by the caller

    template <class C>
    static ClassEntry of()
    {
        return {&C::StaticClassInfo, []() -> Record* { return new C(); }};
    }
};

// Every schema class, in the order of the schema description.
EDD_EXPORT const QVector<ClassEntry>& AllClasses();

inline const ClassEntry* FindClass(const QString& name)
{
    for (const ClassEntry& entry : AllClasses())
        if (QLatin1String(entry.info().name) == name)
            return &entry;
    return nullptr;
}

inline const ClassEntry* FindClass(qint64 id)
{
    for (const ClassEntry& entry : AllClasses())
        if (entry.info().id == id)
            return &entry;
    return nullptr;
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
