// Frequency, PRI and pulse-width behaviours: the identified items, the lists
// that hold them and the behaviour records around them.

#include <limits>

#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

const quint64 MaxId = std::numeric_limits<quint64>::max();

FrequencyItem frequencyItem(quint64 id, double value)
{
    FrequencyItem f;
    f.Setid(id);
    f.Setunit(FrequencyItem::unit(0));
    f.SetValue(value);
    return f;
}

PRIItem priItem(quint64 id, int valType, double value)
{
    PRIItem p;
    p.Setid(id);
    p.SetpRIValType(PRIItem::pRIValType(valType));
    p.Setunit(PRIItem::unit(0));
    p.SetValue(value);
    return p;
}

PulseWidthItem pulseWidthItem(quint64 id, double value)
{
    PulseWidthItem p;
    p.Setid(id);
    p.Setunit(PulseWidthItem::unit(0));
    p.SetValue(value);
    return p;
}

}  // namespace

TEST(BehaviourItems, XmlWritesAttributesInOrderWithoutLookingAtBits)
{
    EXPECT_EQ(FrequencyItem().GetXmlString(),
              document(QStringLiteral("<FrequencyItem id=\"0\" unit=\"\">0.00</FrequencyItem>")));
    EXPECT_EQ(PRIItem().GetXmlString(),
              document(QStringLiteral("<PRIItem id=\"0\" pRIValType=\"\" unit=\"\">0.00</PRIItem>")));
    EXPECT_EQ(priItem(3, 1, 1000.25).GetXmlString(),
              document(QStringLiteral("<PRIItem id=\"3\" pRIValType=\"Group\" unit=\"ns\">1000.25</PRIItem>")));
    EXPECT_EQ(frequencyItem(MaxId, 9400000000.127).GetXmlString(),
              document(QStringLiteral(
                  "<FrequencyItem id=\"18446744073709551615\" unit=\"Hz\">9400000000.13</FrequencyItem>")));
    EXPECT_EQ(pulseWidthItem(0, -1).GetXmlString(),
              document(QStringLiteral("<PulseWidthItem id=\"0\" unit=\"ns\">-1.00</PulseWidthItem>")));
}

TEST(BehaviourItems, IdAttributeIsReadUnsigned)
{
    PRIItem p;
    ASSERT_TRUE(p.SetXmlString(
        QStringLiteral("<PRIItem id=\"18446744073709551615\" pRIValType=\"Pulse\" unit=\"ns\">2.5</PRIItem>"), false));
    EXPECT_EQ(p.Getid(), MaxId);
    EXPECT_EQ(p.GetpRIValType(), 0);  // "Pulse" is a real value at index 0
    EXPECT_EQ(p.GetValue(), 2.5);
    EXPECT_TRUE(p.HasData());
}

TEST(BehaviourItems, MissingAttributesLeaveTheItemIncomplete)
{
    PRIItem p;
    ASSERT_TRUE(p.SetXmlString(QStringLiteral("<PRIItem pRIValType=\"Group\"></PRIItem>"), false));
    EXPECT_TRUE(p.IsValueSet());  // set even from an empty text
    EXPECT_EQ(p.GetValue(), 0.0);
    EXPECT_FALSE(p.IsidSet());
    EXPECT_FALSE(p.IsunitSet());
    EXPECT_FALSE(p.HasData());
    EXPECT_TRUE(p.AnyData());
    auto logger = attachLogger(p);
    p.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("PRIItem: Please set id properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("PRIItem: Please set unit properly."));
    expectRaised<OutOfRangeException>([&] { p.Check(); }, QStringLiteral("PRIItem: Please set id properly."));

    // "Hz" is the only name, and still not implied.
    FrequencyItem f;
    ASSERT_TRUE(f.SetXmlString(QStringLiteral("<FrequencyItem id=\"1\">5</FrequencyItem>"), false));
    EXPECT_FALSE(f.HasData());
    expectRaised<OutOfRangeException>([&] { f.Check(); }, QStringLiteral("FrequencyItem: Please set unit properly."));
    PulseWidthItem w;
    w.Setid(2);
    w.Setunit(PulseWidthItem::unit(0));
    expectRaised<OutOfRangeException>([&] { w.Check(); }, QStringLiteral("PulseWidthItem: Please set Value properly."));
}

TEST(BehaviourItems, InvalidEnumerationsAreReported)
{
    PulseWidthItem w;
    w.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { w.Setunit(PulseWidthItem::unit(1)); },
                                      QStringLiteral("enum is not valid (classname=PulseWidthItem,membername=m_unit)"));
    EXPECT_FALSE(w.IsunitSet());
    PRIItem p;
    p.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { p.SetpRIValType(PRIItem::pRIValType(2)); },
                                      QStringLiteral("enum is not valid (classname=PRIItem,membername=m_pRIValType)"));

    // Flag off: stored with its bit, then refused by Check.
    PRIItem q = priItem(1, 0, 1);
    auto logger = attachLogger(q);
    q.Setunit(PRIItem::unit(5));
    EXPECT_TRUE(q.IsunitSet());
    EXPECT_TRUE(q.HasData());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("enum is not valid (classname=PRIItem,membername=m_unit)"));
    expectRaised<OutOfRangeException>([&] { q.Check(); }, QStringLiteral("PRIItem: Please set unit properly."));
}

