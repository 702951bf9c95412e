// The tagged form: self-delimiting records with 32-bit tags and back-patched
// lengths; unknown records skipped; lengths that do not add up refused.

#include <gtest/gtest.h>

#include <QtEndian>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

const quint32 UnitTag = 0xa5b3acfc;
const quint32 ValueTag = 0x8aff57b3;
const quint32 BeamPeakPowerInScan = 0xa78b88f8;
const QString LengthError = QStringLiteral(
    "::SetBinary(...): Length error occurred during processing of binary representation");

BeamPeakPower beamPeakPower(double value)
{
    BeamPeakPower b;
    b.Setunit(b.NameTounit(QStringLiteral("dBm")));
    b.SetValue(value);
    return b;
}

// The records of a BeamPeakPower of 12.5 dBm, in the given order.
QByteArray unitRecord() { return hex("a5b3acfc00000007000000036442 6d"); }
QByteArray valueRecord() { return hex("8aff57b3000000090000000531322e3530"); }

QByteArray block(const QByteArray& records, int length) { return Bytes().word(quint32(length)).bytes() + records; }

}  // namespace

TEST(TaggedLayout, ChildBlockOfAUnitScalar)
{
    EXPECT_EQ(tagged(beamPeakPower(12.5), BeamPeakPowerInScan),
              hex("a78b88f8 00000020") + unitRecord() + valueRecord());
    EXPECT_EQ(tagged(beamPeakPower(12.5), BeamPeakPowerInScan, false), hex("00000020") + unitRecord() + valueRecord());
}

TEST(TaggedLayout, BaseFramingUsesTheClassId)
{
    const QByteArray bytes = beamPeakPower(12.5).GetBinaryRepresentationAsQByteArray();
    EXPECT_EQ(bytes, hex("80bb63c6 00000020") + unitRecord() + valueRecord());
    EXPECT_EQ(bytes.size(), 40);
}

TEST(TaggedLayout, UnsetMandatoryFieldsWithValidationOff)
{
    // An unset unit is a null byte array, an unset value 0.00.
    EXPECT_EQ(tagged(AgeOutTime(), 1), hex("00000001 0000001c a5b3acfc 00000004 ffffffff"
                                           "8aff57b3 00000008 00000004 302e3030"));
}

TEST(TaggedLayout, StatisticWritesUnitFirstAndOnlySetNumbers)
{
    PulseWidth p;
    p.Setunit(PulseWidth::unit(0));
    p.SetMean(250.5);
    EXPECT_EQ(tagged(p, 0x44d31ef9), hex("44d31ef9 00000020 a5b3acfc 00000006 00000002 6e73"
                                         "e31b2fb9 0000000a 00000006 3235302e3530"));
}

TEST(TaggedLayout, MicroSignIsUtf8)
{
    BeamPeakPower b;
    b.Setunit(BeamPeakPower::unit(1));
    b.SetValue(1);
    EXPECT_TRUE(tagged(b, 1).contains(hex("00000005 6442c2b556")));
}

TEST(TaggedLayout, EmptyListHasOneRecordWithCountZero)
{
    EXPECT_EQ(tagged(Alternatives(), 1), hex("00000001 0000000c e3416901 00000004 00000000"));
    Alternatives back;
    readTagged(back, hex("e3416901 00000004 00000000"), 12);
    EXPECT_FALSE(back.IsAlternativeSet());
    EXPECT_TRUE(back.GetAlternative().isEmpty());
    EXPECT_FALSE(back.HasData());
}

TEST(TaggedLayout, ListItemsAreBlocksWithoutTag)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("N", "D", 0.5));
    const QByteArray item = hex("0000002a 8c9fbca8 00000005 00000001 4e"
                                "8bfde330 00000005 00000001 44"
                                "217abe35 00000008 00000004 302e3530");
    EXPECT_EQ(tagged(list, 7), hex("00000007 0000003a e3416901 00000032 00000001") + item);
}

