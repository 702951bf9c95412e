// The modulation block: the prevailing modulation, the list of observed
// modulations and the item with its id that moves between first and last place.

#include <gtest/gtest.h>

#include <limits>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

const quint64 MaxId = std::numeric_limits<quint64>::max();

// Hex text of bytes, so that a failing layout reads as bytes.
std::string hexOf(const QByteArray& bytes) { return bytes.toHex().toStdString(); }

template <class T>
T scalar(double value)
{
    T t;
    t.Setunit(typename T::unit(0));
    t.SetValue(value);
    return t;
}

Code code(bool reversed, const char* name, const char* value)
{
    Code c;
    c.Setreversed(reversed);
    c.Setname(QString::fromUtf8(name));
    c.SetValue(QString::fromUtf8(value));
    return c;
}

FreqModulationItem segment(double duration)
{
    FreqModulationItem s;
    s.SetDuration(scalar<Duration>(duration));
    return s;
}

// Type PSK2, 12.5 % and id 42: bits 0, 1 and 15.
ModulationItem smallItem()
{
    ModulationItem m;
    m.Setid(42);
    m.SetModulationType(m.NameToModulationType(QStringLiteral("PSK2")));
    m.SetOccurrencePercentage(12.5);
    return m;
}

ModulationItem filledItem()
{
    ModulationItem m;
    m.Setid(MaxId);
    m.SetModulationType(m.NameToModulationType(QStringLiteral("PSK4")));
    m.SetOccurrencePercentage(150);  // no range
    m.SetChipRate(scalar<ChipRate>(2.5e6));
    m.SetChipRateTol(scalar<ChipRateTol>(1000));
    m.SetModulationDuration(scalar<ModulationDuration>(12.25));
    m.SetModulationDurationTol(scalar<ModulationDurationTol>(0.5));
    m.SetFreqShift(scalar<FreqShift>(-3e5));
    m.SetFreqShiftTol(scalar<FreqShiftTol>(75));
    m.SetTriangleRatio(0.5);
    m.SetTriangleRatioTol(0.05);
    m.SetBandwidth(scalar<Bandwidth>(5e6));
    m.SetBandwidthTol(scalar<BandwidthTol>(2e3));
    m.SetFMOPType(m.NameToFMOPType(QStringLiteral("Low to High")));
    FreqModulationItem first = segment(100);
    first.SetStartFrequency(scalar<StartFrequency>(9.4e9));
    first.SetFrequencyDeviation(scalar<FrequencyDeviation>(-2e6));
    m.GetFreqModulation().Setname(QStringLiteral("up-down"));
    m.GetFreqModulation().AppendFreqModulationItem(first);
    m.GetFreqModulation().AppendFreqModulationItem(segment(37.5));
    m.GetCodeSequence().Setname(QStringLiteral("Barker 7"));
    m.GetCodeSequence().SetbitSequence(QStringLiteral("1110010"));
    m.GetCodeSequence().AppendCode(code(false, "a", "111"));
    m.GetCodeSequence().AppendCode(code(true, "b", "0010"));
    return m;
}

}  // namespace

TEST(ModulationItem, EnumerationNamesAreCaseSensitive)
{
    ModulationItem m;
    EXPECT_EQ(m.NameToModulationType(QStringLiteral("psk2")), 0xFF);
    EXPECT_EQ(m.NameToFMOPType(QStringLiteral("high to low")), 0xFF);
    EXPECT_EQ(m.NameToFMOPType(QStringLiteral("High to Low")), 1);
}

TEST(ModulationItem, HasDataNeedsTypeAndIdButNotAValidType)
{
    ModulationItem m;
    m.GetChipRate();
    EXPECT_FALSE(m.AnyData());                                  // an empty child holds nothing
    m.SetModulationType(ModulationItem::ModulationType(0xFF));  // validation off: stored
    EXPECT_TRUE(m.AnyData());
    EXPECT_FALSE(m.HasData());
    m.Setid(0);
    EXPECT_TRUE(m.HasData());
}

