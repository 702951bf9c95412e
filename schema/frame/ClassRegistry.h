#pragma once

// Every schema class of the library, by name and id.

#include <QString>
#include <QVector>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/frame/Record.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

/// One class of the registry: its field table and a way to make an object of it.
struct ClassEntry {
    const ClassInfo& (*info)();  ///< the class's field table
    Record* (*create)();         ///< a new default object, owned by the caller

    /// The entry of class `C`.
    template <class C>
    static ClassEntry of()
    {
        return {&C::StaticClassInfo, []() -> Record* { return new C(); }};
    }
};

/// Every schema class, in the order of the schema description.
EDD_EXPORT const QVector<ClassEntry>& AllClasses();

/// The class of that name; null if there is none.
EDD_EXPORT const ClassEntry* FindClass(const QString& name);
/// The class of that id; null if there is none.
EDD_EXPORT const ClassEntry* FindClass(qint64 id);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
