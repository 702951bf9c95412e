// The filter record, with a name and comments that are always written, nine
// optional conditions in bit order and two booleans written as elements; and
// its conditions: range windows with unit and inverse flag, the PRT bound,
// periodic TOA windows and the repeated enumeration of modulations.

#include <gtest/gtest.h>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

Filter named(const char* name, const char* comments)
{
    Filter f;
    f.SetName(QString::fromUtf8(name));
    f.SetComments(QString::fromUtf8(comments));
    return f;
}

using Kind = Modulations::Modulation;
const QString AppendRefused = QStringLiteral(
    "Modulations: Tried to append not completely defined or invalid item Modulation.");

// The messages a logger received, in order.
QStringList messages(const RecordingLogger& logger)
{
    QStringList texts;
    for (const LogEntry& e : logger.entries)
        texts << e.message;
    return texts;
}

QString withIsPulse(const char* text)
{
    return QStringLiteral("<Filter><Name>n</Name><Comments>c</Comments><IsPulse>%1</IsPulse></Filter>")
        .arg(QString::fromUtf8(text));
}

}  // namespace

TEST(FilterRecord, NameAndCommentsAreWrittenWhetherSetOrNot)
{
    Filter blank;
    EXPECT_EQ(blank.GetXmlString(), document("<Filter>\n  <Name></Name>\n  <Comments></Comments>\n</Filter>"));
    EXPECT_EQ(tagged(blank, 0x421c474b),
              hex("421c474b 00000018 8c9fbca8 00000004 ffffffff 8f63d01c 00000004 ffffffff"));
    EXPECT_EQ(raw(blank), hex("0000 ffffffff ffffffff"));

    Filter f = named("F1", "c");
    f.SetValidate(true);
    EXPECT_TRUE(f.HasData());
    EXPECT_EQ(f.GetXmlString(), document("<Filter>\n  <Name>F1</Name>\n  <Comments>c</Comments>\n</Filter>"));

    // Comments are as mandatory as the name, whatever the conditions hold.
    Filter noComments;
    noComments.SetName(QStringLiteral("F"));
    noComments.GetPRT().Setunit(PRT::unit(0));
    noComments.GetPRT().SetMin(1);
    noComments.SetValidate(true);
    EXPECT_FALSE(noComments.HasData());
    expectRaised<OutOfRangeException>([&] { noComments.Check(); },
                                      QStringLiteral("Filter: Please set Comments properly."));
    expectRaised<OutOfRangeException>([&] { noComments.SetComments(QString()); },
                                      QStringLiteral("Filter: Please set Comments properly (origin: Setter)."));
    EXPECT_FALSE(noComments.IsCommentsSet());
}

TEST(FilterRecord, BooleansAreElementsInXmlAndSingleBytesInBinary)
{
    Filter f = named("F", "c");
    f.SetIsPulse(true);
    f.SetIsInvalid(false);
    EXPECT_EQ(f.GetXmlString(), document("<Filter>\n  <Name>F</Name>\n  <Comments>c</Comments>\n"
                                         "  <IsPulse>true</IsPulse>\n  <IsInvalid>false</IsInvalid>\n</Filter>"));
    EXPECT_EQ(tagged(f, 0x421c474b), hex("421c474b 0000002c 8c9fbca8 00000005 00000001 46 8f63d01c 00000005 00000001 63"
                                         "8865b077 00000001 01 ee036357 00000001 00"));
    EXPECT_EQ(raw(f), hex("0318 00000002 0046 00000002 0063 01 00"));

    Filter back;
    readTagged(back, hex("ee036357 00000001 01 8c9fbca8 00000005 00000001 46 8f63d01c 00000005 00000001 63"), 35);
    EXPECT_TRUE(back.IsIsInvalidSet());
    EXPECT_TRUE(back.GetIsInvalid());
    EXPECT_FALSE(back.IsIsPulseSet());
}

