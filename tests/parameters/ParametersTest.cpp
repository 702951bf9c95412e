// The parameter block and its records of beam and antenna, and the whole
// technical block moving through every form.

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

const char* const Prologue = "<?xml version=\"1.0\"?>\n";

QString xmlOf(const char* body) { return QString::fromUtf8(Prologue) + QString::fromUtf8(body); }

template <class C>
C fromXml(const char* text)
{
    C object;
    EXPECT_TRUE(object.SetXmlString(QString::fromUtf8(text), false));
    return object;
}

}  // namespace

// --- ELINTParameter ------------------------------------------------------------------

TEST(ELINTParameter, FreshBlockHasNothing)
{
    const ELINTParameter p;
    EXPECT_FALSE(p.HasData());
    EXPECT_FALSE(p.AnyData());
    EXPECT_FALSE(p.IsCommentsSet());
    EXPECT_FALSE(p.IsWaveFormSet());
    EXPECT_FALSE(p.IsSequenceSet());
}

TEST(ELINTParameter, EmptyCommentsElementCountsAsData)
{
    ELINTParameter p = fromXml<ELINTParameter>("<ELINTParameter><Comments/></ELINTParameter>");
    EXPECT_TRUE(p.IsCommentsSet());
    EXPECT_FALSE(p.GetComments().isNull());
    EXPECT_TRUE(p.GetComments().isEmpty());
    EXPECT_TRUE(p.HasData());
    p.SetValidate(true);
    EXPECT_EQ(p.GetXmlString(), xmlOf("<ELINTParameter>\n  <Comments></Comments>\n</ELINTParameter>\n"));
}

TEST(ELINTParameter, AskingForAChildMakesItPresentButNotData)
{
    ELINTParameter p;
    p.GetScan();
    EXPECT_TRUE(p.IsScanSet());
    EXPECT_FALSE(p.AnyData());
    EXPECT_FALSE(p.IsAntennaSet());

    // The const getter leaves the bits alone.
    const ELINTParameter& view = p;
    view.GetAntenna();
    EXPECT_FALSE(p.IsAntennaSet());

    p.SetComments(QStringLiteral("c"));
    EXPECT_EQ(p.GetXmlString(), xmlOf("<ELINTParameter>\n  <Comments>c</Comments>\n  <Scan/>\n</ELINTParameter>\n"));
}

TEST(ELINTParameter, CommentsAloneWritesOneElement)
{
    ELINTParameter p;
    p.SetValidate(true);
    p.SetComments(QStringLiteral("Seen twice"));
    EXPECT_EQ(p.GetXmlString(), xmlOf("<ELINTParameter>\n  <Comments>Seen twice</Comments>\n</ELINTParameter>\n"));
    // Tagged: the block with the one record.
    EXPECT_EQ(tagged(p, ELINTParameter::id),
              Bytes().word(0xed79e4b3).word(22).word(0x8f63d01c).word(14).text("Seen twice").bytes());
}

TEST(ELINTParameter, ChecksCommentsThenWaveFormThenPresentChildren)
{
    ELINTParameter p;
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { p.Check(); }),
              QStringLiteral("ELINTParameter: Please set Comments properly."));
    p.SetComments(QStringLiteral(""));
    p.Check();  // an empty comment is a comment

    // A statistic child with its bit set is checked with the same flag.
    p.GetScan().GetScanCycle().SetMean(1);
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { p.Check(); }),
              QStringLiteral("ScanCycle: Please set unit properly."));
    p.GetScan().ResetScanCycle();
    p.Check();

    p.SetValidate(true);
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { p.SetComments(QString()); }),
              QStringLiteral("ELINTParameter: Please set Comments properly (origin: Setter)."));
}

TEST(ELINTParameter, UnknownWaveFormNameIsStoredInvalidAndCheckedLater)
{
    ELINTParameter p = fromXml<ELINTParameter>(
        "<ELINTParameter><Comments>x</Comments><WaveForm>Pulsed</WaveForm></ELINTParameter>");
    EXPECT_TRUE(p.IsWaveFormSet());
    EXPECT_EQ(int(p.GetWaveForm()), 0xFF);
    auto logger = attachLogger(p);
    p.Check(true);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("ELINTParameter: Please set WaveForm properly."));

    p.SetValidate(true);
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { p.SetWaveForm(ELINTParameter::WaveForm(3)); }),
              QStringLiteral("enum is not valid (classname=ELINTParameter,membername=m_waveForm)"));
}

