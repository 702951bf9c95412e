#pragma once

// Every schema class of the library, by name and id.

#include <QString>
#include <QVector>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/frame/Record.h>

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

// The class of that name or id; null if there is none.
EDD_EXPORT const ClassEntry* FindClass(const QString& name);
EDD_EXPORT const ClassEntry* FindClass(qint64 id);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
