// The XML form: leaf elements with attributes and text, branch elements with
// child elements, two decimals, booleans, and unknown elements passed over.

#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

}  // namespace

TEST(XmlLeaf, ReadsAndWritesAUnitScalar)
{
    AgeOutTime a;
    ASSERT_TRUE(a.SetXmlString(QStringLiteral("<AgeOutTime unit=\"s\">12.5</AgeOutTime>"), false));
    EXPECT_EQ(a.GetValue(), 12.5);
    EXPECT_EQ(a.Getunit(), 0);
    EXPECT_EQ(a.GetXmlString(), document(QStringLiteral("<AgeOutTime unit=\"s\">12.50</AgeOutTime>")));
}

TEST(XmlLeaf, MissingUnitStaysUnsetAndFailsTheNextCheckedWrite)
{
    AgeOutTime a;
    ASSERT_TRUE(a.SetXmlString(QStringLiteral("<AgeOutTime>3</AgeOutTime>"), false));
    EXPECT_FALSE(a.IsunitSet());
    EXPECT_TRUE(a.IsValueSet());
    a.SetValidate(true);
    EXPECT_THROW(a.GetXmlString(), OutOfRangeException);
}

TEST(XmlLeaf, UnsetMandatoryFieldsAreWrittenWithValidationOff)
{
    AgeOutTime a;
    EXPECT_EQ(a.GetXmlString(), document(QStringLiteral("<AgeOutTime unit=\"\">0.00</AgeOutTime>")));
}

TEST(XmlLeaf, EmptyTextAndUnparsableNumbersReadAsZeroWithTheBitSet)
{
    AgeOutTime a;
    ASSERT_TRUE(a.SetXmlString(QStringLiteral("<AgeOutTime unit=\"s\"/>"), false));
    EXPECT_TRUE(a.IsValueSet());
    EXPECT_EQ(a.GetValue(), 0.0);
    AgeOutTime b;
    ASSERT_TRUE(b.SetXmlString(QStringLiteral("<AgeOutTime unit=\"s\">twelve</AgeOutTime>"), false));
    EXPECT_TRUE(b.IsValueSet());
    EXPECT_EQ(b.GetValue(), 0.0);
}

TEST(XmlLeaf, NumbersKeepTwoDecimals)
{
    AgeOutTime a;
    a.Setunit(AgeOutTime::unit(0));
    a.SetValue(1234.567);
    AgeOutTime back;
    ASSERT_TRUE(back.SetXmlString(a.GetXmlString(), false));
    EXPECT_EQ(back.GetValue(), 1234.57);
}

TEST(XmlLeaf, UnknownUnitNameIsStoredInvalidWithValidationOff)
{
    BeamPeakPower b;
    auto logger = attachLogger(b);
    ASSERT_TRUE(b.SetXmlString(QStringLiteral("<BeamPeakPower unit=\"dBW\">1</BeamPeakPower>"), false));
    EXPECT_TRUE(b.IsunitSet());
    EXPECT_EQ(b.Getunit(), 0xFF);
    EXPECT_TRUE(b.HasData());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("enum is not valid (classname=BeamPeakPower,membername=m_unit)"));
    EXPECT_TRUE(b.GetXmlString().contains(QStringLiteral("unit=\"\"")));
}

TEST(XmlLeaf, UnknownUnitNameFailsTheLoadWithValidationOn)
{
    BeamPeakPower b;
    b.SetValidate(true);
    auto logger = attachLogger(b);
    EXPECT_FALSE(b.SetXmlString(QStringLiteral("<BeamPeakPower unit=\"dBW\">1</BeamPeakPower>"), false));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("enum is not valid (classname=BeamPeakPower,membername=m_unit)"));
}

