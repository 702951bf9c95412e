// dossier: check, convert, show, diff and inspect records of EmitterDossierDoc
// in any of their forms, and show the schema's field tables.

#include "Tool.h"

#include <QCoreApplication>

namespace {

using namespace dossier_tool;

struct Command {
    const char* name;
    int (*run)(const QStringList& args);
    const char* usage;
    const char* help;
};

const Command Commands[] = {
    {"check", runCheck, "check [--strict] [--max-errors N] FILE...",
     "Reads each file and prints its faults as FILE: PATH: message, PATH naming the object below\n"
     "the record that reported it: the first 100 of each file (--max-errors N, 0 for all), then\n"
     "FILE: N more faults not shown (--max-errors 0 shows all). --strict reads with the validate\n"
     "flag on, so that the first fault stops the reading. Exit 0 if all are clean, 1 if any\n"
     "record has faults, 2 if a file cannot be read."},
    {"convert", runConvert, "convert FILE --to xml|tagged|compressed|raw [-o OUT] [--from raw --class NAME]",
     "Writes the record of FILE in another form, to OUT or to standard output (binary forms\n"
     "not to a terminal). XML, tagged and compressed input is recognised; the raw form has\n"
     "no marker and needs --from raw --class NAME. Any schema class may be the record."},
    {"show", runShow, "show [--all] FILE [--from raw --class NAME]",
     "Prints the record as an indented tree: properties in the order of the XML form, values\n"
     "with their units, list items numbered from 0. --all shows unset properties, marked."},
    {"diff", runDiff, "diff A B",
     "Prints the properties in which two records differ, as PATH: value in A -> value in B.\n"
     "Exit 0 if the records are equal, 1 if not, 2 if a file cannot be read."},
    {"inspect", runInspect, "inspect FILE",
     "Prints the tagged or compressed form as it stands in the bytes: each record with its\n"
     "offset, tag, field name (or unknown), length and value, nested blocks indented, and the\n"
     "first place where the lengths do not add up (exit 2)."},
    {"schema", runSchema, "schema [CLASS]",
     "Prints the field table of CLASS (bit, field, XML shape, type, presence, tag, in the order\n"
     "of writing), or all classes with their ids."},
};

void usage()
{
    outText(QStringLiteral("usage: dossier COMMAND [OPTIONS]\n\ncommands:"));
    for (const Command& c : Commands)
        outText(QStringLiteral("  %1").arg(QLatin1String(c.usage)));
    outText(QStringLiteral("\n'dossier COMMAND --help' tells more about a command."));
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
    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        usage();
        return args.isEmpty() ? Unreadable : Success;
    }
    const QString name = args.takeFirst();
    for (const Command& c : Commands) {
        if (name != QLatin1String(c.name))
            continue;
        if (args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"))) {
            outText(QStringLiteral("usage: dossier %1\n\n%2").arg(QLatin1String(c.usage), QLatin1String(c.help)));
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
    error(QStringLiteral("unknown command '%1'; 'dossier --help' lists them").arg(name));
    return Unreadable;
}
