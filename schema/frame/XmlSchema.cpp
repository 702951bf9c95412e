// The XML Schema of the XML form, made from the field tables. It mirrors what
// the writer in XmlCodec.cpp puts out for a record that passes Check, and the
// texts of TextForms.cpp and Converters.

#include <EmitterDossierDoc/frame/XmlSchema.h>

#include <QXmlStreamWriter>

#include <EmitterDossierDoc/frame/ClassRegistry.h>
#include <EmitterDossierDoc/frame/Reflection.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

namespace {

const QString& xsNamespace()
{
    static const QString uri = QStringLiteral("http://www.w3.org/2001/XMLSchema");
    return uri;
}

// The simple types that many fields share. Their names begin in lower case,
// so that no class name (PascalCase) and no enumeration type (Class_field) can
// take them.
const char* const TwoDecimalsType = "twoDecimals";
const char* const TrueOrFalseType = "trueOrFalse";
const char* const UtcDateTimeType = "utcDateTime";
// A whole number in element text or content: the reader takes it with the
// signed conversion, so above the largest qint64 it would read as 0. In an
// attribute it is read unsigned, and xs:unsignedLong holds every value.
const char* const ElementIntegerType = "elementInteger";
const char* const LargestElementInteger = "9223372036854775807";

// A double's text, `arg(value, 0, 'f', 2)`: fixed notation with exactly two
// decimals, which Qt writes as "nan", "inf" and "-inf" for what has no digits.
const char* const TwoDecimalsPattern = "-?[0-9]+\\.[0-9]{2}|nan|-?inf";
// Converters' "yyyy-MM-ddThh:mm:ss,zzzZ" of a UTC date: Qt writes a year of
// more than four digits in full and a negative one with a minus. An invalid
// date is written as an empty text.
const char* const UtcDateTimePattern = "(-?[0-9]{4,}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2},[0-9]{3}Z)?";

QString enumTypeName(const ClassInfo& owner, const FieldInfo& field)
{
    return ClassName(owner) + QLatin1Char('_') + FieldName(field);
}

// The schema type of a field's text, or of its element for a child or a list.
QString typeName(const ClassInfo& owner, const FieldInfo& field)
{
    switch (FieldKind(field)) {
    case Kind::Double: return QLatin1String(TwoDecimalsType);
    case Kind::UInt64:
        return FieldXmlForm(field) == XmlForm::Attribute ? QStringLiteral("xs:unsignedLong")
                                                         : QLatin1String(ElementIntegerType);
    case Kind::Bool: return QLatin1String(TrueOrFalseType);
    case Kind::Text: return QStringLiteral("xs:string");
    case Kind::DateTime: return QLatin1String(UtcDateTimeType);
    case Kind::Enum:
    case Kind::EnumList: return enumTypeName(owner, field);
    case Kind::Child:
    case Kind::List: return ClassName(*ItemClass(field));
    }
    return QString();
}

// The name of a field's element: a child and a list item bear their class's
// name, as the writer writes each record under its object name.
QString elementName(const FieldInfo& field)
{
    const ClassInfo* item = ItemClass(field);
    return item ? ClassName(*item) : FieldName(field);
}

class SchemaWriter {
public:
    explicit SchemaWriter(QByteArray* bytes) : m_writer(bytes)
    {
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        // Qt 6's writer writes UTF-8 always; Qt 5's follows the locale unless told.
        m_writer.setCodec("UTF-8");
#endif
        m_writer.setAutoFormatting(true);
        m_writer.setAutoFormattingIndent(2);
    }

    void write()
    {
        m_writer.writeStartDocument();
        m_writer.writeNamespace(xsNamespace(), QStringLiteral("xs"));
        start("schema");
        const QString version = schemaVersion();
        if (!version.isEmpty())
            m_writer.writeAttribute(QStringLiteral("version"), version);
        start("annotation");
        m_writer.writeTextElement(xsNamespace(), QStringLiteral("documentation"),
                                  QStringLiteral("The XML form of EmitterDossierDoc's records as the library writes a "
                                                 "record that passes Check, made from its field tables. Every class "
                                                 "is a global element: a document of any class validates."));
        end();
        writeSharedTypes();
        for (const ClassEntry& entry : AllClasses())
            writeClass(entry.info());
        end();
        m_writer.writeEndDocument();
    }

private:
    void start(const char* name) { m_writer.writeStartElement(xsNamespace(), QLatin1String(name)); }
    void empty(const char* name) { m_writer.writeEmptyElement(xsNamespace(), QLatin1String(name)); }
    void end() { m_writer.writeEndElement(); }
    void attribute(const char* name, const QString& value) { m_writer.writeAttribute(QLatin1String(name), value); }

