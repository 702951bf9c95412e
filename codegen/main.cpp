// edd-codegen: turns the schema description into the classes of the library.
//
//   edd-codegen --source-root <dir> --out <dir> [--list-outputs] <file.schema>...
//
// Each description file's folder, relative to the source root, is the folder
// of its classes' generated sources under --out. With --list-outputs the
// generator reads and checks the description and prints, one per line, every
// file it would write, without writing any; the build takes its list of
// generated files from there.

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>

#include "CodeWriter.h"
#include "SchemaParser.h"
#include "Template.h"

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
    bool listOutputs = false;
    QStringList files;
    for (int i = 0; i < args.size(); ++i) {
        if (args.at(i) == QLatin1String("--source-root") && i + 1 < args.size())
            sourceRoot = args.at(++i);
        else if (args.at(i) == QLatin1String("--out") && i + 1 < args.size())
            outDir = args.at(++i);
        else if (args.at(i) == QLatin1String("--list-outputs"))
            listOutputs = true;
        else
            files.append(args.at(i));
    }
    if (sourceRoot.isEmpty() || outDir.isEmpty() || files.isEmpty())
        return failWith(
            QStringLiteral("usage: edd-codegen --source-root <dir> --out <dir> [--list-outputs] <file.schema>..."));

    const QDir root(sourceRoot);
    Codegen::Schema schema;
    QString error;
    for (const QString& file : files) {
        const QString folder = root.relativeFilePath(QFileInfo(file).absolutePath());
        if (!Codegen::parseSchemaFile(file, folder, schema, error))
            return failWith(error);
    }
    if (!Codegen::validateSchema(schema, error))
        return failWith(error);
    if (listOutputs) {
        for (const QString& path : Codegen::schemaOutputs(schema, outDir))
            std::printf("%s\n", qPrintable(path));
        return 0;
    }
    try {
        if (!Codegen::writeSchema(schema, outDir, error))
            return failWith(error);
    } catch (const Codegen::TemplateError& e) {
        return failWith(QString::fromStdString(e.what()));
    }
    return 0;
}
