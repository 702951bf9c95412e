// The records of the tagged form as WalkTaggedRecords reports them: offsets,
// tags, lengths and fields as they stand in the bytes, and the first place
// where the lengths do not add up.

#include <gtest/gtest.h>

#include <EmitterDossierDoc/frame/TaggedRecords.h>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;
using Frame::TaggedFault;
using Frame::TaggedFaultKind;
using Frame::TaggedItem;
using Frame::TaggedRecord;
using Frame::TaggedValue;
using Frame::TaggedValueKind;

namespace {

const quint32 UnitTag = 0xa5b3acfc;
const quint32 ValueTag = 0x8aff57b3;
const quint32 AlternativeTag = 0xe3416901;

// A BeamPeakPower of 12.5 dBm: its class id and length, then its two records.
QByteArray beamPeakPowerBytes(const QByteArray& records, int length)
{
    return hex("80bb63c6") + Bytes().word(quint32(length)).bytes() + records;
}
QByteArray unitRecord() { return hex("a5b3acfc 00000007 00000003 64426d"); }
QByteArray valueRecord() { return hex("8aff57b3 00000009 00000005 31322e3530"); }

struct Seen {
    TaggedRecord record;
    TaggedValue value;
};

class Recorder : public Frame::TaggedVisitor {
public:
    QVector<Seen> records;
    QVector<TaggedItem> items;
    QVector<Seen> values;  // of enumeration lists, with the item in `record.offset` and `record.depth`
    QVector<TaggedFault> faults;

    void record(const TaggedRecord& record, const TaggedValue& value) override { records.append({record, value}); }
    void item(const TaggedItem& item) override { items.append(item); }
    void enumValue(const TaggedItem& item, const TaggedValue& value) override
    {
        TaggedRecord at;
        at.offset = item.offset;
        at.length = item.length;
        at.depth = item.depth;
        values.append({at, value});
    }
    void fault(const TaggedFault& fault) override { faults.append(fault); }
};

const Frame::ClassInfo& beamPeakPower() { return BeamPeakPower::StaticClassInfo(); }

}  // namespace

TEST(TaggedRecords, TheRecordsOfAKnownBlock)
{
    const QByteArray bytes = beamPeakPowerBytes(unitRecord() + valueRecord(), 32);
    quint32 id = 0;
    qint32 length = 0;
    ASSERT_TRUE(Frame::TaggedBlockHead(bytes, id, length));
    EXPECT_EQ(qint64(id), Frame::ClassId(beamPeakPower()));
    EXPECT_EQ(length, 32);

    Recorder seen;
    EXPECT_TRUE(Frame::WalkTaggedRecords(bytes, beamPeakPower(), seen));
    EXPECT_TRUE(seen.faults.isEmpty());
    ASSERT_EQ(seen.records.size(), 2);
    const Seen& unit = seen.records.at(0);
    EXPECT_EQ(unit.record.offset, 8);
    EXPECT_EQ(unit.record.tag, UnitTag);
    EXPECT_EQ(unit.record.length, 7);
    EXPECT_EQ(unit.record.depth, 0);
    ASSERT_NE(unit.record.field, nullptr);
    EXPECT_EQ(unit.record.field, Frame::FindFieldByTag(beamPeakPower(), UnitTag));
    EXPECT_EQ(Frame::FieldName(*unit.record.field), QStringLiteral("unit"));
    EXPECT_EQ(unit.value.kind, TaggedValueKind::Text);
    EXPECT_EQ(unit.value.text, QStringLiteral("dBm"));
    EXPECT_EQ(unit.value.bytes, QByteArray("dBm"));
    const Seen& value = seen.records.at(1);
    EXPECT_EQ(value.record.offset, 23);
    EXPECT_EQ(value.record.tag, ValueTag);
    EXPECT_EQ(value.record.length, 9);
    EXPECT_EQ(value.record.field, Frame::FindFieldByTag(beamPeakPower(), ValueTag));
    EXPECT_EQ(value.value.text, QStringLiteral("12.50"));
}

TEST(TaggedRecords, TheWalkSplitsWhatTheWriterWrote)
{
    BeamPeakPower b;
    b.Setunit(b.NameTounit(QStringLiteral("dBm")));
    b.SetValue(12.5);
    EXPECT_EQ(b.GetBinaryRepresentationAsQByteArray(), beamPeakPowerBytes(unitRecord() + valueRecord(), 32));
}

