#pragma once

// Shared pieces of the dossier tool: the forms a record comes in, loading a
// file in any of them, writing a record in one of them, and reporting.

#include <memory>

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <EmitterDossierDoc/EmitterDossierDoc.h>
#include <EmitterDossierDoc/frame/Json.h>
#include <EmitterDossierDoc/frame/Reflection.h>

namespace DossierTool {

using EMITTERDOSSIERDOC::Frame::ClassEntry;
using EMITTERDOSSIERDOC::Frame::Record;

// Exit codes of every subcommand.
enum ExitCode { Success = 0, Differs = 1, Unreadable = 2 };

enum class Form { Xml, Tagged, Compressed, Raw, Json };
QString formName(Form form);
bool parseForm(const QString& name, Form& form);

// Keeps what a record logs, for the tool to print in its own words. A list of
// two million faulty items logs two million messages, so it keeps no more than
// it is told to and counts the rest; the last error is kept apart, for the
// reason a read failed.
class CollectingLogger : public RECORDKIT::Logger {
public:
    static constexpr int KeepAll = -1;

    void Log(RECORDKIT::LogLevel level, const QString& message) override;

    // How many more messages to keep: KeepAll, or 0 for none.
    void keep(int count) { m_keep = count; }
    // Forgets the kept messages and the count, not the last error.
    void clear();
    const QStringList& kept() const { return m_kept; }
    // Every message logged since the last clear, kept or not.
    qint64 count() const { return m_count; }
    const QString& lastError() const { return m_lastError; }

private:
    int m_keep = 0;
    QStringList m_kept;
    qint64 m_count = 0;
    QString m_lastError;
};

struct LoadOptions {
    bool validate = false;                 // read with the validate flag on
    const ClassEntry* rawClass = nullptr;  // the input is the raw form of this class
    int keepMessages = 0;                  // what the logger keeps of reading (see CollectingLogger::keep)
};

struct Loaded {
    std::unique_ptr<Record> record;
    Form form = Form::Xml;
    std::shared_ptr<CollectingLogger> logger;  // what reading logged, and what comes after
    QString error;                             // why the file could not be read; empty on success
};

// The name that stands for standard input as a FILE and for standard output
// as -o's OUT. Messages name it as given, "-". The length is given so that
// the constructor is a constant expression for every compiler (clang does not
// take Qt 5's strlen in one).
constexpr QLatin1String StandardStream("-", 1);

// The whole of a file, which may be a pipe or a FIFO, read once; "-" reads
// standard input. A file of more than the size limit (--max-size) is refused
// before it is read whole.
bool readInput(const QString& path, QByteArray& bytes, QString& problem);
// False, with the error printed, when "-" stands for more than one of the
// files: standard input can be read only once.
bool readsStandardInputOnce(const QStringList& paths);

// The class of the tagged form in `bytes`, plain or compressed; a compressed
// form is replaced by the tagged form it unpacks to, and `form` tells which it
// was. Null when the bytes are neither, with `problem` set when they are a
// compressed form that cannot be unpacked.
const ClassEntry* findTagged(QByteArray& bytes, Form& form, QString& problem);

// The error for `count` bytes after the tagged form of `entry`, plain or in
// the compressed form: the same for every command that reads one.
QString bytesAfterTaggedForm(const QString& path, qint64 count, const ClassEntry& entry, Form form);

// Reads a file in the form it holds: XML by its first start element, JSON by
// the name of its outer object's member, tagged and compressed by the outer
// block with a known class id, raw only on request.
Loaded load(const QString& path, const LoadOptions& options);

// The record in the given form, as bytes. Throws RKException if a writer refuses.
QByteArray formBytes(const Record& record, Form form,
                     EMITTERDOSSIERDOC::Frame::JsonLayout json = EMITTERDOSSIERDOC::Frame::JsonLayout::Indented);

// Text for a person, with nothing in it that a terminal would act on: a
// backslash becomes \\, a newline \n, a carriage return \r, a tab \t, every
// other control character (U+0000-U+001F, U+007F-U+009F) \xHH, its code in
// hex, and the line and paragraph separators and the bidirectional controls
// (U+2028, U+2029, U+202A-U+202E, U+2066-U+2069), which break or reorder a
// terminal's line, \uHHHH.
QString escaped(const QString& text);
// One line on standard error, escaped: "dossier: <text>".
void error(const QString& text);
// One line on standard output, escaped.
void out(const QString& text);
// The tool's own text, such as its help, as it stands.
void outText(const QString& text);

// Parses "--name value" and "--flag" options; the rest are positional.
struct Arguments {
    QStringList positional;
    QStringList flags;
    QHash<QString, QString> values;
    QString problem;  // an unknown option or a missing value
};
Arguments parseArguments(const QStringList& args, const QStringList& flags, const QStringList& valueOptions);

// The value options of every command that reads records: --max-size BYTES,
// and --from raw --class NAME for the raw form, which has no marker.
const QStringList& readOptions();
// --max-size BYTES: the largest file read and the most a compressed form may
// unpack to, for the whole run. False, with the error printed, on a bad value.
bool takeMaxSize(const Arguments& a);
// takeMaxSize and --from raw --class NAME into `options`. False, with the
// error printed, on a wrong call.
bool takeReadOptions(const Arguments& a, LoadOptions& options);

int runCheck(const QStringList& args);
int runConvert(const QStringList& args);
int runShow(const QStringList& args);
int runDiff(const QStringList& args);
int runInspect(const QStringList& args);
int runSchema(const QStringList& args);

}  // namespace DossierTool
