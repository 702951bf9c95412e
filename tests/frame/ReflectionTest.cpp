// The reflection face: reading any record through its field table, checking
// one object at a time, and walking the objects that Check goes into.

#include <gtest/gtest.h>

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
