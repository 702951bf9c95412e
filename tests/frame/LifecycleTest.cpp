// The payload behind every handle: created lazily, shared by assignment until
// the next access, compared by presence and value, reset in place.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

TEST(Payload, FreshObjectHasNoPayloadAndQueriesDoNotCreateOne)
{
    AgeOutTime a;
    EXPECT_FALSE(a.IsInitialized());
    EXPECT_FALSE(a.HasData());
    EXPECT_FALSE(a.AnyData());
    EXPECT_FALSE(a.IsunitSet());
    EXPECT_FALSE(a.IsValueSet());
    a.ResetValue();
    EXPECT_FALSE(a.IsInitialized());

    EXPECT_EQ(a.GetValue(), 0.0);
    EXPECT_TRUE(a.IsInitialized());
    EXPECT_FALSE(a.AnyData());
    EXPECT_FALSE(a.IsValueSet());
}

TEST(Payload, EnumerationAsStringOfFreshObjectIsNullAndCreatesPayload)
{
    BeamPeakPower b;
    EXPECT_TRUE(b.GetunitAsString().isNull());
    EXPECT_TRUE(b.IsInitialized());
}

TEST(Payload, ResetToDefaultCreatesOrEmptiesThePayload)
{
    AgeOutTime fresh;
    fresh.ResetToDefault();
    EXPECT_TRUE(fresh.IsInitialized());
    EXPECT_FALSE(fresh.AnyData());

    AgeOutTime filled;
    filled.Setunit(AgeOutTime::unit(0));
    filled.SetValue(3);
    filled.ResetToDefault();
    EXPECT_TRUE(filled.IsInitialized());
    EXPECT_FALSE(filled.IsunitSet());
    EXPECT_FALSE(filled.IsValueSet());
    EXPECT_EQ(filled.GetValue(), 0.0);
    EXPECT_EQ(filled.Getunit(), 0xFF);
}

TEST(Payload, ResetKeepsFlagAndLoggerAndEmptiesFields)
{
    Alternatives list;
    list.SetValidate(true);
    auto logger = attachLogger(list);
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    list.Reset();
    EXPECT_TRUE(list.IsInitialized());
    EXPECT_FALSE(list.IsAlternativeSet());
    EXPECT_TRUE(list.GetAlternative().isEmpty());
    EXPECT_TRUE(list.GetValidate());
    EXPECT_EQ(list.GetLogger(), logger);
}

TEST(Payload, AssignmentSharesUntilEitherSideChanges)
{
    AgeOutTime b;
    b.SetValue(1);
    AgeOutTime a;
    a = b;
    a.SetValue(2);
    EXPECT_EQ(b.GetValue(), 1.0);
    EXPECT_EQ(a.GetValue(), 2.0);

    AgeOutTime c;
    c = b;
    b.SetValue(3);
    EXPECT_EQ(c.GetValue(), 1.0);
}

TEST(Payload, AssignmentKeepsTargetsFlagLoggerAndName)
{
    AgeOutTime source;
    source.SetValidate(true);
    source.SetValue(1);
    AgeOutTime target;
    auto logger = attachLogger(target);
    target = source;
    EXPECT_FALSE(target.GetValidate());
    EXPECT_EQ(target.GetLogger(), logger);
    EXPECT_EQ(target.GetValue(), 1.0);
    EXPECT_EQ(target.GetObjectName(), QStringLiteral("AgeOutTime"));
}

TEST(Payload, CopyConstructorTakesFlagButNotLoggerAndCopiesDeeply)
{
    Alternatives source;
    source.SetValidate(true);
    attachLogger(source);
    source.AppendAlternative(makeAlternative("A", "1", 0.5));
    Alternatives copy(source);
    EXPECT_TRUE(copy.GetValidate());
    EXPECT_TRUE(copy.GetAlternative().at(0).GetValidate());
    EXPECT_EQ(copy.GetLogger(), nullptr);
    EXPECT_EQ(copy, source);
    copy.GetAlternative()[0].SetName(QStringLiteral("B"));
    EXPECT_EQ(source.GetAlternative().at(0).GetName(), QStringLiteral("A"));
}

