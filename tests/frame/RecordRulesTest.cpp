// The rules every record follows whatever its class: the payload behind the
// handle (made lazily, shared until a side changes, reset in place), presence
// bits, equality, setters' and Check's reports, appends, writers' refusals,
// and the reflection view over the field tables.

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

QStringList messages(const RecordingLogger& logger)
{
    QStringList texts;
    for (const LogEntry& e : logger.entries)
        texts.append(e.message);
    return texts;
}

const QString AppendRefused = QStringLiteral(
    "Alternatives: Tried to append not completely defined or invalid item Alternative.");

}  // namespace

// Qt's containers grow by moving records as bytes, and shrink by moving them.
static_assert(QTypeInfo<Alternative>::isRelocatable, "generated classes are relocatable");
static_assert(std::is_nothrow_move_constructible<Alternative>::value, "moving a record cannot fail");

TEST(Payload, IsMadeByTheFirstReadOrResetAndNotByQueries)
{
    AgeOutTime a;
    EXPECT_FALSE(a.HasData() || a.AnyData() || a.IsunitSet() || a.IsValueSet());
    a.ResetValue();
    EXPECT_FALSE(a.IsInitialized());
    EXPECT_EQ(a.GetValue(), 0.0);
    EXPECT_TRUE(a.IsInitialized());
    EXPECT_FALSE(a.AnyData());

    BeamPeakPower b;
    EXPECT_TRUE(b.GetunitAsString().isNull());
    EXPECT_TRUE(b.IsInitialized());

    AgeOutTime fresh;
    fresh.ResetToDefault();
    EXPECT_TRUE(fresh.IsInitialized());
    AgeOutTime filled;
    filled.Setunit(AgeOutTime::unit(0));
    filled.SetValue(3);
    filled.ResetToDefault();
    EXPECT_FALSE(filled.IsunitSet() || filled.IsValueSet());
    EXPECT_EQ(filled.GetValue(), 0.0);
    EXPECT_EQ(filled.Getunit(), 0xFF);

    a.SetObjectType(RECORDKIT::ObjectTypes(5));
    EXPECT_EQ(a.GetObjectType(), RECORDKIT::Undefined);
    EXPECT_NO_THROW(AgeOutTime().Check(true));  // with no logger, Check reports nowhere
}

TEST(Payload, IsSharedUntilEitherSideChangesAndCopiesTakeWhatTheyShould)
{
    AgeOutTime b;
    b.SetValue(1);
    AgeOutTime a;
    a = b;
    a.SetValue(2);
    EXPECT_EQ(b.GetValue(), 1.0);
    AgeOutTime c;
    auto targetLogger = attachLogger(c);
    b.SetValidate(true);
    c = b;  // the target keeps its flag, logger and name
    b.SetValue(3);
    EXPECT_EQ(c.GetValue(), 1.0);
    EXPECT_FALSE(c.GetValidate());
    EXPECT_EQ(c.GetLogger(), targetLogger);
    EXPECT_EQ(c.GetObjectName(), QStringLiteral("AgeOutTime"));

    Alternatives source;
    source.SetValidate(true);
    const auto logger = attachLogger(source);
    source.AppendAlternative(makeAlternative("A", "1", 0.5));
    Alternatives copy(source);  // takes the flag, not the logger, and copies deeply
    EXPECT_TRUE(copy.GetValidate() && copy.GetAlternative().at(0).GetValidate());
    EXPECT_EQ(copy.GetLogger(), nullptr);
    EXPECT_EQ(copy, source);
    copy.GetAlternative()[0].SetName(QStringLiteral("B"));
    EXPECT_EQ(source.GetAlternative().at(0).GetName(), QStringLiteral("A"));

    const Alternatives expected(source);
    Alternatives moved(std::move(source));  // takes the whole object over
    EXPECT_TRUE(moved.GetValidate());
    EXPECT_EQ(moved.GetLogger(), logger);
    EXPECT_EQ(moved, expected);
    EXPECT_FALSE(source.AnyData());

    moved.Reset();  // keeps flag and logger, empties the fields
    EXPECT_TRUE(moved.IsInitialized());
    EXPECT_FALSE(moved.IsAlternativeSet());
    EXPECT_TRUE(moved.GetValidate());
    EXPECT_EQ(moved.GetLogger(), logger);
}

