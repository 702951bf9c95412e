// The signal structure: master sequences, sequences with their elements and
// pulses, tied together by ids that are stored and never followed.

#include <limits>

#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

const quint64 MaxId = std::numeric_limits<quint64>::max();
const quint64 MaxSigned = 9223372036854775807ull;

MasterSequenceItem masterItem(int type, quint64 value)
{
    MasterSequenceItem m;
    m.Settype(MasterSequenceItem::type(type));
    m.SetValue(value);
    return m;
}

ElementItem element(quint64 childId, const char* childType, quint64 repetitions)
{
    ElementItem e;
    e.SetChildID(childId);
    e.SetChildType(e.NameToChildType(QString::fromLatin1(childType)));
    e.SetNumRepetitions(repetitions);
    return e;
}

SequenceItem sequenceItem(quint64 id)
{
    SequenceItem s;
    s.Setid(id);
    return s;
}

PulseItem pulseItem(quint64 id)
{
    PulseItem p;
    p.Setid(id);
    return p;
}

}  // namespace

TEST(SequenceMasterItem, XmlWritesUnsignedAndReadsSigned)
{
    EXPECT_EQ(masterItem(2, MaxId).GetXmlString(),
              document(
                  QStringLiteral("<MasterSequenceItem type=\"Mode Chain\">18446744073709551615</MasterSequenceItem>")));
    EXPECT_EQ(MasterSequenceItem().GetXmlString(),
              document(QStringLiteral("<MasterSequenceItem type=\"\">0</MasterSequenceItem>")));

    MasterSequenceItem back;
    ASSERT_TRUE(back.SetXmlString(masterItem(2, MaxId).GetXmlString(), false));
    EXPECT_TRUE(back.IsValueSet());
    EXPECT_EQ(back.GetValue(), 0u);
    EXPECT_EQ(back.Gettype(), 2);
    MasterSequenceItem largest;
    ASSERT_TRUE(largest.SetXmlString(
        QStringLiteral("<MasterSequenceItem type=\"Mode\">9223372036854775807</MasterSequenceItem>"), false));
    EXPECT_EQ(largest.GetValue(), MaxSigned);
    MasterSequenceItem empty;
    ASSERT_TRUE(empty.SetXmlString(QStringLiteral("<MasterSequenceItem type=\"Mode\"/>"), false));
    EXPECT_TRUE(empty.IsValueSet());
    EXPECT_EQ(empty.GetValue(), 0u);
    EXPECT_TRUE(empty.HasData());
}

TEST(SequenceMasterItem, TaggedAndRawLayoutsAndChecks)
{
    EXPECT_EQ(tagged(masterItem(1, 7), 0xc4a68077),
              hex("c4a68077 00000020 a1f0ee2d 00000008 00000004 4d6f6465 2a9485b4 00000008 0000000000000007"));
    EXPECT_EQ(raw(masterItem(1, 7)), hex("03 01 0000000000000007"));
    MasterSequenceItem fromTagged;
    readTagged(fromTagged, hex("2a9485b4 00000008 ffffffffffffffff a1f0ee2d 00000008 00000004 4d6f6465"), 32);
    EXPECT_EQ(fromTagged, masterItem(1, MaxId));

    MasterSequenceItem m;
    auto logger = attachLogger(m);
    m.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("MasterSequenceItem: Please set type properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("MasterSequenceItem: Please set Value properly."));
    m.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { m.Settype(MasterSequenceItem::type(3)); },
                                      QStringLiteral(
                                          "enum is not valid (classname=MasterSequenceItem,membername=m_type)"));
    EXPECT_FALSE(m.IstypeSet());
}