TEST(BehaviourItems, TaggedAndRawLayouts)
{
    const QByteArray idRecord = hex("2767dd53 00000008 0000000000000005");
    const QByteArray unitRecord = hex("a5b3acfc 00000006 00000002 6e73");
    const QByteArray valueRecord = hex("8aff57b3 0000000a 00000006 3235302e3530");
    EXPECT_EQ(tagged(pulseWidthItem(5, 250.5), 0x0e4483dc),
              hex("0e4483dc 00000030") + idRecord + unitRecord + valueRecord);
    EXPECT_EQ(raw(pulseWidthItem(5, 250.5)), hex("07 0000000000000005 00 406f500000000000"));

    // Mandatory fields go out whatever their bits say.
    EXPECT_EQ(tagged(FrequencyItem(), 1), hex("00000001 0000002c 2767dd53 00000008 0000000000000000"
                                              "a5b3acfc 00000004 ffffffff 8aff57b3 00000008 00000004 302e3030"));
    EXPECT_EQ(raw(FrequencyItem()), hex("00 0000000000000000 ff 0000000000000000"));
    EXPECT_EQ(raw(priItem(MaxId, 1, 0.5)), hex("0f ffffffffffffffff 01 00 3fe0000000000000"));

    // Records in another order read the same; the id is a raw 64-bit integer.
    PulseWidthItem back;
    readTagged(back, valueRecord + unitRecord + hex("2767dd53 00000008 ffffffffffffffff"), 48);
    EXPECT_EQ(back, pulseWidthItem(MaxId, 250.5));
}

TEST(BehaviourLists, AppendRefusesIncompleteItemsWithValidationOn)
{
    PRIList pris;
    pris.SetValidate(true);
    PRIItem noUnit = priItem(1, 1, 2);
    noUnit.Resetunit();
    expectRaised<IncompleteDefinitionException>(
        [&] { pris.AppendPRIItem(noUnit); },
        QStringLiteral("PRIList: Tried to append not completely defined or invalid item PRIItem."));
    EXPECT_FALSE(pris.IsPRIItemSet());
    EXPECT_TRUE(pris.GetPRIItem().isEmpty());

    FrequencyList frequencies;
    frequencies.SetValidate(true);
    expectRaised<IncompleteDefinitionException>(
        [&] { frequencies.AppendFrequencyItem(FrequencyItem()); },
        QStringLiteral("FrequencyList: Tried to append not completely defined or invalid item FrequencyItem."));
    EXPECT_FALSE(frequencies.HasData());

    PulseWidthList widths;
    auto logger = attachLogger(widths);
    widths.AppendPulseWidthItem(PulseWidthItem());  // flag off: kept, warned
    EXPECT_EQ(widths.GetPulseWidthItem().size(), 1);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("PulseWidthList: Tried to append not completely defined or invalid item PulseWidthItem."));
}

TEST(BehaviourLists, ChecksAndWritersReportTheItem)
{
    auto logger = std::make_shared<RecordingLogger>();
    FrequencyList frequencies;
    ChannelSpacingList spacings;
    PulseWidthList widths;
    frequencies.SetLogger(logger);
    spacings.SetLogger(logger);
    widths.SetLogger(logger);
    frequencies.Check(true);
    spacings.Check(true);
    widths.Check(true);
    ASSERT_EQ(logger->entries.size(), 3);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("FrequencyList: Please set FrequencyItem properly."));
    EXPECT_EQ(logger->entries[1].message,
              QStringLiteral("ChannelSpacingList: Please set ChannelSpacingItem properly."));
    EXPECT_EQ(logger->entries[2].message, QStringLiteral("PulseWidthList: Please set PulseWidthItem properly."));

    PRIList pris;
    pris.SetPRIItem({priItem(1, 0, 2), PRIItem()});
    auto listLogger = attachLogger(pris);
    EXPECT_EQ(pris.GetXmlString(),
              document(QStringLiteral("<PRIList>\n"
                                      "  <PRIItem id=\"1\" pRIValType=\"Pulse\" unit=\"ns\">2.00</PRIItem>\n"
                                      "  <PRIItem id=\"0\" pRIValType=\"\" unit=\"\">0.00</PRIItem>\n"
                                      "</PRIList>")));
    ASSERT_EQ(listLogger->entries.size(), 1);
    EXPECT_EQ(listLogger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(listLogger->entries[0].message,
              QStringLiteral("Parameters for PRIItem are not set properly in 'PRIList'."));

    // With the flag on the item's own Check fails before anything is written.
    pris.SetValidate(true);
    QString xml;
    QXmlStreamWriter writer(&xml);
    expectRaised<OutOfRangeException>([&] { pris.GetXml(writer); }, QStringLiteral("PRIItem: Please set id properly."));
    EXPECT_TRUE(xml.isEmpty());
}

