// How faults are reported: Check raising at the first fault or logging each,
// appends refused or accepted by the validate flag, writers reporting
// incomplete items.

#include <gtest/gtest.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

TEST(Check, RaisesTheFirstFaultWithTheObjectName)
{
    BeamPeakPower b;
    try {
        b.Check();
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("BeamPeakPower: Please set unit properly."));
        EXPECT_STREQ(e.what(), "BeamPeakPower: Please set unit properly.");
    }
    EXPECT_TRUE(b.IsInitialized());  // a new object is checked as empty, not skipped
}

TEST(Check, TraceOnlyLogsEveryFaultAtErrorInBitOrder)
{
    BeamPeakPower b;
    auto logger = attachLogger(b);
    b.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("BeamPeakPower: Please set unit properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("BeamPeakPower: Please set Value properly."));
}

TEST(Check, AnInvalidUnitIsAFaultEvenWhenSet)
{
    AgeOutTime a;
    a.Setunit(AgeOutTime::unit(3));
    a.SetValue(1);
    EXPECT_THROW(a.Check(), OutOfRangeException);
}

TEST(Check, StatisticValuesDemandTheUnitOnly)
{
    PulseWidth p;
    p.SetMin(5);
    p.SetMax(1);  // no rule between the numbers
    auto logger = attachLogger(p);
    p.Check(true);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("PulseWidth: Please set unit properly."));
    p.Setunit(PulseWidth::unit(0));
    EXPECT_NO_THROW(p.Check());
}

TEST(Check, ListReportsItsUnsetPropertyThenChecksItsItems)
{
    Alternatives list;
    auto logger = attachLogger(list);
    list.Check(true);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Alternatives: Please set Alternative properly."));

    logger->entries.clear();
    Alternative incomplete;
    incomplete.SetName(QStringLiteral("A"));
    list.SetAlternative({incomplete});
    list.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Alternative: Please set DatabaseID properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("Alternative: Please set Confidence properly."));
}

TEST(Check, HandsFlagAndLoggerDownTheTree)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    auto logger = std::make_shared<RecordingLogger>();
    list.IRKObject::SetValidate(true);  // the base's only: the item keeps its own
    list.IRKObject::SetLogger(logger);
    EXPECT_FALSE(list.GetAlternative().at(0).GetValidate());
    list.Check();
    EXPECT_TRUE(list.GetAlternative().at(0).GetValidate());
    EXPECT_EQ(list.GetAlternative().at(0).GetLogger(), logger);
}

TEST(Append, IncompleteItemIsRefusedWithValidationOn)
{
    Alternatives list;
    list.SetValidate(true);
    Alternative incomplete;
    incomplete.SetName(QStringLiteral("A"));
    incomplete.SetDatabaseID(QStringLiteral("1"));
    try {
        list.AppendAlternative(incomplete);
        FAIL() << "no exception";
    } catch (const IncompleteDefinitionException& e) {
        EXPECT_EQ(e.GetMessage(),
                  QStringLiteral("Alternatives: Tried to append not completely defined or invalid item Alternative."));
    }
    EXPECT_FALSE(list.IsAlternativeSet());
    EXPECT_TRUE(list.GetAlternative().isEmpty());
}

TEST(Append, IncompleteItemIsKeptAndWarnedWithValidationOff)
{
    Alternatives list;
    auto logger = attachLogger(list);
    list.AppendAlternative(Alternative());
    EXPECT_EQ(list.GetAlternative().size(), 1);
    EXPECT_TRUE(list.IsAlternativeSet());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Alternatives: Tried to append not completely defined or invalid item Alternative."));
}

TEST(Append, CompleteItemOnNewListCreatesPayloadAndSetsBit)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    EXPECT_TRUE(list.IsInitialized());
    EXPECT_TRUE(list.IsAlternativeSet());
    EXPECT_TRUE(list.HasData());
}

TEST(Writers, ValidationOnWithNothingToWriteWritesNothing)
{
    Alternatives list;
    list.SetValidate(true);
    list.GetAlternative();  // set bit, no items: Check passes, HasData does not
    EXPECT_NO_THROW(list.Check());
    QString xml;
    QXmlStreamWriter writer(&xml);
    list.GetXml(writer);
    EXPECT_TRUE(xml.isEmpty());
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    EXPECT_FALSE(list.GetBinary(stream, 1, true));
    EXPECT_TRUE(bytes.isEmpty());
}

TEST(Writers, ValidationOnRaisesCheckFaultBeforeWriting)
{
    BeamPeakPower b;
    b.SetValidate(true);
    b.SetValue(1);
    QString xml;
    QXmlStreamWriter writer(&xml);
    EXPECT_THROW(b.GetXml(writer), OutOfRangeException);
    EXPECT_TRUE(xml.isEmpty());
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    EXPECT_THROW(b.GetBinary(stream, 1, true), OutOfRangeException);
    EXPECT_TRUE(bytes.isEmpty());
}

TEST(Writers, IncompleteListItemIsReportedAndStillWrittenWithValidationOff)
{
    Alternatives list;
    auto logger = attachLogger(list);
    Alternative partial;
    partial.SetName(QStringLiteral("A"));
    list.AppendAlternative(partial);
    logger->entries.clear();
    const QString xml = list.GetXmlString();
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Parameters for Alternative are not set properly in 'Alternatives'."));
    EXPECT_TRUE(xml.contains(QStringLiteral("<Name>A</Name>")));
    EXPECT_TRUE(xml.contains(QStringLiteral("<DatabaseID></DatabaseID>")));
    EXPECT_TRUE(xml.contains(QStringLiteral("<Confidence>0.00</Confidence>")));
}

TEST(Writers, TraceWithoutLoggerIsSilent)
{
    AgeOutTime a;
    EXPECT_EQ(a.GetLogger(), nullptr);
    a.Setunit(AgeOutTime::unit(7));  // traced to no logger
    EXPECT_NO_THROW(a.Check(true));
}
