#pragma once

#include <QString>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/recordkit/LogLevel.h>

namespace RECORDKIT {

// Where records report what they trace. The default writes one line
// "LEVEL: message" to standard error; applications subclass it to route
// messages elsewhere. One logger is shared by a whole object tree.
class EDD_EXPORT Logger {
public:
    Logger();
    virtual ~Logger();
    virtual void Log(LogLevel level, const QString& message);
};

}  // namespace RECORDKIT