TEST(Payload, MoveConstructorTakesTheWholeObjectOver)
{
    Alternatives source;
    source.SetValidate(true);
    const auto logger = attachLogger(source);
    source.AppendAlternative(makeAlternative("A", "1", 0.5));
    const Alternatives expected(source);
    Alternatives moved(std::move(source));
    EXPECT_TRUE(moved.GetValidate());
    EXPECT_EQ(moved.GetLogger(), logger);
    EXPECT_EQ(moved, expected);
    EXPECT_FALSE(source.AnyData());
}

TEST(Payload, ListItemsKeepTheirOwnersLoggerWhenTheListShrinksToFit)
{
    // Nine items grow the list to room for more; the read then shrinks it, which
    // moves every item into new storage.
    QString items;
    for (int i = 0; i < 9; ++i)
        items += QStringLiteral("<Alternative><Name>N%1</Name></Alternative>").arg(i);
    Alternatives list;
    const auto logger = attachLogger(list);
    ASSERT_TRUE(list.SetXmlString(QStringLiteral("<Alternatives>") + items + QStringLiteral("</Alternatives>"), false));
    ASSERT_EQ(list.GetAlternative().size(), 9);
    logger->entries.clear();
    for (const Alternative& item : list.GetAlternative()) {
        EXPECT_EQ(item.GetLogger(), logger);
        item.Check(true);
    }
    // Each item lacks its DatabaseID and Confidence and says so to the owner's logger.
    EXPECT_EQ(logger->entries.size(), 18);
}

// Qt's containers grow by moving records as bytes, and shrink by moving them.
static_assert(QTypeInfo<Alternative>::isRelocatable, "generated classes are relocatable");
static_assert(QTypeInfo<EmitterDossier>::isRelocatable, "generated classes are relocatable");
static_assert(std::is_nothrow_move_constructible<Alternative>::value, "moving a record cannot fail");

TEST(Payload, SetValidateAndSetLoggerWorkOnConstObjectsAndReachChildren)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    const Alternatives& constList = list;
    auto logger = std::make_shared<RecordingLogger>();
    constList.SetValidate(true);
    constList.SetLogger(logger);
    EXPECT_TRUE(list.GetAlternative().at(0).GetValidate());
    EXPECT_EQ(list.GetAlternative().at(0).GetLogger(), logger);
}

TEST(Payload, SetObjectTypeChangesNothing)
{
    AgeOutTime a;
    a.SetObjectType(RECORDKIT::ObjectTypes(5));
    EXPECT_EQ(a.GetObjectType(), RECORDKIT::Undefined);
}

TEST(Presence, NonConstListGetterMarksTheListConstOneDoesNot)
{
    Alternatives list;
    const Alternatives& constList = list;
    constList.GetAlternative();
    EXPECT_TRUE(list.IsInitialized());
    EXPECT_FALSE(list.IsAlternativeSet());
    list.GetAlternative();
    EXPECT_TRUE(list.IsAlternativeSet());
    EXPECT_FALSE(list.HasData());
    EXPECT_FALSE(list.AnyData());
}

TEST(Presence, ResetOfAPropertyClearsBitAndValue)
{
    BeamPeakPower b;
    b.Setunit(BeamPeakPower::unit(1));
    b.Resetunit();
    EXPECT_FALSE(b.IsunitSet());
    EXPECT_EQ(b.Getunit(), 0xFF);

    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    list.ResetAlternative();
    EXPECT_FALSE(list.IsAlternativeSet());
    EXPECT_TRUE(list.GetAlternative().isEmpty());
}

TEST(Presence, HasDataAndAnyDataFollowMandatoryFields)
{
    AgeOutTime a;
    a.SetValue(0);
    EXPECT_FALSE(a.HasData());
    EXPECT_TRUE(a.AnyData());
    a.Setunit(AgeOutTime::unit(0));
    EXPECT_TRUE(a.HasData());

    BeamDuration d;
    d.SetMean(1);
    d.SetMin(2);
    EXPECT_FALSE(d.HasData());
    EXPECT_TRUE(d.AnyData());
    d.Setunit(BeamDuration::unit(0));
    d.ResetMean();
    d.ResetMin();
    EXPECT_TRUE(d.HasData());
}

