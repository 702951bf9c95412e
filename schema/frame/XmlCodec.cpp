// The XML form: a leaf element (attributes and text content) or a branch
// element (attributes and child elements), by the class's field table.

#include "schema/frame/Runtime_p.h"
#include "schema/frame/TextForms_p.h"
#include <EmitterDossierDoc/recordkit/Converters.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// --- Writing -------------------------------------------------------------------------

static const QString& versionAttribute()
{
    static const QString name = QStringLiteral("Version");
    return name;
}

static void reportMissing(const Record& r, const FieldInfo& f)
{
    IncompleteDefinitionException e(
        QStringLiteral("Parameters for %1 are not set properly in '%2'.").arg(*f.name, r.GetObjectName()));
    Internal::report(r, e);
}

// Texts that a write makes for one value after another. A number is made
// in `number`, whose storage serves every number without an allocation each
// (the writer copies what it is given); texts and names are the field's own.
struct TextRoom {
    QString number;
    QString other;
};

static const QString& textOf(Payload& p, const FieldInfo& f, TextRoom& room)
{
    char digits[DoubleTextCapacity];
    int n = -1;
    switch (f.kind) {
    case Kind::Double: n = doubleTextFast(Internal::value<double>(p, f), digits); break;
    case Kind::UInt64: {
        char reversed[20];
        int count = 0;
        quint64 v = Internal::value<quint64>(p, f);
        do {
            reversed[count++] = char('0' + v % 10);
            v /= 10;
        } while (v);
        for (n = 0; n < count; ++n)
            digits[n] = reversed[count - 1 - n];
        break;
    }
    case Kind::Text: return Internal::value<QString>(p, f);
    case Kind::Enum:
        if (const QString* name = Internal::enumName(f.enumInfo(), Internal::value<quint8>(p, f)))
            return *name;
        break;
    default: break;
    }
    if (n < 0) {
        room.other = fieldText(p, f);
        return room.other;
    }
    room.number.resize(n);
    QChar* out = room.number.data();
    for (int i = 0; i < n; ++i)
        out[i] = QLatin1Char(digits[i]);
    return room.number;
}

void Internal::writeXml(const Record& r, QXmlStreamWriter& writer)
{
    TextRoom room;
    room.number.reserve(DoubleTextCapacity);
    writeXml(r, writer, room);
}

void Internal::writeXml(const Record& r, QXmlStreamWriter& writer, TextRoom& room)
{
    // Flag and logger have been handed down and the tree checked where the write began.
    if (r.GetValidate() && !r.HasData())
        return;
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    writer.writeStartElement(r.GetObjectName());
    if (info.version)
        writer.writeAttribute(versionAttribute(), schemaVersionOf(p, *info.version));
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        if (f.xml == XmlForm::Attribute && written(p, f))
            writer.writeAttribute(*f.name, textOf(p, f, room));
    }
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        const bool set = p.test(f.bit);
        switch (f.xml) {
        case XmlForm::Attribute: break;
        case XmlForm::Content:
            if (written(p, f))
                writer.writeCharacters(textOf(p, f, room));
            break;
        case XmlForm::Element:
            if (written(p, f))
                writer.writeTextElement(*f.name, textOf(p, f, room));
            break;
        case XmlForm::Child: {
            const Record& c = child(p, f);
            if (f.mandatory && !c.HasData())
                reportMissing(r, f);
            if (set)
                writeXml(c, writer, room);
            break;
        }
        case XmlForm::List: {
            const void* list = field(p, f);
            if (f.kind == Kind::EnumList) {
                // One text element per value, whatever the bit and the value.
                const EnumListInfo& values = f.enumListInfo();
                for (int k = 0, n = values.size(list); k < n; ++k) {
                    const QString* name = Internal::enumName(values.names, values.at(list, k));
                    writer.writeTextElement(*f.name, name ? *name : QString());
                }
                break;
            }
            const ListOps& ops = f.listOps();
            for (int k = 0, n = ops.size(list); k < n; ++k) {
                const Record& item = ops.cat(list, k);
                if (!item.HasData() && !f.has(NoIncompleteItemReport))
                    reportMissing(r, f);
                if (set)
                    writeXml(item, writer, room);
            }
            break;
        }
        }
    }
    writer.writeEndElement();
}