TEST(TaggedRecords, ListItemsAndTheirRecords)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("N", "D", 0.5));
    const QByteArray bytes = list.GetBinaryRepresentationAsQByteArray();
    Recorder seen;
    EXPECT_TRUE(Frame::WalkTaggedRecords(bytes, Alternatives::StaticClassInfo(), seen));
    EXPECT_TRUE(seen.faults.isEmpty());
    ASSERT_EQ(seen.records.size(), 4);
    EXPECT_EQ(seen.records.at(0).record.offset, 8);
    EXPECT_EQ(seen.records.at(0).record.tag, AlternativeTag);
    EXPECT_EQ(seen.records.at(0).record.length, 0x32);
    EXPECT_EQ(seen.records.at(0).value.kind, TaggedValueKind::Items);
    EXPECT_EQ(seen.records.at(0).value.count, 1);
    ASSERT_EQ(seen.items.size(), 1);
    EXPECT_EQ(seen.items.at(0).offset, 20);
    EXPECT_EQ(seen.items.at(0).length, 0x2a);
    EXPECT_EQ(seen.items.at(0).index, 0);
    EXPECT_EQ(seen.items.at(0).depth, 1);
    EXPECT_EQ(seen.items.at(0).field, seen.records.at(0).record.field);
    // The item's records: name, database id, confidence.
    EXPECT_EQ(seen.records.at(1).record.offset, 24);
    EXPECT_EQ(seen.records.at(1).record.tag, 0x8c9fbca8u);
    EXPECT_EQ(seen.records.at(1).record.depth, 2);
    EXPECT_EQ(seen.records.at(1).value.text, QStringLiteral("N"));
    EXPECT_EQ(seen.records.at(2).record.offset, 37);
    EXPECT_EQ(seen.records.at(2).value.text, QStringLiteral("D"));
    EXPECT_EQ(seen.records.at(3).record.offset, 50);
    EXPECT_EQ(seen.records.at(3).record.tag, 0x217abe35u);
    EXPECT_EQ(seen.records.at(3).value.text, QStringLiteral("0.50"));
}

TEST(TaggedRecords, UnknownTagsAreReportedAsUnknownAndPassedOver)
{
    const QByteArray unknown = hex("12345678 00000002 abcd");
    const QByteArray bytes = beamPeakPowerBytes(unitRecord() + unknown + valueRecord(), 42);
    Recorder seen;
    EXPECT_TRUE(Frame::WalkTaggedRecords(bytes, beamPeakPower(), seen));
    EXPECT_TRUE(seen.faults.isEmpty());
    ASSERT_EQ(seen.records.size(), 3);
    const TaggedRecord& skipped = seen.records.at(1).record;
    EXPECT_EQ(skipped.offset, 23);
    EXPECT_EQ(skipped.tag, 0x12345678u);
    EXPECT_EQ(skipped.length, 2);
    EXPECT_EQ(skipped.field, nullptr);
    EXPECT_FALSE(skipped.version);
    EXPECT_EQ(seen.records.at(1).value.kind, TaggedValueKind::Skipped);
    EXPECT_EQ(seen.records.at(2).record.offset, 33);
    EXPECT_EQ(seen.records.at(2).record.tag, ValueTag);

    // The reader passes over it as well.
    BeamPeakPower back;
    QByteArray copy = bytes;
    EXPECT_TRUE(back.SetBinaryRepresentation(copy));
    EXPECT_EQ(back.GetValue(), 12.5);
}

TEST(TaggedRecords, ACutBlockIsAFaultWhereTheRecordStarts)
{
    // The block states 32 bytes; the bytes end 7 bytes into the second record.
    const QByteArray bytes = beamPeakPowerBytes(unitRecord() + valueRecord(), 32).left(30);
    Recorder seen;
    EXPECT_FALSE(Frame::WalkTaggedRecords(bytes, beamPeakPower(), seen));
    ASSERT_EQ(seen.records.size(), 1);
    ASSERT_EQ(seen.faults.size(), 1);
    EXPECT_EQ(seen.faults.at(0).kind, TaggedFaultKind::HeaderCut);
    EXPECT_EQ(seen.faults.at(0).offset, 23);
    EXPECT_EQ(seen.faults.at(0).left, 7);

    // The reader refuses the same bytes.
    BeamPeakPower back;
    QByteArray copy = bytes;
    const auto logger = attachLogger(back);
    EXPECT_FALSE(back.SetBinaryRepresentation(copy));
}

