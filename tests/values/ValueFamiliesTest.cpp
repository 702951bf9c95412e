// The measured values, walked class by class: the 41 numbers with a unit and
// the 5 statistics. Each table row gives the class's element name and its unit
// names in index order (ids and the names themselves are checked for every
// class in tests/schema); every test runs once per row.

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

// The table. Names are UTF-8 here; the µ of "dBµV" is U+00B5.
template <class T>
struct Row;

#define VALUE_ROW(Class, Element, ...)                                               \
    template <>                                                                      \
    struct Row<Class> {                                                              \
        static constexpr const char* name = Element;                                 \
        static QStringList units()                                                   \
        {                                                                            \
            QStringList list;                                                        \
            for (const char* unit : std::initializer_list<const char*>{__VA_ARGS__}) \
                list << QString::fromUtf8(unit);                                     \
            return list;                                                             \
        }                                                                            \
    };

VALUE_ROW(AgeOutTime, "AgeOutTime", "s")
VALUE_ROW(DetectionDuration, "DetectionDuration", "ns")
VALUE_ROW(Latitude, "Latitude", "deg")
VALUE_ROW(Longitude, "Longitude", "deg")
VALUE_ROW(Altitude, "Altitude", "m")
VALUE_ROW(AngularResolution, "AngularResolution", "deg")
VALUE_ROW(RangeResolution, "RangeResolution", "m")
VALUE_ROW(MaxRange, "MaxRange", "m")
VALUE_ROW(MaxUnambiguousVelocity, "MaxUnambiguousVelocity", "m/s")
VALUE_ROW(MinDetectionRange, "MinDetectionRange", "m")
VALUE_ROW(RotorFrequency, "RotorFrequency", "Hz")
VALUE_ROW(BeamPeakPower, "BeamPeakPower", "dBm", "dB\xC2\xB5V")
VALUE_ROW(FirstSideLobeLevel, "FirstSideLobeLevel", "dB")
VALUE_ROW(FrameTime, "FrameTime", "ns")
VALUE_ROW(FlyBackTime, "FlyBackTime", "ns")
VALUE_ROW(VerticalScanPeriod, "VerticalScanPeriod", "ns")
VALUE_ROW(TimeBetweenBeams, "TimeBetweenBeams", "ns")
VALUE_ROW(BeamRevisitTime, "BeamRevisitTime", "ns")
VALUE_ROW(TimeBetweenRFs, "TimeBetweenRFs", "ns")
VALUE_ROW(RFRevisitTime, "RFRevisitTime", "ns")
VALUE_ROW(BeamWidthHor, "BeamWidthHor", "deg")
VALUE_ROW(BeamWidthHorTol, "BeamWidthHorTol", "deg")
VALUE_ROW(BeamWidthVer, "BeamWidthVer", "deg")
VALUE_ROW(BeamWidthVerTol, "BeamWidthVerTol", "deg")
VALUE_ROW(ChannelSpacingItem, "ChannelSpacingItem", "Hz")
VALUE_ROW(ChipRate, "ChipRate", "Hz")
VALUE_ROW(ChipRateTol, "ChipRateTol", "Hz")
VALUE_ROW(ModulationDuration, "ModulationDuration", "ns")
VALUE_ROW(ModulationDurationTol, "ModulationDurationTol", "ns")
VALUE_ROW(FreqShift, "FreqShift", "Hz")
VALUE_ROW(FreqShiftTol, "FreqShiftTol", "Hz")
VALUE_ROW(Bandwidth, "Bandwidth", "Hz")
VALUE_ROW(BandwidthTol, "BandwidthTol", "Hz")
VALUE_ROW(StartFrequency, "StartFrequency", "Hz")
VALUE_ROW(FrequencyDeviation, "FrequencyDeviation", "Hz")
VALUE_ROW(Duration, "Duration", "ns")
VALUE_ROW(DeadTime, "DeadTime", "ns")
VALUE_ROW(NormLevel, "NormLevel", "dB")
VALUE_ROW(RiseTime, "RiseTime", "ns")
VALUE_ROW(FallTime, "FallTime", "ns")
VALUE_ROW(EnvelopeGradient, "EnvelopeGradient", "%/s")

