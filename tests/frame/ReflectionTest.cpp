// The reflection face: reading any record through its field table, checking
// one object at a time, and walking the objects that Check goes into.

#include <gtest/gtest.h>

#include <memory>

#include <QBuffer>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

TEST(Reflection, ReadsFieldsWithoutMarkingThemPresent)
{
    Scan scan;
    scan.SetNumberOfBars(4);
    const Frame::ClassInfo& info = scan.GetClassInfo();
    const Frame::FieldInfo& bars = Frame::FieldByBit(info, 5);
    const Frame::FieldInfo& cycle = Frame::FieldByBit(info, 0);
    EXPECT_EQ(*bars.name, QStringLiteral("NumberOfBars"));
    EXPECT_TRUE(Frame::IsFieldSet(scan, bars));
    EXPECT_EQ(Frame::FieldText(scan, bars), QStringLiteral("4"));
    EXPECT_EQ(Frame::ChildOf(scan, cycle).GetObjectName(), QStringLiteral("ScanCycle"));
    EXPECT_FALSE(Frame::IsFieldSet(scan, cycle));
    EXPECT_FALSE(scan.IsScanCycleSet());

    Modulations set;
    set.AppendModulation(set.NameToModulation(QStringLiteral("CW")));
    const Frame::FieldInfo& values = Frame::FieldByBit(set.GetClassInfo(), 0);
    ASSERT_EQ(Frame::ItemCount(set, values), 1);
    EXPECT_EQ(Frame::EnumItemText(set, values, 0), QStringLiteral("CW"));
}

TEST(Reflection, WalksWhatCheckGoesIntoWithPaths)
{
    EmitterDossier d = filledDossier(2, 1);
    d.GetELINTParameter().GetSequence().GetPulseList().GetPulseItem()[1].Resetid();
    d.ResetFiles();  // a clear optional child is not gone into
    QStringList paths;
    QStringList faults;
    auto logger = attachLogger(d);
    Frame::ForEachChecked(d, [&](const QString& path, const Frame::Record& record) {
        paths.append(path);
        logger->entries.clear();
        Frame::CheckOwnFields(record, true);
        for (const LogEntry& e : logger->entries)
            faults.append(path + QStringLiteral(": ") + e.message);
    });
    EXPECT_EQ(paths.first(), QString());
    EXPECT_TRUE(paths.contains(QStringLiteral("ELINTParameter/Sequence/PulseList/PulseItem[1]/RiseTime")));
    EXPECT_TRUE(paths.contains(QStringLiteral("Filter[1]/Modulations")));
    EXPECT_FALSE(paths.contains(QStringLiteral("Files")));
    EXPECT_EQ(faults, QStringList{QStringLiteral(
                          "ELINTParameter/Sequence/PulseList/PulseItem[1]: PulseItem: Please set id properly.")});
}

TEST(Reflection, RecordsOfTwoClassesAreNeverEqual)
{
    const PulseWidth a;
    const CenterFrequency b;
    EXPECT_FALSE(a.IsEqualTo(b));
    EXPECT_TRUE(a.IsEqualTo(PulseWidth()));
}