TEST(BehaviourLists, TaggedBytesOfAPRIListWithOneItem)
{
    PRIList pris;
    pris.AppendPRIItem(priItem(1, 0, 2.5));
    EXPECT_EQ(tagged(pris, 0x06da59e3), hex("06da59e3 0000004f cb3c1074 00000047 00000001 0000003f"
                                            "2767dd53 00000008 0000000000000001"
                                            "4cedde76 00000009 00000005 50756c7365"
                                            "a5b3acfc 00000006 00000002 6e73"
                                            "8aff57b3 00000008 00000004 322e3530"));
    EXPECT_EQ(raw(pris), hex("01 00000001 0f 0000000000000001 00 00 4004000000000000"));
}

TEST(Behaviours, HasDataIsAlwaysTrueWhileAnyDataNeedsContent)
{
    const FrequencyBehavior f;
    const PRIBehavior p;
    const PulseWidthBehavior w;
    EXPECT_TRUE(f.HasData() && p.HasData() && w.HasData());
    EXPECT_FALSE(f.AnyData() || p.AnyData() || w.AnyData());
    EXPECT_FALSE(f.IsInitialized() || p.IsInitialized() || w.IsInitialized());

    PRIBehavior q;
    q.GetPRIList();  // bit set, list empty
    EXPECT_TRUE(q.IsPRIListSet());
    EXPECT_FALSE(q.AnyData());
    q.SetPeriodicityPRIID(0);
    EXPECT_TRUE(q.AnyData());
    FrequencyBehavior g;
    g.GetCenterFrequency().SetMean(1);  // a number without its unit
    EXPECT_TRUE(g.AnyData());
    PulseWidthBehavior v;
    v.SetPulseWidthType(PulseWidthBehavior::PulseWidthType(0));
    EXPECT_TRUE(v.AnyData());
}

TEST(Behaviours, EmptyBehaviourWritesAnEmptyElement)
{
    PulseWidthBehavior w;
    w.SetValidate(true);
    EXPECT_NO_THROW(w.Check());
    EXPECT_EQ(w.GetXmlString(), document(QStringLiteral("<PulseWidthBehavior/>")));
    EXPECT_EQ(w.GetBinaryRepresentationAsQByteArray(), hex("2f314718 00000000"));
    EXPECT_EQ(raw(w), hex("00"));
    FrequencyBehavior f;
    f.SetValidate(true);
    EXPECT_EQ(f.GetBinaryRepresentationAsQByteArray(), hex("8ba48055 00000000"));
}

TEST(Behaviours, EnumerationReports)
{
    PRIBehavior p;
    p.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { p.SetPRIType(PRIBehavior::PRIType(15)); },
                                      QStringLiteral("enum is not valid (classname=PRIBehavior,membername=m_pRIType)"));
    FrequencyBehavior f;
    f.SetFrequencyType(FrequencyBehavior::FrequencyType(13));  // flag off: stored
    expectRaised<OutOfRangeException>([&] { f.Check(); },
                                      QStringLiteral("FrequencyBehavior: Please set FrequencyType properly."));
    PulseWidthBehavior w;
    w.SetValidate(true);
    expectRaised<OutOfRangeException>(
        [&] { w.SetPulseWidthType(PulseWidthBehavior::PulseWidthType(4)); },
        QStringLiteral("enum is not valid (classname=PulseWidthBehavior,membername=m_pulseWidthType)"));

    // Type and list are not tied.
    w.SetPulseWidthType(w.NameToPulseWidthType(QStringLiteral("Fixed")));
    w.GetPulseWidthList().AppendPulseWidthItem(pulseWidthItem(1, 100));
    w.GetPulseWidthList().AppendPulseWidthItem(pulseWidthItem(2, 200));
    EXPECT_NO_THROW(w.Check());
    f.SetFrequencyType(f.NameToFrequencyType(QStringLiteral("Chirp Up")));
    EXPECT_NO_THROW(f.Check());
}

