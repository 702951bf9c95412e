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

/// The base layer: the abstract base of every record, the logger, the
/// severities and the limits on input. It knows no schema class.
namespace RECORDKIT {

class AttributeGuard;

/// The abstract base of every record.
///
/// It owns the outer work of every form (files, streams, framing,
/// compression, the XML prologue) and the reporting of faults; each record
/// gives the content between its own start and end. It holds the object name,
/// the validate flag, the logger and the class id.
///
/// Virtual operations are declared in their fixed slot order.
class EDD_EXPORT IRKObject {
public:
    /// An object without a name; a record's constructor names it.
    IRKObject();
    /// An object of the given type, as a copy constructor passes it on.
    explicit IRKObject(ObjectTypes type);
    /// Destroys the base part, after the record's own.
    virtual ~IRKObject();

    /// True if the object holds every mandatory property.
    virtual bool HasData() const = 0;
    /// Clears every property; name, validate flag and logger stay.
    virtual void Reset() = 0;
    /// Tests the record and its children: each fault raises, or with
    /// `traceOnly` is logged as an error and the test goes on.
    virtual void Check(bool traceOnly) const = 0;
    /// Check(false): raises at the first fault.
    virtual void Check() const = 0;

    /// \name Validity of plain values
    /// As the base sees it: floating values are invalid when NaN, integers
    /// when they hold their type's smallest (signed) or largest (unsigned)
    /// value, texts when null, dates when not valid; a bool is always valid.
    /// SetInvalid gives a value that IsValid refuses. A record's own
    /// IsValid<X> decides the validity of its properties.
    /** @{ */
    /// True if `value` is valid as the base sees it (see the group's text).
    virtual bool IsValid(float value) const;
    virtual bool IsValid(bool value) const;
    virtual bool IsValid(unsigned int value) const;
    virtual bool IsValid(qint64 value) const;
    virtual bool IsValid(const QDateTime& value) const;
    virtual bool IsValid(const QString& value) const;
    virtual bool IsValid(double value) const;
    virtual bool IsValid(int value) const;
    /** @} */
    /// \name Invalid plain values
    /** @{ */
    /// Puts into `value` a value that IsValid refuses.
    virtual void SetInvalid(float& value) const;
    virtual void SetInvalid(unsigned int& value) const;
    virtual void SetInvalid(qint64& value) const;
    virtual void SetInvalid(QString& value) const;
    virtual void SetInvalid(double& value) const;
    virtual void SetInvalid(int& value) const;
    /** @} */

    /// Writes the object's element, start tag to end tag, to `writer`.
    virtual void GetXml(QXmlStreamWriter& writer) const = 0;
    /// Writes the object's block of the tagged form, with `tag` before it
    /// when `withTag`; false, and nothing written, when the object has no data.
    virtual bool GetBinary(QDataStream& stream, int tag, bool withTag) const = 0;
    /// Reads the object's records of the tagged form, `length` bytes.
    virtual void SetBinary(QDataStream& stream, int length) = 0;

    /// Reads this object from XML text; with checkAfterRead a successful read is
    /// followed by Check(true), so that every fault reaches the logger.
    virtual bool SetXmlString(const QString& text, bool checkAfterRead);
    /// Reads the tagged form, plain or compressed, from bytes.
    virtual bool SetBinaryRepresentation(QByteArray& bytes);
    /// Reads the tagged form, plain or compressed, from a stream.
    virtual bool SetBinaryRepresentation(QDataStream& stream);
    /// Lays every property set in other over this object. False, and nothing
    /// changed, when other is of another class.
    virtual bool MergeRKObject(const IRKObject& other);
    /// The type given to the constructor.
    virtual ObjectTypes GetObjectType() const;
    /// The object name, which is also the name of its element.
    virtual const QString& GetObjectName() const;
    /// The read loop: calls ProcessXmlStartElement for each start element inside
    /// this object's element and returns at its end element.
    virtual void ProcessXml(QXmlStreamReader& reader);
    /// The object as a whole XML document.
    virtual QString GetXmlString() const;
    /// Writes the object block with the class id as its tag.
    virtual void GetBinaryRepresentation(QDataStream& stream) const;
    /// The object block with the class id as its tag, as bytes.
    virtual QByteArray GetBinaryRepresentationAsQByteArray() const;
    /// Writes the tagged form through qCompress with the given level (-1 to 9).
    virtual void GetCompressedBinaryRepresentation(QDataStream& stream, int level) const;
    /// The tagged form through qCompress with the given level (-1 to 9), as bytes.
    virtual QByteArray GetCompressedBinaryRepresentationAsQByteArray(int level) const;
    /// Reads this object from the XML file of that name.
    virtual bool LoadXml(const QString& fileName);
    /// Reads this object from an XML file, opened or not.
    virtual bool LoadXml(QFile* file);
    /// Reads this object from a file of the tagged form, plain or compressed.
    virtual bool LoadBinary(QFile* file);
    /// Writes this object as a whole XML document to the file of that name.
    virtual bool SaveXml(const QString& fileName) const;
    /// Sets the validate flag: on, a fault raises; off, it is logged as a
    /// warning and the operation goes on. Records pass it to their children.
    virtual void SetValidate(bool validate) const;
    /// The validate flag.
    virtual bool GetValidate() const;
    /// Sets the logger that faults are written to; records pass it to their children.
    virtual void SetLogger(std::shared_ptr<Logger> logger) const;
    /// Drops the logger: faults that are not raised then go nowhere.
    virtual void ResetLogger() const;
    /// The schema version of the record; empty but for the root class.
    virtual const QString& GetVersion() const;
    /// Does nothing in a record: the type stays that of the constructor.
    virtual void SetObjectType(ObjectTypes type) = 0;

    /// The logger, empty if there is none.
    std::shared_ptr<Logger> GetLogger() const;
    /// Reads this object from the bytes of an XML document, in the encoding that
    /// the document gives (UTF-8 when it gives none); the twin of SetXmlString
    /// for a document that has not been decoded, such as one read from a pipe.
    bool SetXmlBytes(const QByteArray& bytes, bool checkAfterRead = false);
    /// Moves the stream past the payload of a tagged record of `length` bytes.
    int skipCurrentElement(QDataStream& stream, int length, int tag) const;

protected:
    /// Stores the object name.
    virtual void SetObjectName(const QString& name);
    /// Reads the child element the reader stands on; called by the read loop.
    virtual void ProcessXmlStartElement(QXmlStreamReader& reader);

    /// The text of the element the reader stands on; the reader ends on its end element.
    QString GetTextValue(QXmlStreamReader& reader);
    /// Writes the message of `exception` to the logger at `level`, if there is one.
    void Trace(LogLevel level, const RKException& exception) const;
    /// With `raise` the exception leaves the call as its own class and nothing is
    /// logged; without, its message is written to the logger at `level`.
    void TraceOrThrow(LogLevel level, RKException& exception, bool raise, bool trace) const;
    /// The logger, without the copy that GetLogger makes.
    const std::shared_ptr<Logger>& logger() const { return m_logger; }

    /// The class id of the record, stored by its constructor.
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

/// Writes `object` to `writer` as a whole XML document: the declaration, the
/// object's element indented by two spaces a level, and the end of the
/// document; in UTF-8 when the writer writes to a device. SaveXml and
/// GetXmlString write through it. Throws what GetXml throws.
EDD_EXPORT void WriteXmlDocument(const IRKObject& object, QXmlStreamWriter& writer);

}  // namespace RECORDKIT
