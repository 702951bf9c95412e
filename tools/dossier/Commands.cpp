// dossier check, convert and schema.

#include "Tool.h"

#include <cstdio>

#include <unistd.h>

#include <QFile>
#include <QSaveFile>

#include <EmitterDossierDoc/frame/XmlSchema.h>

namespace DossierTool {

using namespace EMITTERDOSSIERDOC;

// --- check ---------------------------------------------------------------------------

namespace {

constexpr int DefaultMaxErrors = 100;

// Prints the faults of one file, as many as it may, and counts the rest.
// The logger keeps no more messages than are left to print.
class FaultPrinter {
public:
    FaultPrinter(const QString& path, int maxErrors) : m_path(path), m_max(maxErrors) {}

    // What the logger may keep of the next messages.
    int room() const { return m_max == 0 ? CollectingLogger::KeepAll : int(qMax<qint64>(0, m_max - m_shown)); }

    // Prints what the logger kept, under `where` if not empty, and starts it afresh.
    void take(CollectingLogger& logger, const QString& where)
    {
        const QString prefix = where.isEmpty() ? m_path : QStringLiteral("%1: %2").arg(m_path, where);
        for (const QString& message : logger.kept())
            out(QStringLiteral("%1: %2").arg(prefix, message));
        m_shown += logger.kept().size();
        m_hidden += logger.count() - logger.kept().size();
        logger.clear();
        logger.keep(room());
    }

    bool any() const { return m_shown + m_hidden > 0; }

    void finish() const
    {
        if (m_hidden > 0)
            out(QStringLiteral("%1: %2 more %3 not shown (--max-errors 0 shows all)")
                    .arg(m_path)
                    .arg(m_hidden)
                    .arg(m_hidden == 1 ? QStringLiteral("fault") : QStringLiteral("faults")));
    }

private:
    QString m_path;
    qint64 m_max;
    qint64 m_shown = 0;
    qint64 m_hidden = 0;
};

}  // namespace

int runCheck(const QStringList& args)
{
    const Arguments a = parseArguments(args, {QStringLiteral("--strict")},
                                       readOptions() + QStringList{QStringLiteral("--max-errors")});
    if (!a.problem.isEmpty() || a.positional.isEmpty()) {
        error(a.problem.isEmpty() ? QStringLiteral("check needs at least one file") : a.problem);
        return Unreadable;
    }
    LoadOptions options;
    if (!takeReadOptions(a, options) || !readsStandardInputOnce(a.positional))
        return Unreadable;
    options.validate = a.flags.contains(QStringLiteral("--strict"));
    int maxErrors = DefaultMaxErrors;
    if (a.values.contains(QStringLiteral("--max-errors"))) {
        const QString value = a.values.value(QStringLiteral("--max-errors"));
        bool ok = false;
        maxErrors = value.toInt(&ok);
        if (!ok || maxErrors < 0) {
            error(QStringLiteral("--max-errors takes a count, 0 for all, not '%1'").arg(value));
            return Unreadable;
        }
    }
    int result = Success;
    for (const QString& path : a.positional) {
        FaultPrinter faults(path, maxErrors);
        options.keepMessages = faults.room();
        Loaded loaded = load(path, options);
        if (!loaded.error.isEmpty()) {
            error(loaded.error);
            result = Unreadable;
            continue;
        }
        // What reading reported comes first, with no object to name.
        faults.take(*loaded.logger, QString());
        // Then each object's own faults, named by where it stands.
        const Record& root = *loaded.record;
        Frame::ForEachChecked(root, [&](const QString& where, const Record& record) {
            Frame::CheckOwnFields(record, true);
            faults.take(*loaded.logger, where.isEmpty() ? Frame::ClassName(root.GetClassInfo()) : where);
        });
        faults.finish();
        if (faults.any() && result == Success)
            result = Differs;
    }
    return result;
}

// --- convert ---------------------------------------------------------------------------

int runConvert(const QStringList& args)
{
    const Arguments a = parseArguments(args, {QStringLiteral("--compact")},
                                       readOptions() + QStringList{QStringLiteral("--to"), QStringLiteral("-o")});
    if (!a.problem.isEmpty() || a.positional.size() != 1 || !a.values.contains(QStringLiteral("--to"))) {
        error(a.problem.isEmpty() ? QStringLiteral("convert needs one file and --to xml|tagged|compressed|raw|json")
                                  : a.problem);
        return Unreadable;
    }
    Form to;
    if (!parseForm(a.values.value(QStringLiteral("--to")), to)) {
        error(QStringLiteral("unknown form '%1' (xml, tagged, compressed, raw, json)")
                  .arg(a.values.value(QStringLiteral("--to"))));
        return Unreadable;
    }
    const bool compact = a.flags.contains(QStringLiteral("--compact"));
    if (compact && to != Form::Json) {
        error(QStringLiteral("--compact is for --to json"));
        return Unreadable;
    }
    LoadOptions options;
    if (!takeReadOptions(a, options))
        return Unreadable;
    const QString target = a.values.value(QStringLiteral("-o"));
    const bool toStandardOutput = target.isEmpty() || target == StandardStream;
    if (toStandardOutput && to != Form::Xml && to != Form::Json && isatty(STDOUT_FILENO)) {
        error(QStringLiteral("will not write the %1 form to a terminal; use -o FILE or a pipe").arg(formName(to)));
        return Unreadable;
    }
    Loaded loaded = load(a.positional.first(), options);
    if (!loaded.error.isEmpty()) {
        error(loaded.error);
        return Unreadable;
    }
    QByteArray bytes;
    try {
        bytes = formBytes(*loaded.record, to, compact ? Frame::JsonLayout::Compact : Frame::JsonLayout::Indented);
    } catch (const RKException& e) {
        error(e.GetMessage());
        return Unreadable;
    }
    if (toStandardOutput) {
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        return std::fflush(stdout) == 0 ? Success : Unreadable;
    }
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        error(QStringLiteral("%1: cannot write: %2").arg(target, file.errorString()));
        return Unreadable;
    }
    return Success;
}

