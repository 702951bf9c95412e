// The XML Schema made from the field tables: read back with QXmlStreamReader
// and held to the field tables and to the texts that the writer makes.

#include <gtest/gtest.h>

#include <limits>

#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include <EmitterDossierDoc/frame/XmlSchema.h>
#include <EmitterDossierDoc/recordkit/Converters.h>

#include <EmitterDossierDoc/EmitterDossierDoc.h>

using namespace EMITTERDOSSIERDOC;

namespace {

const QString XsNamespace = QStringLiteral("http://www.w3.org/2001/XMLSchema");

struct Particle {
    QString name, type, minOccurs, maxOccurs;
};
struct AttributeDeclaration {
    QString name, type, use, fixed;
};
struct ComplexType {
    QVector<Particle> sequence;
    QVector<AttributeDeclaration> attributes;
    QString contentBase;  // of a leaf's simple content; empty for a branch
};
struct SimpleType {
    QString base;
    QString pattern;
    QStringList enumeration;
};

// What the schema declares, by name.
struct Schema {
    QString version;
    QMap<QString, QString> globalElements;  // name -> type
    QMap<QString, ComplexType> complexTypes;
    QMap<QString, SimpleType> simpleTypes;
    QString error;  // of the reader, or of an element of another namespace
};

Schema parse(const QByteArray& bytes)
{
    Schema schema;
    QXmlStreamReader reader(bytes);
    QStringList open;  // names of the open elements
    QString complexName;
    QString simpleName;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isEndElement()) {
            open.removeLast();
            continue;
        }
        if (!reader.isStartElement())
            continue;
        if (reader.namespaceUri() != XsNamespace) {
            schema.error = QStringLiteral("element of another namespace: ") + reader.qualifiedName().toString();
            break;
        }
        const QString tag = reader.name().toString();
        const QXmlStreamAttributes a = reader.attributes();
        auto at = [&](const char* name) { return a.value(QLatin1String(name)).toString(); };
        if (tag == QLatin1String("schema")) {
            schema.version = at("version");
        } else if (tag == QLatin1String("element") && open.size() == 1) {
            schema.globalElements.insert(at("name"), at("type"));
        } else if (tag == QLatin1String("element")) {
            schema.complexTypes[complexName].sequence.append(
                {at("name"), at("type"), at("minOccurs"), at("maxOccurs")});
        } else if (tag == QLatin1String("complexType")) {
            complexName = at("name");
            schema.complexTypes[complexName];
        } else if (tag == QLatin1String("extension")) {
            schema.complexTypes[complexName].contentBase = at("base");
        } else if (tag == QLatin1String("attribute")) {
            schema.complexTypes[complexName].attributes.append({at("name"), at("type"), at("use"), at("fixed")});
        } else if (tag == QLatin1String("simpleType")) {
            simpleName = at("name");
        } else if (tag == QLatin1String("restriction")) {
            schema.simpleTypes[simpleName].base = at("base");
        } else if (tag == QLatin1String("pattern")) {
            schema.simpleTypes[simpleName].pattern = at("value");
        } else if (tag == QLatin1String("enumeration")) {
            schema.simpleTypes[simpleName].enumeration.append(at("value"));
        }
        open.append(tag);
    }
    if (reader.hasError())
        schema.error = reader.errorString();
    return schema;
}

const Schema& schema()
{
    static const Schema parsed = parse(Frame::XmlSchema());
    return parsed;
}

QStringList names(const QVector<Particle>& sequence)
{
    QStringList result;
    for (const Particle& p : sequence)
        result.append(p.name);
    return result;
}

