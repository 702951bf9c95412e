#pragma once

#include <QSharedData>
#include <QStringList>
#include <QVector>

#include "edd_export.h"
#include "recordkit/IRKObject.h"
#include "schema/frame/ClassInfo.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

// The shared, reference-counted state of one record: its presence bits and, in
// the payload type of each class, its fields m_<property>.
struct EDD_EXPORT Payload : QSharedData {
    Payload() = default;
    Payload(const Payload& other) = default;
    Payload& operator=(const Payload&) = delete;
    virtual ~Payload();
    virtual Payload* clone() const = 0;

    bool test(int bit) const { return (presence >> bit) & 1u; }
    void set(int bit) { presence |= 1u << bit; }
    void clear(int bit) { presence &= ~(1u << bit); }

    quint32 presence = 0;  // bit i is the presence of the property with bit i
};

class Runtime;

// What every schema class is: a handle on a lazily created payload, and the
// rules of the frame applied to it through the class's field table. Generated
// classes add the accessors of their properties and nothing else.
class EDD_EXPORT Record : public RECORDKIT::IRKObject {
public:
    ~Record() override;

    bool HasData() const override;
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

    // True if the payload exists and at least one property holds something.
    bool AnyData() const;
    // Leaves a payload in its initial state, creating it if needed.
    void ResetToDefault();
    bool IsInitialized() const;

    // The raw form: presence bitmap, then the fields in bit order.
    void GetVersionSpecificBinaryWithoutValidation(QDataStream& stream) const;
    void SetVersionSpecificBinaryWithoutValidation(QDataStream& stream);

    // The field table of this object's class.
    virtual const ClassInfo& GetClassInfo() const = 0;

    // operator== for objects known only as records: false for objects of two classes.
    bool IsEqualTo(const Record& other) const;

protected:
    explicit Record(const ClassInfo& info);
    Record(const Record& other, const ClassInfo& info);
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    void assign(const Record& other);
    bool equals(const Record& other) const;
    void ProcessXmlStartElement(QXmlStreamReader& reader) override;
    void readLeafXml(QXmlStreamReader& reader);

    // For the accessors of generated classes. `bit` names a property.
    Payload& payload() const;  // creates the payload or detaches a shared one
    bool isSet(int bit) const;
    void resetField(int bit);
    template <class T>
    T& marked(int bit, T& field) const
    {
        d->set(bit);
        return field;
    }
    template <class T>
    void setValue(int bit, T& field, const T& value) const
    {
        field = value;
        d->set(bit);
    }
    void setText(int bit, const QString& value);
    void setEnum(int bit, quint8 value);
    void appendItem(int bit, const Record& item);
    void appendEnum(int bit, quint8 value);
    const QString& schemaVersion() const;
    const QString& loadedVersion() const;
    QString enumName(int bit, quint8 value) const;
    quint8 enumIndex(int bit, const QString& name) const;
    bool enumValid(int bit, quint8 value) const;
    template <class E>
    bool allValid(int bit, const QVector<E>& values) const
    {
        for (E value : values)
            if (!enumValid(bit, value))
                return false;
        return true;
    }

private:
    friend class Runtime;

    void InitData() const;
    void ConstNoClearReset() const;
    void detach() const;

    mutable Payload* d = nullptr;
};

// The payload of class C's generated data: the copy that detaching makes.
template <class Data>
struct PayloadOf : Payload {
    Payload* clone() const override { return new Data(static_cast<const Data&>(*this)); }
    static Payload* create() { return new Data(); }
};

// Names of an enumeration passed through QObject::tr, for display.
EDD_EXPORT QStringList translatedNames(const QStringList& names);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
