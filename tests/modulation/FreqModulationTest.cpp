// Frequency laws: a named list of segments, each with a mandatory duration.

#include <gtest/gtest.h>

#include <QXmlStreamReader>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

void readXml(RECORDKIT::IRKObject& object, const QString& text)
{
    QXmlStreamReader reader(text);
    ASSERT_TRUE(reader.readNextStartElement());
    object.ProcessXml(reader);
}

template <class T>
T scalar(double value)
{
    T t;
    t.Setunit(typename T::unit(0));
    t.SetValue(value);
    return t;
}

FreqModulationItem segment(double start, double duration)
{
    FreqModulationItem item;
    if (start >= 0)
        item.SetStartFrequency(scalar<StartFrequency>(start));
    if (duration >= 0)
        item.SetDuration(scalar<Duration>(duration));
    return item;
}

FreqModulation law(const char* name, const QVector<FreqModulationItem>& items)
{
    FreqModulation f;
    f.Setname(QString::fromUtf8(name));
    for (const auto& item : items)
        f.AppendFreqModulationItem(item);
    return f;
}

const QString SegmentWithoutDuration = QStringLiteral("<FreqModulation name=\"F\"><FreqModulationItem>"
                                                      "<StartFrequency unit=\"Hz\">9000</StartFrequency>"
                                                      "</FreqModulationItem></FreqModulation>");

}  // namespace

TEST(FreqModulationItem, OnlyTheDurationMakesASegmentComplete)
{
    EXPECT_TRUE(segment(-1, 100).HasData());
    EXPECT_FALSE(segment(9000, -1).HasData());
    EXPECT_TRUE(segment(9000, -1).AnyData());

    FreqModulationItem item = segment(9000, -1);
    auto logger = attachLogger(item);
    item.Check(true);  // the duration is checked whatever its bit says
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Duration: Please set unit properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("Duration: Please set Value properly."));
}

TEST(FreqModulation, CheckReportsItemsThenTheirFaultsThenName)
{
    FreqModulation f;
    try {
        f.Check();
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("FreqModulation: Please set FreqModulationItem properly."));
    }
    auto logger = attachLogger(f);
    f.Check(true);
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("FreqModulation: Please set name properly."));

    logger->entries.clear();
    f.SetFreqModulationItem({segment(9000, -1)});
    f.Check(true);
    ASSERT_EQ(logger->entries.size(), 3);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Duration: Please set unit properly."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("Duration: Please set Value properly."));
    EXPECT_EQ(logger->entries[2].message, QStringLiteral("FreqModulation: Please set name properly."));
}

TEST(FreqModulation, NullNameIsRefusedBySetterWithValidationOn)
{
    FreqModulation f;
    f.SetValidate(true);
    try {
        f.Setname(QString());
        FAIL() << "no exception";
    } catch (const OutOfRangeException& e) {
        EXPECT_EQ(e.GetMessage(), QStringLiteral("FreqModulation: Please set name properly (origin: Setter)."));
    }
    EXPECT_FALSE(f.IsnameSet());
}

TEST(FreqModulation, AppendRefusesOrWarnsByTheValidateFlag)
{
    FreqModulation strict;
    strict.SetValidate(true);
    try {
        strict.AppendFreqModulationItem(segment(9000, -1));
        FAIL() << "no exception";
    } catch (const IncompleteDefinitionException& e) {
        EXPECT_EQ(e.GetMessage(),
                  QStringLiteral(
                      "FreqModulation: Tried to append not completely defined or invalid item FreqModulationItem."));
    }
    EXPECT_FALSE(strict.IsFreqModulationItemSet());
    EXPECT_TRUE(strict.GetFreqModulationItem().isEmpty());

    FreqModulation tolerant;
    auto logger = attachLogger(tolerant);
    tolerant.AppendFreqModulationItem(segment(9000, -1));
    EXPECT_EQ(tolerant.GetFreqModulationItem().size(), 1);
    EXPECT_TRUE(tolerant.IsFreqModulationItemSet());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral(
                  "FreqModulation: Tried to append not completely defined or invalid item FreqModulationItem."));
}

TEST(FreqModulation, BitSetOnAnEmptyVectorPassesCheckButWritesNothing)
{
    FreqModulation f;
    f.Setname(QStringLiteral("F"));
    f.GetFreqModulationItem();
    EXPECT_TRUE(f.IsFreqModulationItemSet());
    EXPECT_NO_THROW(f.Check());
    EXPECT_FALSE(f.HasData());
    f.SetValidate(true);
    EXPECT_TRUE(tagged(f, 1).isEmpty());
}

TEST(FreqModulation, XmlWritesNameFirstAndSegmentsInOrder)
{
    const FreqModulation f = law("F", {segment(9000, 100), segment(-1, 12.5)});
    EXPECT_EQ(f.GetXmlString(), document(QStringLiteral("<FreqModulation name=\"F\">\n"
                                                        "  <FreqModulationItem>\n"
                                                        "    <StartFrequency unit=\"Hz\">9000.00</StartFrequency>\n"
                                                        "    <Duration unit=\"ns\">100.00</Duration>\n"
                                                        "  </FreqModulationItem>\n"
                                                        "  <FreqModulationItem>\n"
                                                        "    <Duration unit=\"ns\">12.50</Duration>\n"
                                                        "  </FreqModulationItem>\n"
                                                        "</FreqModulation>")));
    EXPECT_EQ(FreqModulation().GetXmlString(), document(QStringLiteral("<FreqModulation name=\"\"/>")));
}

