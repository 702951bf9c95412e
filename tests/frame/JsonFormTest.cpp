// JSON: the text that ToJson writes, what FromJson reads back, and the place
// and words of every fault it refuses.

#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QSet>

#include <EmitterDossierDoc/frame/ClassRegistry.h>
#include <EmitterDossierDoc/frame/Json.h>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;
using Frame::JsonLayout;

namespace {

QByteArray compact(const Frame::Record& record) { return Frame::ToJson(record, JsonLayout::Compact); }

// The error FromJson gives for `json` read into a fresh T, or "(read)" when it reads.
template <class T>
QString jsonError(const QByteArray& json)
{
    T record;
    QString error;
    return Frame::FromJson(record, json, &error) ? QStringLiteral("(read)") : error;
}

// "line 1, column C" of the first byte of `marker` in a one-line `json`.
QString at(const QByteArray& json, const char* marker)
{
    return QStringLiteral("line 1, column %1").arg(json.indexOf(marker) + 1);
}

// The XML document as the library writes it to a file.
QByteArray xmlBytes(const Frame::Record& record)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter writer(&buffer);
    RECORDKIT::WriteXmlDocument(record, writer);
    return bytes;
}

bool sameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

// --- The text ToJson writes --------------------------------------------------------

TEST(JsonText, LeafIsOneMemberNamedAfterItsClassWithItsSetProperties)
{
    AgeOutTime age;
    age.Setunit(age.NameTounit(QStringLiteral("s")));
    age.SetValue(12.5);
    EXPECT_EQ(compact(age), QByteArray(R"({"AgeOutTime":{"unit":"s","Value":12.5}})"));
    EXPECT_EQ(Frame::ToJson(age),
              QByteArray("{\n  \"AgeOutTime\": {\n    \"unit\": \"s\",\n    \"Value\": 12.5\n  }\n}\n"));
}

TEST(JsonText, UnsetPropertiesAreAbsentAndASetEmptyListIsAnEmptyArray)
{
    EXPECT_EQ(compact(AgeOutTime()), QByteArray(R"({"AgeOutTime":{}})"));
    Alternatives list;
    list.GetAlternative();  // marks the list present
    EXPECT_EQ(compact(list), QByteArray(R"({"Alternatives":{"Alternative":[]}})"));
    EXPECT_EQ(Frame::ToJson(list), QByteArray("{\n  \"Alternatives\": {\n    \"Alternative\": []\n  }\n}\n"));
}

TEST(JsonText, PropertiesFollowTheOrderOfWritingNotTheBits)
{
    // The unit's bit is the last, yet it is written first.
    BeamDuration d;
    d.SetMax(2);
    d.Setunit(BeamDuration::unit(0));
    EXPECT_EQ(compact(d), QByteArray(R"({"BeamDuration":{"unit":"ns","Max":2}})"));
}

TEST(JsonText, RootCarriesItsVersionFirstAndDatesInTheDocumentsText)
{
    EmitterDossier d;
    d.SetName(QStringLiteral("N"));
    d.SetPriority(d.NameToPriority(QStringLiteral("Normal")));
    d.SetDetectionTime(QDateTime(QDate(2026, 11, 2), QTime(14, 5, 33, 250), Qt::UTC));
    EXPECT_EQ(compact(d), QByteArray(R"({"EmitterDossier":{"Version":"1.8","Name":"N","Priority":"Normal",)"
                                     R"("DetectionTime":"2026-11-02T14:05:33,250Z"}})"));
}

TEST(JsonText, IntegersAboveTwoToThe53AreStrings)
{
    PulseItem item;
    item.Setid(quint64(1) << 53);
    item.SetPulseWidthID((quint64(1) << 53) + 1);
    item.SetModulationID(std::numeric_limits<quint64>::max());
    EXPECT_EQ(compact(item), QByteArray(R"({"PulseItem":{"id":9007199254740992,"PulseWidthID":"9007199254740993",)"
                                        R"("ModulationID":"18446744073709551615"}})"));
}