    static QString schemaVersion()
    {
        for (const ClassEntry& entry : AllClasses()) {
            const QString version = ClassSchemaVersion(entry.info());
            if (!version.isEmpty())
                return version;
        }
        return QString();
    }

    void writeSharedTypes()
    {
        writePatternType(TwoDecimalsType, TwoDecimalsPattern);
        writeEnumerationType(QLatin1String(TrueOrFalseType), {QStringLiteral("true"), QStringLiteral("false")});
        writePatternType(UtcDateTimeType, UtcDateTimePattern);
        start("simpleType");
        attribute("name", QLatin1String(ElementIntegerType));
        start("restriction");
        attribute("base", QStringLiteral("xs:unsignedLong"));
        empty("maxInclusive");
        attribute("value", QLatin1String(LargestElementInteger));
        end();
        end();
    }

    void writePatternType(const char* name, const char* pattern)
    {
        start("simpleType");
        attribute("name", QLatin1String(name));
        start("restriction");
        attribute("base", QStringLiteral("xs:string"));
        empty("pattern");
        attribute("value", QLatin1String(pattern));
        end();
        end();
    }

    void writeEnumerationType(const QString& name, const QStringList& values)
    {
        start("simpleType");
        attribute("name", name);
        start("restriction");
        attribute("base", QStringLiteral("xs:string"));
        for (const QString& value : values) {
            empty("enumeration");
            attribute("value", value);
        }
        end();
        end();
    }

    void writeClass(const ClassInfo& info)
    {
        const QString name = ClassName(info);
        empty("element");
        attribute("name", name);
        attribute("type", name);

        start("complexType");
        attribute("name", name);
        if (IsLeafClass(info)) {
            start("simpleContent");
            start("extension");
            attribute("base", typeName(info, contentField(info)));
            writeAttributes(info);
            end();
            end();
        } else {
            writeSequence(info);
            writeAttributes(info);
        }
        end();

        for (int i = 0; i < FieldCount(info); ++i) {
            const FieldInfo& field = FieldAt(info, i);
            if (FieldKind(field) == Kind::Enum || FieldKind(field) == Kind::EnumList)
                writeEnumerationType(enumTypeName(info, field), EnumNames(field));
        }
    }

    static const FieldInfo& contentField(const ClassInfo& info)
    {
        int i = 0;
        while (FieldXmlForm(FieldAt(info, i)) != XmlForm::Content)
            ++i;
        return FieldAt(info, i);
    }

    void writeSequence(const ClassInfo& info)
    {
        bool open = false;
        for (int i = 0; i < FieldCount(info); ++i) {
            const FieldInfo& field = FieldAt(info, i);
            const XmlForm form = FieldXmlForm(field);
            if (form == XmlForm::Attribute || form == XmlForm::Content)
                continue;
            if (!open) {
                start("sequence");
                open = true;
            }
            empty("element");
            attribute("name", elementName(field));
            attribute("type", typeName(info, field));
            // A text element is written when it is mandatory or set (a
            // mandatory boolean or date only when set, which Check demands);
            // a child only when its presence bit is set, mandatory or not; a
            // list has an element per item, none when it is empty.
            if (form != XmlForm::Element || !IsMandatory(field))
                attribute("minOccurs", QStringLiteral("0"));
            if (form == XmlForm::List)
                attribute("maxOccurs", QStringLiteral("unbounded"));
        }
        if (open)
            end();
    }

    void writeAttributes(const ClassInfo& info)
    {
        const QString version = ClassSchemaVersion(info);
        if (!version.isEmpty()) {
            empty("attribute");
            attribute("name", QStringLiteral("Version"));
            attribute("type", QStringLiteral("xs:string"));
            attribute("use", QStringLiteral("required"));
            attribute("fixed", version);
        }
        for (int i = 0; i < FieldCount(info); ++i) {
            const FieldInfo& field = FieldAt(info, i);
            if (FieldXmlForm(field) != XmlForm::Attribute)
                continue;
            empty("attribute");
            attribute("name", FieldName(field));
            attribute("type", typeName(info, field));
            if (IsMandatory(field))
                attribute("use", QStringLiteral("required"));
        }
    }

    QXmlStreamWriter m_writer;
};

}  // namespace

QByteArray XmlSchema()
{
    QByteArray bytes;
    SchemaWriter(&bytes).write();
    return bytes;
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
