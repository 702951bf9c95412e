// The files behind a result: file names as plain text, the original source
// with its wide-band I/Q object and selection, recordings and screenshots.

#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

Screenshot screenshot(const char* file, const char* comment)
{
    Screenshot s;
    s.SetFileName(QString::fromUtf8(file));
    s.SetComment(QString::fromUtf8(comment));
    return s;
}

}  // namespace

TEST(FilesRecord, NothingIsMandatoryAndEmptyObjectsWriteEmptyElements)
{
    const Files fresh;
    EXPECT_TRUE(fresh.HasData());
    EXPECT_FALSE(fresh.AnyData());
    EXPECT_FALSE(fresh.IsInitialized());
    EXPECT_TRUE(OriginalSource().HasData());
    EXPECT_TRUE(AdditionalRecording().HasData());

    Files f;
    f.SetValidate(true);
    EXPECT_NO_THROW(f.Check());
    EXPECT_EQ(f.GetXmlString(), document("<Files/>"));
    EXPECT_EQ(tagged(f, 0x6b094744), hex("6b094744 00000000"));
    EXPECT_EQ(raw(f), hex("00"));
    OriginalSource o;
    o.SetValidate(true);
    EXPECT_EQ(o.GetXmlString(), document("<OriginalSource/>"));
    AdditionalRecording a;
    a.SetValidate(true);
    EXPECT_EQ(a.GetXmlString(), document("<AdditionalRecording/>"));

    // A null name set with validation off: stored and warned about, then refused by Check.
    Files nullName;
    auto logger = attachLogger(nullName);
    nullName.SetPDWFileName(QString());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Files: Please set PDWFileName properly (origin: Setter)."));
    EXPECT_TRUE(nullName.IsPDWFileNameSet());
    EXPECT_FALSE(nullName.AnyData());  // a bit alone is no data
    expectRaised<OutOfRangeException>([&] { nullName.Check(); },
                                      QStringLiteral("Files: Please set PDWFileName properly."));
    AdditionalRecording strict;
    strict.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { strict.SetWBIQFileName(QString()); },
                                      QStringLiteral(
                                          "AdditionalRecording: Please set WBIQFileName properly (origin: Setter)."));
    EXPECT_FALSE(strict.IsWBIQFileNameSet());
}

TEST(FilesRecord, WideBandFileIsTextUnderFilesAndAnObjectUnderTheSource)
{
    Files f;
    f.SetWBIQFileName(QStringLiteral("a.wav"));
    EXPECT_EQ(f.GetXmlString(), document("<Files>\n  <WBIQFileName>a.wav</WBIQFileName>\n</Files>"));
    EXPECT_EQ(tagged(f, 0x6b094744), hex("6b094744 00000011 0b888c9c 00000009 00000005 612e776176"));
    EXPECT_EQ(raw(f), (Bytes() << quint8(0x10) << QStringLiteral("a.wav")).bytes());

    OriginalSource o;
    o.GetWBIQFileName().Settype(WBIQFileName::type(2));
    o.GetWBIQFileName().SetValue(QStringLiteral("a.wav"));
    EXPECT_EQ(o.GetXmlString(),
              document("<OriginalSource>\n  <WBIQFileName type=\"Wav\">a.wav</WBIQFileName>\n</OriginalSource>"));
    EXPECT_EQ(tagged(o, 0x61998cad), hex("61998cad 00000028 6c1bc87f 00000020 a1f0ee2d 00000007 00000003 576176"
                                         "af97990a 00000009 00000005 612e776176"));
    EXPECT_EQ(raw(o), (Bytes() << quint8(0x10) << quint8(0x03) << qint8(2) << QStringLiteral("a.wav")).bytes());

    // The "type" attribute is dropped under Files and taken under OriginalSource.
    Files readFiles;
    ASSERT_TRUE(
        readFiles.SetXmlString(QStringLiteral("<Files><WBIQFileName type=\"Vita49\">b.iq</WBIQFileName></Files>"),
                               false));
    EXPECT_EQ(readFiles.GetWBIQFileName(), QStringLiteral("b.iq"));
    EXPECT_EQ(readFiles.GetXmlString(), document("<Files>\n  <WBIQFileName>b.iq</WBIQFileName>\n</Files>"));
    OriginalSource readSource;
    ASSERT_TRUE(readSource.SetXmlString(
        QStringLiteral("<OriginalSource><WBIQFileName type=\"Vita49\">b.iq</WBIQFileName></OriginalSource>"), false));
    EXPECT_TRUE(readSource.IsWBIQFileNameSet());
    EXPECT_EQ(readSource.GetWBIQFileName().Gettype(), 5);
    EXPECT_EQ(readSource.GetWBIQFileName().GetValue(), QStringLiteral("b.iq"));

    // In the tagged form each class knows only its own tag and skips the other's.
    const QByteArray pdw = hex("62f5a3c4 00000005 00000001 70");
    Files byObjectTag;
    readTagged(byObjectTag, hex("6c1bc87f 00000009 00000005 612e776176") + pdw, 30);
    EXPECT_FALSE(byObjectTag.IsWBIQFileNameSet());
    EXPECT_EQ(byObjectTag.GetPDWFileName(), QStringLiteral("p"));
    OriginalSource byTextTag;
    readTagged(byTextTag, hex("0b888c9c 00000009 00000005 612e776176") + pdw, 30);
    EXPECT_FALSE(byTextTag.IsWBIQFileNameSet());
    EXPECT_EQ(byTextTag.GetPDWFileName(), QStringLiteral("p"));
}