TEST(JsonText, DoublesInTheirShortestTextAndNonNumbersAsStrings)
{
    const std::pair<double, const char*> cases[] = {
        {0.1, "0.1"},
        {-0.0, "-0"},
        {3600, "3600"},
        {1e21, "1e+21"},
        {5e-324, "5e-324"},
        {std::numeric_limits<double>::quiet_NaN(), "\"NaN\""},
        {std::numeric_limits<double>::infinity(), "\"Infinity\""},
        {-std::numeric_limits<double>::infinity(), "\"-Infinity\""},
    };
    for (const auto& c : cases) {
        Alternative a;
        a.SetConfidence(c.first);
        EXPECT_EQ(compact(a), QByteArray(R"({"Alternative":{"Confidence":)") + c.second + "}}") << c.second;
    }
}

TEST(JsonText, TextsAreEscapedAndLoneSurrogatesKeptAsEscapes)
{
    Alternative a;
    a.SetName(QString::fromUtf8("q\"b\\n\n\t\x01\x7f\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80") + QChar(0xD800));
    EXPECT_EQ(compact(a), QByteArray("{\"Alternative\":{\"Name\":\"q\\\"b\\\\n\\n\\t\\u0001\x7f\xc3\xa9\xe2\x82\xac"
                                     "\xf0\x9f\x98\x80\\ud800\"}}"));
}

TEST(JsonText, ValuesTheSettersRefuseAreNull)
{
    AgeOutTime age;
    age.Setunit(age.GetInvalidunit());
    Modulations m;
    m.AppendModulation(m.NameToModulation(QStringLiteral("LFM")));
    m.AppendModulation(Modulations::Modulation(0xFF));
    EXPECT_EQ(compact(age), QByteArray(R"({"AgeOutTime":{"unit":null}})"));
    EXPECT_EQ(compact(m), QByteArray(R"({"Modulations":{"Modulation":["LFM",null]}})"));
}

// --- Round trips -------------------------------------------------------------------

TEST(JsonRoundTrip, ValuesComeBackExactlyAsTheyWere)
{
    const double doubles[] = {0.1,  1.0 / 3, 5e-324,  std::numeric_limits<double>::max(),     -0.0,
                              1e21, 2.5e-7,  -1e-310, std::numeric_limits<double>::infinity()};
    for (double value : doubles) {
        Alternative a;
        a.SetConfidence(value);
        Alternative back;
        ASSERT_TRUE(Frame::FromJson(back, Frame::ToJson(a))) << value;
        EXPECT_TRUE(sameBits(back.GetConfidence(), value)) << value;
    }
    Alternative nan;
    nan.SetConfidence(std::numeric_limits<double>::quiet_NaN());
    Alternative nanBack;
    ASSERT_TRUE(Frame::FromJson(nanBack, compact(nan)));
    EXPECT_TRUE(std::isnan(nanBack.GetConfidence()));

    for (quint64 id : {quint64(0), quint64(1) << 53, (quint64(1) << 53) + 1, std::numeric_limits<quint64>::max()}) {
        PulseItem item;
        item.Setid(id);
        PulseItem back;
        ASSERT_TRUE(Frame::FromJson(back, compact(item)));
        EXPECT_EQ(back.Getid(), id);
    }

    Alternative text;
    text.SetName(QString::fromUtf8("q\"\\\n\x01\xc3\xa9\xf0\x9f\x98\x80") + QChar(0xDC00) + QChar(0xD800));
    Alternative textBack;
    ASSERT_TRUE(Frame::FromJson(textBack, Frame::ToJson(text)));
    EXPECT_EQ(textBack.GetName(), text.GetName());
}

TEST(JsonRoundTrip, EmptyObjectsSetTheirChildAndItems)
{
    PulseItem item;
    ASSERT_TRUE(Frame::FromJson(item, R"({"PulseItem":{"NormLevel":{}}})"));
    EXPECT_TRUE(item.IsNormLevelSet());
    EXPECT_FALSE(item.GetNormLevel().IsValueSet());
    EXPECT_EQ(compact(item), QByteArray(R"({"PulseItem":{"NormLevel":{}}})"));

    PulseList list;
    ASSERT_TRUE(Frame::FromJson(list, R"({"PulseList":{"PulseItem":[{},{"id":7}]}})"));
    ASSERT_EQ(list.GetPulseItem().size(), 2);
    EXPECT_EQ(list.GetPulseItem()[1].Getid(), 7u);
    EXPECT_EQ(compact(list), QByteArray(R"({"PulseList":{"PulseItem":[{},{"id":7}]}})"));
}