TEST(FilterRecord, BooleanTextsFollowTheReadingRule)
{
    const struct {
        const char* text;
        bool value;
    } cases[] = {{"TRUE", true}, {"0", false}, {"no", true}, {"False", false}, {"1", true}, {"yes", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        Filter f;
        auto logger = attachLogger(f);
        ASSERT_TRUE(f.SetXmlString(withIsPulse(c.text), false));
        EXPECT_TRUE(f.IsIsPulseSet());
        EXPECT_EQ(f.GetIsPulse(), c.value);
        EXPECT_TRUE(logger->entries.isEmpty());
    }

    // An empty text is false and logged, never raised: at error level with validation on.
    Filter strict;
    strict.SetValidate(true);
    auto strictLog = attachLogger(strict);
    strict.SetIsPulse(true);
    ASSERT_TRUE(strict.SetXmlString(withIsPulse(""), false));
    EXPECT_TRUE(strict.IsIsPulseSet());
    EXPECT_FALSE(strict.GetIsPulse());
    ASSERT_EQ(strictLog->entries.size(), 1);
    EXPECT_EQ(strictLog->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(strictLog->entries[0].message,
              QStringLiteral("Please set a value or a default for the boolean 'IsPulse' in 'Filter'."));

    Filter lenient;
    auto lenientLog = attachLogger(lenient);
    ASSERT_TRUE(lenient.SetXmlString(QStringLiteral("<Filter><IsInvalid/></Filter>"), false));
    EXPECT_TRUE(lenient.IsIsInvalidSet());
    EXPECT_FALSE(lenient.GetIsInvalid());
    ASSERT_EQ(lenientLog->entries.size(), 1);
    EXPECT_EQ(lenientLog->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(lenientLog->entries[0].message,
              QStringLiteral("Please set a value or a default for the boolean 'IsInvalid' in 'Filter'."));
}

TEST(FilterRecord, ChildrenAreWrittenInBitOrderWhateverTheOrderRead)
{
    Filter f;
    ASSERT_TRUE(f.SetXmlString(QStringLiteral("<Filter><IsPulse>1</IsPulse><PRT unit=\"ns\"><Min>3</Min></PRT>"
                                              "<TOA unit=\"ns\"><Min>1</Min><Max>2</Max></TOA>"
                                              "<Comments>c</Comments><Name>n</Name></Filter>"),
                               false));
    EXPECT_TRUE(f.IsTOASet());
    EXPECT_TRUE(f.IsPRTSet());
    EXPECT_FALSE(f.IsLevelSet());
    f.SetValidate(true);
    EXPECT_EQ(f.GetXmlString(), document("<Filter>\n  <Name>n</Name>\n  <Comments>c</Comments>\n"
                                         "  <TOA unit=\"ns\">\n    <Min>1.00</Min>\n    <Max>2.00</Max>\n  </TOA>\n"
                                         "  <PRT unit=\"ns\">\n    <Min>3.00</Min>\n  </PRT>\n"
                                         "  <IsPulse>true</IsPulse>\n</Filter>"));
}

TEST(FilterRecord, TakingAConditionMarksItPresentAndCheckThenAsksForIt)
{
    Filter f = named("n", "c");
    auto logger = attachLogger(f);
    const Filter& view = f;
    view.GetTOA();
    EXPECT_FALSE(f.IsTOASet());
    f.GetTOA();
    EXPECT_TRUE(f.IsTOASet());
    EXPECT_TRUE(f.HasData());
    f.Check(true);
    EXPECT_EQ(messages(*logger), QStringList({"TOA: Please set Min properly.", "TOA: Please set Max properly.",
                                              "TOA: Please set unit properly."}));
    EXPECT_EQ(logger->entries.last().level, RECORDKIT::ERROR);
    f.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { f.GetXmlString(); }, QStringLiteral("TOA: Please set Min properly."));

    // A child made after the logger was set reports to the filter's logger.
    Filter later;
    auto laterLog = attachLogger(later);
    later.GetAOA().Setunit(AOA::unit(1));
    ASSERT_EQ(laterLog->entries.size(), 1);
    EXPECT_EQ(laterLog->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(laterLog->entries[0].message, QStringLiteral("enum is not valid (classname=AOA,membername=m_unit)"));
}

TEST(FilterRecord, AFilterWithEveryConditionRoundTripsThroughEveryForm)
{
    Filter f = named("all", "every condition \xc2\xb5");
    f.GetTOA().Setunit(TOA::unit(0));
    f.GetTOA().SetMin(10.5);
    f.GetTOA().SetMax(20.25);
    f.GetTOA().Setinverse(false);
    f.GetLevel().Setunit(Level::unit(1));
    f.GetLevel().SetMin(-90);
    f.GetLevel().SetMax(-10.5);
    f.GetLevel().Setinverse(true);
    f.GetPulseWidth().Setunit(PulseWidth::unit(0));
    f.GetPulseWidth().SetMean(1.5);
    f.GetPulseWidth().SetMin(1);
    f.GetPulseWidth().SetMax(2);
    f.GetPulseWidth().SetTol(0.25);
    f.GetBandwidth().Setunit(Bandwidth::unit(0));
    f.GetBandwidth().SetValue(5e6);
    f.GetCenterFrequency().Setunit(CenterFrequency::unit(0));
    f.GetCenterFrequency().SetMean(9.4e9);
    f.GetCenterFrequency().SetTol(1e6);
    f.GetAOA().Setunit(AOA::unit(0));
    f.GetAOA().SetMin(350);
    f.GetAOA().SetMax(10);
    f.GetAOA().Setinverse(true);
    f.GetPRT().Setunit(PRT::unit(0));
    f.GetPRT().SetMin(1000);
    f.GetPeriodicTOA().Setunit(PeriodicTOA::unit(0));
    f.GetPeriodicTOA().SetOffset(5);
    f.GetPeriodicTOA().SetDuration(2.5);
    f.GetPeriodicTOA().SetPeriod(100);
    f.GetPeriodicTOA().Setinverse(true);
    f.GetModulations().SetModulation(
        {Modulations::Modulation(7), Modulations::Modulation(2), Modulations::Modulation(7)});
    f.SetIsPulse(true);
    f.SetIsInvalid(false);
    f.SetValidate(true);
    EXPECT_NO_THROW(f.Check());
    EXPECT_EQ(raw(f).left(2), hex("ff1f"));

    Filter fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(f.GetXmlString(), false));
    EXPECT_TRUE(fromXml == f) << f.GetXmlString().toStdString();
    Filter fromTagged;
    QByteArray bytes = f.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(bytes));
    EXPECT_TRUE(fromTagged == f);
    Filter fromRaw;
    readRaw(fromRaw, raw(f));
    EXPECT_TRUE(fromRaw == f);
}

TEST(FilterRangeConditions, UnitAndInverseComeFirstInTextFormsAndByBitInRaw)
{
    TOA t;
    t.Setunit(TOA::unit(0));
    t.SetMin(1234.567);
    t.SetMax(2000);
    t.Setinverse(true);
    EXPECT_EQ(t.GetXmlString(),
              document("<TOA unit=\"ns\" inverse=\"true\">\n  <Min>1234.57</Min>\n  <Max>2000.00</Max>\n</TOA>"));
    EXPECT_EQ(tagged(t, 0x6a002cf1),
              hex("6a002cf1 0000003d a5b3acfc 00000006 00000002 6e73 8e817561 00000001 01"
                  "4ecb4e58 0000000b 00000007 313233342e3537 6e8dd7f5 0000000b 00000007 323030302e3030"));
    EXPECT_EQ(raw(t), (Bytes() << quint8(0x0f) << 1234.567 << 2000.0 << qint8(0) << quint8(1)).bytes());

    TOA exact;
    readRaw(exact, raw(t));
    EXPECT_TRUE(exact == t);
    EXPECT_EQ(exact.GetMin(), 1234.567);
    TOA rounded;
    readTagged(rounded, tagged(t, 0, false).mid(4), 61);
    EXPECT_EQ(rounded.GetMin(), 1234.57);
    EXPECT_TRUE(rounded.Getinverse());

    // An unset flag is not written at all.
    t.Resetinverse();
    EXPECT_FALSE(t.Getinverse());
    EXPECT_EQ(t.GetXmlString(), document("<TOA unit=\"ns\">\n  <Min>1234.57</Min>\n  <Max>2000.00</Max>\n</TOA>"));
    EXPECT_EQ(tagged(t, 0x6a002cf1).mid(4, 4), hex("00000034"));
    EXPECT_EQ(raw(t), (Bytes() << quint8(0x07) << 1234.567 << 2000.0 << qint8(0)).bytes());
}

TEST(FilterRangeConditions, LevelUnitsTravelAsUtf8NamesAndRawIndices)
{
    Level l;
    l.Setunit(Level::unit(1));
    l.SetMin(-90);
    l.SetMax(-10.5);
    EXPECT_EQ(tagged(l, 0x2bfefac5),
              hex("2bfefac5 00000035 a5b3acfc 00000009 00000005 6442c2b556"
                  "4ecb4e58 0000000a 00000006 2d39302e3030 6e8dd7f5 0000000a 00000006 2d31302e3530"));
    EXPECT_EQ(raw(l), (Bytes() << quint8(0x07) << -90.0 << -10.5 << qint8(1)).bytes());

    Level micro;
    readTagged(micro, hex("a5b3acfc 00000009 00000005 6442c2b556"), 17);
    EXPECT_EQ(micro.Getunit(), 1);
    Level fromXml;
    ASSERT_TRUE(
        fromXml.SetXmlString(QString::fromUtf8("<Level unit=\"dB\xc2\xb5V\"><Min>1</Min><Max>2</Max></Level>"), false));
    EXPECT_EQ(fromXml.Getunit(), 1);

    const QByteArray plainU = hex("a5b3acfc 00000008 00000004 64427556");
    Level lenient;
    lenient.SetMin(1);
    lenient.SetMax(2);
    readTagged(lenient, plainU, 16);
    EXPECT_TRUE(lenient.IsunitSet());
    EXPECT_EQ(lenient.Getunit(), 0xFF);
    expectRaised<OutOfRangeException>([&] { lenient.Check(); }, QStringLiteral("Level: Please set unit properly."));
    Level strict;
    strict.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { readTagged(strict, plainU, 16); },
                                      QStringLiteral("enum is not valid (classname=Level,membername=m_unit)"));
    EXPECT_FALSE(strict.IsunitSet());
}

