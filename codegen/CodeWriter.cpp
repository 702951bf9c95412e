#include "CodeWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "CodeText.h"

namespace Codegen {

namespace {

QString headerPath(const QString& outDir, const SchemaClass& c)
{
    return outDir + QStringLiteral("/include/EmitterDossierDoc/") + subsystem(c) + QLatin1Char('/') + c.name +
           QStringLiteral(".h");
}

QString sourcePath(const QString& outDir, const SchemaClass& c)
{
    return outDir + QStringLiteral("/src/") + subsystem(c) + QLatin1Char('/') + c.name + QStringLiteral(".cpp");
}

QString umbrellaPath(const QString& outDir)
{
    return outDir + QStringLiteral("/include/EmitterDossierDoc/EmitterDossierDoc.h");
}

QString registryPath(const QString& outDir) { return outDir + QStringLiteral("/src/ClassRegistry.cpp"); }

bool writeIfChanged(const QString& path, const QString& text, QString& error)
{
    const QByteArray bytes = text.toUtf8();
    QFile existing(path);
    if (existing.open(QIODevice::ReadOnly) && existing.readAll() == bytes)
        return true;
    existing.close();
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(bytes) != bytes.size()) {
        error = path + QStringLiteral(": cannot write: ") + out.errorString();
        return false;
    }
    return true;
}

}  // namespace

QStringList schemaOutputs(const Schema& schema, const QString& outDir)
{
    QStringList paths;
    for (const SchemaClass& c : schema.classes)
        paths << headerPath(outDir, c) << sourcePath(outDir, c);
    return paths << umbrellaPath(outDir) << registryPath(outDir);
}

bool writeSchema(const Schema& schema, const QString& outDir, QString& error)
{
    ClassMap classes;
    for (const SchemaClass& c : schema.classes)
        classes.insert(c.name, &c);
    for (const SchemaClass& c : schema.classes)
        if (!writeIfChanged(headerPath(outDir, c), headerText(c, classes), error) ||
            !writeIfChanged(sourcePath(outDir, c), sourceText(c), error))
            return false;
    return writeIfChanged(umbrellaPath(outDir), umbrellaText(schema), error) &&
           writeIfChanged(registryPath(outDir), registryText(schema), error);
}

}  // namespace Codegen
