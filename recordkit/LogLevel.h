#pragma once

#include <QStringList>

#include <EmitterDossierDoc/edd_export.h>

namespace RECORDKIT {

/// Severity of a log line. The value is the position of its name in LogLevelNames().
enum LogLevel {
    ERROR = 0,    ///< A fault reported by Check(true), or with the validate flag on and not raised.
    WARNING = 1,  ///< A fault with the validate flag off; the operation went on.
    INFO = 2,     ///< A message for information; records write none.
};

/// "ERROR", "WARNING", "INFO", in the order of the values of LogLevel.
EDD_EXPORT const QStringList& LogLevelNames();

}  // namespace RECORDKIT