TEST(JsonRoundTrip, SamplesComeBackTheSameBytesFromXmlAndFromRaw)
{
    for (const char* file : {"dossier.xml", "alternatives.xml"}) {
        QFile sample(QStringLiteral(EDD_EXAMPLES_DIR "/") + QLatin1String(file));
        ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
        const QByteArray xml = sample.readAll();
        const Frame::ClassEntry* entry = Frame::FindClass(QString::fromLatin1(file).startsWith(QLatin1String("d"))
                                                              ? QStringLiteral("EmitterDossier")
                                                              : QStringLiteral("Alternatives"));
        std::unique_ptr<Frame::Record> fromXml(entry->create());
        ASSERT_TRUE(fromXml->SetXmlBytes(xml));
        std::unique_ptr<Frame::Record> fromJson(entry->create());
        ASSERT_TRUE(Frame::FromJson(*fromJson, Frame::ToJson(*fromXml)));
        EXPECT_EQ(xmlBytes(*fromJson), xml) << file;

        const QByteArray raw = Frame::RawFormBytes(*fromXml);
        std::unique_ptr<Frame::Record> fromRaw(entry->create());
        Frame::ReadRawForm(*fromRaw, raw);
        std::unique_ptr<Frame::Record> back(entry->create());
        ASSERT_TRUE(Frame::FromJson(*back, compact(*fromRaw)));
        EXPECT_EQ(Frame::RawFormBytes(*back), raw) << file;
    }
}

TEST(JsonRoundTrip, EveryObjectOfAFilledDossierComesBackEqualAsItsOwnDocument)
{
    const EmitterDossier dossier = filledDossier();
    QSet<qint64> classes;
    Frame::ForEachChecked(dossier, [&](const QString& path, const Frame::Record& object) {
        const Frame::ClassEntry* entry = Frame::FindClass(Frame::ClassId(object.GetClassInfo()));
        ASSERT_TRUE(entry) << path.toStdString();
        std::unique_ptr<Frame::Record> back(entry->create());
        QString error;
        ASSERT_TRUE(Frame::FromJson(*back, Frame::ToJson(object), &error))
            << path.toStdString() << ": " << error.toStdString();
        EXPECT_TRUE(back->IsEqualTo(object)) << path.toStdString();
        classes.insert(Frame::ClassId(object.GetClassInfo()));
    });
    EXPECT_EQ(classes.size(), Frame::AllClasses().size());
}

TEST(JsonRoundTrip, DossierOf50000PulsesComesBackTheSameBytes)
{
    const EmitterDossier original = filledDossier(50000, 50);
    const QString xml = original.GetXmlString();
    EmitterDossier fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(xml, false));
    EmitterDossier fromJson;
    ASSERT_TRUE(Frame::FromJson(fromJson, Frame::ToJson(fromXml)));
    EXPECT_EQ(fromJson.GetELINTParameter().GetSequence().GetPulseList().GetPulseItem().size(), 50000);
    EXPECT_TRUE(fromJson.GetXmlString() == xml);

    const QByteArray raw = Frame::RawFormBytes(original);
    EmitterDossier fromRaw;
    Frame::ReadRawForm(fromRaw, raw);
    EmitterDossier back;
    ASSERT_TRUE(Frame::FromJson(back, Frame::ToJson(fromRaw)));
    EXPECT_TRUE(Frame::RawFormBytes(back) == raw);
    EXPECT_EQ(back, original);
}

// --- What FromJson refuses, and where ------------------------------------------------