// --- Reading -------------------------------------------------------------------------

static void storeBool(Record& r, Payload& p, const FieldInfo& f, const QString& text)
{
    const QString lower = text.toLower();
    bool value = false;
    if (lower.isEmpty()) {
        InvalidXmlException e(QStringLiteral("Please set a value or a default for the boolean '%1' in '%2'.")
                                  .arg(*f.name, r.GetObjectName()));
        Internal::reportSoft(r, e);
    } else {
        value = lower != QLatin1String("0") && lower != QLatin1String("false");
    }
    Internal::value<bool>(p, f) = value;
    p.set(f.bit);
}

// Numbers and enumeration names, read from the reader's own text without a
// copy, as they read from a QString. Attributes are read unsigned, element
// text signed: a text above the signed range reads as 0 there. False for a
// field of another kind, with nothing stored.
static bool storeFromRef(Record& r, Payload& p, const FieldInfo& f, QStringView text, bool fromAttribute)
{
    switch (f.kind) {
    case Kind::Double: Internal::value<double>(p, f) = text.toDouble(); break;
    case Kind::UInt64:
        Internal::value<quint64>(p, f) = fromAttribute ? text.toULongLong() : quint64(text.toLongLong());
        break;
    case Kind::Enum: Internal::storeEnum(r, p, f, Internal::enumIndex(f, text)); return true;
    default: return false;
    }
    p.set(f.bit);
    return true;
}

// Stores the text of an attribute or a text element through the field's setter.
static void storeFromText(Record& r, Payload& p, const FieldInfo& f, const QString& text, bool fromAttribute)
{
    if (storeFromRef(r, p, f, QStringView(text), fromAttribute))
        return;
    switch (f.kind) {
    case Kind::Bool: storeBool(r, p, f, text); return;
    case Kind::Text: Internal::storeText(r, p, f, text.isNull() ? QStringLiteral("") : text); return;
    case Kind::DateTime:
        Internal::value<QDateTime>(p, f) = Converters::ToDateTime(text);
        p.set(f.bit);
        return;
    default: return;
    }
}

void Internal::readXmlAttributes(Record& r, Payload& p, QXmlStreamReader& reader)
{
    const ClassInfo& info = r.GetClassInfo();
    const QXmlStreamAttributes attributes = reader.attributes();
    if (attributes.isEmpty())
        return;
    for (int i = 0; i < info.fieldCount; ++i) {
        const FieldInfo& f = info.fields[i];
        if (f.xml != XmlForm::Attribute)
            continue;
        for (const QXmlStreamAttribute& attribute : attributes) {
            if (attribute.qualifiedName() != *f.name)
                continue;
            if (!storeFromRef(r, p, f, attribute.value(), true))
                storeFromText(r, p, f, attribute.value().toString(), true);
            break;
        }
    }
}

// The text of the element the reader stands on, as readElementText with
// SkipChildElements reads it, into storage that serves one number after
// another without an allocation each. Only numbers are read this way: they
// read the same from an empty text as from a null one.
static const QString& numberText(QXmlStreamReader& reader)
{
    static thread_local QString text;
    text.truncate(0);
    if (!reader.isStartElement())
        return text;
    for (;;) {
        switch (reader.readNext()) {
        case QXmlStreamReader::Characters:
        case QXmlStreamReader::EntityReference: text.append(reader.text()); break;
        case QXmlStreamReader::EndElement: return text;
        case QXmlStreamReader::ProcessingInstruction:
        case QXmlStreamReader::Comment: break;
        case QXmlStreamReader::StartElement: reader.skipCurrentElement(); break;
        default:
            if (reader.hasError())
                return text;
        }
    }
}

static bool isNumber(const FieldInfo& f) { return f.kind == Kind::Double || f.kind == Kind::UInt64; }