TEST(Behaviours, PeriodicityPRIIDIsReadSignedAndNeverResolved)
{
    PRIBehavior p;
    p.SetPeriodicityPRIID(MaxId);
    EXPECT_TRUE(p.GetXmlString().contains(QStringLiteral("<PeriodicityPRIID>18446744073709551615</PeriodicityPRIID>")));
    PRIBehavior back;
    ASSERT_TRUE(back.SetXmlString(p.GetXmlString(), false));
    EXPECT_TRUE(back.IsPeriodicityPRIIDSet());
    EXPECT_EQ(back.GetPeriodicityPRIID(), 0u);
    PRIBehavior largest;
    ASSERT_TRUE(largest.SetXmlString(
        QStringLiteral("<PRIBehavior><PeriodicityPRIID>9223372036854775807</PeriodicityPRIID></PRIBehavior>"), false));
    EXPECT_EQ(largest.GetPeriodicityPRIID(), 9223372036854775807ull);

    // An id that names no item, with and without a list, passes and survives.
    PRIBehavior dangling;
    dangling.SetValidate(true);
    dangling.SetPeriodicityPRIID(42);
    EXPECT_NO_THROW(dangling.Check());
    expectAllFormsRoundTrip(dangling);
    dangling.GetPRIList().AppendPRIItem(priItem(1, 0, 5));
    EXPECT_NO_THROW(dangling.Check());
    expectAllFormsRoundTrip(dangling);
    // The tagged form keeps the full unsigned value.
    PRIBehavior fromTagged;
    QByteArray bytes = p.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(bytes));
    EXPECT_EQ(fromTagged.GetPeriodicityPRIID(), MaxId);
}

TEST(Behaviours, XmlOfAFilledPRIBehavior)
{
    PRIBehavior p;
    p.GetPRI().Setunit(PRI::unit(0));
    p.GetPRI().SetMean(2.5);
    p.SetPRIType(p.NameToPRIType(QStringLiteral("Stagger")));
    p.SetPeriodicityPRIID(7);
    p.GetPRIList().AppendPRIItem(priItem(7, 0, 2.5));
    EXPECT_EQ(p.GetXmlString(),
              document(QStringLiteral("<PRIBehavior>\n"
                                      "  <PRI unit=\"ns\">\n"
                                      "    <Mean>2.50</Mean>\n"
                                      "  </PRI>\n"
                                      "  <PRIType>Stagger</PRIType>\n"
                                      "  <PeriodicityPRIID>7</PeriodicityPRIID>\n"
                                      "  <PRIList>\n"
                                      "    <PRIItem id=\"7\" pRIValType=\"Pulse\" unit=\"ns\">2.50</PRIItem>\n"
                                      "  </PRIList>\n"
                                      "</PRIBehavior>")));
}

TEST(Behaviours, FilledBehavioursRoundTripThroughAllForms)
{
    FrequencyBehavior f;
    f.GetCenterFrequency().Setunit(CenterFrequency::unit(0));
    f.GetCenterFrequency().SetMean(9375000000.25);
    f.GetCenterFrequency().SetMin(9300000000);
    f.GetCenterFrequency().SetMax(9450000000.5);
    f.SetFrequencyType(FrequencyBehavior::FrequencyType(6));
    f.GetFrequencyList().AppendFrequencyItem(frequencyItem(MaxId, 9400000000.12));
    f.GetFrequencyList().AppendFrequencyItem(frequencyItem(1, 9350000000.5));
    f.GetFrequencyList().AppendFrequencyItem(frequencyItem(1, 9360000000.75));  // duplicate id kept
    ChannelSpacingItem spacing;
    spacing.Setunit(ChannelSpacingItem::unit(0));
    spacing.SetValue(5000000);
    f.GetChannelSpacingList().AppendChannelSpacingItem(spacing);
    expectAllFormsRoundTrip(f);

    PRIBehavior p;
    p.GetPRI().Setunit(PRI::unit(0));
    p.GetPRI().SetTol(-0.25);
    p.SetPRIType(PRIBehavior::PRIType(0));
    p.SetPeriodicityPRIID(0);
    p.GetPRIList().AppendPRIItem(priItem(0, 0, 1000.01));
    p.GetPRIList().AppendPRIItem(priItem(MaxId, 1, 3000.5));
    expectAllFormsRoundTrip(p);

    PulseWidthBehavior w;
    w.GetPulseWidth().Setunit(PulseWidth::unit(0));
    w.GetPulseWidth().SetMean(250.5);
    w.SetPulseWidthType(PulseWidthBehavior::PulseWidthType(3));
    w.GetPulseWidthList().AppendPulseWidthItem(pulseWidthItem(MaxId, 0.25));
    w.GetPulseWidthList().AppendPulseWidthItem(pulseWidthItem(4, 1200));
    expectAllFormsRoundTrip(w);
}