TEST(SequenceItems, IdIsWrittenFirstButHasTheLastBit)
{
    SequenceItem only = sequenceItem(9);
    EXPECT_EQ(only.GetXmlString(), document(QStringLiteral("<SequenceItem id=\"9\"/>")));
    EXPECT_EQ(only.GetBinaryRepresentationAsQByteArray(), hex("48662253 00000010 2767dd53 00000008 0000000000000009"));
    EXPECT_EQ(raw(only), hex("08 0000000000000009"));

    SequenceItem withFrequency = sequenceItem(9);
    withFrequency.SetFrequencyID(4);
    EXPECT_EQ(tagged(withFrequency, 0x27b127d9),
              hex("27b127d9 00000020 2767dd53 00000008 0000000000000009 4286b95a 00000008 0000000000000004"));
    EXPECT_EQ(raw(withFrequency), hex("09 0000000000000004 0000000000000009"));

    EXPECT_EQ(pulseItem(4).GetXmlString(), document(QStringLiteral("<PulseItem id=\"4\"/>")));
    EXPECT_EQ(raw(pulseItem(MaxId)), hex("40 ffffffffffffffff"));

    PulseItem p = pulseItem(4);
    p.SetPulseWidthID(0);
    p.SetModulationID(2);
    p.GetNormLevel().Setunit(NormLevel::unit(0));
    p.GetNormLevel().SetValue(-3);
    EXPECT_EQ(p.GetXmlString(), document(QStringLiteral("<PulseItem id=\"4\">\n"
                                                        "  <PulseWidthID>0</PulseWidthID>\n"
                                                        "  <ModulationID>2</ModulationID>\n"
                                                        "  <NormLevel unit=\"dB\">-3.00</NormLevel>\n"
                                                        "</PulseItem>")));
    EXPECT_EQ(tagged(p, 0x287188f0), hex("287188f0 00000057 2767dd53 00000008 0000000000000004"
                                         "0c5ac3d5 00000008 0000000000000000 4dd4e1a3 00000008 0000000000000002"
                                         "c8b8c618 0000001f a5b3acfc 00000006 00000002 6442"
                                         "8aff57b3 00000009 00000005 2d332e3030"));
    EXPECT_EQ(raw(p), hex("47 0000000000000000 0000000000000002 03 00 c008000000000000 0000000000000004"));
}

TEST(SequenceItems, IdElementIsAcceptedAndWinsOverTheAttribute)
{
    SequenceItem s;
    ASSERT_TRUE(s.SetXmlString(QStringLiteral("<SequenceItem id=\"3\"><id>7</id></SequenceItem>"), false));
    EXPECT_EQ(s.Getid(), 7u);
    EXPECT_EQ(s.GetXmlString(), document(QStringLiteral("<SequenceItem id=\"7\"/>")));
    PulseItem p;
    ASSERT_TRUE(p.SetXmlString(QStringLiteral("<PulseItem id=\"3\"><id>8</id></PulseItem>"), false));
    EXPECT_EQ(p.Getid(), 8u);
    EXPECT_EQ(p.GetXmlString(), document(QStringLiteral("<PulseItem id=\"8\"/>")));

    // The attribute is read unsigned, the elements signed.
    SequenceItem fromAttribute;
    ASSERT_TRUE(fromAttribute.SetXmlString(QStringLiteral("<SequenceItem id=\"18446744073709551615\"/>"), false));
    EXPECT_EQ(fromAttribute.Getid(), MaxId);
    SequenceItem fromElements;
    ASSERT_TRUE(
        fromElements.SetXmlString(QStringLiteral("<SequenceItem><id>18446744073709551615</id>"
                                                 "<FrequencyID>18446744073709551615</FrequencyID></SequenceItem>"),
                                  false));
    EXPECT_TRUE(fromElements.IsidSet());
    EXPECT_EQ(fromElements.Getid(), 0u);
    EXPECT_TRUE(fromElements.IsFrequencyIDSet());
    EXPECT_EQ(fromElements.GetFrequencyID(), 0u);
    PulseItem pulse;
    ASSERT_TRUE(pulse.SetXmlString(QStringLiteral(
                                       "<PulseItem id=\"18446744073709551615\"><PulseWidthID>9223372036854775807"
                                       "</PulseWidthID><ModulationID>18446744073709551615</ModulationID></PulseItem>"),
                                   false));
    EXPECT_EQ(pulse.Getid(), MaxId);
    EXPECT_EQ(pulse.GetPulseWidthID(), MaxSigned);
    EXPECT_TRUE(pulse.IsModulationIDSet());
    EXPECT_EQ(pulse.GetModulationID(), 0u);
}