TEST(FilesWideBandObject, EmptyTextCaseSensitiveTypeAndChecks)
{
    WBIQFileName empty;
    ASSERT_TRUE(empty.SetXmlString(QStringLiteral("<WBIQFileName/>"), false));
    EXPECT_TRUE(empty.IsValueSet());
    EXPECT_FALSE(empty.GetValue().isNull());
    EXPECT_TRUE(empty.GetValue().isEmpty());
    EXPECT_FALSE(empty.IstypeSet());
    EXPECT_TRUE(empty.HasData());
    EXPECT_NO_THROW(empty.Check());

    // Names are case sensitive: "wav" is none of them.
    WBIQFileName lower;
    auto logger = attachLogger(lower);
    ASSERT_TRUE(lower.SetXmlString(QStringLiteral("<WBIQFileName type=\"wav\">x</WBIQFileName>"), false));
    EXPECT_TRUE(lower.IstypeSet());
    EXPECT_EQ(lower.Gettype(), 0xFF);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("enum is not valid (classname=WBIQFileName,membername=m_type)"));
    expectRaised<OutOfRangeException>([&] { lower.Check(); },
                                      QStringLiteral("WBIQFileName: Please set type properly."));

    // The child's own fault comes through only while its bit is set.
    OriginalSource o;
    const OriginalSource& view = o;
    view.GetWBIQFileName();
    EXPECT_NO_THROW(o.Check());
    o.GetWBIQFileName();
    expectRaised<OutOfRangeException>([&] { o.Check(); }, QStringLiteral("WBIQFileName: Please set Value properly."));
}

TEST(FilesSelection, UnitIsWrittenFirstInTextFormsAndLastInRaw)
{
    Selection s;
    s.Setunit(Selection::unit(0));
    s.SetStart(1.005);
    s.SetStop(2.5);
    EXPECT_EQ(s.GetXmlString(),
              document("<Selection unit=\"ns\">\n  <Start>1.00</Start>\n  <Stop>2.50</Stop>\n</Selection>"));
    EXPECT_EQ(tagged(s, 0x621931df), hex("621931df 0000002e a5b3acfc 00000006 00000002 6e73"
                                         "0a4826f3 00000008 00000004 312e3030 6d033520 00000008 00000004 322e3530"));
    EXPECT_EQ(raw(s), (Bytes() << quint8(0x07) << 1.005 << 2.5 << qint8(0)).bytes());

    Selection exact;
    readRaw(exact, raw(s));
    EXPECT_EQ(exact.GetStart(), 1.005);
    EXPECT_TRUE(exact == s);
    Selection rounded;
    QByteArray bytes = s.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(rounded.SetBinaryRepresentation(bytes));
    EXPECT_EQ(rounded.GetStart(), 1.0);

    // The unit as an element; a stop before the start passes.
    Selection fromElements;
    ASSERT_TRUE(fromElements.SetXmlString(
        QStringLiteral("<Selection><unit>ns</unit><Start>5</Start><Stop>2</Stop></Selection>"), false));
    EXPECT_TRUE(fromElements.IsunitSet());
    EXPECT_TRUE(fromElements.HasData());
    EXPECT_NO_THROW(fromElements.Check());

    Selection none;
    auto logger = attachLogger(none);
    none.Check(true);
    ASSERT_EQ(logger->entries.size(), 3);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Selection: Please set Start properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("Selection: Please set Stop properly."));
    EXPECT_EQ(logger->entries[2].message, QStringLiteral("Selection: Please set unit properly."));
    none.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { none.Setunit(Selection::unit(1)); },
                                      QStringLiteral("enum is not valid (classname=Selection,membername=m_unit)"));
}