TEST(FilterRangeConditions, UnitAndInverseAreAlsoReadAsElements)
{
    AOA a;
    ASSERT_TRUE(
        a.SetXmlString(QStringLiteral("<AOA><unit>deg</unit><inverse>0</inverse><Min>10</Min><Max>5</Max></AOA>"),
                       false));
    EXPECT_TRUE(a.IsunitSet());
    EXPECT_TRUE(a.IsinverseSet());
    EXPECT_FALSE(a.Getinverse());
    a.SetValidate(true);
    EXPECT_NO_THROW(a.Check());  // Min above Max passes
    EXPECT_EQ(a.GetXmlString(),
              document("<AOA unit=\"deg\" inverse=\"false\">\n  <Min>10.00</Min>\n  <Max>5.00</Max>\n</AOA>"));

    TOA one;
    ASSERT_TRUE(
        one.SetXmlString(QStringLiteral("<TOA unit=\"ns\" inverse=\"1\"><Min>1</Min><Max>2</Max></TOA>"), false));
    EXPECT_TRUE(one.Getinverse());
    TOA empty;
    auto logger = attachLogger(empty);
    empty.Setinverse(true);
    ASSERT_TRUE(
        empty.SetXmlString(QStringLiteral("<TOA unit=\"ns\" inverse=\"\"><Min>1</Min><Max>2</Max></TOA>"), false));
    EXPECT_TRUE(empty.IsinverseSet());
    EXPECT_FALSE(empty.Getinverse());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Please set a value or a default for the boolean 'inverse' in 'TOA'."));

    AOA none;
    auto noneLog = attachLogger(none);
    none.Check(true);
    EXPECT_EQ(messages(*noneLog), QStringList({"AOA: Please set Min properly.", "AOA: Please set Max properly.",
                                               "AOA: Please set unit properly."}));
}