TEST(FreqModulation, NameIsAcceptedAsElement)
{
    FreqModulation f;
    ASSERT_TRUE(f.SetXmlString(QStringLiteral("<FreqModulation><name>F</name><FreqModulationItem>"
                                              "<Duration unit=\"ns\">100</Duration></FreqModulationItem>"
                                              "</FreqModulation>"),
                               false));
    EXPECT_EQ(f, law("F", {segment(-1, 100)}));
}

TEST(FreqModulation, SegmentWithoutDurationIsRefusedWhileReadingWithValidationOn)
{
    FreqModulation f;
    f.SetValidate(true);
    try {
        readXml(f, SegmentWithoutDuration);
        FAIL() << "no exception";
    } catch (const IncompleteDefinitionException& e) {
        EXPECT_EQ(e.GetMessage(),
                  QStringLiteral(
                      "FreqModulation: Tried to append not completely defined or invalid item FreqModulationItem."));
    }
    EXPECT_FALSE(f.IsFreqModulationItemSet());
    EXPECT_TRUE(f.GetFreqModulationItem().isEmpty());
}

TEST(FreqModulation, SegmentWithoutDurationIsReportedOnEachXmlWriteOnly)
{
    FreqModulation f;
    readXml(f, SegmentWithoutDuration);
    ASSERT_EQ(f.GetFreqModulationItem().size(), 1);
    auto logger = attachLogger(f);
    const QString expected = document(QStringLiteral("<FreqModulation name=\"F\">\n"
                                                     "  <FreqModulationItem>\n"
                                                     "    <StartFrequency unit=\"Hz\">9000.00</StartFrequency>\n"
                                                     "  </FreqModulationItem>\n"
                                                     "</FreqModulation>"));
    for (int round = 0; round < 2; ++round) {
        logger->entries.clear();
        EXPECT_EQ(f.GetXmlString(), expected);
        ASSERT_EQ(logger->entries.size(), 2);
        EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
        EXPECT_EQ(logger->entries[0].message,
                  QStringLiteral("Parameters for FreqModulationItem are not set properly in 'FreqModulation'."));
        EXPECT_EQ(logger->entries[1].level, RECORDKIT::WARNING);
        EXPECT_EQ(logger->entries[1].message,
                  QStringLiteral("Parameters for Duration are not set properly in 'FreqModulationItem'."));
    }
    logger->entries.clear();
    EXPECT_FALSE(tagged(f, 1).isEmpty());
    EXPECT_TRUE(logger->entries.isEmpty());
}

TEST(FreqModulation, TaggedLayoutPutsTheNameAheadOfTheSegments)
{
    const QByteArray records = hex("cb4cf645 00000005 00000001 46"
                                   "e3392708 00000030 00000001 00000028"
                                   "a7ddc91f 00000020 a5b3acfc 00000006 00000002 6e73"
                                   "8aff57b3 0000000a 00000006 3130302e3030");
    EXPECT_EQ(tagged(law("F", {segment(-1, 100)}), 0x2bfc9a92), hex("2bfc9a92 00000045") + records);
    FreqModulation back;
    readTagged(back, records, 0x45);
    EXPECT_EQ(back, law("F", {segment(-1, 100)}));
}

TEST(FreqModulation, RawLayoutPutsTheNameBehindTheSegments)
{
    const QByteArray bytes = hex("03 00000001 04 03 00 4059000000000000 00000002 0046");
    EXPECT_EQ(raw(law("F", {segment(-1, 100)})), bytes);
    FreqModulation back;
    readRaw(back, bytes);
    EXPECT_EQ(back, law("F", {segment(-1, 100)}));
}

TEST(FreqModulation, RawReaderTakesTheDurationWhateverItsBit)
{
    // Both segments have the bit of Duration clear, yet each carries one.
    FreqModulation f;
    readRaw(f, hex("03 00000002"
                   "00 03 00 4059000000000000"
                   "01 03 00 40c1940000000000 03 00 4069000000000000"
                   "00000002 0046"));
    EXPECT_EQ(f.Getname(), QStringLiteral("F"));
    ASSERT_EQ(f.GetFreqModulationItem().size(), 2);
    const FreqModulationItem& first = f.GetFreqModulationItem().at(0);
    const FreqModulationItem& second = f.GetFreqModulationItem().at(1);
    EXPECT_FALSE(first.IsDurationSet());
    EXPECT_EQ(first.GetDuration().GetValue(), 100.0);
    EXPECT_TRUE(first.HasData());
    EXPECT_EQ(second.GetStartFrequency().GetValue(), 9000.0);
    EXPECT_EQ(second.GetDuration().GetValue(), 200.0);
}