TEST(ELINTParameter, RawFormHasTwoBitmapBytes)
{
    ELINTParameter p;
    p.SetComments(QStringLiteral("x"));
    p.SetWaveForm(p.NameToWaveForm(QStringLiteral("Pulse")));
    p.SetSequence(Sequence());  // present and empty: its own bitmap byte and nothing else
    EXPECT_EQ(raw(p),
              (Bytes() << quint8(0x03) << quint8(0x02) << QStringLiteral("x") << qint8(2) << quint8(0x00)).bytes());

    ELINTParameter back;
    readRaw(back, raw(p));
    EXPECT_EQ(back, p);
}

TEST(ELINTParameter, ReadsElementsInAnyOrderAndARepeatedChildIntoTheSameObject)
{
    const ELINTParameter p = fromXml<ELINTParameter>("<ELINTParameter>"
                                                     "<Scan><NumberOfBars>2</NumberOfBars></Scan>"
                                                     "<Comments>late</Comments>"
                                                     "<Scan><ScanPattern>Raster</ScanPattern></Scan>"
                                                     "</ELINTParameter>");
    EXPECT_EQ(p.GetComments(), QStringLiteral("late"));
    EXPECT_EQ(p.GetScan().GetNumberOfBars(), 2u);
    EXPECT_EQ(p.GetScan().GetScanPatternAsString(), QStringLiteral("Raster"));
}

// --- EnhancedDetails -------------------------------------------------------------------

TEST(EnhancedDetails, NothingMandatorySoAlwaysData)
{
    const EnhancedDetails details;
    EXPECT_TRUE(details.HasData());
    EXPECT_FALSE(details.AnyData());
    EXPECT_TRUE(details.IsValidPulsePaint(-1e300));
    EXPECT_TRUE(details.GetDefaultOperationMode().isNull());
}

TEST(EnhancedDetails, EmptyOperationModeIsDataAndAnEmptyChildIsNot)
{
    const EnhancedDetails details = fromXml<EnhancedDetails>(
        "<EnhancedDetails><OperationMode></OperationMode></EnhancedDetails>");
    EXPECT_TRUE(details.IsOperationModeSet());
    EXPECT_TRUE(details.AnyData());

    // A statistic child read with no content is present and holds nothing.
    const Scan scan = fromXml<Scan>("<Scan><ScanCycle/></Scan>");
    EXPECT_TRUE(scan.IsScanCycleSet());
    EXPECT_FALSE(scan.AnyData());
    // A unit scalar's text is its value, 0.0 when there is none.
    const EnhancedDetails range = fromXml<EnhancedDetails>("<EnhancedDetails><MaxRange/></EnhancedDetails>");
    EXPECT_TRUE(range.IsMaxRangeSet());
    EXPECT_TRUE(range.GetMaxRange().IsValueSet());
    EXPECT_FALSE(range.GetMaxRange().IsunitSet());

    EnhancedDetails mode;
    mode.SetOperationMode(QStringLiteral(""));
    EXPECT_EQ(mode.GetXmlString(), xmlOf("<EnhancedDetails>\n  <OperationMode></OperationMode>\n</EnhancedDetails>\n"));
}

// --- Scan ----------------------------------------------------------------------------------

TEST(Scan, PatternNamesMatchWholeAndCaseSensitive)
{
    const Scan scan;
    EXPECT_EQ(int(scan.NameToScanPattern(QStringLiteral("Irregular Non-Manual"))), 5);
    EXPECT_EQ(int(scan.NameToScanPattern(QStringLiteral("circular + mech. elevation"))), 0xFF);
    EXPECT_EQ(int(scan.NameToScanPattern(QStringLiteral("Circular"))), 1);
}

TEST(Scan, BitTwelveIsTheSecondBitmapByteMaskTen)
{
    Scan scan;
    scan.SetRFRevisitTime(unitScalar<RFRevisitTime>(0.5));
    EXPECT_EQ(raw(scan), (Bytes() << quint8(0x00) << quint8(0x10) << quint8(0x03) << qint8(0) << 0.5).bytes());
}