TEST(XmlLeaf, MicroSignTravelsAsText)
{
    BeamPeakPower b;
    ASSERT_TRUE(b.SetXmlString(QString::fromUtf8("<BeamPeakPower unit=\"dB\xC2\xB5V\">2</BeamPeakPower>"), false));
    EXPECT_EQ(b.Getunit(), 1);
    EXPECT_TRUE(b.GetXmlString().contains(QString::fromUtf8("unit=\"dB\xC2\xB5V\"")));
    EXPECT_EQ(b.NameTounit(QStringLiteral("dBuV")), 0xFF);
}

TEST(XmlBranch, StatisticWritesUnitThenTheSetNumbersInOrder)
{
    PulseWidth p;
    p.Setunit(PulseWidth::unit(0));
    p.SetTol(0.004);
    p.SetMean(250.5);
    EXPECT_EQ(p.GetXmlString(), document(QStringLiteral("<PulseWidth unit=\"ns\">\n"
                                                        "  <Mean>250.50</Mean>\n"
                                                        "  <Tol>0.00</Tol>\n"
                                                        "</PulseWidth>")));
    PulseWidth negative;
    negative.Setunit(PulseWidth::unit(0));
    negative.SetMin(-1);
    negative.SetMax(1e10);
    EXPECT_TRUE(negative.GetXmlString().contains(QStringLiteral("<Min>-1.00</Min>")));
    EXPECT_TRUE(negative.GetXmlString().contains(QStringLiteral("<Max>10000000000.00</Max>")));
}

TEST(XmlBranch, AttributeIsAlsoAcceptedAsElement)
{
    CenterFrequency c;
    ASSERT_TRUE(
        c.SetXmlString(QStringLiteral("<CenterFrequency><unit>Hz</unit><Mean>9400</Mean></CenterFrequency>"), false));
    EXPECT_EQ(c.Getunit(), 0);
    EXPECT_EQ(c.GetMean(), 9400.0);
    EXPECT_TRUE(c.GetXmlString().contains(QStringLiteral("<CenterFrequency unit=\"Hz\">")));
    EXPECT_FALSE(c.GetXmlString().contains(QStringLiteral("<unit>")));
}

TEST(XmlBranch, UnknownElementsArePassedOver)
{
    ScanCycle s;
    ASSERT_TRUE(s.SetXmlString(QStringLiteral("<ScanCycle unit=\"ns\"><Median>3</Median><Foo><Mean>7</Mean></Foo>"
                                              "<Max>4</Max></ScanCycle>"),
                               false));
    EXPECT_FALSE(s.IsMeanSet());
    EXPECT_EQ(s.GetMax(), 4.0);
}

TEST(XmlBranch, SkippingStopsAtANestedElementOfTheSameName)
{
    // The skip does not count depth: it ends at the inner <Foo>, and what
    // follows it is read as content of the statistic.
    ScanCycle s;
    ASSERT_TRUE(s.SetXmlString(QStringLiteral("<ScanCycle unit=\"ns\"><Foo><Foo/><Mean>7</Mean></Foo>"
                                              "<Max>4</Max></ScanCycle>"),
                               false));
    EXPECT_EQ(s.GetMean(), 7.0);
    EXPECT_EQ(s.GetMax(), 4.0);
}

TEST(XmlBranch, ReadingAppendsToExistingItems)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    ASSERT_TRUE(list.SetXmlString(QStringLiteral("<Alternatives><Alternative><Name>B</Name><DatabaseID>2</DatabaseID>"
                                                 "<Confidence>0.25</Confidence></Alternative></Alternatives>"),
                                  false));
    ASSERT_EQ(list.GetAlternative().size(), 2);
    EXPECT_EQ(list.GetAlternative().at(0).GetName(), QStringLiteral("A"));
    EXPECT_EQ(list.GetAlternative().at(1).GetName(), QStringLiteral("B"));
    EXPECT_EQ(list.GetAlternative().at(1).GetConfidence(), 0.25);
}

