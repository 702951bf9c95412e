// edd-codegen: turns the schema description into the classes of the library.
//
//   edd-codegen --source-root <dir> --out <dir> <file.schema>...
//
// Each description file's folder, relative to the source root, is the folder
// of its classes' generated sources under --out.

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>

#include "CodeWriter.h"
#include "SchemaParser.h"

static int failWith(const QString& message)
{
    std::fprintf(stderr, "edd-codegen: %s\n", qPrintable(message));
    return 1;
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    QString sourceRoot;
    QString outDir;
    QStringList files;
    for (int i = 0; i < args.size(); ++i) {
        if (args.at(i) == QLatin1String("--source-root") && i + 1 < args.size())
            sourceRoot = args.at(++i);
        else if (args.at(i) == QLatin1String("--out") && i + 1 < args.size())
            outDir = args.at(++i);
        else
            files.append(args.at(i));
    }
    if (sourceRoot.isEmpty() || outDir.isEmpty() || files.isEmpty())
        return failWith(QStringLiteral("usage: edd-codegen --source-root <dir> --out <dir> <file.schema>..."));

    const QDir root(sourceRoot);
    codegen::Schema schema;
    QString error;
    for (const QString& file : files) {
        const QString folder = root.relativeFilePath(QFileInfo(file).absolutePath());
        if (!codegen::parseSchemaFile(file, folder, schema, error))
            return failWith(error);
    }
    if (!codegen::validateSchema(schema, error) || !codegen::writeSchema(schema, outDir, error))
        return failWith(error);
    return 0;
}