TEST(Payload, FlagAndLoggerReachChildrenAlsoThroughConstObjectsAndMovedItems)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    auto logger = std::make_shared<RecordingLogger>();
    const Alternatives& constList = list;
    constList.SetValidate(true);
    constList.SetLogger(logger);
    EXPECT_TRUE(list.GetAlternative().at(0).GetValidate());
    EXPECT_EQ(list.GetAlternative().at(0).GetLogger(), logger);

    // The base's setters reach only the list; Check hands both down.
    Alternatives other;
    other.AppendAlternative(makeAlternative("A", "1", 0.5));
    other.IRKObject::SetValidate(true);
    other.IRKObject::SetLogger(logger);
    EXPECT_FALSE(other.GetAlternative().at(0).GetValidate());
    other.Check();
    EXPECT_TRUE(other.GetAlternative().at(0).GetValidate());
    EXPECT_EQ(other.GetAlternative().at(0).GetLogger(), logger);

    // Nine items grow the list beyond its need; the read shrinks it, moving every item.
    QString items;
    for (int i = 0; i < 9; ++i)
        items += QStringLiteral("<Alternative><Name>N%1</Name></Alternative>").arg(i);
    Alternatives read;
    const auto readLogger = attachLogger(read);
    ASSERT_TRUE(read.SetXmlString(QStringLiteral("<Alternatives>") + items + QStringLiteral("</Alternatives>"), false));
    readLogger->entries.clear();
    for (const Alternative& item : read.GetAlternative())
        item.Check(true);
    EXPECT_EQ(readLogger->entries.size(), 18);  // DatabaseID and Confidence of each
}

TEST(Presence, BitsFollowSettersResetsAndNonConstListGetters)
{
    Alternatives list;
    static_cast<const Alternatives&>(list).GetAlternative();
    EXPECT_TRUE(list.IsInitialized());
    EXPECT_FALSE(list.IsAlternativeSet());
    list.GetAlternative();
    EXPECT_TRUE(list.IsAlternativeSet());
    EXPECT_FALSE(list.HasData() || list.AnyData());
    list.AppendAlternative(makeAlternative("A", "1", 0.5));
    EXPECT_TRUE(list.HasData());
    list.ResetAlternative();
    EXPECT_FALSE(list.IsAlternativeSet());
    EXPECT_TRUE(list.GetAlternative().isEmpty());

    BeamPeakPower b;
    b.Setunit(BeamPeakPower::unit(1));
    b.Resetunit();
    EXPECT_FALSE(b.IsunitSet());
    EXPECT_EQ(b.Getunit(), 0xFF);

    // HasData needs the mandatory fields, AnyData any field; an invalid unit set counts.
    AgeOutTime a;
    a.SetValue(0);
    EXPECT_FALSE(a.HasData());
    EXPECT_TRUE(a.AnyData());
    a.Setunit(AgeOutTime::unit(0xFF));
    EXPECT_TRUE(a.HasData());
    BeamDuration d;
    d.SetMean(1);
    EXPECT_FALSE(d.HasData());
    EXPECT_TRUE(d.AnyData());
    d.Setunit(BeamDuration::unit(0));
    d.ResetMean();
    EXPECT_TRUE(d.HasData());
}

TEST(Comparison, PresenceValuesAndOrderTakePartButNotThePayloadItself)
{
    AgeOutTime a;
    AgeOutTime b;
    b.GetValue();
    EXPECT_TRUE(a == b && b == a);
    a.SetValue(1.0);
    b.SetValue(1.0);
    a.Setunit(AgeOutTime::unit(0));
    EXPECT_TRUE(a != b);
    b.Setunit(AgeOutTime::unit(0));
    EXPECT_TRUE(a == b);
    Alternative y;
    y.SetName(QStringLiteral("A"));
    y.SetDatabaseID(QStringLiteral("1"));
    EXPECT_FALSE(makeAlternative("A", "1", 0) == y);  // Confidence 0 set is not Confidence unset

    AgeOutTime nan;
    nan.SetValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_FALSE(nan == AgeOutTime(nan));

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
    EXPECT_TRUE(unset == emptySet && emptySet == unset);
    EXPECT_FALSE(ab == unset);

    EXPECT_FALSE(PulseWidth().IsEqualTo(CenterFrequency()));
    EXPECT_TRUE(PulseWidth().IsEqualTo(PulseWidth()));
}

// What setters report of null texts and names is in cases/json.txt, through
// the JSON reader; here, an enumeration byte that names nothing.
TEST(Setters, AnEnumerationByteThatNamesNothingIsStoredWithAWarning)
{
    AgeOutTime age;
    auto logger = attachLogger(age);
    age.Setunit(AgeOutTime::unit(1));
    EXPECT_EQ(messages(*logger), QStringList{"enum is not valid (classname=AgeOutTime,membername=m_unit)"});
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(age.Getunit(), 1);
}