TEST(XmlBranch, EmptyTextElementGivesAnEmptyNonNullText)
{
    Alternative a;
    ASSERT_TRUE(a.SetXmlString(QStringLiteral("<Alternative><Name/><DatabaseID></DatabaseID></Alternative>"), false));
    EXPECT_TRUE(a.IsNameSet());
    EXPECT_FALSE(a.GetName().isNull());
    EXPECT_TRUE(a.GetName().isEmpty());
    EXPECT_FALSE(a.GetDatabaseID().isNull());
}

TEST(XmlBranch, EmptyListWritesOnlyItsElement)
{
    Alternatives list;
    EXPECT_EQ(list.GetXmlString(), document(QStringLiteral("<Alternatives/>")));
}

TEST(XmlDocument, MalformedXmlGivesFalseAndKeepsWhatWasRead)
{
    Alternatives list;
    auto logger = attachLogger(list);
    EXPECT_FALSE(list.SetXmlString(QStringLiteral("<Alternatives><Alternative><Name>A</Name><DatabaseID>1</DatabaseID>"
                                                  "<Confidence>0.5</Confidence></Alternative><Alternative><Name>"),
                                   false));
    // The first item is complete; the second, cut off, is kept as far as it was read.
    ASSERT_EQ(list.GetAlternative().size(), 2);
    EXPECT_TRUE(list.GetAlternative().at(0).HasData());
    EXPECT_FALSE(list.GetAlternative().at(1).HasData());
    ASSERT_FALSE(logger->entries.isEmpty());
    EXPECT_EQ(logger->entries.last().level, RECORDKIT::ERROR);
    EXPECT_TRUE(logger->entries.last().message.contains(QStringLiteral("line 1")));
    EXPECT_TRUE(logger->entries.last().message.contains(QStringLiteral("column")));
}

TEST(XmlDocument, CheckAfterReadLogsEveryFault)
{
    BeamDuration d;
    auto logger = attachLogger(d);
    EXPECT_TRUE(d.SetXmlString(QStringLiteral("<BeamDuration><Mean>1</Mean></BeamDuration>"), true));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("BeamDuration: Please set unit properly."));
}

TEST(Enumerations, NamesLookupsAndDisplayNames)
{
    BeamPeakPower b;
    EXPECT_EQ(BeamPeakPower::Getunits(), QStringList({QStringLiteral("dBm"), QString::fromUtf8("dB\xC2\xB5V")}));
    EXPECT_EQ(BeamPeakPower::Getunits().at(1).at(2).unicode(), 0x00B5);
    EXPECT_EQ(BeamPeakPower::GetGUIunits(), BeamPeakPower::Getunits());
    EXPECT_EQ(b.NameTounit(QStringLiteral("dBm")), 0);
    EXPECT_EQ(b.NameTounit(QStringLiteral("DBM")), 0xFF);
    EXPECT_EQ(b.NameTounit(QString()), 0xFF);
    EXPECT_TRUE(b.unitToName(BeamPeakPower::unit(0xFF)).isNull());
    EXPECT_TRUE(b.unitToName(BeamPeakPower::unit(2)).isNull());
    EXPECT_EQ(b.unitToName(BeamPeakPower::unit(1)), QString::fromUtf8("dB\xC2\xB5V"));
    EXPECT_TRUE(b.IsValidunit(BeamPeakPower::unit(1)));
    EXPECT_FALSE(b.IsValidunit(BeamPeakPower::unit(0x80)));  // negative when signed

    CenterFrequency c;
    EXPECT_EQ(c.NameTounit(QStringLiteral("hz")), 0xFF);
    EXPECT_FALSE(c.IsValidunit(CenterFrequency::unit(1)));
    EXPECT_EQ(AgeOutTime::tr("s"), QStringLiteral("s"));
    EXPECT_EQ(AgeOutTime::trUtf8("s"), QStringLiteral("s"));
}

