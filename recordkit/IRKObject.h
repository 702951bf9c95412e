#pragma once

#include <memory>

#include <QByteArray>
#include <QDataStream>
#include <QDateTime>
#include <QString>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/recordkit/LogLevel.h>
#include <EmitterDossierDoc/recordkit/Logger.h>
#include <EmitterDossierDoc/recordkit/ObjectTypes.h>
#include <EmitterDossierDoc/recordkit/RKException.h>
#include <EmitterDossierDoc/recordkit/StreamVersion.h>

class QFile;
class QIODevice;

namespace RECORDKIT {

class AttributeGuard;

// The abstract base of every record. It owns the outer work of every form
// (files, streams, framing, compression, the XML prologue) and the reporting of
// faults; each record gives the content between its own start and end.
//
// Virtual operations are declared in their fixed slot order.
class EDD_EXPORT IRKObject {
public:
    IRKObject();
    explicit IRKObject(ObjectTypes type);
    virtual ~IRKObject();

    virtual bool HasData() const = 0;
    virtual void Reset() = 0;
    virtual void Check(bool traceOnly) const = 0;
    virtual void Check() const = 0;

    // Validity of plain values as the base sees it: floating values are
    // invalid when NaN, integers when they hold their type's smallest (signed)
    // or largest (unsigned) value, texts when null, dates when not valid; a bool
    // is always valid. SetInvalid gives a value that IsValid refuses.
    virtual bool IsValid(float value) const;
    virtual bool IsValid(bool value) const;
    virtual bool IsValid(unsigned int value) const;
    virtual bool IsValid(qint64 value) const;
    virtual bool IsValid(const QDateTime& value) const;
    virtual bool IsValid(const QString& value) const;
    virtual bool IsValid(double value) const;
    virtual bool IsValid(int value) const;
    virtual void SetInvalid(float& value) const;
    virtual void SetInvalid(unsigned int& value) const;
    virtual void SetInvalid(qint64& value) const;
    virtual void SetInvalid(QString& value) const;
    virtual void SetInvalid(double& value) const;
    virtual void SetInvalid(int& value) const;

    virtual void GetXml(QXmlStreamWriter& writer) const = 0;
    virtual bool GetBinary(QDataStream& stream, int tag, bool withTag) const = 0;
    virtual void SetBinary(QDataStream& stream, int length) = 0;

    // Reads this object from XML text; with checkAfterRead a successful read is
    // followed by Check(true), so that every fault reaches the logger.
    virtual bool SetXmlString(const QString& text, bool checkAfterRead);
    // Read the tagged form, plain or compressed, written by the operations below.
    virtual bool SetBinaryRepresentation(QByteArray& bytes);
    virtual bool SetBinaryRepresentation(QDataStream& stream);
    // Lays every property set in other over this object. False, and nothing
    // changed, when other is of another class.
    virtual bool MergeRKObject(const IRKObject& other);
    virtual ObjectTypes GetObjectType() const;
    virtual const QString& GetObjectName() const;
    // The read loop: calls ProcessXmlStartElement for each start element inside
    // this object's element and returns at its end element.
    virtual void ProcessXml(QXmlStreamReader& reader);
    virtual QString GetXmlString() const;
    // The object block with the class id as its tag.
    virtual void GetBinaryRepresentation(QDataStream& stream) const;
    virtual QByteArray GetBinaryRepresentationAsQByteArray() const;
    // The tagged form through qCompress with the given level (-1 to 9).
    virtual void GetCompressedBinaryRepresentation(QDataStream& stream, int level) const;
    virtual QByteArray GetCompressedBinaryRepresentationAsQByteArray(int level) const;
    virtual bool LoadXml(const QString& fileName);
    virtual bool LoadXml(QFile* file);
    virtual bool LoadBinary(QFile* file);
    virtual bool SaveXml(const QString& fileName) const;
    virtual void SetValidate(bool validate) const;
    virtual bool GetValidate() const;
    virtual void SetLogger(std::shared_ptr<Logger> logger) const;
    virtual void ResetLogger() const;
    virtual const QString& GetVersion() const;
    virtual void SetObjectType(ObjectTypes type) = 0;

    std::shared_ptr<Logger> GetLogger() const;
    // Reads this object from the bytes of an XML document, in the encoding that
    // the document gives (UTF-8 when it gives none); the twin of SetXmlString
    // for a document that has not been decoded, such as one read from a pipe.
    bool SetXmlBytes(const QByteArray& bytes, bool checkAfterRead = false);
    // Moves the stream past the payload of a tagged record of `length` bytes.
    int skipCurrentElement(QDataStream& stream, int length, int tag) const;

protected:
    virtual void SetObjectName(const QString& name);
    virtual void ProcessXmlStartElement(QXmlStreamReader& reader);

    // The text of the element the reader stands on; the reader ends on its end element.
    QString GetTextValue(QXmlStreamReader& reader);
    // Writes the message of `exception` to the logger at `level`, if there is one.
    void Trace(LogLevel level, const RKException& exception) const;
    // With `raise` the exception leaves the call as its own class and nothing is
    // logged; without, its message is written to the logger at `level`.
    void TraceOrThrow(LogLevel level, RKException& exception, bool raise, bool trace) const;
    // The logger, without the copy that GetLogger makes.
    const std::shared_ptr<Logger>& logger() const { return m_logger; }

    qint64 m_classId = 0;

private:
    bool readXmlDevice(QIODevice* source, bool checkAfterRead);
    // `guard` tells whether the input was cut short for too many attributes.
    bool readXml(QXmlStreamReader& reader, bool checkAfterRead, const AttributeGuard& guard);
    bool readTaggedBlock(QDataStream& stream);
    bool readCompressed(const QByteArray& compressed);
    void logFailure(const QString& message) const;

    QString m_objectName;
    ObjectTypes m_objectType = Undefined;
    mutable bool m_validate = false;
    mutable std::shared_ptr<Logger> m_logger;
};

// Writes `object` to `writer` as a whole XML document: the declaration, the
// object's element indented by two spaces a level, and the end of the
// document; in UTF-8 when the writer writes to a device. SaveXml and
// GetXmlString write through it. Throws what GetXml throws.
EDD_EXPORT void WriteXmlDocument(const IRKObject& object, QXmlStreamWriter& writer);

}  // namespace RECORDKIT
