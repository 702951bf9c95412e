// Loading a file in any form, writing a record in any form, and the small
// helpers every subcommand uses.

#include "Tool.h"

#include <cstdio>
#include <limits>

#include <unistd.h>

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QXmlStreamWriter>
#include <QtEndian>

namespace DossierTool {

using namespace EMITTERDOSSIERDOC;

namespace {

constexpr qint64 ProgressThreshold = 50 * 1024 * 1024;
constexpr qint64 ReadChunk = 1024 * 1024;
// About the most one QByteArray holds, whatever --max-size allows.
constexpr qint64 MaxHeldBytes = std::numeric_limits<int>::max() - 64;

const ClassEntry* classOfBlock(const QByteArray& bytes)
{
    return bytes.size() >= 4 ? Frame::FindClass(qint64(qFromBigEndian<quint32>(bytes.constData()))) : nullptr;
}

std::unique_ptr<Record> create(const ClassEntry& entry, const LoadOptions& options,
                               const std::shared_ptr<CollectingLogger>& logger)
{
    std::unique_ptr<Record> record(entry.create());
    record->SetValidate(options.validate);
    record->SetLogger(logger);
    return record;
}

// The reason a read failed, as the record logged it.
QString readError(const QString& path, const CollectingLogger& logger)
{
    return QStringLiteral("%1: %2").arg(path, logger.lastError().isEmpty() ? QStringLiteral("cannot read")
                                                                           : logger.lastError());
}

// What follows a record that a stream read, as the same error for every form.
QString trailingBytes(const QString& path, const QDataStream& stream, const QString& what)
{
    const QIODevice* device = stream.device();
    return QStringLiteral("%1: %2 bytes follow %3").arg(path).arg(device->size() - device->pos()).arg(what);
}

void loadRaw(const QString& path, const QByteArray& bytes, Loaded& loaded, const LoadOptions& options)
{
    const QString className = Frame::ClassName(options.rawClass->info());
    loaded.form = Form::Raw;
    loaded.record = create(*options.rawClass, options, loaded.logger);
    QDataStream stream(bytes);
    stream.setVersion(RECORDKIT::StreamVersion);
    try {
        loaded.record->SetVersionSpecificBinaryWithoutValidation(stream);
    } catch (const RKException& e) {
        loaded.error = QStringLiteral("%1: %2").arg(path, e.GetMessage());
        return;
    }
    if (stream.status() != QDataStream::Ok)
        loaded.error = QStringLiteral("%1: the raw form of %2 ends before the record does").arg(path, className);
    else if (!stream.atEnd())
        loaded.error = trailingBytes(path, stream, QStringLiteral("the raw form of %1").arg(className));
}

void loadXml(const QString& path, const QByteArray& bytes, Loaded& loaded, const LoadOptions& options)
{
    QString problem;
    // Through the library's guard: a start tag with thousands of attributes
    // costs Qt's reader their count squared.
    const QString name = RECORDKIT::XmlRootElement(bytes, problem);
    if (name.isEmpty()) {
        loaded.error = QStringLiteral("%1: %2").arg(path, problem);
        return;
    }
    const ClassEntry* entry = Frame::FindClass(name);
    if (!entry) {
        loaded.error = QStringLiteral("%1: no schema class has the element '%2'").arg(path, name);
        return;
    }
    loaded.form = Form::Xml;
    loaded.record = create(*entry, options, loaded.logger);
    if (!loaded.record->SetXmlBytes(bytes))
        loaded.error = readError(path, *loaded.logger);
}

void loadJson(const QString& path, const QByteArray& bytes, Loaded& loaded, const LoadOptions& options)
{
    QString problem;
    const QString name = Frame::JsonRootName(bytes, &problem);
    if (!problem.isEmpty()) {
        loaded.error = QStringLiteral("%1: %2").arg(path, problem);
        return;
    }
    const ClassEntry* entry = Frame::FindClass(name);
    if (!entry) {
        loaded.error = QStringLiteral("%1: no schema class is named '%2'").arg(path, name);
        return;
    }
    loaded.form = Form::Json;
    loaded.record = create(*entry, options, loaded.logger);
    if (!Frame::FromJson(*loaded.record, bytes))
        loaded.error = readError(path, *loaded.logger);
}

void loadTagged(const QString& path, QByteArray& bytes, Loaded& loaded, const LoadOptions& options)
{
    QString problem;
    const ClassEntry* entry = findTagged(bytes, loaded.form, problem);
    if (!entry) {
        loaded.error = !problem.isEmpty()
                           ? QStringLiteral("%1: %2").arg(path, problem)
                           : QStringLiteral("%1: neither XML nor a tagged or compressed record of a known class "
                                            "(a raw record needs --from raw --class NAME)")
                                 .arg(path);
        return;
    }
    loaded.record = create(*entry, options, loaded.logger);
    QDataStream stream(bytes);
    stream.setVersion(RECORDKIT::StreamVersion);
    if (!loaded.record->SetBinaryRepresentation(stream))
        loaded.error = readError(path, *loaded.logger);
    else if (!stream.atEnd())
        loaded.error = bytesAfterTaggedForm(path, bytes.size() - stream.device()->pos(), *entry, loaded.form);
}

}  // namespace

void CollectingLogger::Log(RECORDKIT::LogLevel level, const QString& message)
{
    ++m_count;
    if (level == RECORDKIT::ERROR)
        m_lastError = message;
    if (m_keep == KeepAll || m_kept.size() < m_keep)
        m_kept.append(message);
}

void CollectingLogger::clear()
{
    m_kept.clear();
    m_count = 0;
}

QString formName(Form form)
{
    switch (form) {
    case Form::Xml: return QStringLiteral("xml");
    case Form::Tagged: return QStringLiteral("tagged");
    case Form::Compressed: return QStringLiteral("compressed");
    case Form::Raw: return QStringLiteral("raw");
    case Form::Json: return QStringLiteral("json");
    }
    return QString();
}

bool parseForm(const QString& name, Form& form)
{
    for (Form f : {Form::Xml, Form::Tagged, Form::Compressed, Form::Raw, Form::Json}) {
        if (formName(f) == name) {
            form = f;
            return true;
        }
    }
    return false;
}

bool readInput(const QString& path, QByteArray& bytes, QString& problem)
{
    QFile file;
    bool opened = false;
    if (path == StandardStream) {
        opened = file.open(STDIN_FILENO, QIODevice::ReadOnly);
    } else {
        file.setFileName(path);
        opened = file.open(QIODevice::ReadOnly);
    }
    if (!opened) {
        problem = QStringLiteral("%1: cannot open: %2").arg(path, file.errorString());
        return false;
    }
    const qint64 limit = qMin(RECORDKIT::MaxUnpackedSize(), MaxHeldBytes);
    // `size` is known for a file, not for a pipe.
    auto tooLarge = [&](const QString& size) {
        problem = QStringLiteral("%1: %2more than the limit of %3 bytes (--max-size BYTES sets it)")
                      .arg(path, size)
                      .arg(limit);
        return false;
    };
    // A pipe or a FIFO has no size: it is read in pieces up to the limit.
    const qint64 size = file.isSequential() ? 0 : file.size();
    if (size > limit)
        return tooLarge(QStringLiteral("%1 bytes, ").arg(size));
    if (size > ProgressThreshold && isatty(STDERR_FILENO))
        error(QStringLiteral("reading %1 (%2 MB)").arg(path).arg(size / (1024 * 1024)));
    bytes.clear();
    bytes.reserve(int(size));
    for (;;) {
        const QByteArray piece = file.read(qMin(ReadChunk, limit - bytes.size() + 1));
        if (piece.isEmpty())
            break;
        if (bytes.size() + piece.size() > limit)
            return tooLarge(QString());
        bytes += piece;
    }
    if (file.error() != QFileDevice::NoError) {
        problem = QStringLiteral("%1: cannot read: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

bool readsStandardInputOnce(const QStringList& paths)
{
    if (paths.count(StandardStream) <= 1)
        return true;
    error(QStringLiteral("standard input can be read only once: give - for one file at most"));
    return false;
}

QString bytesAfterTaggedForm(const QString& path, qint64 count, const ClassEntry& entry, Form form)
{
    return QStringLiteral("%1: %2 bytes follow the tagged form of %3%4")
        .arg(path)
        .arg(count)
        .arg(Frame::ClassName(entry.info()),
             form == Form::Compressed ? QStringLiteral(" in the compressed form") : QString());
}

const ClassEntry* findTagged(QByteArray& bytes, Form& form, QString& problem)
{
    form = Form::Tagged;
    if (const ClassEntry* entry = classOfBlock(bytes))
        return entry;
    if (!RECORDKIT::LooksCompressed(bytes))
        return nullptr;
    QByteArray plain;
    if (!RECORDKIT::Uncompress(bytes, plain, problem))
        return nullptr;
    const ClassEntry* entry = classOfBlock(plain);
    if (!entry) {
        problem = QStringLiteral("the compressed form holds no record of a known class");
        return nullptr;
    }
    form = Form::Compressed;
    bytes = plain;
    return entry;
}

Loaded load(const QString& path, const LoadOptions& options)
{
    Loaded loaded;
    loaded.logger = std::make_shared<CollectingLogger>();
    loaded.logger->keep(options.keepMessages);
    QByteArray bytes;
    if (!readInput(path, bytes, loaded.error))
        return loaded;
    if (options.rawClass)
        loadRaw(path, bytes, loaded, options);
    else if (RECORDKIT::LooksLikeXml(bytes))
        loadXml(path, bytes, loaded, options);
    else if (Frame::LooksLikeJson(bytes))
        loadJson(path, bytes, loaded, options);
    else
        loadTagged(path, bytes, loaded, options);
    return loaded;
}

QByteArray formBytes(const Record& record, Form form, Frame::JsonLayout json)
{
    switch (form) {
    case Form::Xml: {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QXmlStreamWriter writer(&buffer);
        RECORDKIT::WriteXmlDocument(record, writer);
        return bytes;
    }
    case Form::Tagged: return record.GetBinaryRepresentationAsQByteArray();
    case Form::Compressed: return record.GetCompressedBinaryRepresentationAsQByteArray(9);
    case Form::Raw: return Frame::RawFormBytes(record);
    case Form::Json: return Frame::ToJson(record, json);
    }
    return QByteArray();
}

QString escaped(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        const ushort code = c.unicode();
        switch (code) {
        case '\\': result += QLatin1String("\\\\"); break;
        case '\n': result += QLatin1String("\\n"); break;
        case '\r': result += QLatin1String("\\r"); break;
        case '\t': result += QLatin1String("\\t"); break;
        default:
            if (code < 0x20 || (code >= 0x7f && code <= 0x9f))
                result += QStringLiteral("\\x%1").arg(code, 2, 16, QLatin1Char('0'));
            else if (code == 0x2028 || code == 0x2029 || (code >= 0x202a && code <= 0x202e) ||
                     (code >= 0x2066 && code <= 0x2069))
                result += QStringLiteral("\\u%1").arg(code, 4, 16, QLatin1Char('0'));
            else
                result += c;
        }
    }
    return result;
}

void error(const QString& text)
{
    const QByteArray line = "dossier: " + escaped(text).toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
}

void out(const QString& text) { outText(escaped(text)); }

void outText(const QString& text)
{
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
}

Arguments parseArguments(const QStringList& args, const QStringList& flags, const QStringList& valueOptions)
{
    Arguments parsed;
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        if (flags.contains(arg)) {
            parsed.flags.append(arg);
        } else if (valueOptions.contains(arg)) {
            if (i + 1 >= args.size()) {
                parsed.problem = QStringLiteral("%1 needs a value").arg(arg);
                return parsed;
            }
            parsed.values.insert(arg, args.at(++i));
        } else if (arg.startsWith(QLatin1Char('-')) && arg != QLatin1String("-")) {
            parsed.problem = QStringLiteral("unknown option %1").arg(arg);
            return parsed;
        } else {
            parsed.positional.append(arg);
        }
    }
    return parsed;
}

const QStringList& readOptions()
{
    static const QStringList options = {QStringLiteral("--max-size"), QStringLiteral("--from"),
                                        QStringLiteral("--class")};
    return options;
}

bool takeMaxSize(const Arguments& a)
{
    if (!a.values.contains(QStringLiteral("--max-size")))
        return true;
    const QString value = a.values.value(QStringLiteral("--max-size"));
    bool ok = false;
    const qint64 bytes = value.toLongLong(&ok);
    if (!ok || bytes <= 0) {
        error(QStringLiteral("--max-size takes a number of bytes above 0, not '%1'").arg(value));
        return false;
    }
    RECORDKIT::SetMaxUnpackedSize(bytes);
    return true;
}

bool takeReadOptions(const Arguments& a, LoadOptions& options)
{
    if (!takeMaxSize(a))
        return false;
    const bool from = a.values.contains(QStringLiteral("--from"));
    const bool named = a.values.contains(QStringLiteral("--class"));
    if (!from && !named)
        return true;
    if (!from) {
        error(QStringLiteral("--class names the class of a raw record and needs --from raw"));
        return false;
    }
    if (a.values.value(QStringLiteral("--from")) != QLatin1String("raw")) {
        error(QStringLiteral("--from takes only raw: the other forms are recognised by themselves"));
        return false;
    }
    if (!named) {
        error(QStringLiteral("--from raw needs --class NAME"));
        return false;
    }
    options.rawClass = Frame::FindClass(a.values.value(QStringLiteral("--class")));
    if (!options.rawClass) {
        error(QStringLiteral("unknown class '%1'").arg(a.values.value(QStringLiteral("--class"))));
        return false;
    }
    return true;
}

}  // namespace DossierTool
