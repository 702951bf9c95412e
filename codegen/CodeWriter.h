#pragma once

#include <QString>

#include "SchemaModel.h"

namespace codegen {

// Writes one header and one source per class, the class registry and the
// umbrella header under `outDir`. Files whose content is unchanged are left
// alone, so that the build does not redo them.
bool writeSchema(const Schema& schema, const QString& outDir, QString& error);

}  // namespace codegen