TEST(ModulationItem, SettersReportInvalidEnumerations)
{
    ModulationItem m;
    m.SetValidate(true);
    try {
        m.SetModulationType(ModulationItem::ModulationType(16));
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(),
                  QStringLiteral("enum is not valid (classname=ModulationItem,membername=m_modulationType)"));
    }
    EXPECT_FALSE(m.IsModulationTypeSet());
    try {
        m.SetFMOPType(ModulationItem::FMOPType(3));
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("enum is not valid (classname=ModulationItem,membername=m_fMOPType)"));
    }
    Modulation p;
    p.SetValidate(true);
    try {
        p.SetPrevailingModulation(Modulation::PrevailingModulation(16));
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(),
                  QStringLiteral("enum is not valid (classname=Modulation,membername=m_prevailingModulation)"));
    }
}

TEST(ModulationItem, CheckWalksInBitOrderAndStopsAtTheFirstFault)
{
    ModulationItem m;
    m.SetFMOPType(ModulationItem::FMOPType(3));
    m.GetChipRate();
    auto logger = attachLogger(m);
    m.Check(true);
    ASSERT_EQ(logger->entries.size(), 5);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("ModulationItem: Please set ModulationType properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("ChipRate: Please set unit properly."));
    EXPECT_EQ(logger->entries[2].message, QStringLiteral("ChipRate: Please set Value properly."));
    EXPECT_EQ(logger->entries[3].message, QStringLiteral("ModulationItem: Please set FMOPType properly."));
    EXPECT_EQ(logger->entries[4].message, QStringLiteral("ModulationItem: Please set id properly."));

    try {
        m.Check();
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("ModulationItem: Please set ModulationType properly."));
    }
}

TEST(ModulationItem, EmptyItemIsWrittenWithValidationOffAndRefusedWithItOn)
{
    ModulationItem m;
    EXPECT_EQ(m.GetXmlString(), document(QStringLiteral("<ModulationItem id=\"0\">\n"
                                                        "  <ModulationType></ModulationType>\n"
                                                        "</ModulationItem>")));
    EXPECT_EQ(tagged(m, 1), hex("00000001 0000001c 2767dd53 00000008 0000000000000000 a57db950 00000004 ffffffff"));
    EXPECT_EQ(raw(m), hex("00 00 ff 0000000000000000"));

    m.SetValidate(true);
    EXPECT_THROW(m.GetXmlString(), OutOfRangeException);
    QByteArray bytes;
    try {
        bytes = tagged(m, 1);
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("ModulationItem: Please set ModulationType properly."));
    }
    EXPECT_TRUE(bytes.isEmpty());
}

TEST(ModulationItem, XmlHasIdFirstThenElementsInBitOrder)
{
    ModulationItem m;
    m.GetCodeSequence().Setname(QStringLiteral("S"));
    m.GetCodeSequence().SetbitSequence(QStringLiteral("01"));
    m.GetCodeSequence().AppendCode(code(false, "c1", "0110"));
    m.GetFreqModulation().Setname(QStringLiteral("F"));
    m.GetFreqModulation().AppendFreqModulationItem(segment(100));
    m.SetFMOPType(m.NameToFMOPType(QStringLiteral("High to Low")));
    m.SetBandwidth(scalar<Bandwidth>(5e6));
    m.SetTriangleRatio(0.5);
    m.GetChipRate();  // set bit, nothing stored
    m.SetModulationType(m.NameToModulationType(QStringLiteral("PSK2")));
    m.Setid(42);
    EXPECT_EQ(m.GetXmlString(), document(QStringLiteral("<ModulationItem id=\"42\">\n"
                                                        "  <ModulationType>PSK2</ModulationType>\n"
                                                        "  <ChipRate unit=\"\">0.00</ChipRate>\n"
                                                        "  <TriangleRatio>0.50</TriangleRatio>\n"
                                                        "  <Bandwidth unit=\"Hz\">5000000.00</Bandwidth>\n"
                                                        "  <FMOPType>High to Low</FMOPType>\n"
                                                        "  <FreqModulation name=\"F\">\n"
                                                        "    <FreqModulationItem>\n"
                                                        "      <Duration unit=\"ns\">100.00</Duration>\n"
                                                        "    </FreqModulationItem>\n"
                                                        "  </FreqModulation>\n"
                                                        "  <CodeSequence name=\"S\" bitSequence=\"01\">\n"
                                                        "    <Code reversed=\"false\" name=\"c1\">0110</Code>\n"
                                                        "  </CodeSequence>\n"
                                                        "</ModulationItem>")));
}