TEST(SequenceItems, OnlyTheIdIsDemanded)
{
    SequenceItem s;
    s.SetFrequencyID(4);
    s.GetDeadTime().SetValue(1);  // no unit
    EXPECT_TRUE(s.AnyData());
    EXPECT_FALSE(s.HasData());
    auto logger = attachLogger(s);
    s.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);  // bit order: DeadTime (1) before id (3)
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("DeadTime: Please set unit properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("SequenceItem: Please set id properly."));
    s.Setid(0);
    EXPECT_TRUE(s.HasData());

    PulseItem p;
    p.SetPulseWidthID(1);
    EXPECT_FALSE(p.HasData());
    EXPECT_TRUE(p.AnyData());
    expectRaised<OutOfRangeException>([&] { p.Check(); }, QStringLiteral("PulseItem: Please set id properly."));
    PulseItem q = pulseItem(0);  // complete without PulseWidthID
    EXPECT_TRUE(q.HasData());
    EXPECT_NO_THROW(q.Check());
}

TEST(SequenceElements, CompletenessAndChecks)
{
    ElementItem e = element(5, "Sequence", 3);
    EXPECT_TRUE(e.HasData());  // PRIID is optional
    EXPECT_NO_THROW(e.Check());
    EXPECT_EQ(e.GetChildType(), 0);  // "Sequence" is index 0
    e.ResetNumRepetitions();
    EXPECT_FALSE(e.HasData());
    expectRaised<OutOfRangeException>([&] { e.Check(); },
                                      QStringLiteral("ElementItem: Please set NumRepetitions properly."));

    ElementItem empty;
    auto logger = attachLogger(empty);
    empty.SetPRIID(1);
    EXPECT_TRUE(empty.AnyData());
    empty.Check(true);
    ASSERT_EQ(logger->entries.size(), 3);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("ElementItem: Please set ChildID properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("ElementItem: Please set ChildType properly."));
    EXPECT_EQ(logger->entries[2].message, QStringLiteral("ElementItem: Please set NumRepetitions properly."));
    empty.SetValidate(true);
    expectRaised<OutOfRangeException>([&] { empty.SetChildType(ElementItem::ChildType(2)); },
                                      QStringLiteral(
                                          "enum is not valid (classname=ElementItem,membername=m_childType)"));
}

TEST(SequenceElements, LayoutsAndSignedIntegerElements)
{
    const ElementItem e = element(5, "Sequence", 3);
    EXPECT_EQ(e.GetXmlString(), document(QStringLiteral("<ElementItem>\n"
                                                        "  <ChildID>5</ChildID>\n"
                                                        "  <ChildType>Sequence</ChildType>\n"
                                                        "  <NumRepetitions>3</NumRepetitions>\n"
                                                        "</ElementItem>")));
    EXPECT_EQ(raw(e), hex("07 0000000000000005 00 0000000000000003"));
    EXPECT_EQ(tagged(e, 0x4fd1f667), hex("4fd1f667 00000034 8b4d2001 00000008 0000000000000005"
                                         "e22379fc 0000000c 00000008 53657175656e6365"
                                         "af35fe08 00000008 0000000000000003"));
    ElementItem withPri = element(1, "Pulse", 0);
    withPri.SetPRIID(MaxId);
    EXPECT_EQ(raw(withPri), hex("0f 0000000000000001 01 0000000000000000 ffffffffffffffff"));

    ElementItem read;
    ASSERT_TRUE(read.SetXmlString(QStringLiteral(
                                      "<ElementItem><ChildID>18446744073709551615</ChildID><ChildType>Pulse</ChildType>"
                                      "<NumRepetitions>9223372036854775807</NumRepetitions>"
                                      "<PRIID>18446744073709551615</PRIID></ElementItem>"),
                                  false));
    EXPECT_TRUE(read.IsChildIDSet());
    EXPECT_EQ(read.GetChildID(), 0u);
    EXPECT_EQ(read.GetChildType(), 1);
    EXPECT_EQ(read.GetNumRepetitions(), MaxSigned);
    EXPECT_TRUE(read.IsPRIIDSet());
    EXPECT_EQ(read.GetPRIID(), 0u);
}

TEST(SequenceLists, AppendRefusesIncompleteItemsWithValidationOn)
{
    SequenceList sequences;
    sequences.SetValidate(true);
    SequenceItem noId;
    noId.SetFrequencyID(1);
    expectRaised<IncompleteDefinitionException>(
        [&] { sequences.AppendSequenceItem(noId); },
        QStringLiteral("SequenceList: Tried to append not completely defined or invalid item SequenceItem."));
    EXPECT_FALSE(sequences.IsSequenceItemSet());
    ElementList elements;
    elements.SetValidate(true);
    ElementItem noRepetitions = element(1, "Pulse", 1);
    noRepetitions.ResetNumRepetitions();
    expectRaised<IncompleteDefinitionException>(
        [&] { elements.AppendElementItem(noRepetitions); },
        QStringLiteral("ElementList: Tried to append not completely defined or invalid item ElementItem."));
    EXPECT_TRUE(elements.GetElementItem().isEmpty());
    PulseList pulses;
    pulses.SetValidate(true);
    expectRaised<IncompleteDefinitionException>(
        [&] { pulses.AppendPulseItem(PulseItem()); },
        QStringLiteral("PulseList: Tried to append not completely defined or invalid item PulseItem."));
    MasterSequenceList masters;
    masters.SetValidate(true);
    MasterSequenceItem noValue;
    noValue.Settype(MasterSequenceItem::type(1));
    expectRaised<IncompleteDefinitionException>(
        [&] { masters.AppendMasterSequenceItem(noValue); },
        QStringLiteral(
            "MasterSequenceList: Tried to append not completely defined or invalid item MasterSequenceItem."));
    EXPECT_FALSE(masters.HasData());
}

TEST(SequenceLists, WritersReportIncompleteItemsWithValidationOff)
{
    SequenceItem s = sequenceItem(1);
    s.GetElementList().SetElementItem({element(2, "Pulse", 1), ElementItem()});
    auto logger = attachLogger(s);
    const QString xml = s.GetXmlString();
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Parameters for ElementItem are not set properly in 'ElementList'."));
    EXPECT_TRUE(xml.contains(QStringLiteral("<ChildType></ChildType>")));

    auto listLogger = std::make_shared<RecordingLogger>();
    SequenceList sequences;
    PulseList pulses;
    MasterSequenceList masters;
    sequences.SetLogger(listLogger);
    pulses.SetLogger(listLogger);
    masters.SetLogger(listLogger);
    sequences.SetSequenceItem({SequenceItem()});
    pulses.SetPulseItem({PulseItem()});
    masters.SetMasterSequenceItem({MasterSequenceItem()});
    sequences.GetXmlString();
    pulses.GetXmlString();
    masters.GetXmlString();
    ASSERT_EQ(listLogger->entries.size(), 3);
    EXPECT_EQ(listLogger->entries[0].message,
              QStringLiteral("Parameters for SequenceItem are not set properly in 'SequenceList'."));
    EXPECT_EQ(listLogger->entries[1].message,
              QStringLiteral("Parameters for PulseItem are not set properly in 'PulseList'."));
    EXPECT_EQ(listLogger->entries[2].message,
              QStringLiteral("Parameters for MasterSequenceItem are not set properly in 'MasterSequenceList'."));
}

TEST(SequenceLists, TaggedBytesOfAMasterSequenceList)
{
    MasterSequenceList masters;
    masters.AppendMasterSequenceItem(masterItem(1, 7));
    EXPECT_EQ(tagged(masters, 0x0e773edb),
              hex("0e773edb 00000030 c4a68077 00000028 00000001 00000020"
                  "a1f0ee2d 00000008 00000004 4d6f6465 2a9485b4 00000008 0000000000000007"));
    EXPECT_EQ(raw(masters), hex("01 00000001 03 01 0000000000000007"));
    EXPECT_EQ(tagged(PulseList(), 0xc873f636), hex("c873f636 0000000c 287188f0 00000004 00000000"));
}

TEST(SequenceStructure, HasDataIsAlwaysTrueAndTheBehaviourIsNotTiedToTheLists)
{
    const Sequence fresh;
    EXPECT_TRUE(fresh.HasData());
    EXPECT_FALSE(fresh.AnyData());
    EXPECT_FALSE(fresh.IsInitialized());

    Sequence s;
    s.SetValidate(true);
    EXPECT_EQ(s.GetXmlString(), document(QStringLiteral("<Sequence/>")));
    EXPECT_EQ(s.GetBinaryRepresentationAsQByteArray(), hex("6741a933 00000000"));
    EXPECT_EQ(raw(s), hex("00"));
    s.SetMasterSequenceBehavior(s.NameToMasterSequenceBehavior(QStringLiteral("Complex")));
    EXPECT_EQ(s.GetMasterSequenceBehavior(), 3);
    EXPECT_TRUE(s.AnyData());
    EXPECT_NO_THROW(s.Check());
    expectRaised<OutOfRangeException>(
        [&] { s.SetMasterSequenceBehavior(Sequence::MasterSequenceBehavior(4)); },
        QStringLiteral("enum is not valid (classname=Sequence,membername=m_masterSequenceBehavior)"));

    Sequence bad;
    auto logger = attachLogger(bad);
    bad.SetMasterSequenceBehavior(Sequence::MasterSequenceBehavior(9));
    logger->entries.clear();
    bad.GetSequenceList().SetSequenceItem({SequenceItem()});
    bad.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Sequence: Please set MasterSequenceBehavior properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("SequenceItem: Please set id properly."));
}

