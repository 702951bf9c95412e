// The XML Schema made from the field tables, against the committed document
// (write it again after a meant change: dossier schema --xsd > tests/golden/schema.xsd),
// and its patterns held to the texts that the writer makes.

#include <gtest/gtest.h>

#include <limits>

#include <QFile>
#include <QRegularExpression>

#include <EmitterDossierDoc/frame/XmlSchema.h>
#include <EmitterDossierDoc/recordkit/Converters.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;

namespace {

// The pattern of a simple type of the schema, as a regular expression of the
// whole text; XSD patterns are anchored at both ends.
QRegularExpression pattern(const char* type)
{
    const QString schema = QString::fromUtf8(Frame::XmlSchema());
    const QRegularExpression find(QStringLiteral("<xs:simpleType name=\"%1\">\\s*<xs:restriction base=\"[^\"]+\">"
                                                 "\\s*<xs:pattern value=\"([^\"]+)\"/>")
                                      .arg(QLatin1String(type)));
    const QString value = find.match(schema).captured(1).replace(QLatin1String("&amp;"), QLatin1String("&"));
    EXPECT_FALSE(value.isEmpty()) << type;
    return QRegularExpression(QRegularExpression::anchoredPattern(value));
}

}  // namespace

TEST(XmlSchema, IsTheCommittedDocument)
{
    QFile golden(QStringLiteral(EDD_GOLDEN_DIR "/schema.xsd"));
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
    EXPECT_TRUE(Frame::XmlSchema() == golden.readAll());
}

TEST(XmlSchema, PatternsTakeExactlyTheWritersTexts)
{
    const QRegularExpression twoDecimals = pattern("twoDecimals");
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

    const QRegularExpression date = pattern("utcDateTime");
    for (const QDateTime& value : {QDateTime(QDate(2026, 11, 2), QTime(14, 5, 33, 250), Qt::UTC),
                                   QDateTime(QDate(12345, 1, 2), QTime(3, 4, 5, 6), Qt::UTC),
                                   QDateTime(QDate(-5, 1, 2), QTime(3, 4, 5, 6), Qt::UTC), QDateTime()}) {
        const QString text = Converters::ToString(value);
        EXPECT_TRUE(date.match(text).hasMatch()) << text.toStdString();
    }
    for (const char* text : {"2026-11-02T14:05:33Z", "2026-11-02 14:05:33,250Z", "2026-11-02T14:05:33,250",
                             "2026-11-02T14:05:33.250Z", "26-11-02T14:05:33,250Z"})
        EXPECT_FALSE(date.match(QLatin1String(text)).hasMatch()) << text;

    Code code;  // booleans: the schema's two texts are the writer's
    EXPECT_TRUE(
        Frame::XmlSchema().contains("<xs:enumeration value=\"true\"/>\n      <xs:enumeration value=\"false\"/>"));
    const Frame::FieldInfo& reversed = *Frame::FindField(code.GetClassInfo(), QStringLiteral("reversed"));
    for (bool value : {true, false}) {
        code.Setreversed(value);
        EXPECT_EQ(Frame::FieldText(code, reversed), value ? QStringLiteral("true") : QStringLiteral("false"));
    }
}
