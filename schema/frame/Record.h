#pragma once

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/recordkit/IRKObject.h>

/// The schema classes of the library, one per element of the XML form.
namespace EMITTERDOSSIERDOC {
/// What all schema classes share: the record base, the reflection view, the
/// class registry and the walker of the tagged form.
namespace Frame {

/// The field table of a class; read it through the functions of Reflection.h.
struct ClassInfo;
/// The shared, reference-counted state of one record; internal to the library.
struct Payload;

/// What every schema class is.
///
/// A handle on a lazily created payload, and the rules of the frame applied
/// to it through the class's field table. Generated classes add the accessors
/// of their properties and nothing else.
class EDD_EXPORT Record : public RECORDKIT::IRKObject {
public:
    ~Record() override;

    /// True if the payload exists and every mandatory property is present;
    /// a child counts through its own HasData.
    bool HasData() const override;
    /// With a payload, clears every presence bit and puts every field back to
    /// its initial value; without one, nothing.
    void Reset() override;
    void Check(bool traceOnly) const override;
    void Check() const override;
    void GetXml(QXmlStreamWriter& writer) const override;
    bool GetBinary(QDataStream& stream, int tag, bool withTag) const override;
    void SetBinary(QDataStream& stream, int length) override;
    bool MergeRKObject(const RECORDKIT::IRKObject& other) override;
    void ProcessXml(QXmlStreamReader& reader) override;
    void SetValidate(bool validate) const override;
    void SetLogger(std::shared_ptr<RECORDKIT::Logger> logger) const override;
    void SetObjectType(RECORDKIT::ObjectTypes type) override;

    /// True if the payload exists and at least one property holds something.
    bool AnyData() const;
    /// Leaves a payload in its initial state, creating it if needed.
    void ResetToDefault();
    /// True if the payload exists; any accessor but Is<X>Set creates it.
    bool IsInitialized() const;

    /// Writes the raw form: presence bitmap, then the fields in bit order.
    /// Doubles are exact in this form; nothing is checked.
    void GetVersionSpecificBinaryWithoutValidation(QDataStream& stream) const;
    /// Reads the raw form that GetVersionSpecificBinaryWithoutValidation writes.
    void SetVersionSpecificBinaryWithoutValidation(QDataStream& stream);

    /// The field table of this object's class.
    virtual const ClassInfo& GetClassInfo() const = 0;

    /// operator== for objects known only as records: false for objects of two classes.
    bool IsEqualTo(const Record& other) const;

protected:
    /// A record of the class of `info`, without a payload.
    explicit Record(const ClassInfo& info);
    /// A copy of `other`'s properties and validate flag; the logger is not taken over.
    Record(const Record& other, const ClassInfo& info);
    /// Takes `other` over, logger included, and leaves it empty.
    Record(Record&& other, const ClassInfo& info) noexcept;
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    void ProcessXmlStartElement(QXmlStreamReader& reader) override;

    /// The one way to the payload, for the library's runtime.
    static Payload*& payloadSlot(const Record& record) { return record.d; }

private:
    void InitData() const;           // creates the payload, or detaches a shared one
    void ConstNoClearReset() const;  // initial values, presence bits left alone

    mutable Payload* d = nullptr;
};

/// The raw form of a record as bytes, as GetVersionSpecificBinaryWithoutValidation
/// writes it to a QDataStream of default settings (big-endian).
EDD_EXPORT QByteArray RawFormBytes(const Record& record);
/// Reads the raw form from bytes, as SetVersionSpecificBinaryWithoutValidation
/// reads it from a QDataStream of default settings; what the stream meets is
/// raised as that function raises it. Bytes beyond the record are left unread.
EDD_EXPORT void ReadRawForm(Record& record, const QByteArray& bytes);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC

/// Lets Qt's containers move a generated class as bytes: it holds a shared
/// pointer and plain values, none of which points at the record itself. Qt 5
/// calls that movable, Qt 6 relocatable.
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#define EDD_DECLARE_RELOCATABLE(Class) Q_DECLARE_TYPEINFO(Class, Q_RELOCATABLE_TYPE)
#else
#define EDD_DECLARE_RELOCATABLE(Class) Q_DECLARE_TYPEINFO(Class, Q_MOVABLE_TYPE)
#endif