VALUE_ROW(BeamDuration, "BeamDuration", "ns")
VALUE_ROW(CenterFrequency, "CenterFrequency", "Hz")
VALUE_ROW(PRI, "PRI", "ns")
VALUE_ROW(PulseWidth, "PulseWidth", "ns")
VALUE_ROW(ScanCycle, "ScanCycle", "ns")

#undef VALUE_ROW

using UnitScalars = ::testing::Types<
    AgeOutTime, DetectionDuration, Latitude, Longitude, Altitude, AngularResolution, RangeResolution, MaxRange,
    MaxUnambiguousVelocity, MinDetectionRange, RotorFrequency, BeamPeakPower, FirstSideLobeLevel, FrameTime,
    FlyBackTime, VerticalScanPeriod, TimeBetweenBeams, BeamRevisitTime, TimeBetweenRFs, RFRevisitTime, BeamWidthHor,
    BeamWidthHorTol, BeamWidthVer, BeamWidthVerTol, ChannelSpacingItem, ChipRate, ChipRateTol, ModulationDuration,
    ModulationDurationTol, FreqShift, FreqShiftTol, Bandwidth, BandwidthTol, StartFrequency, FrequencyDeviation,
    Duration, DeadTime, NormLevel, RiseTime, FallTime, EnvelopeGradient>;

using Statistics = ::testing::Types<BeamDuration, CenterFrequency, PRI, PulseWidth, ScanCycle>;

struct RowNames {
    template <class T>
    static std::string GetName(int)
    {
        return Row<T>::name;
    }
};

// Field tags shared by the whole family.
constexpr quint32 kUnitTag = 0xa5b3acfc;
constexpr quint32 kValueTag = 0x8aff57b3;
constexpr quint32 kMeanTag = 0xe31b2fb9;
constexpr quint32 kMinTag = 0x4ecb4e58;
constexpr quint32 kMaxTag = 0x6e8dd7f5;
constexpr quint32 kTolTag = 0x895dd926;

template <class T>
QString elementName()
{
    return QString::fromLatin1(Row<T>::name);
}

// A field record whose payload is a byte array: tag, length, count, bytes.
QByteArray textRecord(quint32 tag, const QByteArray& utf8)
{
    return (Bytes().word(tag).word(quint32(4 + utf8.size())) << utf8).bytes();
}

// An object block without its tag: the length word, then the records.
QByteArray block(const QByteArray& records) { return Bytes().word(quint32(records.size())).bytes() + records; }

template <class T>
void readBlock(T& object, const QByteArray& withLength)
{
    readTagged(object, withLength.mid(4), withLength.size() - 4);
}

template <class T>
QString checkMessage(const char* field)
{
    return elementName<T>() + QStringLiteral(": Please set %1 properly.").arg(QLatin1String(field));
}

template <class T>
void expectCheckRaises(const T& object, const QString& message)
{
    try {
        object.Check();
        ADD_FAILURE() << "Check() did not raise for " << Row<T>::name;
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), message);
    }
}

// Both families: the conversions around the unit name list.
template <class T>
void expectUnitConversions()
{
    using unit = typename T::unit;
    T value;
    EXPECT_FALSE(value.IsInitialized());

    const QStringList units = Row<T>::units();
    EXPECT_EQ(T::GetGUIunits(), units);  // no translator installed
    for (int i = 0; i < units.size(); ++i) {
        EXPECT_EQ(value.unitToName(unit(i)), units[i]);
        EXPECT_EQ(int(value.NameTounit(units[i])), i);
        EXPECT_TRUE(value.IsValidunit(unit(i)));
    }
    // Names match exactly: no case folding, no trimming.
    EXPECT_EQ(int(value.NameTounit(units[0].toUpper())), 0xFF);
    EXPECT_EQ(int(value.NameTounit(units[0] + QLatin1Char(' '))), 0xFF);
    EXPECT_EQ(int(value.NameTounit(QString())), 0xFF);
    EXPECT_EQ(int(value.NameTounit(QStringLiteral(""))), 0xFF);

    const unit beyond = unit(units.size());
    EXPECT_FALSE(value.IsValidunit(beyond));
    EXPECT_TRUE(value.unitToName(beyond).isNull());
    EXPECT_EQ(int(value.GetInvalidunit()), 0xFF);
    EXPECT_EQ(int(value.GetDefaultunit()), 0xFF);
    EXPECT_FALSE(value.IsValidunit(value.GetInvalidunit()));
    EXPECT_TRUE(value.unitToName(value.GetInvalidunit()).isNull());
    EXPECT_FALSE(value.IsInitialized());
    EXPECT_TRUE(value.GetunitAsString().isNull());
    EXPECT_TRUE(value.IsInitialized());
}