TEST(Append, RefusesIncompleteItemsWithTheFlagAndWarnsWithoutIt)
{
    Alternatives strict;
    strict.SetValidate(true);
    Alternative incomplete;
    incomplete.SetName(QStringLiteral("A"));
    expectRaised<IncompleteDefinitionException>([&] { strict.AppendAlternative(incomplete); }, AppendRefused);
    EXPECT_FALSE(strict.IsAlternativeSet());
    EXPECT_TRUE(strict.GetAlternative().isEmpty());

    Alternatives lenient;
    auto logger = attachLogger(lenient);
    lenient.AppendAlternative(Alternative());
    EXPECT_EQ(lenient.GetAlternative().size(), 1);
    EXPECT_EQ(messages(*logger), QStringList{AppendRefused});
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);

    Alternatives fresh;
    fresh.AppendAlternative(makeAlternative("A", "1", 0.5));
    EXPECT_TRUE(fresh.IsAlternativeSet() && fresh.HasData());
}

// How names read and write is in cases/; here, the lookups themselves.
TEST(Enumerations, NamesLookupsAndDisplayNames)
{
    BeamPeakPower b;
    EXPECT_EQ(BeamPeakPower::Getunits(), QStringList({QStringLiteral("dBm"), QString::fromUtf8("dB\xC2\xB5V")}));
    EXPECT_EQ(BeamPeakPower::GetGUIunits(), BeamPeakPower::Getunits());
    EXPECT_EQ(b.NameTounit(QString()), 0xFF);
    EXPECT_TRUE(b.unitToName(BeamPeakPower::unit(2)).isNull());
    EXPECT_EQ(b.unitToName(BeamPeakPower::unit(1)), QString::fromUtf8("dB\xC2\xB5V"));
    EXPECT_TRUE(b.IsValidunit(BeamPeakPower::unit(1)));
    EXPECT_FALSE(b.IsValidunit(BeamPeakPower::unit(0x80)));  // negative when signed
    EXPECT_EQ(AgeOutTime::tr("s"), QStringLiteral("s"));
    EXPECT_EQ(AgeOutTime::trUtf8("s"), QStringLiteral("s"));
}

TEST(XmlLists, AListReadFromXmlHoldsLittleRoomBeyondItsItems)
{
    // Items come one at a time and the list grows by doubling; once the
    // element ends, the room beyond its items is given back.
    for (int count : {1, 5, 1000, 5000}) {
        Alternatives written;
        for (int i = 0; i < count; ++i)
            written.AppendAlternative(makeAlternative("A", "D", 0.5));
        Alternatives read;
        ASSERT_TRUE(read.SetXmlString(written.GetXmlString(), false));
        const QVector<Alternative>& items = read.GetAlternative();
        ASSERT_EQ(items.size(), count);
        EXPECT_LE(items.capacity() - items.size(), items.size() / 8) << count;
    }
}

TEST(Writers, WithTheFlagWriteNothingForNoDataAndRaiseBeforeWriting)
{
    auto write = [](const Frame::Record& record, bool binary) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        if (binary) {
            QDataStream stream(&buffer);
            EXPECT_FALSE(record.GetBinary(stream, 1, true));
        } else {
            QXmlStreamWriter writer(&buffer);
            record.GetXml(writer);
        }
        return bytes;
    };
    Alternatives list;
    list.SetValidate(true);
    list.GetAlternative();  // set bit, no items: Check passes, HasData does not
    EXPECT_TRUE(write(list, false).isEmpty());
    EXPECT_TRUE(write(list, true).isEmpty());

    BeamPeakPower b;
    b.SetValidate(true);
    b.SetValue(1);
    for (bool binary : {false, true}) {
        QByteArray written("untouched");
        EXPECT_THROW(written = write(b, binary), OutOfRangeException);
        EXPECT_EQ(written, QByteArray("untouched"));
    }
}