TEST(JsonFaults, SyntaxIsNamedByPathLineAndColumn)
{
    const QByteArray missingComma = R"({"AgeOutTime":{"unit":"s" "Value":1}})";
    EXPECT_EQ(jsonError<AgeOutTime>(missingComma),
              QStringLiteral("JSON error at $.AgeOutTime (%1): expected ',' or '}' after a property, found a string")
                  .arg(at(missingComma, "\"Value")));
    EXPECT_EQ(jsonError<AgeOutTime>(""),
              QStringLiteral("JSON error at $ (line 1, column 1): expected an object, found the end of the text"));
    const QByteArray cut = R"({"Alternative":{"Name":"abc)";
    EXPECT_EQ(jsonError<Alternative>(cut),
              QStringLiteral("JSON error at $.Alternative.Name (line 1, column 28): the string has no end"));
    const QByteArray trailing = R"({"AgeOutTime":{}} x)";
    EXPECT_EQ(
        jsonError<AgeOutTime>(trailing),
        QStringLiteral("JSON error at $ (%1): expected the end of the document, found 'x'").arg(at(trailing, "x")));
    const QByteArray badUtf8 = "{\"Alternative\":{\"Name\":\"a\xff\"}}";
    EXPECT_EQ(
        jsonError<Alternative>(badUtf8),
        QStringLiteral("JSON error at $.Alternative.Name (%1): the text is not valid UTF-8").arg(at(badUtf8, "\xff")));
    const QByteArray overlong = "{\"Alternative\":{\"Name\":\"\xc0\xaf\"}}";
    EXPECT_EQ(
        jsonError<Alternative>(overlong),
        QStringLiteral("JSON error at $.Alternative.Name (%1): the text is not valid UTF-8").arg(at(overlong, "\xc0")));
    const QByteArray badEscape = R"({"Alternative":{"Name":"\x41"}})";
    EXPECT_EQ(
        jsonError<Alternative>(badEscape),
        QStringLiteral("JSON error at $.Alternative.Name (%1): \\x is no escape of JSON").arg(at(badEscape, "\\")));
    const QByteArray trailingComma = R"({"AgeOutTime":{"unit":"s",}})";
    EXPECT_EQ(jsonError<AgeOutTime>(trailingComma),
              QStringLiteral("JSON error at $.AgeOutTime (%1): expected the name of a property, found '}'")
                  .arg(at(trailingComma, "}")));
}

TEST(JsonFaults, LinesAndColumnsCountLineBreaksAndCharacters)
{
    // Line 3 holds two characters of two bytes each before the fault.
    const QByteArray json =
        "{\n  \"Alternative\": {\n    \"Name\": \"\xc3\xa9\xc3\xa9\", \"Confidence\": true\n  }\n}\n";
    EXPECT_EQ(jsonError<Alternative>(json),
              QStringLiteral(
                  "JSON error at $.Alternative.Confidence (line 3, column 33): expected a number, found a boolean"));
}

TEST(JsonFaults, ShapeOtherThanTheClassIsRefused)
{
    const QByteArray unknown = R"({"AgeOutTime":{"Unit":"s"}})";
    EXPECT_EQ(jsonError<AgeOutTime>(unknown),
              QStringLiteral("JSON error at $.AgeOutTime (%1): AgeOutTime has no property \"Unit\"")
                  .arg(at(unknown, "\"Unit")));
    const QByteArray twice = R"({"AgeOutTime":{"unit":"s","unit":"s"}})";
    EXPECT_EQ(jsonError<AgeOutTime>(twice),
              QStringLiteral("JSON error at $.AgeOutTime (line 1, column 27): \"unit\" is given twice"));
    const QByteArray name = R"({"AgeOutTime":{"unit":"min"}})";
    EXPECT_EQ(
        jsonError<AgeOutTime>(name),
        QStringLiteral("JSON error at $.AgeOutTime.unit (%1): \"min\" is not a name of unit").arg(at(name, "\"min")));
    const QByteArray other = R"({"Bearing":{}})";
    EXPECT_EQ(jsonError<AgeOutTime>(other),
              QStringLiteral("JSON error at $ (line 1, column 2): the document holds \"Bearing\", not AgeOutTime"));
    const QByteArray two = R"({"AgeOutTime":{},"AgeOutTime":{}})";
    EXPECT_EQ(
        jsonError<AgeOutTime>(two),
        QStringLiteral("JSON error at $ (%1): a document holds one record, and this one holds more").arg(at(two, ",")));
    const QByteArray lateVersion = R"({"EmitterDossier":{"Name":"x","Version":"1.8"}})";
    EXPECT_EQ(jsonError<EmitterDossier>(lateVersion),
              QStringLiteral("JSON error at $.EmitterDossier (%1): \"Version\" stands first in EmitterDossier")
                  .arg(at(lateVersion, "\"Version")));
}