TEST(FilterPRT, OneLowerBoundAndAMaxElementIsSkipped)
{
    PRT p;
    ASSERT_TRUE(p.SetXmlString(QStringLiteral("<PRT unit=\"ns\"><Max>9</Max><Min>4</Min></PRT>"), false));
    EXPECT_TRUE(p.HasData());
    EXPECT_EQ(p.GetMin(), 4.0);
    p.SetValidate(true);
    EXPECT_EQ(p.GetXmlString(), document("<PRT unit=\"ns\">\n  <Min>4.00</Min>\n</PRT>"));
    EXPECT_EQ(tagged(p, 0x4c73666e),
              hex("4c73666e 0000001e a5b3acfc 00000006 00000002 6e73 4ecb4e58 00000008 00000004 342e3030"));
    EXPECT_EQ(raw(p), (Bytes() << quint8(0x03) << 4.0 << qint8(0)).bytes());

    PRT none;
    auto logger = attachLogger(none);
    none.Check(true);
    EXPECT_EQ(messages(*logger), QStringList({"PRT: Please set Min properly.", "PRT: Please set unit properly."}));
}

TEST(FilterPeriodicTOA, PicosecondWindowsWithADurationOfItsOwn)
{
    PeriodicTOA p;
    p.Setunit(PeriodicTOA::unit(0));
    p.SetOffset(0.004);
    p.SetDuration(2.5);
    p.SetPeriod(10);
    p.Setinverse(false);
    EXPECT_EQ(p.GetXmlString(), document("<PeriodicTOA unit=\"ps\" inverse=\"false\">\n  <Offset>0.00</Offset>\n"
                                         "  <Duration>2.50</Duration>\n  <Period>10.00</Period>\n</PeriodicTOA>"));
    EXPECT_EQ(tagged(p, 0x8072cf2a), hex("8072cf2a 00000048 a5b3acfc 00000006 00000002 7073 8e817561 00000001 00"
                                         "ef2b095d 00000008 00000004 302e3030 240ab679 00000008 00000004 322e3530"
                                         "84ac794a 00000009 00000005 31302e3030"));
    EXPECT_EQ(raw(p), (Bytes() << quint8(0x1f) << 0.004 << 2.5 << 10.0 << qint8(0) << quint8(0)).bytes());

    PeriodicTOA none;
    auto logger = attachLogger(none);
    none.Setinverse(true);
    none.Check(true);
    EXPECT_EQ(messages(*logger),
              QStringList({"PeriodicTOA: Please set Offset properly.", "PeriodicTOA: Please set Duration properly.",
                           "PeriodicTOA: Please set Period properly.", "PeriodicTOA: Please set unit properly."}));
}

