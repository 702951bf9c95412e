#pragma once

#include <QString>

#include "SchemaModel.h"

namespace Codegen {

// Reads schema description files into `schema`. On a mistake, returns false
// with `error` as "file:line: message".
bool parseSchemaFile(const QString& path, const QString& folder, Schema& schema, QString& error);

// Checks the whole description: known types, unique bits, names, tags and ids,
// one tag per field name and kind across all classes.
bool validateSchema(const Schema& schema, QString& error);

}  // namespace Codegen