TEST(JsonFaults, ValuesOfTheWrongTypeAreRefused)
{
    const struct {
        const char* json;
        const char* path;
        const char* marker;
        const char* what;
    } cases[] = {
        {R"({"AgeOutTime":{"Value":"12.5"}})", "AgeOutTime.Value", "\"12", "expected a number, found a string"},
        {R"({"AgeOutTime":{"unit":1}})", "AgeOutTime.unit", "1", "expected a name, found a number"},
        {R"({"PulseItem":{"id":-1}})", "PulseItem.id", "-", "expected an unsigned integer, found a number"},
        {R"({"PulseItem":{"id":1.0}})", "PulseItem.id", "1", "expected an unsigned integer, found a number"},
        {R"({"PulseItem":{"id":"12a"}})", "PulseItem.id", "\"12a", "expected an unsigned integer, found a string"},
        {R"({"PulseItem":{"id":18446744073709551616}})", "PulseItem.id", "18",
         "18446744073709551616 is beyond the range of an unsigned 64-bit integer"},
        {R"({"PulseItem":{"NormLevel":[]}})", "PulseItem.NormLevel", "[", "expected an object, found an array"},
        {R"({"Alternative":{"Confidence":1e999}})", "Alternative.Confidence", "1e",
         "1e999 is beyond the range of a double"},
        {R"({"Alternative":{"Confidence":01}})", "Alternative", "1}",
         "expected ',' or '}' after a property, found a number"},
        {R"({"Alternative":{"Name":nul}})", "Alternative.Name", "nul", "expected a string, found 'n'"},
        {R"({"TOA":{"inverse":1}})", "TOA.inverse", "1", "expected true or false, found a number"},
        {R"({"Alternatives":{"Alternative":{}}})", "Alternatives.Alternative", "{}",
         "expected an array, found an object"},
        {R"({"Modulations":{"Modulation":["LFM","Chirp"]}})", "Modulations.Modulation[1]", "\"Chirp",
         "\"Chirp\" is not a name of Modulation"},
        {R"({"EmitterDossier":{"DetectionTime":0}})", "EmitterDossier.DetectionTime", "0",
         "expected a date text, found a number"},
    };
    for (const auto& c : cases) {
        const QByteArray json(c.json);
        QString error;
        const Frame::ClassEntry* entry = Frame::FindClass(QString::fromLatin1(json.mid(2, json.indexOf('"', 2) - 2)));
        ASSERT_TRUE(entry) << c.json;
        std::unique_ptr<Frame::Record> record(entry->create());
        EXPECT_FALSE(Frame::FromJson(*record, json, &error)) << c.json;
        const int column = json.indexOf(c.marker, json.indexOf(':') + 1) + 1;
        EXPECT_EQ(error, QStringLiteral("JSON error at $.%1 (line 1, column %2): %3")
                             .arg(QLatin1String(c.path))
                             .arg(column)
                             .arg(QLatin1String(c.what)))
            << c.json;
    }
}

TEST(JsonFaults, FaultGoesToTheLoggerAndWhatWasReadBeforeStays)
{
    Alternatives list;
    auto logger = attachLogger(list);
    list.SetValidate(true);
    const QByteArray json = R"({"Alternatives":{"Alternative":[{"Name":"A","DatabaseID":"1","Confidence":0.5},)"
                            R"({"Name":"B","DatabaseID":7}]}})";
    EXPECT_FALSE(Frame::FromJson(list, json));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral(
                  "JSON error at $.Alternatives.Alternative[1].DatabaseID (%1): expected a string, found a number")
                  .arg(at(json, "7}")));
    // The item whose read failed is not left in the list.
    ASSERT_EQ(list.GetAlternative().size(), 1);
    EXPECT_EQ(list.GetAlternative()[0].GetName(), QStringLiteral("A"));
}

// --- What the library reports while storing, by the validate flag -------------------

