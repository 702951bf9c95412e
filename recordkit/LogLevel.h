#pragma once

#include <QStringList>

#include <EmitterDossierDoc/edd_export.h>

namespace RECORDKIT {

// Severity of a log line. The value is the position of its name in LogLevelNames().
enum LogLevel { ERROR = 0, WARNING = 1, INFO = 2 };

// "ERROR", "WARNING", "INFO", in the order of the values of LogLevel.
EDD_EXPORT const QStringList& LogLevelNames();

}  // namespace RECORDKIT