TEST(SequenceStructure, DanglingReferencesPassAndAFullStructureRoundTrips)
{
    Sequence s;
    s.SetMasterSequenceBehavior(Sequence::MasterSequenceBehavior(1));
    s.GetMasterSequenceList().AppendMasterSequenceItem(masterItem(1, 0));
    s.GetMasterSequenceList().AppendMasterSequenceItem(masterItem(2, MaxSigned));

    SequenceItem first = sequenceItem(1);
    first.SetFrequencyID(77);  // no frequency list anywhere
    first.GetDeadTime().Setunit(DeadTime::unit(0));
    first.GetDeadTime().SetValue(12.5);
    ElementItem toSecond = element(2, "Sequence", 0);
    toSecond.SetPRIID(5);  // no PRI list anywhere
    first.GetElementList().AppendElementItem(toSecond);
    first.GetElementList().AppendElementItem(element(99, "Pulse", 4));  // no pulse 99
    SequenceItem second = sequenceItem(2);
    second.GetElementList().AppendElementItem(element(1, "Sequence", 1));  // cycle back to the first
    s.GetSequenceList().AppendSequenceItem(first);
    s.GetSequenceList().AppendSequenceItem(second);
    s.GetSequenceList().AppendSequenceItem(sequenceItem(2));  // duplicate id

    PulseItem pulse = pulseItem(1);  // same id as a sequence
    pulse.SetPulseWidthID(3);
    pulse.SetModulationID(0);
    pulse.GetNormLevel().Setunit(NormLevel::unit(0));
    pulse.GetNormLevel().SetValue(-1.5);
    pulse.GetRiseTime().Setunit(RiseTime::unit(0));
    pulse.GetRiseTime().SetValue(10.25);
    pulse.GetFallTime().Setunit(FallTime::unit(0));
    pulse.GetFallTime().SetValue(20.75);
    pulse.GetEnvelopeGradient().Setunit(EnvelopeGradient::unit(0));
    pulse.GetEnvelopeGradient().SetValue(0.01);
    s.GetPulseList().AppendPulseItem(pulse);
    s.GetPulseList().AppendPulseItem(pulseItem(MaxId));

    s.SetValidate(true);
    EXPECT_NO_THROW(s.Check());
    expectAllFormsRoundTrip(s);

    Sequence back;
    ASSERT_TRUE(back.SetXmlString(s.GetXmlString(), false));
    const ElementItem dangling = back.GetSequenceList().GetSequenceItem().at(0).GetElementList().GetElementItem().at(1);
    EXPECT_EQ(dangling.GetChildID(), 99u);
    EXPECT_EQ(dangling.GetChildType(), 1);
    EXPECT_EQ(back.GetPulseList().GetPulseItem().at(1).Getid(), MaxId);
}