TEST(Presence, AnInvalidUnitSetWithValidationOffCountsAsData)
{
    AgeOutTime a;
    a.Setunit(AgeOutTime::unit(0xFF));
    a.SetValue(1);
    EXPECT_TRUE(a.IsunitSet());
    EXPECT_FALSE(a.IsValidunit(a.Getunit()));
    EXPECT_TRUE(a.HasData());
}

TEST(Comparison, FreshObjectsAndEmptyPayloadsAreEqual)
{
    AgeOutTime a;
    AgeOutTime b;
    EXPECT_TRUE(a == b);
    b.GetValue();
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(b == a);
}

TEST(Comparison, PresenceTakesPartAsWellAsValues)
{
    AgeOutTime a;
    AgeOutTime b;
    a.SetValue(1.0);
    b.SetValue(1.0);
    a.Setunit(AgeOutTime::unit(0));
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
    b.Setunit(AgeOutTime::unit(0));
    EXPECT_TRUE(a == b);

    Alternative x = makeAlternative("A", "1", 0);
    Alternative y;
    y.SetName(QStringLiteral("A"));
    y.SetDatabaseID(QStringLiteral("1"));
    EXPECT_FALSE(x == y);  // Confidence 0 set differs from Confidence unset
}

TEST(Comparison, NaNIsNeverEqual)
{
    AgeOutTime a;
    a.SetValue(std::numeric_limits<double>::quiet_NaN());
    AgeOutTime b = a;
    EXPECT_FALSE(a == b);
}

TEST(Comparison, ListsCompareInOrderAndAnEmptyListEqualsAnUnsetOne)
{
    Alternatives ab;
    ab.AppendAlternative(makeAlternative("A", "1", 0.5));
    ab.AppendAlternative(makeAlternative("B", "2", 0.25));
    Alternatives ba;
    ba.AppendAlternative(makeAlternative("B", "2", 0.25));
    ba.AppendAlternative(makeAlternative("A", "1", 0.5));
    EXPECT_FALSE(ab == ba);

    Alternatives unset;
    Alternatives emptySet;
    emptySet.GetAlternative();
    EXPECT_TRUE(unset == emptySet);
    EXPECT_TRUE(emptySet == unset);
    EXPECT_FALSE(ab == unset);
}

TEST(Setters, TextSetterTestsNullOnly)
{
    Alternative a;
    auto logger = attachLogger(a);
    a.SetName(QStringLiteral(""));
    EXPECT_TRUE(a.IsNameSet());
    EXPECT_TRUE(logger->entries.isEmpty());

    a.SetName(QString());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Alternative: Please set Name properly (origin: Setter)."));
    EXPECT_TRUE(a.IsNameSet());
    EXPECT_TRUE(a.GetName().isNull());
}

TEST(Setters, TextSetterRaisesWithValidationOnAndStoresNothing)
{
    Alternative a;
    a.SetValidate(true);
    auto logger = attachLogger(a);
    try {
        a.SetDatabaseID(QString());
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("Alternative: Please set DatabaseID properly (origin: Setter)."));
    }
    EXPECT_FALSE(a.IsDatabaseIDSet());
    EXPECT_TRUE(logger->entries.isEmpty());
}

TEST(Setters, EnumerationSetterReportsWithoutObjectName)
{
    AgeOutTime a;
    auto logger = attachLogger(a);
    a.Setunit(AgeOutTime::unit(1));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("enum is not valid (classname=AgeOutTime,membername=m_unit)"));
    EXPECT_TRUE(a.IsunitSet());
    EXPECT_EQ(a.Getunit(), 1);

    BeamDuration d;
    d.SetValidate(true);
    d.Setunit(BeamDuration::unit(0));
    EXPECT_THROW(d.Setunit(BeamDuration::unit(0xFF)), OutOfRangeException);
    EXPECT_EQ(d.Getunit(), 0);  // the old value survives a raised setter
    EXPECT_TRUE(d.IsunitSet());
}