TEST(TaggedReading, RoundTripKeepsTwoDecimals)
{
    BeamPeakPower b = beamPeakPower(1234.5678);
    BeamPeakPower back;
    QByteArray bytes = b.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(back.SetBinaryRepresentation(bytes));
    EXPECT_EQ(back.GetValue(), 1234.57);
    EXPECT_EQ(back.Getunit(), 0);

    BeamPeakPower small = beamPeakPower(0.004);
    BeamPeakPower smallBack;
    bytes = small.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(smallBack.SetBinaryRepresentation(bytes));
    EXPECT_TRUE(smallBack.IsValueSet());
    EXPECT_EQ(smallBack.GetValue(), 0.0);
}

TEST(TaggedReading, UnknownRecordBetweenKnownOnesIsSkipped)
{
    const QByteArray unknown = hex("12345678 00000003 aabbcc");
    BeamPeakPower b;
    readTagged(b, unitRecord() + unknown + valueRecord(), 15 + 11 + 17);
    EXPECT_EQ(b, beamPeakPower(12.5));
}

TEST(TaggedReading, RecordsInAnyOrderReadTheSame)
{
    BeamPeakPower b;
    readTagged(b, valueRecord() + unitRecord(), 32);
    EXPECT_EQ(b, beamPeakPower(12.5));
}

TEST(TaggedReading, NullTextComesBackEmptyWithItsBit)
{
    Alternative a;
    a.SetName(QString());  // validation off: stored null
    a.SetDatabaseID(QStringLiteral("D"));
    a.SetConfidence(1);
    Alternative back;
    readTagged(back, tagged(a, 0, false).mid(4), tagged(a, 0, false).size() - 4);
    EXPECT_TRUE(back.IsNameSet());
    EXPECT_FALSE(back.GetName().isNull());
    EXPECT_TRUE(back.GetName().isEmpty());
}

TEST(TaggedReading, ZeroLengthIsSuccessWithNothingRead)
{
    BeamPeakPower b;
    EXPECT_NO_THROW(readTagged(b, unitRecord(), 0));
    EXPECT_FALSE(b.IsunitSet());
}

TEST(TaggedErrors, LengthOneByteTooLongIsALengthErrorAfterReadingAll)
{
    BeamPeakPower b;
    try {
        readTagged(b, unitRecord() + valueRecord(), 33);
        FAIL() << "no exception";
    } catch (const BinaryParsingException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("BeamPeakPower") + LengthError);
    }
    EXPECT_TRUE(b.IsunitSet());
    EXPECT_TRUE(b.IsValueSet());
}

TEST(TaggedErrors, LengthErrorIsRaisedWhateverTheValidateFlag)
{
    BeamPeakPower b;
    auto logger = attachLogger(b);
    EXPECT_THROW(readTagged(b, unitRecord() + valueRecord(), 31), BinaryParsingException);
    EXPECT_TRUE(logger->entries.isEmpty());
}

TEST(TaggedErrors, NegativeLengthFailsAtOnce)
{
    BeamPeakPower b;
    EXPECT_THROW(readTagged(b, unitRecord(), -1), BinaryParsingException);
    EXPECT_FALSE(b.IsunitSet());
}

TEST(TaggedErrors, StreamEndingInsideTheBlock)
{
    BeamPeakPower b;
    EXPECT_THROW(readTagged(b, unitRecord() + valueRecord().left(10), 32), BinaryParsingException);
    EXPECT_TRUE(b.IsunitSet());  // what was read before the fault stays
}

TEST(TaggedErrors, CountLargerThanTheBlockIsRefusedBeforeReserving)
{
    Alternatives list;
    try {
        readTagged(list, hex("e3416901 00000008 7fffffff 00000000"), 16);
        FAIL() << "no exception";
    } catch (const BinaryParsingException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("Alternatives") + LengthError);
    }
    EXPECT_TRUE(list.GetAlternative().isEmpty());
    EXPECT_THROW(readTagged(list, hex("e3416901 00000004 ffffffff"), 12), BinaryParsingException);
}