TEST(Scan, NumberOfBarsAboveTheSignedRangeSurvivesOnlyTheBinaryForms)
{
    const quint64 big = std::numeric_limits<quint64>::max() - 1;
    Scan scan;
    scan.SetNumberOfBars(big);
    const QString xml = scan.GetXmlString();
    EXPECT_TRUE(xml.contains(QStringLiteral("<NumberOfBars>18446744073709551614</NumberOfBars>")));

    Scan fromText;
    ASSERT_TRUE(fromText.SetXmlString(xml, false));
    EXPECT_TRUE(fromText.IsNumberOfBarsSet());
    EXPECT_EQ(fromText.GetNumberOfBars(), 0u);

    QByteArray bytes = scan.GetBinaryRepresentationAsQByteArray();
    Scan fromTagged;
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(bytes));
    EXPECT_EQ(fromTagged.GetNumberOfBars(), big);

    Scan fromRaw;
    readRaw(fromRaw, raw(scan));
    EXPECT_EQ(fromRaw.GetNumberOfBars(), big);

    // The tagged record is the raw 64-bit integer, length 8.
    EXPECT_EQ(tagged(scan, 0, false), (Bytes().word(16).word(0x0e19b3ef).word(8) << big).bytes());
}

TEST(Scan, PresentButEmptyWritesAnEmptyElement)
{
    ELINTParameter p;
    p.SetComments(QStringLiteral("c"));
    p.SetScan(Scan());
    EXPECT_TRUE(p.GetXmlString().contains(QStringLiteral("  <Scan/>\n")));
}

// --- Antenna and its diagram ------------------------------------------------------------------

TEST(Antenna, DiagramSampleForms)
{
    AntennaDiagramVal sample;
    sample.Setunit(AntennaDiagramVal::unit(0));
    sample.Setindex(4);
    sample.SetValue(-3.5);
    EXPECT_EQ(sample.GetXmlString(), xmlOf("<AntennaDiagramVal unit=\"dB\" index=\"4\">-3.50</AntennaDiagramVal>\n"));
    EXPECT_EQ(raw(sample), (Bytes() << quint8(0x07) << qint8(0) << quint64(4) << -3.5).bytes());
    Bytes expected;
    expected.word(47).word(0xa5b3acfc).word(6).text("dB");
    expected.word(0xeb91c81c).word(8) << quint64(4);
    expected.word(0x8aff57b3).word(9).text("-3.50");
    EXPECT_EQ(tagged(sample, 0, false), expected.bytes());
}

TEST(Antenna, SampleWithoutIndexIsIncompleteAndTheListReportsIt)
{
    AntennaDiagram diagram = fromXml<AntennaDiagram>(
        "<AntennaDiagram><AntennaDiagramVal unit=\"dB\">-1</AntennaDiagramVal>"
        "<AntennaDiagramVal unit=\"dB\" index=\"7\"/></AntennaDiagram>");
    ASSERT_EQ(diagram.GetAntennaDiagramVal().size(), 2);
    EXPECT_FALSE(diagram.GetAntennaDiagramVal()[0].HasData());
    // No text reads as 0.0 with the bit set.
    EXPECT_TRUE(diagram.GetAntennaDiagramVal()[1].IsValueSet());
    EXPECT_EQ(diagram.GetAntennaDiagramVal()[1].GetValue(), 0.0);
    EXPECT_TRUE(diagram.GetAntennaDiagramVal()[1].HasData());

    auto logger = attachLogger(diagram);
    diagram.GetXmlString();
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Parameters for AntennaDiagramVal are not set properly in 'AntennaDiagram'."));

    diagram.SetValidate(true);
    AntennaDiagramVal incomplete;
    incomplete.Setunit(AntennaDiagramVal::unit(0));
    EXPECT_EQ(raisedMessage<IncompleteDefinitionException>([&] { diagram.AppendAntennaDiagramVal(incomplete); }),
              QStringLiteral(
                  "AntennaDiagram: Tried to append not completely defined or invalid item AntennaDiagramVal."));
}