TEST(Reflection, ReadsFieldsWithoutMarkingThemAndWalksWhatCheckGoesInto)
{
    Scan scan;
    scan.SetNumberOfBars(4);
    const Frame::FieldInfo& bars = Frame::FieldByBit(scan.GetClassInfo(), 5);
    const Frame::FieldInfo& cycle = Frame::FieldByBit(scan.GetClassInfo(), 0);
    EXPECT_EQ(Frame::FieldText(scan, bars), QStringLiteral("4"));
    EXPECT_TRUE(Frame::IsFieldSet(scan, bars));
    EXPECT_EQ(Frame::ChildOf(scan, cycle).GetObjectName(), QStringLiteral("ScanCycle"));
    EXPECT_FALSE(Frame::IsFieldSet(scan, cycle) || scan.IsScanCycleSet());
    Modulations set;
    set.AppendModulation(set.NameToModulation(QStringLiteral("CW")));
    const Frame::FieldInfo& values = Frame::FieldByBit(set.GetClassInfo(), 0);
    ASSERT_EQ(Frame::ItemCount(set, values), 1);
    EXPECT_EQ(Frame::EnumItemText(set, values, 0), QStringLiteral("CW"));

    EmitterDossier d = filledDossier(2, 1);
    d.GetELINTParameter().GetSequence().GetPulseList().GetPulseItem()[1].Resetid();
    d.ResetFiles();  // a clear optional child is not gone into
    QStringList paths, faults;
    auto logger = attachLogger(d);
    Frame::ForEachChecked(d, [&](const QString& path, const Frame::Record& record) {
        paths.append(path);
        logger->entries.clear();
        Frame::CheckOwnFields(record, true);
        for (const QString& message : messages(*logger))
            faults.append(path + QStringLiteral(": ") + message);
    });
    EXPECT_EQ(paths.first(), QString());
    EXPECT_TRUE(paths.contains(QStringLiteral("ELINTParameter/Sequence/PulseList/PulseItem[1]/RiseTime")));
    EXPECT_TRUE(paths.contains(QStringLiteral("Filter[1]/Modulations")));
    EXPECT_FALSE(paths.contains(QStringLiteral("Files")));
    EXPECT_EQ(faults,
              QStringList{"ELINTParameter/Sequence/PulseList/PulseItem[1]: PulseItem: Please set id properly."});
}

// The view reads the tables as the forms use them: in the order of writing and
// by bit, by name and by tag, and the class of every child and item.
TEST(Reflection, ViewFindsFieldsAndClassesAsTheFormsDo)
{
    const Frame::ClassInfo& item = ModulationItem::StaticClassInfo();
    const Frame::FieldInfo& first = Frame::FieldAt(item, 0);  // id: written first, the last bit
    EXPECT_EQ(Frame::FieldName(first), QStringLiteral("id"));
    EXPECT_EQ(&Frame::FieldByBit(item, Frame::FieldBit(first)), &first);
    EXPECT_EQ(Frame::FieldBit(first), Frame::FieldCount(item) - 1);
    EXPECT_EQ(Frame::FindFieldByTag(item, Frame::FieldTag(first)), &first);
    const Frame::FieldInfo* chipRate = Frame::FindField(item, QStringLiteral("ChipRate"));
    ASSERT_NE(chipRate, nullptr);
    EXPECT_EQ(Frame::FieldName(*chipRate), QStringLiteral("ChipRate"));
    EXPECT_EQ(Frame::ItemClass(*chipRate), &ChipRate::StaticClassInfo());
    EXPECT_EQ(Frame::FindField(item, QStringLiteral("chiprate")), nullptr);
    EXPECT_EQ(Frame::FindFieldByTag(item, 0x12345678u), nullptr);
    EXPECT_EQ(Frame::EnumNames(Frame::FieldAt(item, 1)), ModulationItem::GetModulationTypes());
    EXPECT_EQ(Frame::ClassSchemaVersion(EmitterDossier::StaticClassInfo()), QStringLiteral("1.8"));
    EXPECT_EQ(Frame::ClassVersionTag(EmitterDossier::StaticClassInfo()), 0xccfedfa1u);
    EXPECT_EQ(Frame::ClassVersionTag(item), 0u);

    int seen = 0;
    for (const Frame::ClassEntry& entry : Frame::AllClasses()) {
        const Frame::ClassInfo& info = entry.info();
        EXPECT_EQ(Frame::FindClass(Frame::ClassName(info)), &entry);
        EXPECT_EQ(Frame::FindClass(Frame::ClassId(info)), &entry);
        std::unique_ptr<Frame::Record> record(entry.create());
        for (int i = 0; i < Frame::FieldCount(info); ++i) {
            const Frame::FieldInfo& f = Frame::FieldAt(info, i);
            const Frame::Kind kind = Frame::FieldKind(f);
            if (kind == Frame::Kind::Child)
                EXPECT_EQ(Frame::ItemClass(f), &Frame::ChildOf(*record, f).GetClassInfo());
            else if (kind == Frame::Kind::List)
                EXPECT_TRUE(Frame::ItemClass(f) && Frame::FindClass(Frame::ClassName(*Frame::ItemClass(f))));
            else
                EXPECT_EQ(Frame::ItemClass(f), nullptr);
            seen += kind == Frame::Kind::Child || kind == Frame::Kind::List;
        }
    }
    EXPECT_GT(seen, 90);
}
