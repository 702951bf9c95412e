// Code sequences: the list of named codes, its name and bit sequence, and the
// code records with their reversed flag and text content.

#include <gtest/gtest.h>

#include <QXmlStreamReader>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

// Reads through ProcessXml directly, so that a raised fault reaches the test.
void readXml(RECORDKIT::IRKObject& object, const QString& text)
{
    QXmlStreamReader reader(text);
    ASSERT_TRUE(reader.readNextStartElement());
    object.ProcessXml(reader);
}

Code makeCode(bool reversed, const char* name, const char* value)
{
    Code c;
    c.Setreversed(reversed);
    c.Setname(QString::fromUtf8(name));
    c.SetValue(QString::fromUtf8(value));
    return c;
}

CodeSequence makeSequence()
{
    CodeSequence s;
    s.Setname(QStringLiteral("S"));
    s.SetbitSequence(QStringLiteral("01"));
    s.AppendCode(makeCode(true, "c1", "0110"));
    return s;
}

const char* CodeRecords = "28005a22 00000001 01"
                          "cb4cf645 00000006 00000002 6331"
                          "af97990a 00000008 00000004 30313130";

}  // namespace

TEST(Code, BooleanAttributeIsFalseOnlyForZeroAndFalseInAnyCase)
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
        readXml(code, QStringLiteral("<Code reversed=\"%1\" name=\"a\">1</Code>").arg(QLatin1String(c.text)));
        EXPECT_TRUE(code.IsreversedSet()) << c.text;
        EXPECT_EQ(code.Getreversed(), c.expected) << c.text;
        EXPECT_TRUE(logger->entries.isEmpty()) << c.text;
    }
}

TEST(Code, EmptyBooleanIsFalseAndLoggedButNeverRaised)
{
    for (bool validate : {false, true}) {
        Code code;
        code.SetValidate(validate);
        auto logger = attachLogger(code);
        EXPECT_NO_THROW(readXml(code, QStringLiteral("<Code reversed=\"\" name=\"a\">10</Code>")));
        EXPECT_TRUE(code.IsreversedSet());
        EXPECT_FALSE(code.Getreversed());
        EXPECT_EQ(code.GetValue(), QStringLiteral("10"));  // reading went on
        EXPECT_TRUE(code.HasData());
        ASSERT_EQ(logger->entries.size(), 1);
        EXPECT_EQ(logger->entries[0].level, validate ? RECORDKIT::ERROR : RECORDKIT::WARNING);
        EXPECT_EQ(logger->entries[0].message,
                  QStringLiteral("Please set a value or a default for the boolean 'reversed' in 'Code'."));
    }
}

TEST(Code, EmptyElementIsCompleteAndMissingReversedIsNot)
{
    Code empty;
    ASSERT_TRUE(empty.SetXmlString(QStringLiteral("<Code reversed=\"true\" name=\"a\"/>"), false));
    EXPECT_TRUE(empty.IsValueSet());
    EXPECT_FALSE(empty.GetValue().isNull());
    EXPECT_TRUE(empty.GetValue().isEmpty());
    EXPECT_TRUE(empty.HasData());
    EXPECT_NO_THROW(empty.Check());

    Code noFlag;
    ASSERT_TRUE(noFlag.SetXmlString(QStringLiteral("<Code name=\"a\">1</Code>"), false));
    EXPECT_FALSE(noFlag.IsreversedSet());  // the default false is not applied
    EXPECT_FALSE(noFlag.HasData());
    EXPECT_TRUE(noFlag.AnyData());

    Code text;
    ASSERT_TRUE(text.SetXmlString(QStringLiteral("<Code reversed=\"0\" name=\"x\">  +-+ a7 </Code>"), false));
    EXPECT_EQ(text.GetValue(), QStringLiteral("  +-+ a7 "));
}

TEST(Code, CheckAndSettersReportWithTheObjectName)
{
    Code code;
    auto logger = attachLogger(code);
    code.Check(true);
    ASSERT_EQ(logger->entries.size(), 3);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Code: Please set reversed properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("Code: Please set name properly."));
    EXPECT_EQ(logger->entries[2].message, QStringLiteral("Code: Please set Value properly."));

    code.SetValidate(true);
    try {
        code.SetValue(QString());
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("Code: Please set Value properly (origin: Setter)."));
    }
    EXPECT_FALSE(code.IsValueSet());
}

TEST(Code, WritesReversedOnlyWhenSetAndTheTextUnconditionally)
{
    EXPECT_EQ(makeCode(false, "c1", "0110").GetXmlString(),
              document(QStringLiteral("<Code reversed=\"false\" name=\"c1\">0110</Code>")));
    Code noFlag;
    noFlag.Setname(QStringLiteral("n"));
    EXPECT_EQ(noFlag.GetXmlString(), document(QStringLiteral("<Code name=\"n\"></Code>")));
}

TEST(Code, TaggedLayoutUsesTheTextContentTag)
{
    EXPECT_EQ(tagged(makeCode(true, "c1", "0110"), 0x8061cc61), hex("8061cc61 00000027") + hex(CodeRecords));
    // reversed is under its bit; name and Value always, null as a null byte array
    EXPECT_EQ(tagged(Code(), 1), hex("00000001 00000018 cb4cf645 00000004 ffffffff af97990a 00000004 ffffffff"));

    Code back;
    readTagged(back, hex(CodeRecords), 39);
    EXPECT_EQ(back, makeCode(true, "c1", "0110"));
    Code flagOnly;
    readTagged(flagOnly, hex("28005a22 00000001 00"), 9);
    EXPECT_TRUE(flagOnly.IsreversedSet());
    EXPECT_FALSE(flagOnly.Getreversed());
}