// --- schema ------------------------------------------------------------------------------

namespace {

QString xmlShape(Frame::XmlForm form)
{
    switch (form) {
    case Frame::XmlForm::Attribute: return QStringLiteral("attribute");
    case Frame::XmlForm::Element: return QStringLiteral("element");
    case Frame::XmlForm::Content: return QStringLiteral("content");
    case Frame::XmlForm::Child: return QStringLiteral("child");
    case Frame::XmlForm::List: return QStringLiteral("list");
    }
    return QString();
}

QString typeName(const Frame::FieldInfo& f)
{
    switch (Frame::FieldKind(f)) {
    case Frame::Kind::Double: return QStringLiteral("double");
    case Frame::Kind::UInt64: return QStringLiteral("uint64");
    case Frame::Kind::Bool: return QStringLiteral("bool");
    case Frame::Kind::Text: return QStringLiteral("text");
    case Frame::Kind::DateTime: return QStringLiteral("datetime");
    case Frame::Kind::Enum: return QStringLiteral("enum(%1)").arg(Frame::EnumNames(f).join(QLatin1Char('|')));
    case Frame::Kind::EnumList: return QStringLiteral("enum list(%1)").arg(Frame::EnumNames(f).join(QLatin1Char('|')));
    case Frame::Kind::Child:
    case Frame::Kind::List: return Frame::ClassName(*Frame::ItemClass(f));
    }
    return QString();
}

}  // namespace

int runSchema(const QStringList& args)
{
    const QString xsd = QStringLiteral("--xsd");
    const Arguments a = parseArguments(args, {xsd}, {});
    if (!a.problem.isEmpty() || a.positional.size() > 1) {
        error(a.problem.isEmpty() ? QStringLiteral("schema takes at most one class name") : a.problem);
        return Unreadable;
    }
    if (a.flags.contains(xsd)) {
        // One schema holds every class, each as a global element.
        if (!a.positional.isEmpty()) {
            error(QStringLiteral("schema --xsd takes no class name: the schema holds every class"));
            return Unreadable;
        }
        const QByteArray bytes = Frame::XmlSchema();
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        return std::fflush(stdout) == 0 ? Success : Unreadable;
    }
    if (a.positional.isEmpty()) {
        for (const ClassEntry& entry : Frame::AllClasses())
            out(QStringLiteral("%1 0x%2 %3")
                    .arg(Frame::ClassName(entry.info()), -24)
                    .arg(quint32(Frame::ClassId(entry.info())), 8, 16, QLatin1Char('0'))
                    .arg(Frame::ClassId(entry.info())));
        return Success;
    }
    const ClassEntry* entry = Frame::FindClass(a.positional.first());
    if (!entry) {
        error(QStringLiteral("unknown class '%1'").arg(a.positional.first()));
        return Unreadable;
    }
    const Frame::ClassInfo& info = entry->info();
    out(QStringLiteral("%1 0x%2 (%3), element \"%4\"")
            .arg(Frame::ClassName(info))
            .arg(quint32(Frame::ClassId(info)), 8, 16, QLatin1Char('0'))
            .arg(Frame::ClassId(info))
            .arg(Frame::ClassName(info)));
    if (Frame::ClassVersionTag(info) != 0)
        out(QStringLiteral("version \"%1\", tag 0x%2, written first")
                .arg(Frame::ClassSchemaVersion(info))
                .arg(Frame::ClassVersionTag(info), 8, 16, QLatin1Char('0')));
    out(QStringLiteral("bit  %1 %2 %3 %4 tag")
            .arg(QStringLiteral("field"), -24)
            .arg(QStringLiteral("xml"), -10)
            .arg(QStringLiteral("type"), -24)
            .arg(QStringLiteral("presence"), -10));
    // Rows in the order of writing, as the XML and tagged forms have them.
    for (int i = 0; i < Frame::FieldCount(info); ++i) {
        const Frame::FieldInfo& f = Frame::FieldAt(info, i);
        out(QStringLiteral("%1 %2 %3 %4 %5 0x%6")
                .arg(Frame::FieldBit(f), -4)
                .arg(Frame::FieldName(f), -24)
                .arg(xmlShape(Frame::FieldXmlForm(f)), -10)
                .arg(typeName(f), -24)
                .arg(Frame::IsMandatory(f) ? QStringLiteral("mandatory") : QStringLiteral("optional"), -10)
                .arg(Frame::FieldTag(f), 8, 16, QLatin1Char('0')));
    }
    return Success;
}

}  // namespace DossierTool