TEST(ModulationItem, IdAttributeIsUnsignedAndIdElementSigned)
{
    ModulationItem attribute;
    ASSERT_TRUE(attribute.SetXmlString(QStringLiteral("<ModulationItem id=\"18446744073709551615\">"
                                                      "<ModulationType>PSK2</ModulationType></ModulationItem>"),
                                       false));
    EXPECT_EQ(attribute.Getid(), MaxId);
    EXPECT_EQ(attribute.GetModulationType(), 7);

    ModulationItem tooLarge;
    ASSERT_TRUE(tooLarge.SetXmlString(QStringLiteral("<ModulationItem><ModulationType>CW</ModulationType>"
                                                     "<id>18446744073709551615</id></ModulationItem>"),
                                      false));
    EXPECT_TRUE(tooLarge.IsidSet());
    EXPECT_EQ(tooLarge.Getid(), 0u);

    ModulationItem negative;
    ASSERT_TRUE(negative.SetXmlString(QStringLiteral("<ModulationItem><id>-1</id></ModulationItem>"), false));
    EXPECT_EQ(negative.Getid(), MaxId);

    ModulationItem both;
    ASSERT_TRUE(both.SetXmlString(QStringLiteral("<ModulationItem id=\"5\"><ModulationType>CW</ModulationType>"
                                                 "<id>9</id></ModulationItem>"),
                                  false));
    EXPECT_EQ(both.Getid(), 9u);
}

TEST(ModulationItem, UnknownTypeNameIsStoredInvalidWithValidationOff)
{
    for (const char* name : {"FSK", "psk2"}) {
        ModulationItem m;
        auto logger = attachLogger(m);
        ASSERT_TRUE(m.SetXmlString(QStringLiteral("<ModulationItem id=\"1\"><ModulationType>%1</ModulationType>"
                                                  "<FMOPType>Low to High</FMOPType></ModulationItem>")
                                       .arg(QLatin1String(name)),
                                   false));
        EXPECT_TRUE(m.IsModulationTypeSet());
        EXPECT_EQ(m.GetModulationType(), 0xFF);
        EXPECT_EQ(m.GetFMOPType(), 2);
        ASSERT_EQ(logger->entries.size(), 1);
        EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
        EXPECT_EQ(logger->entries[0].message,
                  QStringLiteral("enum is not valid (classname=ModulationItem,membername=m_modulationType)"));
        try {
            m.Check();
            FAIL() << "no exception";
        } catch (const OutOfRangeException& e) {
            EXPECT_EQ(e.GetMessage(), QStringLiteral("ModulationItem: Please set ModulationType properly."));
        }
    }
}

TEST(ModulationItem, TaggedLayoutHasTheIdFirstAsARawInteger)
{
    const QByteArray records = hex("2767dd53 00000008 000000000000002a"
                                   "a57db950 00000008 00000004 50534b32"
                                   "e5b84f43 00000009 00000005 31322e3530");
    EXPECT_EQ(tagged(smallItem(), 0x6779f4d2), hex("6779f4d2 00000031") + records);

    ModulationItem reversed;  // records in another order read the same
    readTagged(reversed, records.mid(16) + records.left(16), 0x31);
    EXPECT_EQ(reversed, smallItem());
}

TEST(ModulationItem, RawLayoutHasATwoByteBitmapAndTheIdLast)
{
    const QByteArray small = hex("03 80 07 4029000000000000 000000000000002a");
    EXPECT_EQ(raw(smallItem()), small);
    ModulationItem back;
    readRaw(back, small);
    EXPECT_EQ(back, smallItem());

    ModulationItem m;  // bits 0, 8, 12 and 15
    m.SetModulationType(ModulationItem::ModulationType(3));
    m.SetTriangleRatio(0.5);
    m.SetFMOPType(ModulationItem::FMOPType(2));
    m.Setid(7);
    EXPECT_EQ(raw(m), hex("01 91 03 3fe0000000000000 02 0000000000000007"));
}