// The view reads the tables as the forms use them: fields in the order of
// writing and by bit, tags, kinds, names, and the class of a child or item.
TEST(ReflectionView, ReadsClassesAndFieldsAsTheFormsUseThem)
{
    const Frame::ClassInfo& item = ModulationItem::StaticClassInfo();
    EXPECT_EQ(Frame::ClassName(item), QStringLiteral("ModulationItem"));
    EXPECT_EQ(Frame::ClassId(item), 0x027ad7b4);
    EXPECT_FALSE(Frame::IsLeafClass(item));
    ASSERT_EQ(Frame::FieldCount(item), 16);
    // id is written first but holds the last bit.
    const Frame::FieldInfo& first = Frame::FieldAt(item, 0);
    EXPECT_EQ(Frame::FieldName(first), QStringLiteral("id"));
    EXPECT_EQ(Frame::FieldBit(first), 15);
    EXPECT_EQ(Frame::FieldTag(first), 0x2767dd53u);
    EXPECT_EQ(Frame::FieldKind(first), Frame::Kind::UInt64);
    EXPECT_EQ(Frame::FieldXmlForm(first), Frame::XmlForm::Attribute);
    EXPECT_TRUE(Frame::IsMandatory(first));
    EXPECT_EQ(&Frame::FieldByBit(item, 15), &first);

    const Frame::FieldInfo& type = Frame::FieldByBit(item, 0);
    EXPECT_EQ(Frame::FieldName(type), QStringLiteral("ModulationType"));
    EXPECT_EQ(&Frame::FieldAt(item, 1), &type);
    const QStringList names = Frame::EnumNames(type);
    ASSERT_EQ(names.size(), 16);
    EXPECT_EQ(names.first(), QStringLiteral("Unknown"));
    EXPECT_EQ(names.last(), QStringLiteral("TooShort"));
    EXPECT_EQ(Frame::ItemClass(type), nullptr);

    const Frame::FieldInfo* chipRate = Frame::FindField(item, QStringLiteral("ChipRate"));
    ASSERT_NE(chipRate, nullptr);
    EXPECT_EQ(Frame::FindFieldByTag(item, 0x2e8a15fdu), chipRate);
    EXPECT_EQ(Frame::ItemClass(*chipRate), &ChipRate::StaticClassInfo());
    EXPECT_TRUE(Frame::EnumNames(*chipRate).isEmpty());
    EXPECT_EQ(Frame::FindField(item, QStringLiteral("chiprate")), nullptr);
    EXPECT_EQ(Frame::FindFieldByTag(item, 0x12345678u), nullptr);

    const Frame::FieldInfo* items = Frame::FindField(PRIList::StaticClassInfo(), QStringLiteral("PRIItem"));
    ASSERT_NE(items, nullptr);
    EXPECT_EQ(Frame::FieldKind(*items), Frame::Kind::List);
    EXPECT_EQ(Frame::ItemClass(*items), &PRIItem::StaticClassInfo());

    EXPECT_TRUE(Frame::IsLeafClass(AgeOutTime::StaticClassInfo()));
    EXPECT_EQ(Frame::ClassSchemaVersion(EmitterDossier::StaticClassInfo()), QStringLiteral("1.8"));
    EXPECT_EQ(Frame::ClassVersionTag(EmitterDossier::StaticClassInfo()), 0xccfedfa1u);
    EXPECT_TRUE(Frame::ClassSchemaVersion(item).isEmpty());
    EXPECT_EQ(Frame::ClassVersionTag(item), 0u);
}

// Every child and list field of every class names the class of what it holds:
// a child's is the class of the object in the field, an item's a known class.
TEST(ReflectionView, EveryChildAndListFieldNamesItsClass)
{
    int seen = 0;
    for (const Frame::ClassEntry& entry : Frame::AllClasses()) {
        const Frame::ClassInfo& info = entry.info();
        std::unique_ptr<Frame::Record> record(entry.create());
        for (int i = 0; i < Frame::FieldCount(info); ++i) {
            const Frame::FieldInfo& f = Frame::FieldAt(info, i);
            if (Frame::FieldKind(f) == Frame::Kind::Child) {
                ASSERT_NE(Frame::ItemClass(f), nullptr) << Frame::FieldName(f).toStdString();
                EXPECT_EQ(Frame::ItemClass(f), &Frame::ChildOf(*record, f).GetClassInfo());
                ++seen;
            } else if (Frame::FieldKind(f) == Frame::Kind::List) {
                ASSERT_NE(Frame::ItemClass(f), nullptr) << Frame::FieldName(f).toStdString();
                // The items' class is one of the library's, found by its name.
                const Frame::ClassEntry* itemEntry = Frame::FindClass(Frame::ClassName(*Frame::ItemClass(f)));
                ASSERT_NE(itemEntry, nullptr);
                EXPECT_EQ(&itemEntry->info(), Frame::ItemClass(f));
                ++seen;
            } else {
                EXPECT_EQ(Frame::ItemClass(f), nullptr);
            }
        }
    }
    EXPECT_GT(seen, 90);
}

TEST(ReflectionView, RawFormBytesAreWhatTheStreamGives)
{
    const EmitterDossier d = filledDossier(3, 2);
    QByteArray expected;
    {
        QBuffer buffer(&expected);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        d.GetVersionSpecificBinaryWithoutValidation(stream);
    }
    const QByteArray bytes = Frame::RawFormBytes(d);
    EXPECT_EQ(bytes, expected);
    EmitterDossier back;
    Frame::ReadRawForm(back, bytes + QByteArray("tail"));
    EXPECT_TRUE(back == d);
}
