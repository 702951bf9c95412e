#pragma once

#include <QString>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/recordkit/LogLevel.h>

namespace RECORDKIT {

/// Where records report what they trace.
///
/// The default writes one line "LEVEL: message" to standard error;
/// applications subclass it to route messages elsewhere. One logger is shared
/// by a whole object tree.
class EDD_EXPORT Logger {
public:
    /// A logger that writes to standard error.
    Logger();
    /// Subclasses are destroyed through this base.
    virtual ~Logger();
    /// Writes one message of the given severity; the default writes
    /// "LEVEL: message" and a line end to standard error.
    virtual void Log(LogLevel level, const QString& message);
};

}  // namespace RECORDKIT