TEST(FilterModulations, RepeatedNamesKeepOrderAndDoublesInEveryForm)
{
    Modulations m;
    m.SetValidate(true);
    m.AppendModulation(Kind(7));
    m.AppendModulation(Kind(2));
    m.AppendModulation(Kind(7));
    EXPECT_EQ(m.GetXmlString(),
              document("<Modulations>\n  <Modulation>PSK2</Modulation>\n  <Modulation>FM</Modulation>\n"
                       "  <Modulation>PSK2</Modulation>\n</Modulations>"));
    const QByteArray block = hex("cf2ffa6e 0000002e 06865de2 00000026 00000003 00000008 00000004 50534b32"
                                 "00000006 00000002 464d 00000008 00000004 50534b32");
    EXPECT_EQ(tagged(m, 0xcf2ffa6e), block);
    EXPECT_EQ(raw(m), hex("01 00000003 07 02 07"));

    const QVector<Kind> expected{Kind(7), Kind(2), Kind(7)};
    Modulations fromTagged;
    readTagged(fromTagged, block.mid(8), 46);
    EXPECT_EQ(fromTagged.GetModulation(), expected);
    Modulations fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(m.GetXmlString(), false));
    EXPECT_TRUE(fromXml == m);
    Modulations fromRaw;
    readRaw(fromRaw, raw(m));
    EXPECT_TRUE(fromRaw == m);

    EXPECT_TRUE(m.IsValidModulation(QVector<Kind>{Kind(7)}));
    EXPECT_TRUE(m.IsValidModulation(Kind(7)));
    EXPECT_TRUE(m.IsValidModulation(QVector<Kind>{}));
    EXPECT_FALSE(m.IsValidModulation(Kind(16)));
    EXPECT_FALSE(m.IsValidModulation(QVector<Kind>{Kind(7), Kind(16)}));
}