TEST(Antenna, BinNumberAndIndicesAreNotTiedAndItemsKeepTheirOrder)
{
    Antenna antenna;
    antenna.SetValidate(true);
    antenna.SetAntennaDiagramBinNumber(5);
    for (double value : {-1.0, -2.0, -3.0}) {
        AntennaDiagramVal sample;
        sample.Setunit(AntennaDiagramVal::unit(0));
        sample.Setindex(9);
        sample.SetValue(value);
        antenna.GetAntennaDiagram().AppendAntennaDiagramVal(sample);
    }
    antenna.Check();
    Antenna back;
    ASSERT_TRUE(back.SetXmlString(antenna.GetXmlString(), true));
    ASSERT_EQ(back.GetAntennaDiagram().GetAntennaDiagramVal().size(), 3);
    EXPECT_EQ(back.GetAntennaDiagram().GetAntennaDiagramVal()[2].GetValue(), -3.0);
    EXPECT_EQ(back, antenna);
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { antenna.SetPolarization(Antenna::Polarization(5)); }),
              QStringLiteral("enum is not valid (classname=Antenna,membername=m_polarization)"));
}

// --- The whole technical block ---------------------------------------------------------------

TEST(TechnicalBlock, FilledTreeComesBackEqualFromEveryForm)
{
    const ELINTParameter original = filledParameters(25, 12);
    original.SetValidate(true);
    original.Check();

    ELINTParameter fromXml;
    fromXml.SetValidate(true);
    ASSERT_TRUE(fromXml.SetXmlString(original.GetXmlString(), true));
    EXPECT_EQ(fromXml, original);

    QByteArray taggedBytes = original.GetBinaryRepresentationAsQByteArray();
    ELINTParameter fromTagged;
    fromTagged.SetValidate(true);
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(taggedBytes));
    EXPECT_EQ(fromTagged, original);

    QByteArray compressed = original.GetCompressedBinaryRepresentationAsQByteArray(6);
    ELINTParameter fromCompressed;
    ASSERT_TRUE(fromCompressed.SetBinaryRepresentation(compressed));
    EXPECT_EQ(fromCompressed, original);

    ELINTParameter fromRaw;
    fromRaw.SetValidate(true);
    readRaw(fromRaw, raw(original));
    EXPECT_EQ(fromRaw, original);
    EXPECT_EQ(raw(fromRaw), raw(original));
}

TEST(TechnicalBlock, TextFormsRoundDoublesWhileRawKeepsThem)
{
    ELINTParameter original = filledParameters();
    original.GetPRIBehavior().GetPRI().SetMean(1000.005);
    original.GetFrequencyBehavior().GetFrequencyList().GetFrequencyItem()[0].SetValue(9400000000.127);

    ELINTParameter fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(original.GetXmlString(), false));
    EXPECT_NE(fromXml, original);
    EXPECT_EQ(fromXml.GetFrequencyBehavior().GetFrequencyList().GetFrequencyItem()[0].GetValue(), 9400000000.13);
    EXPECT_TRUE(original.GetXmlString().contains(QStringLiteral(">9400000000.13</FrequencyItem>")));

    ELINTParameter fromRaw;
    readRaw(fromRaw, raw(original));
    EXPECT_EQ(fromRaw, original);
    EXPECT_EQ(fromRaw.GetPRIBehavior().GetPRI().GetMean(), 1000.005);
}

TEST(TechnicalBlock, DanglingReferencesPassEveryCheckAndForm)
{
    ELINTParameter p = filledParameters();
    p.GetPRIBehavior().SetPeriodicityPRIID(999);
    p.GetSequence().GetPulseList().GetPulseItem()[0].SetModulationID(12345);
    p.GetSequence().GetSequenceList().GetSequenceItem()[0].GetElementList().GetElementItem()[0].SetChildID(777);
    p.SetValidate(true);
    p.Check();
    QByteArray bytes = p.GetBinaryRepresentationAsQByteArray();
    ELINTParameter back;
    ASSERT_TRUE(back.SetBinaryRepresentation(bytes));
    EXPECT_EQ(back, p);
    ELINTParameter fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(p.GetXmlString(), true));
    EXPECT_EQ(fromXml, p);
}