// Both families: a unit past the end of the list is stored with a warning, or
// refused with the old value kept.
template <class T>
void expectOutOfRangeUnitReported()
{
    using unit = typename T::unit;
    const unit beyond = unit(Row<T>::units().size());
    const QString message = QStringLiteral("enum is not valid (classname=%1,membername=m_unit)").arg(elementName<T>());

    T lenient;
    auto logger = attachLogger(lenient);
    lenient.Setunit(beyond);
    EXPECT_TRUE(lenient.IsunitSet());
    EXPECT_EQ(lenient.Getunit(), beyond);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message, message);
    expectCheckRaises(lenient, checkMessage<T>("unit"));

    T strict;
    strict.SetValidate(true);
    strict.Setunit(unit(0));
    for (const unit wrong : {beyond, strict.GetInvalidunit()}) {
        try {
            strict.Setunit(wrong);
            ADD_FAILURE() << "Setunit did not raise for " << Row<T>::name;
        } catch (const OutOfRangeException& e) {
            EXPECT_EQ(e.GetMessage(), message);
        }
        EXPECT_EQ(int(strict.Getunit()), 0);
    }
}

// ---------------------------------------------------------------- unit scalars

template <class T>
class UnitScalarFamily : public ::testing::Test {
};
TYPED_TEST_SUITE(UnitScalarFamily, UnitScalars, RowNames);

TYPED_TEST(UnitScalarFamily, UnitNameConversions) { expectUnitConversions<TypeParam>(); }

TYPED_TEST(UnitScalarFamily, OutOfRangeUnitIsReported) { expectOutOfRangeUnitReported<TypeParam>(); }

TYPED_TEST(UnitScalarFamily, FreshObjectWritesItsInitialValues)
{
    const QString name = elementName<TypeParam>();
    EXPECT_EQ(TypeParam().GetXmlString(), document(QStringLiteral("<%1 unit=\"\">0.00</%1>").arg(name)));
    // unit as a null byte array, Value as "0.00"
    const QByteArray records = hex("a5b3acfc 00000004 ffffffff 8aff57b3 00000008 00000004 302e3030");
    EXPECT_EQ(tagged(TypeParam(), 0, false), hex("0000001c") + records);
    EXPECT_EQ(tagged(TypeParam(), 0x12345678, true), hex("12345678 0000001c") + records);
    EXPECT_EQ(raw(TypeParam()), hex("00 ff 0000000000000000"));
}

TYPED_TEST(UnitScalarFamily, FilledObjectRoundTripsThroughAllThreeForms)
{
    using unit = typename TypeParam::unit;
    const QStringList units = Row<TypeParam>::units();
    const unit last = unit(units.size() - 1);
    const QString name = elementName<TypeParam>();

    TypeParam value;
    value.SetValidate(true);
    value.Setunit(last);
    value.SetValue(-1234.5678);
    TypeParam rounded;
    rounded.Setunit(last);
    rounded.SetValue(-1234.57);

    const QString xml = value.GetXmlString();
    EXPECT_EQ(xml, document(QStringLiteral("<%1 unit=\"%2\">-1234.57</%1>").arg(name, units.last())));
    TypeParam fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(xml, false));
    EXPECT_EQ(fromXml, rounded);
    EXPECT_NE(fromXml, value);

    const QByteArray bytes = tagged(value, 0, false);
    EXPECT_EQ(bytes, block(textRecord(kUnitTag, units.last().toUtf8()) + textRecord(kValueTag, "-1234.57")));
    TypeParam fromTagged;
    readBlock(fromTagged, bytes);
    EXPECT_EQ(fromTagged, rounded);

    const QByteArray exact = raw(value);
    EXPECT_EQ(exact, (Bytes() << quint8(0x03) << qint8(units.size() - 1) << -1234.5678).bytes());
    TypeParam fromRaw;
    readRaw(fromRaw, exact);
    EXPECT_EQ(fromRaw, value);
    EXPECT_EQ(fromRaw.GetValue(), -1234.5678);
}

