// The raw form: presence bitmap, then the fields in bit order, exact.

#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

TEST(RawLayout, UnitScalarIsBitmapUnitAndDouble)
{
    BeamPeakPower b;
    b.Setunit(BeamPeakPower::unit(0));
    b.SetValue(12.5);
    EXPECT_EQ(raw(b), hex("03 00 4029000000000000"));
}

TEST(RawLayout, UnsetMandatoryEnumerationTakesItsInvalidByte)
{
    AgeOutTime a;
    a.SetValue(1);
    EXPECT_EQ(raw(a), hex("02 ff 3ff0000000000000"));
}

TEST(RawLayout, StatisticHasOnlyItsSetNumbersAndTheUnitLast)
{
    BeamDuration d;
    d.Setunit(BeamDuration::unit(0));
    d.SetMax(2);
    // bits 2 (Max) and 4 (unit)
    EXPECT_EQ(raw(d), hex("14 4000000000000000 00"));
}

TEST(RawLayout, ListIsBitmapCountAndItemsUnderTheBit)
{
    EXPECT_EQ(raw(Alternatives()), hex("00 00000000"));
    Alternatives list;
    list.AppendAlternative(makeAlternative("N", "D", 0.5));
    EXPECT_EQ(raw(list), hex("01 00000001 07 00000002 004e 00000002 0044 3fe0000000000000"));
}

TEST(RawRoundTrip, DoublesAreExactAndPresenceIsKept)
{
    PRI p;
    p.Setunit(PRI::unit(0));
    p.SetMean(1234.5678);
    p.SetTol(-0.004);
    PRI back;
    readRaw(back, raw(p));
    EXPECT_EQ(back, p);
    EXPECT_EQ(back.GetMean(), 1234.5678);
    EXPECT_FALSE(back.IsMinSet());

    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.123456));
    list.AppendAlternative(makeAlternative("B", "2", 0.5));
    Alternatives listBack;
    readRaw(listBack, raw(list));
    EXPECT_EQ(listBack, list);
}

TEST(RawReading, StoresUnknownEnumerationBytesWithoutReport)
{
    AgeOutTime a;
    auto logger = attachLogger(a);
    readRaw(a, hex("03 05 4000000000000000"));
    EXPECT_EQ(a.Getunit(), 5);
    EXPECT_TRUE(a.IsunitSet());
    EXPECT_TRUE(logger->entries.isEmpty());
}

TEST(RawReading, ClearBitsLeaveOptionalValuesInPlace)
{
    BeamDuration d;
    d.SetMean(7);
    readRaw(d, hex("10 00"));  // only the unit
    EXPECT_FALSE(d.IsMeanSet());
    EXPECT_EQ(d.GetMean(), 7.0);
    EXPECT_EQ(d.Getunit(), 0);
}

TEST(RawReading, HugeCountOnAShortStreamEndsWithTheStream)
{
    Alternatives list;
    readRaw(list, hex("01 7fffffff 07 00000002 004e 00000002 0044 3fe0000000000000 07"));
    // One complete item and one cut short; nothing more is made up.
    EXPECT_LE(list.GetAlternative().size(), 2);
    EXPECT_EQ(list.GetAlternative().at(0).GetName(), QStringLiteral("N"));
}

TEST(RawReading, AppendTestActsWithValidationOn)
{
    Alternatives list;
    list.SetValidate(true);
    EXPECT_THROW(readRaw(list, hex("01 00000001 00")), IncompleteDefinitionException);
    EXPECT_TRUE(list.GetAlternative().isEmpty());
}

// An item whose read raises is never appended: the second sequence holds an
// element that its own list refuses with the validate flag on.
TEST(RawReading, AnItemWhoseReadRaisesIsNotKept)
{
    ElementItem complete;
    complete.SetChildID(1);
    complete.SetChildType(ElementItem::ChildType(1));
    complete.SetNumRepetitions(4);
    SequenceItem good;
    good.Setid(1);
    good.GetElementList().AppendElementItem(complete);
    SequenceItem bad;
    bad.Setid(2);
    bad.GetElementList().SetElementItem({ElementItem()});
    SequenceList list;
    list.AppendSequenceItem(good);
    list.AppendSequenceItem(bad);

    SequenceList read;
    read.SetValidate(true);
    EXPECT_THROW(readRaw(read, raw(list)), IncompleteDefinitionException);
    const SequenceList& items = read;
    ASSERT_EQ(items.GetSequenceItem().size(), 1);
    EXPECT_EQ(items.GetSequenceItem().at(0), good);
}

// A list that ends before its count leaves the stream failed, and reserves
// nothing beyond what the stream holds.
TEST(RawReading, AListCutShortLeavesTheStreamFailed)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    list.AppendAlternative(makeAlternative("B", "2", 0.25));
    const QByteArray whole = raw(list);
    {
        // Cut just before the second item.
        QByteArray bytes = whole.left(whole.size() - raw(makeAlternative("B", "2", 0.25)).size());
        QDataStream stream(bytes);
        Alternatives read;
        read.SetVersionSpecificBinaryWithoutValidation(stream);
        EXPECT_EQ(stream.status(), QDataStream::ReadPastEnd);
        EXPECT_EQ(static_cast<const Alternatives&>(read).GetAlternative().size(), 1);
    }
    {
        QByteArray bytes = hex("01 7fffffff");
        QDataStream stream(bytes);
        Alternatives read;
        read.SetVersionSpecificBinaryWithoutValidation(stream);
        EXPECT_EQ(stream.status(), QDataStream::ReadPastEnd);
        EXPECT_LE(static_cast<const Alternatives&>(read).GetAlternative().capacity(), 1);
    }
    {
        QByteArray bytes = hex("01 ffffffff");
        QDataStream stream(bytes);
        Alternatives read;
        read.SetVersionSpecificBinaryWithoutValidation(stream);
        EXPECT_EQ(stream.status(), QDataStream::ReadCorruptData);
    }
    {
        QByteArray bytes = hex("01 00000003 0001");
        QDataStream stream(bytes);
        Modulations read;
        read.SetVersionSpecificBinaryWithoutValidation(stream);
        EXPECT_EQ(stream.status(), QDataStream::ReadPastEnd);
        EXPECT_EQ(static_cast<const Modulations&>(read).GetModulation().size(), 2);
    }
    QByteArray bytes = whole;
    QDataStream stream(bytes);
    Alternatives read;
    read.SetVersionSpecificBinaryWithoutValidation(stream);
    EXPECT_EQ(stream.status(), QDataStream::Ok);
    EXPECT_EQ(read, list);
}