// The declaration of an element in a type's sequence, or of an attribute of a
// type; a failure, and texts that match nothing, when there is none.
Particle particle(const QString& type, const QString& name)
{
    for (const Particle& p : schema().complexTypes.value(type).sequence)
        if (p.name == name)
            return p;
    ADD_FAILURE() << type.toStdString() << " has no element " << name.toStdString();
    return {QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-")};
}

AttributeDeclaration attribute(const QString& type, const QString& name)
{
    for (const AttributeDeclaration& a : schema().complexTypes.value(type).attributes)
        if (a.name == name)
            return a;
    ADD_FAILURE() << type.toStdString() << " has no attribute " << name.toStdString();
    return {QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-")};
}

// A pattern of the schema as a regular expression of the whole text; XSD
// patterns are anchored at both ends.
QRegularExpression wholeText(const QString& pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

}  // namespace

TEST(XmlSchema, IsAUtf8SchemaDocumentThatReadsWithoutError)
{
    const QByteArray bytes = Frame::XmlSchema();
    EXPECT_TRUE(bytes.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<xs:schema "));
    EXPECT_TRUE(bytes.endsWith("</xs:schema>\n"));
    EXPECT_EQ(schema().error, QString());
    EXPECT_EQ(schema().version, QStringLiteral("1.8"));
}

TEST(XmlSchema, EveryClassIsAGlobalElementOfItsOwnType)
{
    const QVector<Frame::ClassEntry>& classes = Frame::AllClasses();
    EXPECT_EQ(schema().globalElements.size(), classes.size());
    EXPECT_EQ(schema().complexTypes.size(), classes.size());
    for (const Frame::ClassEntry& entry : classes) {
        const QString name = Frame::ClassName(entry.info());
        EXPECT_EQ(schema().globalElements.value(name), name);
        EXPECT_TRUE(schema().complexTypes.contains(name)) << name.toStdString();
    }
}

TEST(XmlSchema, EveryTypeNamedIsDeclared)
{
    QStringList undeclared;
    auto need = [&](const QString& type) {
        if (!type.startsWith(QLatin1String("xs:")) && !schema().complexTypes.contains(type) &&
            !schema().simpleTypes.contains(type))
            undeclared.append(type);
    };
    for (const ComplexType& type : schema().complexTypes) {
        for (const Particle& p : type.sequence)
            need(p.type);
        for (const AttributeDeclaration& a : type.attributes)
            need(a.type);
        if (!type.contentBase.isEmpty())
            need(type.contentBase);
    }
    EXPECT_EQ(undeclared, QStringList());
}

TEST(XmlSchema, RootVersionIsRequiredAndFixedToTheSchemaVersion)
{
    const AttributeDeclaration version = attribute(QStringLiteral("EmitterDossier"), QStringLiteral("Version"));
    EXPECT_EQ(version.use, QStringLiteral("required"));
    EXPECT_EQ(version.fixed, Frame::ClassSchemaVersion(EmitterDossier::StaticClassInfo()));
    EXPECT_EQ(version.fixed, QStringLiteral("1.8"));
    EXPECT_EQ(version.type, QStringLiteral("xs:string"));
    // No other class has a version.
    int versions = 0;
    for (const ComplexType& type : schema().complexTypes)
        for (const AttributeDeclaration& a : type.attributes)
            versions += a.name == QLatin1String("Version");
    EXPECT_EQ(versions, 1);
}

TEST(XmlSchema, SequenceFollowsTheOrderOfWriting)
{
    EXPECT_EQ(names(schema().complexTypes.value(QStringLiteral("EmitterDossier")).sequence),
              QStringList({"Name", "ModeName", "DatabaseID", "Confidence", "AgeOutTime", "Alternatives", "Priority",
                           "EmitterID", "Status", "PulseCount", "DetectionTime", "DetectionDuration",
                           "DetectionPosition", "Bearing", "ELINTParameter", "Files", "Filter", "RADService"}));
    // The unit is written as an attribute, first, though its bit comes last.
    EXPECT_EQ(names(schema().complexTypes.value(QStringLiteral("Bearing")).sequence),
              QStringList({"Azimuth", "AzimuthTol", "Elevation", "ElevationTol"}));
    const AttributeDeclaration unit = attribute(QStringLiteral("Bearing"), QStringLiteral("unit"));
    EXPECT_EQ(unit.use, QStringLiteral("required"));
    EXPECT_EQ(unit.type, QStringLiteral("Bearing_unit"));
}

TEST(XmlSchema, PresenceDecidesOccurrence)
{
    const QString root = QStringLiteral("EmitterDossier");
    // A mandatory text element is always written, an optional one when set.
    EXPECT_EQ(particle(root, QStringLiteral("Name")).minOccurs, QString());
    EXPECT_EQ(particle(root, QStringLiteral("ModeName")).minOccurs, QStringLiteral("0"));
    EXPECT_EQ(particle(QStringLiteral("Alternative"), QStringLiteral("Confidence")).minOccurs, QString());
    // A child only when its presence bit is set, mandatory or not.
    EXPECT_EQ(particle(root, QStringLiteral("ELINTParameter")).minOccurs, QStringLiteral("0"));
    EXPECT_EQ(particle(root, QStringLiteral("ELINTParameter")).maxOccurs, QString());
    EXPECT_EQ(particle(root, QStringLiteral("ELINTParameter")).type, QStringLiteral("ELINTParameter"));
    // A list, mandatory or not, writes nothing when it is empty.
    for (const auto& list : {qMakePair(root, QStringLiteral("Filter")),
                             qMakePair(QStringLiteral("Alternatives"), QStringLiteral("Alternative"))}) {
        const Particle items = particle(list.first, list.second);
        EXPECT_EQ(items.minOccurs, QStringLiteral("0"));
        EXPECT_EQ(items.maxOccurs, QStringLiteral("unbounded"));
        EXPECT_EQ(items.type, list.second);
    }
    // An optional attribute may be left out.
    EXPECT_EQ(attribute(QStringLiteral("TOA"), QStringLiteral("inverse")).use, QString());
    EXPECT_EQ(attribute(QStringLiteral("TOA"), QStringLiteral("inverse")).type, QStringLiteral("trueOrFalse"));
}

TEST(XmlSchema, LeafClassesExtendTheTypeOfTheirContent)
{
    const ComplexType age = schema().complexTypes.value(QStringLiteral("AgeOutTime"));
    EXPECT_EQ(age.contentBase, QStringLiteral("twoDecimals"));
    EXPECT_TRUE(age.sequence.isEmpty());
    EXPECT_EQ(attribute(QStringLiteral("AgeOutTime"), QStringLiteral("unit")).use, QStringLiteral("required"));

    EXPECT_EQ(schema().complexTypes.value(QStringLiteral("Code")).contentBase, QStringLiteral("xs:string"));
    EXPECT_EQ(attribute(QStringLiteral("Code"), QStringLiteral("reversed")).type, QStringLiteral("trueOrFalse"));
    EXPECT_EQ(attribute(QStringLiteral("Code"), QStringLiteral("name")).type, QStringLiteral("xs:string"));
    EXPECT_EQ(schema().complexTypes.value(QStringLiteral("MasterSequenceItem")).contentBase,
              QStringLiteral("xs:unsignedLong"));
    // A branch class has no simple content.
    EXPECT_EQ(schema().complexTypes.value(QStringLiteral("Bearing")).contentBase, QString());
}

TEST(XmlSchema, EnumerationsListTheirNamesInOrder)
{
    EXPECT_EQ(schema().simpleTypes.value(QStringLiteral("EmitterDossier_Status")).enumeration,
              QStringList({"Active", "Inactive", "Decayed"}));
    EXPECT_EQ(particle(QStringLiteral("EmitterDossier"), QStringLiteral("Status")).type,
              QStringLiteral("EmitterDossier_Status"));
    // The micro sign stands in the document as UTF-8.
    EXPECT_EQ(schema().simpleTypes.value(QStringLiteral("BeamPeakPower_unit")).enumeration,
              QStringList({QStringLiteral("dBm"), QStringLiteral("dB") + QChar(0xb5) + QStringLiteral("V")}));
    EXPECT_TRUE(Frame::XmlSchema().contains("<xs:enumeration value=\"dB\xc2\xb5V\"/>"));
    // A list of enumeration values: one element per value, named after the field.
    const Particle values = particle(QStringLiteral("Modulations"), QStringLiteral("Modulation"));
    EXPECT_EQ(values.type, QStringLiteral("Modulations_Modulation"));
    EXPECT_EQ(values.maxOccurs, QStringLiteral("unbounded"));
    const QStringList modulations = schema().simpleTypes.value(QStringLiteral("Modulations_Modulation")).enumeration;
    EXPECT_EQ(modulations.size(), 16);
    EXPECT_EQ(modulations, Modulations::GetModulations());
}

TEST(XmlSchema, NoElementNameStandsTwiceInOneSequence)
{
    // Two particles of one name in a sequence could break Unique Particle Attribution.
    for (auto type = schema().complexTypes.cbegin(); type != schema().complexTypes.cend(); ++type) {
        const QStringList elementNames = names(type->sequence);
        EXPECT_EQ(QSet<QString>(elementNames.begin(), elementNames.end()).size(), elementNames.size())
            << type.key().toStdString();
    }
}

TEST(XmlSchema, DoublePatternTakesExactlyTheWritersTexts)
{
    const QRegularExpression twoDecimals = wholeText(schema().simpleTypes.value(QStringLiteral("twoDecimals")).pattern);
    ASSERT_TRUE(twoDecimals.isValid());
    Alternative a;
    const Frame::FieldInfo& confidence = *Frame::FindField(a.GetClassInfo(), QStringLiteral("Confidence"));
    for (double value : {12.5, 0.004, -1.0, -0.001, 1e10, 1e300, std::numeric_limits<double>::quiet_NaN(),
                         std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        a.SetConfidence(value);
        const QString text = Frame::FieldText(a, confidence);
        EXPECT_TRUE(twoDecimals.match(text).hasMatch()) << text.toStdString();
    }
    for (const char* text : {"12.5", "12.500", "1e3", ".50", "1.00 ", "+1.00", "NaN", "", "0,50"})
        EXPECT_FALSE(twoDecimals.match(QLatin1String(text)).hasMatch()) << text;
}

TEST(XmlSchema, DatePatternTakesExactlyTheWritersTexts)
{
    const QRegularExpression date = wholeText(schema().simpleTypes.value(QStringLiteral("utcDateTime")).pattern);
    ASSERT_TRUE(date.isValid());
    for (const QDateTime& value : {QDateTime(QDate(2026, 11, 2), QTime(14, 5, 33, 250), Qt::UTC),
                                   QDateTime(QDate(12345, 1, 2), QTime(3, 4, 5, 6), Qt::UTC),
                                   QDateTime(QDate(-5, 1, 2), QTime(3, 4, 5, 6), Qt::UTC), QDateTime()}) {
        const QString text = Converters::ToString(value);
        EXPECT_TRUE(date.match(text).hasMatch()) << text.toStdString();
    }
    for (const char* text : {"2026-11-02T14:05:33Z", "2026-11-02 14:05:33,250Z", "2026-11-02T14:05:33,250",
                             "2026-11-02T14:05:33.250Z", "26-11-02T14:05:33,250Z"})
        EXPECT_FALSE(date.match(QLatin1String(text)).hasMatch()) << text;
}

TEST(XmlSchema, BooleansAreTheWritersTwoTexts)
{
    EXPECT_EQ(schema().simpleTypes.value(QStringLiteral("trueOrFalse")).enumeration, QStringList({"true", "false"}));
    Code code;
    const Frame::FieldInfo& reversed = *Frame::FindField(code.GetClassInfo(), QStringLiteral("reversed"));
    code.Setreversed(true);
    EXPECT_EQ(Frame::FieldText(code, reversed), QStringLiteral("true"));
    code.Setreversed(false);
    EXPECT_EQ(Frame::FieldText(code, reversed), QStringLiteral("false"));
}