TEST(FilterModulations, UnknownNamesAndEmptySets)
{
    const QString xml = QStringLiteral("<Modulations><Modulation>QAM</Modulation><Modulation>FM</Modulation>"
                                       "<Modulation>ASK</Modulation></Modulations>");
    Modulations strict;
    strict.SetValidate(true);
    auto strictLog = attachLogger(strict);
    EXPECT_FALSE(strict.SetXmlString(xml, false));
    EXPECT_TRUE(messages(*strictLog).contains(AppendRefused));
    EXPECT_TRUE(strict.GetModulation().isEmpty());
    expectRaised<IncompleteDefinitionException>([&] { strict.AppendModulation(Kind(0xFF)); }, AppendRefused);
    expectRaised<IncompleteDefinitionException>([&] { readRaw(strict, hex("01 00000001 10")); }, AppendRefused);

    Modulations lenient;
    auto logger = attachLogger(lenient);
    ASSERT_TRUE(lenient.SetXmlString(xml, false));
    EXPECT_EQ(lenient.GetModulation(), (QVector<Kind>{Kind(0xFF), Kind(2), Kind(0xFF)}));
    EXPECT_EQ(messages(*logger), QStringList({AppendRefused, AppendRefused}));
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    logger->entries.clear();
    lenient.Check(true);  // one line per invalid value
    EXPECT_EQ(messages(*logger), QStringList({"Modulations: Please set Modulation properly.",
                                              "Modulations: Please set Modulation properly."}));
    expectRaised<OutOfRangeException>([&] { lenient.Check(); },
                                      QStringLiteral("Modulations: Please set Modulation properly."));
    EXPECT_EQ(lenient.GetXmlString(),
              document("<Modulations>\n  <Modulation></Modulation>\n  <Modulation>FM</Modulation>\n"
                       "  <Modulation></Modulation>\n</Modulations>"));

    Modulations empty;
    EXPECT_FALSE(empty.HasData());
    EXPECT_EQ(empty.GetXmlString(), document("<Modulations/>"));
    EXPECT_EQ(tagged(empty, 0xcf2ffa6e), hex("cf2ffa6e 0000000c 06865de2 00000004 00000000"));
    EXPECT_EQ(raw(empty), hex("00 00000000"));
    expectRaised<OutOfRangeException>([&] { empty.Check(); },
                                      QStringLiteral("Modulations: Please set Modulation properly."));
}

// A filter whose read raises is not kept by the root: its modulations hold a
// value that the validate flag refuses.
TEST(FilterInTheRoot, AFilterWhoseReadRaisesIsNotKept)
{
    EmitterDossier d = filledDossier();
    d.ResetFilter();
    Filter bad = filledFilter(QStringLiteral("Side lobes"));
    bad.GetModulations().SetModulation({Modulations::Modulation(0xFF)});
    d.GetFilter().append(bad);
    QByteArray bytes = d.GetBinaryRepresentationAsQByteArray();

    EmitterDossier read;
    read.SetValidate(true);
    auto logger = attachLogger(read);
    EXPECT_FALSE(read.SetBinaryRepresentation(bytes));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries.at(0).message,
              QStringLiteral("Modulations: Tried to append not completely defined or invalid item Modulation."));
    const EmitterDossier& root = read;
    EXPECT_TRUE(root.GetFilter().isEmpty());
    EXPECT_FALSE(root.IsFilterSet());
    // Written again, the root has no filter record at all.
    read.SetValidate(false);
    const QByteArray again = read.GetBinaryRepresentationAsQByteArray();
    EXPECT_FALSE(again.contains(hex("421c474b"))) << again.toHex().toStdString();
}
