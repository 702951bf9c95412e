// The version of the library as it was built, for programs compiled against
// other headers.

#include <EmitterDossierDoc/Version.h>

namespace EMITTERDOSSIERDOC {

const char* RuntimeVersion() noexcept { return EMITTERDOSSIERDOC_VERSION_STRING; }

}  // namespace EMITTERDOSSIERDOC
