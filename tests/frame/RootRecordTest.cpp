// The root record and the rules that only a few classes' fields call on: the
// version gate of the XML and tagged forms, unknown elements, completeness
// through a mandatory child, files, booleans and ids read from text.

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

// A record that is complete with the least: a name and the parameter block's comment.
EmitterDossier minimalDossier(const char* name)
{
    EmitterDossier d;
    d.SetName(QString::fromUtf8(name));
    d.GetELINTParameter().SetComments(QStringLiteral("c"));
    return d;
}

}  // namespace

TEST(VersionGate, SameOrNewerReadsOverTheRecordOlderClearsItFirst)
{
    const EmitterDossier fresh;
    EXPECT_EQ(fresh.GetVersion(), QStringLiteral("1.8"));
    EXPECT_TRUE(fresh.GetInitialVersionLoaded().isNull());
    // 1.10 is 1.1 as a number, older than 1.8; text that is no number counts as
    // 0; no attribute at all is the oldest version.
    const struct {
        const char* attribute;
        bool keepsOld;
    } cases[] = {{" Version=\"1.8\"", true},
                 {" Version=\"1.80\"", true},
                 {" Version=\"2.0\"", true},
                 {" Version=\"1.7\"", false},
                 {" Version=\"1.10\"", false},
                 {" Version=\"draft\"", false},
                 {"", false}};
    for (const auto& c : cases) {
        EmitterDossier d = minimalDossier("Old");
        d.SetEmitterID(QStringLiteral("E-1"));
        ASSERT_TRUE(d.SetXmlString(
            QStringLiteral("<EmitterDossier%1><Name>New</Name></EmitterDossier>").arg(QLatin1String(c.attribute)),
            false));
        EXPECT_EQ(d.GetName(), QStringLiteral("New"));
        EXPECT_EQ(d.IsEmitterIDSet(), c.keepsOld) << c.attribute;
        EXPECT_EQ(d.GetInitialVersionLoaded(), QString::fromLatin1(c.attribute).section(QLatin1Char('"'), 1, 1));
        EXPECT_EQ(d.GetVersion(), QStringLiteral("1.8"));  // and so it is written
    }
    // Neither Reset nor comparison looks at the version read.
    EmitterDossier older;
    ASSERT_TRUE(
        older.SetXmlString(QStringLiteral("<EmitterDossier Version=\"1.7\"><Name>N</Name></EmitterDossier>"), false));
    older.Reset();
    EXPECT_EQ(older.GetInitialVersionLoaded(), QStringLiteral("1.7"));
    EXPECT_EQ(older, EmitterDossier());

    // The tagged form: patch "1.8" to "1.7" in the version record, its last code unit.
    QByteArray bytes = minimalDossier("New").GetBinaryRepresentationAsQByteArray();
    const int at = bytes.indexOf(QByteArray::fromHex("0031002e0038"));
    ASSERT_GT(at, 0);
    bytes[at + 5] = '7';
    EmitterDossier d = minimalDossier("Old");
    d.SetEmitterID(QStringLiteral("E-1"));
    ASSERT_TRUE(d.SetBinaryRepresentation(bytes));
    EXPECT_EQ(d.GetInitialVersionLoaded(), QStringLiteral("1.7"));
    EXPECT_FALSE(d.IsEmitterIDSet());
    EXPECT_EQ(d.GetName(), QStringLiteral("New"));
}

TEST(VersionGate, UnknownElementsAreReportedAndEnteredInCurrentInputAndSkippedInOlder)
{
    EmitterDossier d;
    auto logger = attachLogger(d);
    ASSERT_TRUE(d.SetXmlString(QStringLiteral("<EmitterDossier Version=\"2.0\">"
                                              "<Extra><Name>Inner</Name><Other>x</Other></Extra></EmitterDossier>"),
                               false));
    EXPECT_EQ(d.GetName(), QStringLiteral("Inner"));  // an inner element that matches is taken
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Unknown Tag 'Extra' in 'EmitterDossier'."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("Unknown Tag 'Other' in 'EmitterDossier'."));

    EmitterDossier strict;
    strict.SetValidate(true);
    auto strictLogger = attachLogger(strict);
    EXPECT_FALSE(
        strict.SetXmlString(QStringLiteral("<EmitterDossier Version=\"1.8\"><Extra/></EmitterDossier>"), false));
    ASSERT_FALSE(strictLogger->entries.isEmpty());
    EXPECT_EQ(strictLogger->entries[0].level, RECORDKIT::ERROR);

    EmitterDossier old;
    auto oldLogger = attachLogger(old);
    ASSERT_TRUE(old.SetXmlString(QStringLiteral("<EmitterDossier Version=\"1.7\"><Extra><Name>Inner</Name></Extra>"
                                                "<EmitterID>E</EmitterID></EmitterDossier>"),
                                 false));
    EXPECT_TRUE(oldLogger->entries.isEmpty());
    EXPECT_FALSE(old.IsNameSet());
    EXPECT_EQ(old.GetEmitterID(), QStringLiteral("E"));
}

