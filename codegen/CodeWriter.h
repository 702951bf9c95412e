#pragma once

#include <QString>
#include <QStringList>

#include "SchemaModel.h"

namespace Codegen {

// The files that writeSchema writes under `outDir`, in the order it writes them.
QStringList schemaOutputs(const Schema& schema, const QString& outDir);

// Writes one header and one source per class, the class registry and the
// umbrella header under `outDir`. Files whose content is unchanged are left
// alone, so that the build does not redo them.
bool writeSchema(const Schema& schema, const QString& outDir, QString& error);

}  // namespace Codegen