TEST(FilesScreenshots, ListRefusesIncompleteScreenshotsWithValidationOn)
{
    ScreenshotList strict;
    strict.SetValidate(true);
    Screenshot noComment;
    noComment.SetFileName(QStringLiteral("a.png"));
    EXPECT_FALSE(noComment.HasData());
    expectRaised<IncompleteDefinitionException>(
        [&] { strict.AppendScreenshot(noComment); },
        QStringLiteral("ScreenshotList: Tried to append not completely defined or invalid item Screenshot."));
    EXPECT_FALSE(strict.IsScreenshotSet());
    EXPECT_TRUE(strict.GetScreenshot().isEmpty());

    ScreenshotList lenient;
    auto logger = attachLogger(lenient);
    lenient.AppendScreenshot(noComment);
    EXPECT_EQ(lenient.GetScreenshot().size(), 1);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    expectRaised<OutOfRangeException>([&] { lenient.Check(); },
                                      QStringLiteral("Screenshot: Please set Comment properly."));

    // An empty comment is a comment.
    ScreenshotList list;
    list.SetValidate(true);
    list.AppendScreenshot(screenshot("a.png", ""));
    EXPECT_EQ(list.GetXmlString(), document("<ScreenshotList>\n  <Screenshot>\n    <FileName>a.png</FileName>\n"
                                            "    <Comment></Comment>\n  </Screenshot>\n</ScreenshotList>"));
    ScreenshotList two;
    two.AppendScreenshot(screenshot("a.png", "c"));
    EXPECT_EQ(tagged(two, 0x802a9698), hex("802a9698 0000002e 6e7d96ff 00000026 00000001 0000001e"
                                           "47c2b54b 00000009 00000005 612e706e67 0dbbc5a3 00000005 00000001 63"));
}

TEST(FilesRecord, AFilledTreeRoundTripsThroughEveryForm)
{
    Files f;
    f.SetPDWFileName(QStringLiteral("r.pdw"));
    f.SetIQDWFileName(QStringLiteral("r.iqdw"));
    f.SetIQDWIndexFileName(QStringLiteral("r.idx"));
    f.SetRawPDWFileName(QStringLiteral("r.raw"));
    f.SetWBIQFileName(QStringLiteral("r.wbiq"));
    OriginalSource& o = f.GetOriginalSource();
    o.SetPDWFileName(QStringLiteral("s.pdw"));
    o.SetIQDWFileName(QStringLiteral("s.iqdw"));
    o.SetIQDWIndexFileName(QString::fromUtf8("s \xc2\xb5.idx"));
    o.SetRawPDWFileName(QStringLiteral(""));
    o.GetWBIQFileName().Settype(WBIQFileName::type(4));
    o.GetWBIQFileName().SetValue(QStringLiteral("s.wbiq"));
    o.GetSelection().Setunit(Selection::unit(0));
    o.GetSelection().SetStart(125.25);
    o.GetSelection().SetStop(7.5);
    f.GetAdditionalRecording().SetIQDWFileName(QStringLiteral("x.iqdw"));
    f.GetAdditionalRecording().SetWBIQFileName(QStringLiteral("x.wbiq"));
    f.GetScreenshotList().AppendScreenshot(screenshot("one.png", "first"));
    f.GetScreenshotList().AppendScreenshot(screenshot("two.png", "second"));
    f.SetValidate(true);
    EXPECT_NO_THROW(f.Check());
    EXPECT_EQ(raw(f).left(1), hex("ff"));
    expectAllFormsRoundTrip(f);
}