// An item whose read raises is never appended: the list keeps only the items
// read before it, its presence bit as they left it.
TEST(XmlLists, AnItemWhoseReadRaisesIsNotKept)
{
    PRIList list;
    list.SetValidate(true);
    auto logger = attachLogger(list);
    EXPECT_FALSE(list.SetXmlString(QStringLiteral("<PRIList>"
                                                  "<PRIItem id=\"1\" pRIValType=\"Pulse\" unit=\"ns\">10.50</PRIItem>"
                                                  "<PRIItem id=\"2\" pRIValType=\"Nope\" unit=\"ns\">11</PRIItem>"
                                                  "</PRIList>"),
                                   false));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries.at(0).message,
              QStringLiteral("enum is not valid (classname=PRIItem,membername=m_pRIValType)"));
    const PRIList& read = list;
    ASSERT_EQ(read.GetPRIItem().size(), 1);
    EXPECT_EQ(read.GetPRIItem().at(0).Getid(), 1u);

    PRIList first;
    first.SetValidate(true);
    EXPECT_FALSE(first.SetXmlString(
        QStringLiteral("<PRIList><PRIItem id=\"2\" pRIValType=\"Nope\" unit=\"ns\">11</PRIItem></PRIList>"), false));
    EXPECT_FALSE(first.HasData());
    EXPECT_FALSE(first.AnyData());
    EXPECT_FALSE(first.IsPRIItemSet());
    EXPECT_EQ(first, PRIList());
}

TEST(XmlLists, AListReadFromXmlHoldsLittleRoomBeyondItsItems)
{
    // Items come one at a time and the list grows by doubling; once the
    // element ends, the room beyond its items is given back.
    for (int count : {1, 5, 1000, 5000}) {
        Alternatives written;
        for (int i = 0; i < count; ++i) {
            Alternative a;
            a.SetName(QStringLiteral("A%1").arg(i));
            a.SetDatabaseID(QStringLiteral("D"));
            a.SetConfidence(0.5);
            written.AppendAlternative(a);
        }
        Alternatives read;
        ASSERT_TRUE(read.SetXmlString(written.GetXmlString(), false));
        const QVector<Alternative>& items = read.GetAlternative();
        ASSERT_EQ(items.size(), count);
        EXPECT_LE(items.capacity() - items.size(), items.size() / 8) << count;
        EXPECT_EQ(read, written);
    }
}

TEST(XmlWriting, WholeNumbersAreWrittenAsQtWritesThem)
{
    for (quint64 value : {quint64(0), quint64(9), quint64(10), quint64(1234567890123ULL), ~quint64(0)}) {
        PulseItem item;
        item.Setid(value);
        item.SetPulseWidthID(value);
        const QString xml = item.GetXmlString();
        const QString text = QString::number(value);
        EXPECT_TRUE(xml.contains(QStringLiteral("id=\"%1\"").arg(text))) << xml.toStdString();
        EXPECT_TRUE(xml.contains(QStringLiteral("<PulseWidthID>%1</PulseWidthID>").arg(text))) << xml.toStdString();
    }
}

TEST(XmlReading, NumbersAreGatheredAcrossCommentsEntitiesAndSkippedChildren)
{
    // The text of a number is what readElementText gives with child elements skipped.
    PulseItem item;
    ASSERT_TRUE(item.SetXmlString(QStringLiteral("<PulseItem id=\" 7\">"
                                                 "<PulseWidthID>1<!-- note -->2<x>99</x>3</PulseWidthID>"
                                                 "<ModulationID><![CDATA[4]]>&#53;</ModulationID>"
                                                 "<NormLevel unit=\"dB\">-1<?pi?>2.5<y/></NormLevel>"
                                                 "</PulseItem>"),
                                  false));
    EXPECT_EQ(item.Getid(), 7u);
    EXPECT_EQ(item.GetPulseWidthID(), 123u);
    EXPECT_EQ(item.GetModulationID(), 45u);
    EXPECT_EQ(item.GetNormLevel().GetValue(), -12.5);
    EXPECT_TRUE(item.GetNormLevel().IsunitSet());
    EXPECT_EQ(item.GetNormLevel().Getunit(), item.GetNormLevel().NameTounit(QStringLiteral("dB")));
}