TEST(RootRecord, CompletenessGoesThroughAMandatoryChild)
{
    EmitterDossier d;
    d.SetName(QStringLiteral(""));  // an empty name is a name
    EXPECT_FALSE(d.HasData());
    EXPECT_TRUE(d.AnyData());
    d.SetValidate(true);
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { d.Check(); }),
              QStringLiteral("ELINTParameter: Please set Comments properly."));
    EXPECT_FALSE(d.IsELINTParameterSet());
    EXPECT_THROW(d.GetXmlString(), OutOfRangeException);
    EXPECT_THROW(tagged(d, EmitterDossier::id), OutOfRangeException);

    // With the flag off the child's absence is logged and nothing written for it.
    d.SetValidate(false);
    auto logger = attachLogger(d);
    EXPECT_EQ(d.GetXmlString(), document("<EmitterDossier Version=\"1.8\">\n  <Name></Name>\n</EmitterDossier>"));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Parameters for ELINTParameter are not set properly in 'EmitterDossier'."));
}

TEST(RootRecord, ListsOfChildrenStandOneByOneAndReadingAppends)
{
    EmitterDossier d = minimalDossier("N");
    d.GetFilter();  // an empty set list: no tagged record, and in raw its bit and a count of 0
    EXPECT_EQ(tagged(d, EmitterDossier::id), tagged(minimalDossier("N"), EmitterDossier::id));
    EXPECT_TRUE(raw(d).endsWith(QByteArray::fromHex("00000000")));
    EXPECT_FALSE(raw(minimalDossier("N")).endsWith(QByteArray::fromHex("00000000")));
    Filter f;
    f.SetName(QStringLiteral("F"));
    f.SetComments(QStringLiteral("C"));
    d.AppendFilter(f);
    ASSERT_TRUE(d.SetXmlString(d.GetXmlString(), false));
    QByteArray plain = minimalDossier("N").GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(d.SetBinaryRepresentation(plain));
    EXPECT_EQ(d.GetFilter().size(), 2);  // the XML read appended; a record without filters adds none
}

TEST(RootRecord, FilesSaveLoadAndAFailedSaveLeavesTheOldFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("alternatives.xml"));
    Alternatives list;
    list.AppendAlternative(makeAlternative("Fan Song", "DB-0042", 0.75));
    ASSERT_TRUE(list.SaveXml(path));
    Alternatives back;
    ASSERT_TRUE(back.LoadXml(path));
    EXPECT_EQ(back, list);
    QFile file(path);
    Alternatives viaDevice;
    ASSERT_TRUE(viaDevice.LoadXml(&file));
    EXPECT_EQ(viaDevice, list);
    QFile binary(dir.filePath(QStringLiteral("alternatives.bin")));
    ASSERT_TRUE(binary.open(QIODevice::WriteOnly));
    binary.write(list.GetCompressedBinaryRepresentationAsQByteArray(6));
    binary.close();
    Alternatives viaBinary;
    ASSERT_TRUE(viaBinary.LoadBinary(&binary));
    EXPECT_EQ(viaBinary, list);

    Alternatives bad;
    bad.SetValidate(true);
    auto logger = attachLogger(bad);
    bad.GetAlternative().append(Alternative());
    EXPECT_FALSE(bad.SaveXml(path));
    EXPECT_FALSE(logger->entries.isEmpty());
    Alternatives kept;
    ASSERT_TRUE(kept.LoadXml(path));
    EXPECT_EQ(kept, list);
    EXPECT_FALSE(bad.LoadXml(dir.filePath(QStringLiteral("missing.xml"))));
}

TEST(TextValues, BooleansAreFalseOnlyForZeroAndFalseAndAnEmptyOneIsReportedNeverRaised)
{
    const struct {
        const char* text;
        bool expected;
    } cases[] = {{"FALSE", false}, {"False", false}, {"false", false}, {"0", false},
                 {"no", true},     {"1", true},      {"abc", true},    {"TRUE", true}};
    for (const auto& c : cases) {
        Code code;
        code.SetValidate(true);
        auto logger = attachLogger(code);
        ASSERT_TRUE(code.SetXmlString(QStringLiteral("<Code reversed=\"%1\" name=\"a\">1</Code>").arg(c.text), false));
        EXPECT_EQ(code.Getreversed(), c.expected) << c.text;
        EXPECT_TRUE(logger->entries.isEmpty()) << c.text;
    }
    for (bool validate : {false, true}) {
        Code code;
        code.SetValidate(validate);
        auto logger = attachLogger(code);
        EXPECT_NO_THROW(code.SetXmlString(QStringLiteral("<Code reversed=\"\" name=\"a\">10</Code>"), false));
        EXPECT_TRUE(code.IsreversedSet() && !code.Getreversed());
        EXPECT_EQ(code.GetValue(), QStringLiteral("10"));  // reading went on
        ASSERT_EQ(logger->entries.size(), 1);
        EXPECT_EQ(logger->entries[0].level, validate ? RECORDKIT::ERROR : RECORDKIT::WARNING);
        EXPECT_EQ(logger->entries[0].message,
                  QStringLiteral("Please set a value or a default for the boolean 'reversed' in 'Code'."));
    }
}
