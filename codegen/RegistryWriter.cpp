// The umbrella header and the registry of all generated classes.

#include "CodeText.h"
#include "Template.h"

namespace Codegen {

namespace {

const char* const UmbrellaTemplate = R"cpp(${banner}// Everything a user of the library needs.
#pragma once

#include <EmitterDossierDoc/recordkit/Converters.h>
#include <EmitterDossierDoc/recordkit/IRKObject.h>
#include <EmitterDossierDoc/recordkit/Input.h>
#include <EmitterDossierDoc/recordkit/LogLevel.h>
#include <EmitterDossierDoc/recordkit/Logger.h>
#include <EmitterDossierDoc/recordkit/ObjectTypes.h>
#include <EmitterDossierDoc/recordkit/RKException.h>
#include <EmitterDossierDoc/frame/ClassRegistry.h>
#include <EmitterDossierDoc/frame/Reflection.h>
${includes})cpp";

const char* const RegistryTemplate = R"cpp(${banner}#include <EmitterDossierDoc/frame/ClassRegistry.h>

${includes}
namespace EMITTERDOSSIERDOC {
namespace Frame {

const QVector<ClassEntry>& AllClasses()
{
    static const QVector<ClassEntry> classes = {
${entries}    };
    return classes;
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
)cpp";

const char* const IncludeTemplate = "#include <EmitterDossierDoc/${subsystem}/${Class}.h>\n";
const char* const EntryTemplate = "        Frame::ClassEntry::of<${Class}>(),\n";

QString includes(const Schema& schema)
{
    QString out;
    for (const SchemaClass& c : schema.classes)
        out += render("IncludeTemplate", IncludeTemplate, {{"subsystem", subsystem(c)}, {"Class", c.name}});
    return out;
}

}  // namespace

QString umbrellaText(const Schema& schema)
{
    return render("UmbrellaTemplate", UmbrellaTemplate,
                  {{"banner", banner(QStringLiteral("the schema description"))}, {"includes", includes(schema)}});
}

QString registryText(const Schema& schema)
{
    QString entries;
    for (const SchemaClass& c : schema.classes)
        entries += render("EntryTemplate", EntryTemplate, {{"Class", c.name}});
    return render("RegistryTemplate", RegistryTemplate,
                  {{"banner", banner(QStringLiteral("the schema description"))},
                   {"includes", includes(schema)},
                   {"entries", entries}});
}

}  // namespace Codegen
