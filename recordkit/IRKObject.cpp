#include <EmitterDossierDoc/recordkit/IRKObject.h>

#include <cmath>
#include <limits>

#include <QBuffer>
#include <QFile>
#include <QSaveFile>
#include <QtEndian>

#include "recordkit/XmlGuard_p.h"
#include "recordkit/XmlTextDevice_p.h"
#include <EmitterDossierDoc/recordkit/Input.h>

namespace RECORDKIT {

namespace {

qint32 firstWord(const QByteArray& head, QDataStream::ByteOrder order)
{
    return order == QDataStream::BigEndian ? qFromBigEndian<qint32>(head.constData())
                                           : qFromLittleEndian<qint32>(head.constData());
}

}  // namespace

void WriteXmlDocument(const IRKObject& object, QXmlStreamWriter& writer)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // Qt 6's writer writes UTF-8 always; Qt 5's follows the locale unless told.
    if (writer.device())
        writer.setCodec("UTF-8");
#endif
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    writer.writeStartDocument();
    object.GetXml(writer);
    writer.writeEndDocument();
}

IRKObject::IRKObject() = default;
IRKObject::IRKObject(ObjectTypes type) : m_objectType(type) {}
IRKObject::~IRKObject() = default;

bool IRKObject::IsValid(float value) const { return !std::isnan(value); }
bool IRKObject::IsValid(bool) const { return true; }
bool IRKObject::IsValid(unsigned int value) const { return value != std::numeric_limits<unsigned int>::max(); }
bool IRKObject::IsValid(qint64 value) const { return value != std::numeric_limits<qint64>::min(); }
bool IRKObject::IsValid(const QDateTime& value) const { return value.isValid(); }
bool IRKObject::IsValid(const QString& value) const { return !value.isNull(); }
bool IRKObject::IsValid(double value) const { return !std::isnan(value); }
bool IRKObject::IsValid(int value) const { return value != std::numeric_limits<int>::min(); }
void IRKObject::SetInvalid(float& value) const { value = std::numeric_limits<float>::quiet_NaN(); }
void IRKObject::SetInvalid(unsigned int& value) const { value = std::numeric_limits<unsigned int>::max(); }
void IRKObject::SetInvalid(qint64& value) const { value = std::numeric_limits<qint64>::min(); }
void IRKObject::SetInvalid(QString& value) const { value = QString(); }
void IRKObject::SetInvalid(double& value) const { value = std::numeric_limits<double>::quiet_NaN(); }
void IRKObject::SetInvalid(int& value) const { value = std::numeric_limits<int>::min(); }

// --- XML -------------------------------------------------------------------

bool IRKObject::SetXmlString(const QString& text, bool checkAfterRead)
{
    if (Utf8TextDevice::readsLikeText(text)) {
        Utf8TextDevice bytes(text);
        bytes.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
        return readXmlDevice(&bytes, checkAfterRead);
    }
    AttributeGuard guard;
    const qint64 passed = guard.scanText(reinterpret_cast<const char16_t*>(text.utf16()), text.size());
    // A document stopped by the guard is read as far as it goes, as a file is.
    QXmlStreamReader reader(guard.tripped() ? text.left(int(passed)) : text);
    return readXml(reader, checkAfterRead, guard);
}

bool IRKObject::SetXmlBytes(const QByteArray& bytes, bool checkAfterRead)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    return readXmlDevice(&buffer, checkAfterRead);
}

bool IRKObject::readXmlDevice(QIODevice* source, bool checkAfterRead)
{
    GuardedXmlDevice guarded(source);
    guarded.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    QXmlStreamReader reader(&guarded);
    return readXml(reader, checkAfterRead, guarded.guard());
}

bool IRKObject::LoadXml(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        logFailure(QStringLiteral("Cannot open '%1' for reading: %2").arg(fileName, file.errorString()));
        return false;
    }
    return LoadXml(&file);
}

bool IRKObject::LoadXml(QFile* file)
{
    if (!file) {
        logFailure(QStringLiteral("%1: no file to read XML from").arg(m_objectName));
        return false;
    }
    if (!file->isOpen() && !file->open(QIODevice::ReadOnly)) {
        logFailure(QStringLiteral("Cannot open '%1' for reading: %2").arg(file->fileName(), file->errorString()));
        return false;
    }
    return readXmlDevice(file, false);
}

