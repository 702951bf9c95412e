// Loading a file in any form, writing a record in any form, and the small
// helpers every subcommand uses.

#include "Tool.h"

#include <cstdio>

#include <unistd.h>

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <QtEndian>

namespace dossier_tool {

using namespace EMITTERDOSSIERDOC;

namespace {

constexpr qint64 ProgressThreshold = 50 * 1024 * 1024;
// What qCompress can reach at best, with room for a tiny input: a stated size
// beyond this is no compressed record.
constexpr qint64 MaxCompressionRatio = 1032;
constexpr qint64 CompressionSlack = 1024;

quint32 firstWord(const QByteArray& bytes) { return qFromBigEndian<quint32>(bytes.constData()); }

const ClassEntry* classOfBlock(const QByteArray& bytes)
{
    return bytes.size() >= 8 ? Frame::FindClass(qint64(firstWord(bytes))) : nullptr;
}

bool looksCompressed(const QByteArray& bytes)
{
    if (bytes.size() < 6)
        return false;
    // A zlib stream starts with a deflate header whose check bits make it a multiple of 31.
    const uchar cmf = uchar(bytes.at(4)), flg = uchar(bytes.at(5));
    const qint64 stated = firstWord(bytes);
    return (cmf & 0x0f) == 8 && (cmf * 256 + flg) % 31 == 0 &&
           stated <= (bytes.size() - 4) * MaxCompressionRatio + CompressionSlack;
}

// The reason a read failed, as the record logged it.
QString readError(const QString& path, const CollectingLogger& logger)
{
    return QStringLiteral("%1: %2").arg(
        path, logger.lastError().isEmpty() ? QStringLiteral("cannot read") : logger.lastError());
}

// The first start element of an XML text, or why there is none.
bool topElement(const QByteArray& bytes, QString& name, QString& problem)
{
    QXmlStreamReader reader(bytes);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement) {
            name = reader.name().toString();
            return true;
        }
    }
    problem = QStringLiteral("XML error at line %1, column %2: %3")
                  .arg(reader.lineNumber())
                  .arg(reader.columnNumber())
                  .arg(reader.hasError() ? reader.errorString() : QStringLiteral("no element"));
    return false;
}

bool startsLikeXml(const QByteArray& bytes)
{
    int i = bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (i < bytes.size() && (bytes.at(i) == ' ' || bytes.at(i) == '\t' || bytes.at(i) == '\r' || bytes.at(i) == '\n'))
        ++i;
    return i < bytes.size() && bytes.at(i) == '<';
}

std::unique_ptr<Record> create(const ClassEntry& entry, const LoadOptions& options,
                               const std::shared_ptr<CollectingLogger>& logger)
{
    std::unique_ptr<Record> record(entry.create());
    record->SetValidate(options.validate);
    record->SetLogger(logger);
    return record;
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
    }
    return QString();
}

bool parseForm(const QString& name, Form& form)
{
    for (Form f : {Form::Xml, Form::Tagged, Form::Compressed, Form::Raw}) {
        if (formName(f) == name) {
            form = f;
            return true;
        }
    }
    return false;
}

Loaded load(const QString& path, const LoadOptions& options)
{
    Loaded loaded;
    loaded.logger = std::make_shared<CollectingLogger>();
    loaded.logger->keep(options.keepMessages);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        loaded.error = QStringLiteral("%1: cannot open: %2").arg(path, file.errorString());
        return loaded;
    }
    if (file.size() > ProgressThreshold && isatty(STDERR_FILENO))
        std::fprintf(stderr, "dossier: reading %s (%lld MB)\n", qPrintable(path), file.size() / (1024 * 1024));
    QByteArray bytes = file.readAll();
    file.close();

    if (options.raw) {
        const ClassEntry* entry = Frame::FindClass(options.className);
        if (!entry) {
            loaded.error = QStringLiteral("unknown class '%1'").arg(options.className);
            return loaded;
        }
        loaded.form = Form::Raw;
        loaded.record = create(*entry, options, loaded.logger);
        QDataStream stream(bytes);
        try {
            loaded.record->SetVersionSpecificBinaryWithoutValidation(stream);
        } catch (const RKException& e) {
            loaded.error = QStringLiteral("%1: %2").arg(path, e.GetMessage());
            return loaded;
        }
        if (stream.status() != QDataStream::Ok)
            loaded.error = QStringLiteral("%1: the raw form of %2 ends before the record does").arg(path, options.className);
        else if (!stream.atEnd())
            loaded.error = QStringLiteral("%1: %2 bytes follow the raw form of %3")
                               .arg(path)
                               .arg(bytes.size() - stream.device()->pos())
                               .arg(options.className);
        return loaded;
    }

    if (startsLikeXml(bytes)) {
        QString name, problem;
        if (!topElement(bytes, name, problem)) {
            loaded.error = QStringLiteral("%1: %2").arg(path, problem);
            return loaded;
        }
        const ClassEntry* entry = Frame::FindClass(name);
        if (!entry) {
            loaded.error = QStringLiteral("%1: no schema class has the element '%2'").arg(path, name);
            return loaded;
        }
        loaded.form = Form::Xml;
        loaded.record = create(*entry, options, loaded.logger);
        if (!loaded.record->LoadXml(path))
            loaded.error = readError(path, *loaded.logger);
        return loaded;
    }

    const ClassEntry* entry = classOfBlock(bytes);
    loaded.form = Form::Tagged;
    if (!entry && looksCompressed(bytes)) {
        const QByteArray plain = qUncompress(bytes);
        entry = classOfBlock(plain);
        if (entry) {
            loaded.form = Form::Compressed;
            bytes = plain;
        }
    }
    if (!entry) {
        loaded.error = QStringLiteral("%1: neither XML nor a tagged or compressed record of a known class "
                                      "(a raw record needs --from raw --class NAME)")
                           .arg(path);
        return loaded;
    }
    loaded.record = create(*entry, options, loaded.logger);
    if (!loaded.record->SetBinaryRepresentation(bytes))
        loaded.error = readError(path, *loaded.logger);
    return loaded;
}

QByteArray formBytes(const Record& record, Form form)
{
    switch (form) {
    case Form::Xml: {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        // As SaveXml writes a file.
        QXmlStreamWriter writer(&buffer);
        writer.setCodec("UTF-8");
        writer.setAutoFormatting(true);
        writer.setAutoFormattingIndent(2);
        writer.writeStartDocument();
        record.GetXml(writer);
        writer.writeEndDocument();
        return bytes;
    }
    case Form::Tagged: return record.GetBinaryRepresentationAsQByteArray();
    case Form::Compressed: return record.GetCompressedBinaryRepresentationAsQByteArray(9);
    case Form::Raw: {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        record.GetVersionSpecificBinaryWithoutValidation(stream);
        return bytes;
    }
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

const Frame::ClassInfo& childClass(const Frame::ClassInfo& owner, const Frame::FieldInfo& field)
{
    if (field.kind == Frame::Kind::List)
        return Frame::FindClass(field.listOps().itemName())->info();
    // Found once per field: inspect asks for every child record of a stream.
    static QHash<const Frame::FieldInfo*, const Frame::ClassInfo*> known;
    const Frame::ClassInfo*& info = known[&field];
    if (!info) {
        const std::unique_ptr<Record> sample(Frame::FindClass(qint64(owner.id))->create());
        info = &Frame::ChildOf(*sample, field).GetClassInfo();
    }
    return *info;
}

}  // namespace dossier_tool