TEST(TaggedRecords, ARecordPastItsBlockIsWalkedAsFarAsTheBlockGoes)
{
    // The value record states 16 bytes where its block has 9 left.
    const QByteArray longValue = hex("8aff57b3 00000010 00000005 31322e3530");
    const QByteArray bytes = beamPeakPowerBytes(unitRecord() + longValue, 32);
    Recorder seen;
    EXPECT_FALSE(Frame::WalkTaggedRecords(bytes, beamPeakPower(), seen));
    ASSERT_EQ(seen.faults.size(), 1);
    EXPECT_EQ(seen.faults.at(0).kind, TaggedFaultKind::PastBlock);
    EXPECT_EQ(seen.faults.at(0).offset, 23);
    EXPECT_EQ(seen.faults.at(0).count, 16);
    EXPECT_EQ(seen.faults.at(0).left, 9);
    EXPECT_EQ(seen.faults.at(0).record.tag, ValueTag);
    ASSERT_EQ(seen.records.size(), 2);
    EXPECT_EQ(seen.records.at(1).value.text, QStringLiteral("12.50"));
}

TEST(TaggedRecords, ANegativeLengthStopsTheWalk)
{
    const QByteArray bytes = beamPeakPowerBytes(hex("a5b3acfc ffffffff 00000000"), 12);
    Recorder seen;
    EXPECT_FALSE(Frame::WalkTaggedRecords(bytes, beamPeakPower(), seen));
    EXPECT_TRUE(seen.records.isEmpty());
    ASSERT_EQ(seen.faults.size(), 1);
    EXPECT_EQ(seen.faults.at(0).kind, TaggedFaultKind::NegativeLength);
    EXPECT_EQ(seen.faults.at(0).offset, 8);
    EXPECT_EQ(seen.faults.at(0).record.tag, UnitTag);
    EXPECT_EQ(seen.faults.at(0).record.length, -1);
    EXPECT_EQ(seen.faults.at(0).record.field, Frame::FindFieldByTag(beamPeakPower(), UnitTag));
}

TEST(TaggedRecords, APayloadShorterThanItsRecordIsAFault)
{
    // The unit record states 8 bytes, its byte array takes 7.
    const QByteArray bytes = beamPeakPowerBytes(hex("a5b3acfc 00000008 00000003 64426d 00"), 16);
    Recorder seen;
    EXPECT_FALSE(Frame::WalkTaggedRecords(bytes, beamPeakPower(), seen));
    ASSERT_EQ(seen.faults.size(), 1);
    EXPECT_EQ(seen.faults.at(0).kind, TaggedFaultKind::PayloadLength);
    EXPECT_EQ(seen.faults.at(0).offset, 8);
    EXPECT_EQ(seen.faults.at(0).count, 8);
    EXPECT_EQ(seen.faults.at(0).left, 7);
}

TEST(TaggedRecords, AWholeDossierWalksWithoutFaultAndBeginsWithItsVersion)
{
    const EmitterDossier d = filledDossier(2, 1);
    const QByteArray bytes = d.GetBinaryRepresentationAsQByteArray();
    Recorder seen;
    EXPECT_TRUE(Frame::WalkTaggedRecords(bytes, d.GetClassInfo(), seen));
    EXPECT_TRUE(seen.faults.isEmpty());
    ASSERT_FALSE(seen.records.isEmpty());
    ASSERT_NE(Frame::ClassVersionTag(d.GetClassInfo()), 0u);
    const Seen& first = seen.records.at(0);
    EXPECT_TRUE(first.record.version);
    EXPECT_EQ(first.record.field, nullptr);
    EXPECT_EQ(first.record.offset, 8);
    EXPECT_EQ(first.record.tag, Frame::ClassVersionTag(d.GetClassInfo()));
    EXPECT_EQ(first.value.text, d.GetVersion());
    EXPECT_FALSE(seen.items.isEmpty());
}

TEST(TaggedRecords, BytesEndingInsideTheHeadHaveNoRecords)
{
    quint32 id = 0;
    qint32 length = 0;
    EXPECT_FALSE(Frame::TaggedBlockHead(hex("80bb63c6 0000"), id, length));
    Recorder seen;
    EXPECT_FALSE(Frame::WalkTaggedRecords(hex("80bb63c6 0000"), beamPeakPower(), seen));
    EXPECT_TRUE(seen.records.isEmpty());
    EXPECT_TRUE(seen.faults.isEmpty());
}