TEST(ModulationItem, FilledItemSurvivesAllThreeForms)
{
    const ModulationItem m = filledItem();
    ASSERT_NO_THROW(m.Check());

    ModulationItem fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(m.GetXmlString(), false));
    EXPECT_EQ(fromXml, m);
    EXPECT_EQ(fromXml.Getid(), MaxId);

    ModulationItem fromTagged;
    QByteArray bytes = m.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(bytes));
    EXPECT_EQ(fromTagged, m);

    ModulationItem fromRaw;
    readRaw(fromRaw, raw(m));
    EXPECT_EQ(fromRaw, m);
    EXPECT_EQ(fromRaw.GetFreqModulation().GetFreqModulationItem().at(1).GetDuration().GetValue(), 37.5);
    EXPECT_EQ(fromRaw.GetCodeSequence().GetCode().at(1).GetValue(), QStringLiteral("0010"));
}

TEST(ModulationList, RefusesAnItemWithoutIdWithValidationOn)
{
    ModulationItem noId;
    noId.SetModulationType(ModulationItem::ModulationType(1));
    ModulationList list;
    list.SetValidate(true);
    try {
        list.AppendModulationItem(noId);
        FAIL() << "no exception";
    } catch (const IncompleteDefinitionException& e) {
        EXPECT_EQ(e.GetMessage(),
                  QStringLiteral(
                      "ModulationList: Tried to append not completely defined or invalid item ModulationItem."));
    }
    EXPECT_FALSE(list.IsModulationItemSet());
    EXPECT_TRUE(list.GetModulationItem().isEmpty());
}

TEST(Modulation, NothingSetIsStillComplete)
{
    EXPECT_TRUE(Modulation().HasData());
    Modulation m;
    m.SetValidate(true);
    EXPECT_EQ(m.GetXmlString(), document(QStringLiteral("<Modulation/>")));
    EXPECT_EQ(tagged(m, 0x006b456e), hex("006b456e 00000000"));
    EXPECT_EQ(raw(m), hex("00"));
}

TEST(Modulation, CheckTestsTheEnumerationAndTheListOnlyWhenSet)
{
    Modulation m;
    m.SetPrevailingModulation(Modulation::PrevailingModulation(16));
    m.GetModulationList();
    auto logger = attachLogger(m);
    m.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Modulation: Please set PrevailingModulation properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("ModulationList: Please set ModulationItem properly."));
}

TEST(Modulation, LayoutsOfTheThreeForms)
{
    Modulation m;
    m.SetPrevailingModulation(m.NameToPrevailingModulation(QStringLiteral("LFM")));
    m.GetModulationList().AppendModulationItem(smallItem());
    EXPECT_EQ(m.GetXmlString(), document(QStringLiteral("<Modulation>\n"
                                                        "  <PrevailingModulation>LFM</PrevailingModulation>\n"
                                                        "  <ModulationList>\n"
                                                        "    <ModulationItem id=\"42\">\n"
                                                        "      <ModulationType>PSK2</ModulationType>\n"
                                                        "      <OccurrencePercentage>12.50</OccurrencePercentage>\n"
                                                        "    </ModulationItem>\n"
                                                        "  </ModulationList>\n"
                                                        "</Modulation>")));
    EXPECT_EQ(hexOf(tagged(m, 0x006b456e)), hexOf(hex("006b456e 00000058 8b4af385 00000007 00000003 4c464d"
                                                      "cf2c8a38 00000041 6779f4d2 00000039 00000001 00000031"
                                                      "2767dd53 00000008 000000000000002a"
                                                      "a57db950 00000008 00000004 50534b32"
                                                      "e5b84f43 00000009 00000005 31322e3530")));
    EXPECT_EQ(raw(m), hex("03 03 01 00000001 03 80 07 4029000000000000 000000000000002a"));
}

TEST(Modulation, ItemsKeepTheirOrderInAllThreeForms)
{
    Modulation m;
    m.SetPrevailingModulation(Modulation::PrevailingModulation(15));
    m.GetModulationList().AppendModulationItem(filledItem());
    m.GetModulationList().AppendModulationItem(smallItem());

    Modulation fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(m.GetXmlString(), false));
    EXPECT_EQ(fromXml, m);
    Modulation fromTagged;
    QByteArray bytes = m.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(bytes));
    EXPECT_EQ(fromTagged, m);
    Modulation fromRaw;
    readRaw(fromRaw, raw(m));
    EXPECT_EQ(fromRaw, m);
    ASSERT_EQ(fromRaw.GetModulationList().GetModulationItem().size(), 2);
    EXPECT_EQ(fromRaw.GetModulationList().GetModulationItem().at(1).Getid(), 42u);
}