void Internal::readXml(Record& r, QXmlStreamReader& reader)
{
    Payload& p = payload(r);
    if (r.GetClassInfo().leaf) {
        readLeafXml(r, reader);
        return;
    }
    // A missing version attribute reads as a null text, which counts as the oldest version.
    if (r.GetClassInfo().version)
        versionGate(r, p, reader.attributes().value(versionAttribute()).toString());
    readXmlAttributes(r, p, reader);
    // Once for the whole element: every child made during the read takes the
    // setting when it is made.
    handDown(r);
    r.IRKObject::ProcessXml(reader);
    // Lists grew by doubling while their items came; now their size is known.
    const ClassInfo& info = r.GetClassInfo();
    for (int i = 0; i < info.fieldCount; ++i)
        if (info.fields[i].kind == Kind::List)
            info.fields[i].listOps().trim(field(payload(r), info.fields[i]));
}

void Internal::readXmlChildElement(Record& r, QXmlStreamReader& reader)
{
    Payload& p = payload(r);
    const ClassInfo& info = r.GetClassInfo();
    const QStringView tag = reader.name();
    for (int bit = 0; bit < info.fieldCount; ++bit) {
        const FieldInfo& f = info.field(bit);
        if (f.xml == XmlForm::Content || tag != *f.name)
            continue;
        switch (f.xml) {
        case XmlForm::Attribute:
        case XmlForm::Element:
            if (isNumber(f))
                storeFromRef(r, p, f, QStringView(numberText(reader)), false);
            else
                storeFromText(r, p, f, reader.readElementText(QXmlStreamReader::SkipChildElements), false);
            break;
        case XmlForm::Child:
            child(p, f).ProcessXml(reader);
            p.set(f.bit);
            break;
        case XmlForm::List:
            if (f.kind == Kind::EnumList) {
                appendEnumValue(r, p, f, enumIndex(f, reader.readElementText(QXmlStreamReader::SkipChildElements)));
                break;
            }
            {
                Internal::PendingItem item(r, p, f);
                item.item().ProcessXml(reader);
                item.finish();
            }
            break;
        case XmlForm::Content: break;
        }
        return;
    }
    const QString unknown = tag.toString();
    if (info.version && claimsCurrentVersion(p, *info.version)) {
        // Input that claims the current schema has no business with unknown
        // elements. After the report the reader stays on the element, so that
        // its content is read as this object's.
        InvalidXmlException e(QStringLiteral("Unknown Tag '%1' in '%2'.").arg(unknown, r.GetObjectName()));
        report(r, e);
        return;
    }
    // An unknown element is passed over up to the next token of the same name.
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.name() == unknown)
            break;
    }
}

void Internal::readLeafXml(Record& r, QXmlStreamReader& reader)
{
    // Most elements bear their object's name, which then serves without a copy.
    QString other;
    const QString& tag = reader.name() == r.GetObjectName() ? r.GetObjectName() : (other = reader.name().toString());
    Payload& p = payload(r);
    readXmlAttributes(r, p, reader);
    const ClassInfo& info = r.GetClassInfo();
    // A leaf has at most one content field; the generator refuses a second.
    const FieldInfo* content = nullptr;
    for (int i = 0; i < info.fieldCount && !content; ++i)
        if (info.fields[i].xml == XmlForm::Content)
            content = &info.fields[i];
    if (content && isNumber(*content)) {
        // The content goes straight into the field, without the setter's test.
        const QString& text = numberText(reader);
        if (content->kind == Kind::Double)
            value<double>(p, *content) = text.toDouble();
        else
            value<quint64>(p, *content) = quint64(text.toLongLong());
        p.set(content->bit);
    } else {
        const QString text = reader.readElementText(QXmlStreamReader::SkipChildElements);
        if (content) {
            if (content->kind == Kind::Text)
                value<QString>(p, *content) = text.isNull() ? QStringLiteral("") : text;
            else
                storeFromText(r, p, *content, text, false);
            p.set(content->bit);
        }
    }
    while (!reader.atEnd() && reader.name() != tag)
        reader.readNext();
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