bool IRKObject::readXml(QXmlStreamReader& reader, bool checkAfterRead, const AttributeGuard& guard)
{
    // The guard's reason, where it cut the document, wins over the reader's
    // "premature end" that the cut causes.
    auto failure = [&] { return xmlErrorText(reader, guard); };
    while (!reader.atEnd() && !reader.isStartElement())
        reader.readNext();
    if (!reader.isStartElement()) {
        logFailure(reader.hasError() ? failure()
                                     : QStringLiteral("%1: the XML text holds no element").arg(m_objectName));
        return false;
    }
    try {
        ProcessXml(reader);
    } catch (const RKException& e) {
        Trace(ERROR, e);
        return false;
    }
    // Read on to the end, so that a document broken behind the element is noticed.
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError()) {
        logFailure(failure());
        return false;
    }
    if (checkAfterRead)
        Check(true);
    return true;
}

QString IRKObject::GetXmlString() const
{
    QString text;
    QXmlStreamWriter writer(&text);
    WriteXmlDocument(*this, writer);
    return text;
}

bool IRKObject::SaveXml(const QString& fileName) const
{
    // Written to a temporary file first: a failed save leaves the old file as it was.
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        logFailure(QStringLiteral("Cannot open '%1' for writing: %2").arg(fileName, file.errorString()));
        return false;
    }
    QXmlStreamWriter writer(&file);
    try {
        WriteXmlDocument(*this, writer);
    } catch (const RKException& e) {
        file.cancelWriting();
        Trace(ERROR, e);
        return false;
    }
    if (writer.hasError() || !file.commit()) {
        logFailure(QStringLiteral("Cannot write '%1': %2").arg(fileName, file.errorString()));
        return false;
    }
    return true;
}

void IRKObject::ProcessXml(QXmlStreamReader& reader)
{
    // Most elements bear their object's name, which then serves without a copy.
    QString other;
    const QString& element = reader.name() == m_objectName ? m_objectName : (other = reader.name().toString());
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isEndElement() && reader.name() == element)
            return;
        if (reader.isStartElement())
            ProcessXmlStartElement(reader);
    }
}

void IRKObject::ProcessXmlStartElement(QXmlStreamReader& reader) { reader.skipCurrentElement(); }

QString IRKObject::GetTextValue(QXmlStreamReader& reader)
{
    return reader.readElementText(QXmlStreamReader::SkipChildElements);
}

// --- Tagged form -------------------------------------------------------------

void IRKObject::GetBinaryRepresentation(QDataStream& stream) const { GetBinary(stream, int(quint32(m_classId)), true); }

QByteArray IRKObject::GetBinaryRepresentationAsQByteArray() const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    stream.setVersion(StreamVersion);
    GetBinaryRepresentation(stream);
    return bytes;
}

void IRKObject::GetCompressedBinaryRepresentation(QDataStream& stream, int level) const
{
    const QByteArray bytes = GetCompressedBinaryRepresentationAsQByteArray(level);
    stream.writeRawData(bytes.constData(), bytes.size());
}

QByteArray IRKObject::GetCompressedBinaryRepresentationAsQByteArray(int level) const
{
    return qCompress(GetBinaryRepresentationAsQByteArray(), qBound(-1, level, 9));
}

bool IRKObject::SetBinaryRepresentation(QByteArray& bytes)
{
    const qint32 ownTag = qint32(quint32(m_classId));
    if (bytes.size() >= 4 && firstWord(bytes, QDataStream::BigEndian) == ownTag) {
        QDataStream stream(bytes);
        stream.setVersion(StreamVersion);
        return readTaggedBlock(stream);
    }
    return readCompressed(bytes);
}

bool IRKObject::SetBinaryRepresentation(QDataStream& stream)
{
    QIODevice* device = stream.device();
    if (!device) {
        logFailure(QStringLiteral("%1: the stream has no device to read from").arg(m_objectName));
        return false;
    }
    const QByteArray head = device->peek(4);
    if (head.size() == 4 && firstWord(head, stream.byteOrder()) == qint32(quint32(m_classId)))
        return readTaggedBlock(stream);
    return readCompressed(device->readAll());
}

