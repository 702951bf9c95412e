// The schema version of a root class: kept from what is read, compared with the schema's.

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

void Internal::versionGate(Record& r, Payload& p, const QString& loaded)
{
    const VersionInfo& v = *r.GetClassInfo().version;
    loadedVersionOf(p, v) = loaded;
    // Versions compare as numbers: text that is no number counts as 0.
    if (schemaVersionOf(p, v).toFloat() > loaded.toFloat())
        r.Reset();
}

bool Internal::claimsCurrentVersion(Payload& p, const VersionInfo& v)
{
    return loadedVersionOf(p, v).toFloat() >= schemaVersionOf(p, v).toFloat();
}

const QString& Internal::schemaVersion(const Record& r)
{
    return schemaVersionOf(payload(r), *r.GetClassInfo().version);
}

const QString& Internal::loadedVersion(const Record& r)
{
    return loadedVersionOf(payload(r), *r.GetClassInfo().version);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