TEST(TaggedErrors, ItemLengthErrorNamesTheItem)
{
    Alternatives list;
    try {
        readTagged(list, hex("e3416901 00000014 00000001 0000000c 8c9fbca8 00000005 00000001 4e"), 28);
        FAIL() << "no exception";
    } catch (const BinaryParsingException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("Alternative") + LengthError);
    }
}

TEST(TaggedFraming, RefusesAnotherClassAndAbsurdLengths)
{
    BeamPeakPower source = beamPeakPower(1);
    QByteArray bytes = source.GetBinaryRepresentationAsQByteArray();
    AgeOutTime other;
    auto logger = attachLogger(other);
    EXPECT_FALSE(other.SetBinaryRepresentation(bytes));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::ERROR);

    BeamPeakPower same;
    QByteArray tooLong = bytes;
    tooLong.replace(4, 4, hex("7ffffff0"));
    EXPECT_FALSE(same.SetBinaryRepresentation(tooLong));
    QByteArray empty;
    EXPECT_FALSE(same.SetBinaryRepresentation(empty));
}

TEST(TaggedFraming, CompressedFormRoundTripsAndAbsurdSizesAreRefused)
{
    Alternatives list;
    for (int i = 0; i < 50; ++i)
        list.AppendAlternative(makeAlternative("Emitter", "DB-7", 0.75));
    QByteArray compressed = list.GetCompressedBinaryRepresentationAsQByteArray(9);
    EXPECT_EQ(qUncompress(compressed), list.GetBinaryRepresentationAsQByteArray());
    Alternatives back;
    ASSERT_TRUE(back.SetBinaryRepresentation(compressed));
    EXPECT_EQ(back, list);

    QByteArray absurd = compressed;
    absurd.replace(0, 4, hex("7fffffff"));
    Alternatives refused;
    auto logger = attachLogger(refused);
    EXPECT_FALSE(refused.SetBinaryRepresentation(absurd));
    EXPECT_FALSE(logger->entries.isEmpty());
    EXPECT_FALSE(refused.IsAlternativeSet());
}

TEST(TaggedFraming, StreamVariantsFollowTheStreamsByteOrder)
{
    BeamPeakPower b = beamPeakPower(2.5);
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QDataStream out(&buffer);
        out.setByteOrder(QDataStream::LittleEndian);
        b.GetBinaryRepresentation(out);
    }
    EXPECT_TRUE(bytes.startsWith(hex("c663bb80")));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QDataStream in(&buffer);
    in.setByteOrder(QDataStream::LittleEndian);
    BeamPeakPower back;
    ASSERT_TRUE(back.SetBinaryRepresentation(in));
    EXPECT_EQ(back, b);
}

// An item whose read raises is never appended, whatever the validate flag:
// here the second item's block claims one byte more than it holds.
TEST(TaggedErrors, AnItemWhoseReadRaisesIsNotKept)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("Harbour Lantern", "EDB-0412-A", 0.75));
    list.AppendAlternative(makeAlternative("Tin Drum", "EDB-0930-B", 0.1));
    QByteArray block = tagged(list, quint32(Alternatives::id));
    // block: tag, length, record tag, record length, count, item 1 length, item 1, item 2 length, item 2
    const int firstItemLength = qFromBigEndian<qint32>(block.constData() + 20);
    const int secondLengthAt = 24 + firstItemLength;
    const qint32 secondLength = qFromBigEndian<qint32>(block.constData() + secondLengthAt);
    qToBigEndian<qint32>(secondLength + 1, block.data() + secondLengthAt);
    for (bool validate : {false, true}) {
        Alternatives read;
        read.SetValidate(validate);
        EXPECT_THROW(readTagged(read, block.mid(8), block.size() - 8), BinaryParsingException);
        const Alternatives& items = read;
        ASSERT_EQ(items.GetAlternative().size(), 1);
        EXPECT_EQ(items.GetAlternative().at(0).GetName(), QStringLiteral("Harbour Lantern"));
    }
}