TEST(JsonReports, RefusedValuesWarnWithoutTheFlagAndEndTheReadWithIt)
{
    const QByteArray json = R"({"AgeOutTime":{"unit":null,"Value":1}})";
    AgeOutTime lenient;
    auto warnings = attachLogger(lenient);
    ASSERT_TRUE(Frame::FromJson(lenient, json));
    ASSERT_EQ(warnings->entries.size(), 1);
    EXPECT_EQ(warnings->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(warnings->entries[0].message,
              QStringLiteral("enum is not valid (classname=AgeOutTime,membername=m_unit)"));
    EXPECT_TRUE(lenient.IsunitSet());
    EXPECT_EQ(quint8(lenient.Getunit()), 0xFF);
    EXPECT_EQ(lenient.GetValue(), 1.0);
    EXPECT_EQ(compact(lenient), json);

    AgeOutTime strict;
    strict.SetValidate(true);
    auto errors = attachLogger(strict);
    QString error;
    EXPECT_FALSE(Frame::FromJson(strict, json, &error));
    EXPECT_EQ(error, QStringLiteral("enum is not valid (classname=AgeOutTime,membername=m_unit)"));
    ASSERT_EQ(errors->entries.size(), 1);
    EXPECT_EQ(errors->entries[0].level, RECORDKIT::ERROR);
    EXPECT_FALSE(strict.IsValueSet());
}

TEST(JsonReports, IncompleteItemsFollowTheAppendRule)
{
    const QByteArray json = R"({"Alternatives":{"Alternative":[{"Name":"A"}]}})";
    Alternatives lenient;
    auto warnings = attachLogger(lenient);
    ASSERT_TRUE(Frame::FromJson(lenient, json));
    EXPECT_EQ(lenient.GetAlternative().size(), 0 + 1);
    ASSERT_EQ(warnings->entries.size(), 1);
    EXPECT_EQ(warnings->entries[0].message,
              QStringLiteral("Alternatives: Tried to append not completely defined or invalid item Alternative."));

    Alternatives strict;
    strict.SetValidate(true);
    EXPECT_FALSE(Frame::FromJson(strict, json));
    EXPECT_EQ(strict.GetAlternative().size(), 0);
}

TEST(JsonReports, NullTextIsStoredThroughTheSetter)
{
    Alternative a;
    auto logger = attachLogger(a);
    ASSERT_TRUE(Frame::FromJson(a, R"({"Alternative":{"Name":null}})"));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Alternative: Please set Name properly (origin: Setter)."));
    EXPECT_TRUE(a.IsNameSet());
    EXPECT_TRUE(a.GetName().isNull());
}

// --- Recognising a document ---------------------------------------------------------

TEST(JsonDocument, IsRecognisedByItsFirstCharacterAndNamesItsClass)
{
    EXPECT_TRUE(Frame::LooksLikeJson("\xEF\xBB\xBF \n\t{"));
    EXPECT_FALSE(Frame::LooksLikeJson(" <EmitterDossier/>"));
    EXPECT_FALSE(Frame::LooksLikeJson(""));
    EXPECT_EQ(Frame::JsonRootName(R"( {"Alternatives": {}})"), QStringLiteral("Alternatives"));
    QString problem;
    EXPECT_EQ(Frame::JsonRootName("[1]", &problem), QString());
    EXPECT_EQ(problem, QStringLiteral("JSON error at $ (line 1, column 1): expected an object, found an array"));
    // A document with a byte order mark reads as one without.
    AgeOutTime age;
    ASSERT_TRUE(Frame::FromJson(age, "\xEF\xBB\xBF{\"AgeOutTime\":{\"Value\":2}}"));
    EXPECT_EQ(age.GetValue(), 2.0);
}

// --- Hostile input -------------------------------------------------------------------

TEST(JsonHostile, EveryCutIsRefusedAndEveryFlippedBitReadsOrIsRefused)
{
    Alternatives sample;
    QFile file(QStringLiteral(EDD_EXAMPLES_DIR "/alternatives.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ASSERT_TRUE(sample.SetXmlBytes(file.readAll()));
    const QByteArray json = compact(sample);
    for (int size = 0; size < json.size(); ++size) {
        Alternatives cut;
        EXPECT_FALSE(Frame::FromJson(cut, json.left(size))) << size;
    }
    int refused = 0;
    for (int bit = 0; bit < 8 * json.size(); ++bit) {
        QByteArray flipped = json;
        flipped[bit / 8] = char(flipped[bit / 8] ^ (1 << (bit % 8)));
        Alternatives read;
        if (!Frame::FromJson(read, flipped)) {
            ++refused;
            continue;
        }
        // Whatever is read writes a document that reads back to the same record.
        Alternatives back;
        ASSERT_TRUE(Frame::FromJson(back, Frame::ToJson(read))) << bit;
        EXPECT_EQ(compact(back), compact(read)) << bit;
    }
    EXPECT_GT(refused, 4 * json.size());
}