TYPED_TEST(UnitScalarFamily, CheckDemandsUnitThenValue)
{
    using unit = typename TypeParam::unit;
    TypeParam fresh;
    auto logger = attachLogger(fresh);
    expectCheckRaises(fresh, checkMessage<TypeParam>("unit"));
    fresh.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries[0].message, checkMessage<TypeParam>("unit"));
    EXPECT_EQ(logger->entries[1].level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries[1].message, checkMessage<TypeParam>("Value"));

    TypeParam unitOnly;
    unitOnly.Setunit(unit(0));
    expectCheckRaises(unitOnly, checkMessage<TypeParam>("Value"));
    EXPECT_FALSE(unitOnly.HasData());
    EXPECT_TRUE(unitOnly.AnyData());

    TypeParam valueOnly;
    valueOnly.SetValue(0);
    expectCheckRaises(valueOnly, checkMessage<TypeParam>("unit"));
    EXPECT_FALSE(valueOnly.HasData());
    EXPECT_TRUE(valueOnly.AnyData());

    // An explicit zero counts as set.
    valueOnly.Setunit(unit(0));
    EXPECT_NO_THROW(valueOnly.Check());
    EXPECT_TRUE(valueOnly.HasData());

    // With validation on an incomplete object is refused before anything is written.
    unitOnly.SetValidate(true);
    EXPECT_THROW(unitOnly.GetXmlString(), OutOfRangeException);
    EXPECT_THROW(tagged(unitOnly, 0, false), OutOfRangeException);
}

// ------------------------------------------------------------------ statistics

template <class T>
class StatisticFamily : public ::testing::Test {
};
TYPED_TEST_SUITE(StatisticFamily, Statistics, RowNames);

TYPED_TEST(StatisticFamily, UnitNameConversions) { expectUnitConversions<TypeParam>(); }

TYPED_TEST(StatisticFamily, OutOfRangeUnitIsReported) { expectOutOfRangeUnitReported<TypeParam>(); }

TYPED_TEST(StatisticFamily, FreshObjectWritesOnlyTheUnit)
{
    EXPECT_EQ(TypeParam().GetXmlString(), document(QStringLiteral("<%1 unit=\"\"/>").arg(elementName<TypeParam>())));
    EXPECT_EQ(tagged(TypeParam(), 0, false), hex("0000000c a5b3acfc 00000004 ffffffff"));
    EXPECT_EQ(raw(TypeParam()), hex("00 ff"));
}

TYPED_TEST(StatisticFamily, FilledObjectRoundTripsThroughAllThreeForms)
{
    using unit = typename TypeParam::unit;
    const QString name = elementName<TypeParam>();
    const QString unitName = Row<TypeParam>::units().first();

    TypeParam value;
    value.SetValidate(true);
    // Set against the bit order; writers still follow their own order.
    value.SetTol(0.004);
    value.SetMax(1e10);
    value.SetMin(-1);
    value.SetMean(250.5);
    value.Setunit(unit(0));
    TypeParam rounded = value;
    rounded.SetTol(0.0);

    const QString xml = value.GetXmlString();
    EXPECT_EQ(xml, document(QStringLiteral("<%1 unit=\"%2\">\n"
                                           "  <Mean>250.50</Mean>\n"
                                           "  <Min>-1.00</Min>\n"
                                           "  <Max>10000000000.00</Max>\n"
                                           "  <Tol>0.00</Tol>\n"
                                           "</%1>")
                                .arg(name, unitName)));
    TypeParam fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(xml, false));
    EXPECT_EQ(fromXml, rounded);
    EXPECT_TRUE(fromXml.IsTolSet());

    const QByteArray bytes = tagged(value, 0, false);
    EXPECT_EQ(bytes, block(textRecord(kUnitTag, unitName.toUtf8()) + textRecord(kMeanTag, "250.50") +
                           textRecord(kMinTag, "-1.00") + textRecord(kMaxTag, "10000000000.00") +
                           textRecord(kTolTag, "0.00")));
    TypeParam fromTagged;
    readBlock(fromTagged, bytes);
    EXPECT_EQ(fromTagged, rounded);

    // Raw: bits 0 to 4 set, the four doubles, then the unit last.
    const QByteArray exact = raw(value);
    EXPECT_EQ(exact, (Bytes() << quint8(0x1f) << 250.5 << -1.0 << 1e10 << 0.004 << qint8(0)).bytes());
    TypeParam fromRaw;
    readRaw(fromRaw, exact);
    EXPECT_EQ(fromRaw, value);
    EXPECT_EQ(fromRaw.GetTol(), 0.004);
}