TEST(Code, RawLayoutIsBitmapFlagAndTwoStrings)
{
    const QByteArray bytes = hex("07 01 00000004 00630031 00000008 0030003100310030");
    EXPECT_EQ(raw(makeCode(true, "c1", "0110")), bytes);
    Code back;
    readRaw(back, bytes);
    EXPECT_EQ(back, makeCode(true, "c1", "0110"));
}

TEST(CodeSequence, CheckReportsCodeThenItsItemsThenNameAndBitSequence)
{
    CodeSequence s;
    auto logger = attachLogger(s);
    s.Check(true);
    ASSERT_EQ(logger->entries.size(), 3);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("CodeSequence: Please set Code properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("CodeSequence: Please set name properly."));
    EXPECT_EQ(logger->entries[2].message, QStringLiteral("CodeSequence: Please set bitSequence properly."));

    logger->entries.clear();
    Code incomplete;
    incomplete.Setreversed(true);
    incomplete.SetValue(QStringLiteral("1"));
    s.SetCode({incomplete});
    s.Setname(QStringLiteral("S"));
    s.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Code: Please set name properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("CodeSequence: Please set bitSequence properly."));

    s.SetValidate(true);
    try {
        s.SetbitSequence(QString());
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("CodeSequence: Please set bitSequence properly (origin: Setter)."));
    }
}

TEST(CodeSequence, HasDataNeedsACodeAndBothTexts)
{
    CodeSequence s;
    s.Setname(QStringLiteral(""));
    s.SetbitSequence(QStringLiteral(""));
    EXPECT_FALSE(s.HasData());
    EXPECT_TRUE(s.AnyData());
    s.AppendCode(makeCode(false, "c", "1"));
    EXPECT_TRUE(s.HasData());
    s.Resetname();
    EXPECT_FALSE(s.HasData());
}

TEST(CodeSequence, NameAndBitSequenceAreAcceptedAsElements)
{
    CodeSequence s;
    ASSERT_TRUE(s.SetXmlString(QStringLiteral("<CodeSequence><name>S</name><bitSequence>01</bitSequence>"
                                              "<Code reversed=\"true\" name=\"c1\">0110</Code></CodeSequence>"),
                               false));
    EXPECT_EQ(s, makeSequence());
    EXPECT_EQ(s.GetXmlString(), document(QStringLiteral("<CodeSequence name=\"S\" bitSequence=\"01\">\n"
                                                        "  <Code reversed=\"true\" name=\"c1\">0110</Code>\n"
                                                        "</CodeSequence>")));
}

TEST(CodeSequence, CodeWithoutReversedIsRefusedWithValidationOn)
{
    Code noFlag;
    noFlag.Setname(QStringLiteral("c"));
    noFlag.SetValue(QStringLiteral("1"));
    CodeSequence direct;
    direct.SetValidate(true);
    EXPECT_THROW(direct.AppendCode(noFlag), IncompleteDefinitionException);
    EXPECT_FALSE(direct.IsCodeSet());
    EXPECT_TRUE(direct.GetCode().isEmpty());

    CodeSequence s;
    s.SetValidate(true);
    try {
        readXml(s,
                QStringLiteral("<CodeSequence name=\"S\" bitSequence=\"1\"><Code name=\"c\">1</Code></CodeSequence>"));
        FAIL() << "no exception";
    } catch (const IncompleteDefinitionException& e) {
        EXPECT_EQ(e.GetMessage(),
                  QStringLiteral("CodeSequence: Tried to append not completely defined or invalid item Code."));
    }
    EXPECT_FALSE(s.IsCodeSet());
    EXPECT_TRUE(s.GetCode().isEmpty());
}

TEST(CodeSequence, CodeWithoutReversedIsKeptAndWrittenWithValidationOff)
{
    CodeSequence s;
    auto logger = attachLogger(s);
    readXml(s, QStringLiteral("<CodeSequence name=\"S\" bitSequence=\"1\"><Code name=\"c\">1</Code></CodeSequence>"));
    ASSERT_EQ(s.GetCode().size(), 1);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("CodeSequence: Tried to append not completely defined or invalid item Code."));

    logger->entries.clear();
    EXPECT_EQ(s.GetXmlString(), document(QStringLiteral("<CodeSequence name=\"S\" bitSequence=\"1\">\n"
                                                        "  <Code name=\"c\">1</Code>\n"
                                                        "</CodeSequence>")));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Parameters for Code are not set properly in 'CodeSequence'."));
}

TEST(CodeSequence, TaggedLayoutPutsTheTextsAheadOfTheCodes)
{
    const QByteArray records = hex("cb4cf645 00000005 00000001 53"
                                   "4f42a689 00000006 00000002 3031"
                                   "e5b5281d 0000002f 00000001 00000027") +
                               hex(CodeRecords);
    EXPECT_EQ(tagged(makeSequence(), 0x2844a5b0), hex("2844a5b0 00000052") + records);
    CodeSequence back;
    readTagged(back, records, 0x52);
    EXPECT_EQ(back, makeSequence());
}

TEST(CodeSequence, RawLayoutPutsTheTextsBehindTheCodes)
{
    const QByteArray bytes = hex("07 00000001"
                                 "07 01 00000004 00630031 00000008 0030003100310030"
                                 "00000002 0053 00000004 00300031");
    EXPECT_EQ(raw(makeSequence()), bytes);
    CodeSequence back;
    readRaw(back, bytes);
    EXPECT_EQ(back, makeSequence());
}
