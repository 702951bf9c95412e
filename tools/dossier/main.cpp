// dossier: check, convert, show, diff and inspect records of EmitterDossierDoc
// in any of their forms, and show the schema's field tables.

#include "Tool.h"

#include <cstdio>

#include <QCoreApplication>

#include <EmitterDossierDoc/Version.h>

namespace {

using namespace DossierTool;

enum class Reads { Nothing, AnyForm, TaggedForms };

struct Command {
    const char* name;
    int (*run)(const QStringList& args);
    const char* usage;
    const char* help;
    Reads reads;
};

// What every command that reads records says of its input and of what it prints.
QString readingHelp(Reads reads)
{
    if (reads == Reads::Nothing)
        return QString();
    QString text = QStringLiteral("\n\n");
    if (reads == Reads::AnyForm)
        text += QStringLiteral("XML, JSON, tagged and compressed input is recognised by itself; the raw form has\n"
                               "no marker and needs --from raw --class NAME.\n");
    text += QStringLiteral("FILE may be - for standard input. --max-size BYTES sets the largest file\n"
                           "read and the most a compressed form may unpack to (default %1).\n\n"
                           "In what is printed, a backslash is written \\\\, a newline \\n, a carriage return\n"
                           "\\r, a tab \\t and any other control character (U+0000-U+001F, U+007F-U+009F)\n"
                           "\\xHH, its code in hex, so that no text can act on the terminal or forge a line.")
                .arg(RECORDKIT::DefaultMaxUnpackedSize);
    return text;
}

const Command Commands[] = {
    {"check", runCheck, "check [--strict] [--max-errors N] FILE... [--from raw --class NAME] [--max-size BYTES]",
     "Reads each file and prints its faults as FILE: PATH: message, PATH naming the object below\n"
     "the record that reported it: the first 100 of each file (--max-errors N, 0 for all), then\n"
     "FILE: N more faults not shown (--max-errors 0 shows all). --strict reads with the validate\n"
     "flag on, so that the first fault stops the reading. Exit 0 if all are clean, 1 if any\n"
     "record has faults, 2 if a file cannot be read.",
     Reads::AnyForm},
    {"convert", runConvert,
     "convert FILE --to xml|tagged|compressed|raw|json [--compact] [-o OUT] [--from raw --class NAME] "
     "[--max-size BYTES]",
     "Writes the record of FILE in another form, to OUT or to standard output (no -o, or\n"
     "-o -; binary forms not to a terminal), as the library writes it. Any schema class may\n"
     "be the record.\n"
     "JSON holds the record as {\"CLASS\": {...}}: set properties by name in the order of\n"
     "writing, enumerations by name, doubles exact, integers above 2^53 as strings; indented\n"
     "by two spaces a level, or with no whitespace at all with --compact.",
     Reads::AnyForm},
    {"show", runShow, "show [--all] FILE [--from raw --class NAME] [--max-size BYTES]",
     "Prints the record as an indented tree: properties in the order of the XML form, values\n"
     "with their units, list items numbered from 0. --all shows unset properties, marked.",
     Reads::AnyForm},
    {"diff", runDiff, "diff A B [--from raw --class NAME] [--max-size BYTES]",
     "Prints the properties in which two records differ, as PATH: value in A -> value in B.\n"
     "Doubles compare by value: -0 equals 0, and NaN equals NaN. Exit 0 if no property differs,\n"
     "1 if some do, 2 if a file cannot be read. --from raw --class NAME holds for both files.",
     Reads::AnyForm},
    {"inspect", runInspect, "inspect FILE [--max-size BYTES]",
     "Prints the tagged or compressed form as it stands in the bytes: each record with its\n"
     "offset, tag, field name (or unknown, passed over), length and value, nested blocks\n"
     "indented, and the first place where the lengths do not add up (exit 2).",
     Reads::TaggedForms},
    {"schema", runSchema, "schema [CLASS | --xsd]",
     "Prints the field table of CLASS (bit, field, XML shape, type, presence, tag, in the order\n"
     "of writing), or all classes with their ids. --xsd prints an XML Schema (XSD 1.0) of the\n"
     "XML form as the library writes it, every class a global element, for xmllint --schema.",
     Reads::Nothing},
};

// The list of commands: on standard output when asked for, on standard error
// after a call without a command.
void usage(std::FILE* to)
{
    QString text = QStringLiteral("usage: dossier COMMAND [OPTIONS]\n"
                                  "       dossier --version\n\ncommands:\n");
    for (const Command& c : Commands)
        text += QStringLiteral("  %1\n").arg(QLatin1String(c.usage));
    text += QStringLiteral("\n'dossier COMMAND --help' tells more about a command.\n");
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), to);
}

// The tool's version is the version of the headers it was built with; the
// library's is the one it runs with, which may be newer.
QString versionLine()
{
    return QStringLiteral("dossier %1 (EmitterDossierDoc %2, Qt %3)")
        .arg(QLatin1String(EMITTERDOSSIERDOC_VERSION_STRING), QLatin1String(EMITTERDOSSIERDOC::RuntimeVersion()),
             QLatin1String(qVersion()));
}

// Qt's own warnings would break the rule of one line per error: the tool
// reports in its own words.
void quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler(quiet);
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) {
        usage(stderr);
        return Unreadable;
    }
    if (args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        usage(stdout);
        return Success;
    }
    if (args.first() == QLatin1String("--version") || args.first() == QLatin1String("-V")) {
        if (args.size() > 1) {
            error(QStringLiteral("%1 takes no arguments").arg(args.first()));
            return Unreadable;
        }
        outText(versionLine());
        return Success;
    }
    const QString name = args.takeFirst();
    for (const Command& c : Commands) {
        if (name != QLatin1String(c.name))
            continue;
        if (args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"))) {
            outText(QStringLiteral("usage: dossier %1\n\n%2%3")
                        .arg(QLatin1String(c.usage), QLatin1String(c.help), readingHelp(c.reads)));
            return Success;
        }
        try {
            return c.run(args);
        } catch (const RKException& e) {
            error(e.GetMessage());
        } catch (const std::exception& e) {
            error(QString::fromLocal8Bit(e.what()));
        }
        return Unreadable;
    }
    if (name.startsWith(QLatin1Char('-')) && name != QLatin1String("-"))
        error(QStringLiteral("unknown option %1; 'dossier --help' lists the commands and options").arg(name));
    else
        error(QStringLiteral("unknown command '%1'; 'dossier --help' lists them").arg(name));
    return Unreadable;
}