bool IRKObject::LoadBinary(QFile* file)
{
    if (!file) {
        logFailure(QStringLiteral("%1: no file to read the binary form from").arg(m_objectName));
        return false;
    }
    if (!file->isOpen() && !file->open(QIODevice::ReadOnly)) {
        logFailure(QStringLiteral("Cannot open '%1' for reading: %2").arg(file->fileName(), file->errorString()));
        return false;
    }
    QByteArray bytes = file->readAll();
    return SetBinaryRepresentation(bytes);
}

bool IRKObject::readTaggedBlock(QDataStream& stream)
{
    try {
        qint32 tag = 0;
        qint32 length = 0;
        stream >> tag >> length;
        if (stream.status() != QDataStream::Ok)
            BinaryParsingException(QStringLiteral("%1: the binary form ends inside its block header").arg(m_objectName))
                .Raise();
        if (tag != qint32(quint32(m_classId)))
            BinaryParsingException(QStringLiteral("%1: the binary form holds class id %2, expected %3")
                                       .arg(m_objectName)
                                       .arg(quint32(tag))
                                       .arg(m_classId))
                .Raise();
        const QIODevice* device = stream.device();
        if (length < 0 || (!device->isSequential() && length > device->bytesAvailable()))
            BinaryParsingException(QStringLiteral("%1: the block length %2 does not fit the %3 bytes that follow")
                                       .arg(m_objectName)
                                       .arg(length)
                                       .arg(device->bytesAvailable()))
                .Raise();
        SetBinary(stream, length);
    } catch (const RKException& e) {
        Trace(ERROR, e);
        return false;
    }
    return true;
}

bool IRKObject::readCompressed(const QByteArray& compressed)
{
    if (!LooksCompressed(compressed)) {
        const QString found = compressed.size() >= 4
                                  ? QString::number(quint32(firstWord(compressed, QDataStream::BigEndian)))
                                  : QStringLiteral("nothing");
        logFailure(QStringLiteral("%1: the binary form is neither a block of class id %2 nor its compressed form "
                                  "(found %3)")
                       .arg(m_objectName)
                       .arg(m_classId)
                       .arg(found));
        return false;
    }
    QByteArray plain;
    QString problem;
    if (!Uncompress(compressed, plain, problem)) {
        logFailure(QStringLiteral("%1: %2").arg(m_objectName, problem));
        return false;
    }
    QDataStream stream(plain);
    stream.setVersion(StreamVersion);
    return readTaggedBlock(stream);
}

int IRKObject::skipCurrentElement(QDataStream& stream, int length, int tag) const
{
    Q_UNUSED(tag);
    if (length <= 0)
        return 0;
    return stream.skipRawData(length);
}

// --- Object state -------------------------------------------------------------

bool IRKObject::MergeRKObject(const IRKObject& other)
{
    // The base knows no properties; records that do override this.
    Q_UNUSED(other);
    return false;
}

ObjectTypes IRKObject::GetObjectType() const { return m_objectType; }
const QString& IRKObject::GetObjectName() const { return m_objectName; }
void IRKObject::SetObjectName(const QString& name) { m_objectName = name; }

void IRKObject::SetValidate(bool validate) const { m_validate = validate; }
bool IRKObject::GetValidate() const { return m_validate; }
void IRKObject::SetLogger(std::shared_ptr<Logger> logger) const { m_logger = std::move(logger); }
void IRKObject::ResetLogger() const { m_logger.reset(); }
std::shared_ptr<Logger> IRKObject::GetLogger() const { return m_logger; }

const QString& IRKObject::GetVersion() const
{
    static const QString none;
    return none;
}

// --- Reporting ------------------------------------------------------------------

void IRKObject::Trace(LogLevel level, const RKException& exception) const
{
    if (m_logger)
        m_logger->Log(level, exception.GetMessage());
}

void IRKObject::TraceOrThrow(LogLevel level, RKException& exception, bool raise, bool trace) const
{
    if (raise)
        exception.Raise();
    if (trace)
        Trace(level, exception);
}

void IRKObject::logFailure(const QString& message) const { Trace(ERROR, RKException(message)); }

}  // namespace RECORDKIT