TYPED_TEST(StatisticFamily, UnsetNumbersAreLeftOutOfEveryForm)
{
    using unit = typename TypeParam::unit;
    const QString name = elementName<TypeParam>();
    const QString unitName = Row<TypeParam>::units().first();

    TypeParam value;
    value.Setunit(unit(0));
    value.SetMax(-7.25);
    EXPECT_EQ(value.GetXmlString(),
              document(QStringLiteral("<%1 unit=\"%2\">\n  <Max>-7.25</Max>\n</%1>").arg(name, unitName)));
    const QByteArray bytes = tagged(value, 0, false);
    EXPECT_EQ(bytes, block(textRecord(kUnitTag, unitName.toUtf8()) + textRecord(kMaxTag, "-7.25")));
    EXPECT_EQ(raw(value), (Bytes() << quint8(0x14) << -7.25 << qint8(0)).bytes());

    TypeParam fromXml, fromTagged, fromRaw;
    ASSERT_TRUE(fromXml.SetXmlString(value.GetXmlString(), false));
    readBlock(fromTagged, bytes);
    readRaw(fromRaw, raw(value));
    for (const TypeParam* back : {&fromXml, &fromTagged, &fromRaw}) {
        EXPECT_EQ(*back, value);
        EXPECT_FALSE(back->IsMeanSet());
        EXPECT_FALSE(back->IsMinSet());
        EXPECT_FALSE(back->IsTolSet());
    }

    // The unit is also read from an element of its name.
    TypeParam fromElement;
    ASSERT_TRUE(fromElement.SetXmlString(QStringLiteral("<%1><unit>%2</unit><Max>-7.25</Max></%1>").arg(name, unitName),
                                         false));
    EXPECT_EQ(fromElement, value);
}

TYPED_TEST(StatisticFamily, CheckDemandsTheUnitOnly)
{
    using unit = typename TypeParam::unit;
    TypeParam fresh;
    auto logger = attachLogger(fresh);
    expectCheckRaises(fresh, checkMessage<TypeParam>("unit"));
    fresh.Check(true);
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries[0].message, checkMessage<TypeParam>("unit"));

    TypeParam numbers;
    numbers.SetMean(3);
    numbers.SetMin(5);
    numbers.SetMax(1);  // no rule between the numbers
    numbers.SetTol(-2);
    EXPECT_FALSE(numbers.HasData());
    EXPECT_TRUE(numbers.AnyData());
    expectCheckRaises(numbers, checkMessage<TypeParam>("unit"));
    numbers.SetValidate(true);
    EXPECT_THROW(numbers.GetXmlString(), OutOfRangeException);
    EXPECT_THROW(tagged(numbers, 0, false), OutOfRangeException);

    numbers.Setunit(unit(0));
    EXPECT_NO_THROW(numbers.Check());
    EXPECT_TRUE(numbers.HasData());

    // A unit and no numbers is a complete value.
    TypeParam unitOnly;
    unitOnly.Setunit(unit(0));
    EXPECT_TRUE(unitOnly.HasData());
    EXPECT_NO_THROW(unitOnly.Check());
}

// ------------------------------------------------------------ fixed byte forms

TEST(ValueBytes, StatisticWritesTheUnitFirstInTaggedFormAndLastInRawForm)
{
    PulseWidth width;
    width.Setunit(PulseWidth::unit(0));
    width.SetMean(250.5);
    EXPECT_EQ(tagged(width, 0, false),
              hex("00000020 a5b3acfc 00000006 00000002 6e73 e31b2fb9 0000000a 00000006 3235302e3530"));
    EXPECT_EQ(raw(width), hex("11 406f500000000000 00"));
}

}  // namespace
