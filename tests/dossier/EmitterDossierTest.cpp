// The root record: its version gate, the report of unknown elements, the
// filters, position and bearing, and a complete dossier in every form.

#include <gtest/gtest.h>

#include <functional>

#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

QString prologue() { return QStringLiteral("<?xml version=\"1.0\"?>\n"); }

// A record that is complete with the least: a name and the parameter block's comment.
EmitterDossier minimalDossier(const char* name)
{
    EmitterDossier d;
    d.SetName(QString::fromUtf8(name));
    d.GetELINTParameter().SetComments(QStringLiteral("c"));
    return d;
}

}  // namespace

// --- Version ----------------------------------------------------------------------------

TEST(EmitterDossier, FreshRecordCarriesTheSchemaVersion)
{
    const EmitterDossier d;
    EXPECT_EQ(d.GetVersion(), QStringLiteral("1.8"));
    EXPECT_TRUE(d.GetInitialVersionLoaded().isNull());
    EXPECT_FALSE(d.HasData());
    EXPECT_FALSE(d.AnyData());
}

TEST(EmitterDossier, XmlStartsWithTheVersionAttributeAndTheName)
{
    EmitterDossier d = minimalDossier("Lantern");
    d.SetValidate(true);
    EXPECT_EQ(d.GetXmlString(), prologue() + QStringLiteral("<EmitterDossier Version=\"1.8\">\n"
                                                            "  <Name>Lantern</Name>\n"
                                                            "  <ELINTParameter>\n"
                                                            "    <Comments>c</Comments>\n"
                                                            "  </ELINTParameter>\n"
                                                            "</EmitterDossier>\n"));
}

TEST(EmitterDossier, SameVersionReadsOverTheRecordOlderClearsItFirst)
{
    const QString update = QStringLiteral("<EmitterDossier Version=\"%1\"><Name>New</Name></EmitterDossier>");
    for (const QString& version : {QStringLiteral("1.8"), QStringLiteral("1.80"), QStringLiteral("2.0")}) {
        EmitterDossier d = minimalDossier("Old");
        d.SetEmitterID(QStringLiteral("E-1"));
        ASSERT_TRUE(d.SetXmlString(update.arg(version), false));
        EXPECT_EQ(d.GetName(), QStringLiteral("New"));
        EXPECT_EQ(d.GetEmitterID(), QStringLiteral("E-1")) << version.toStdString();
        EXPECT_EQ(d.GetInitialVersionLoaded(), version);
    }
    // 1.10 is 1.1 as a number, older than 1.8; text that is no number counts as 0.
    for (const QString& version : {QStringLiteral("1.7"), QStringLiteral("1.10"), QStringLiteral("draft")}) {
        EmitterDossier d = minimalDossier("Old");
        d.SetEmitterID(QStringLiteral("E-1"));
        ASSERT_TRUE(d.SetXmlString(update.arg(version), false));
        EXPECT_EQ(d.GetName(), QStringLiteral("New"));
        EXPECT_FALSE(d.IsEmitterIDSet()) << version.toStdString();
        EXPECT_EQ(d.GetVersion(), QStringLiteral("1.8"));
    }
    // No attribute at all is the oldest version.
    EmitterDossier d = minimalDossier("Old");
    d.SetEmitterID(QStringLiteral("E-1"));
    ASSERT_TRUE(d.SetXmlString(QStringLiteral("<EmitterDossier><Name>New</Name></EmitterDossier>"), false));
    EXPECT_FALSE(d.IsEmitterIDSet());
    EXPECT_TRUE(d.GetInitialVersionLoaded().isEmpty());
}

TEST(EmitterDossier, OlderFileIsSavedWithTheLibrarysVersion)
{
    EmitterDossier d;
    ASSERT_TRUE(d.SetXmlString(QStringLiteral("<EmitterDossier Version=\"1.7\"><Name>N</Name>"
                                              "<ELINTParameter><Comments/></ELINTParameter></EmitterDossier>"),
                               false));
    EXPECT_EQ(d.GetInitialVersionLoaded(), QStringLiteral("1.7"));
    EXPECT_EQ(d.GetVersion(), QStringLiteral("1.8"));
    EXPECT_TRUE(d.GetXmlString().contains(QStringLiteral("<EmitterDossier Version=\"1.8\">")));
    // Neither Reset nor comparison looks at the version read.
    d.Reset();
    EXPECT_EQ(d.GetInitialVersionLoaded(), QStringLiteral("1.7"));
    EXPECT_EQ(d, EmitterDossier());
}

TEST(EmitterDossier, UnknownElementInCurrentInputIsReportedAndEntered)
{
    EmitterDossier d;
    auto logger = attachLogger(d);
    ASSERT_TRUE(d.SetXmlString(QStringLiteral("<EmitterDossier Version=\"2.0\">"
                                              "<Extra><Name>Inner</Name><Other>x</Other></Extra>"
                                              "</EmitterDossier>"),
                               false));
    // The inner element that matches a property of the root is taken as one.
    EXPECT_EQ(d.GetName(), QStringLiteral("Inner"));
    ASSERT_EQ(logger->entries.size(), 2);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message, QStringLiteral("Unknown Tag 'Extra' in 'EmitterDossier'."));
    EXPECT_EQ(logger->entries[1].message, QStringLiteral("Unknown Tag 'Other' in 'EmitterDossier'."));

    EmitterDossier strict;
    strict.SetValidate(true);
    auto strictLogger = attachLogger(strict);
    EXPECT_FALSE(
        strict.SetXmlString(QStringLiteral("<EmitterDossier Version=\"1.8\"><Extra/></EmitterDossier>"), false));
    ASSERT_FALSE(strictLogger->entries.isEmpty());
    EXPECT_EQ(strictLogger->entries[0].level, RECORDKIT::ERROR);
    EXPECT_EQ(strictLogger->entries[0].message, QStringLiteral("Unknown Tag 'Extra' in 'EmitterDossier'."));
}

TEST(EmitterDossier, UnknownElementInOlderInputIsSkippedSilently)
{
    EmitterDossier d;
    auto logger = attachLogger(d);
    ASSERT_TRUE(d.SetXmlString(QStringLiteral("<EmitterDossier Version=\"1.7\">"
                                              "<Extra><Name>Inner</Name></Extra><EmitterID>E</EmitterID>"
                                              "</EmitterDossier>"),
                               false));
    EXPECT_TRUE(logger->entries.isEmpty());
    EXPECT_FALSE(d.IsNameSet());
    EXPECT_EQ(d.GetEmitterID(), QStringLiteral("E"));
}

TEST(EmitterDossier, TaggedFormPutsTheVersionFirstAsUtf16)
{
    const EmitterDossier d = minimalDossier("N");
    Bytes expected;
    expected.word(0x8755448b).word(18 + 13 + 21);
    expected.word(0xccfedfa1).word(10) << QStringLiteral("1.8");
    expected.word(0x8c9fbca8).word(5).text("N");
    expected.word(0x4bed8606).word(13).word(0x8f63d01c).word(5).text("c");
    EXPECT_EQ(tagged(d, EmitterDossier::id), expected.bytes());
}

TEST(EmitterDossier, TaggedVersionGate)
{
    EmitterDossier older = minimalDossier("New");
    QByteArray bytes = older.GetBinaryRepresentationAsQByteArray();
    // Patch "1.8" to "1.7" in the version record: its last code unit.
    const int at = bytes.indexOf(QByteArray::fromHex("0031002e0038"));
    ASSERT_GT(at, 0);
    bytes[at + 5] = '7';

    EmitterDossier d = minimalDossier("Old");
    d.SetEmitterID(QStringLiteral("E-1"));
    ASSERT_TRUE(d.SetBinaryRepresentation(bytes));
    EXPECT_EQ(d.GetInitialVersionLoaded(), QStringLiteral("1.7"));
    EXPECT_FALSE(d.IsEmitterIDSet());
    EXPECT_EQ(d.GetName(), QStringLiteral("New"));
}

TEST(EmitterDossier, RawFormHasThreeBitmapBytesThenTheVersion)
{
    EmitterDossier d = minimalDossier("N");
    Bytes expected;
    expected << quint8(0x01) << quint8(0x40) << quint8(0x00) << QStringLiteral("1.8") << QStringLiteral("N");
    expected << quint8(0x01) << quint8(0x00) << QStringLiteral("c");  // the parameter block, bit 14
    EXPECT_EQ(raw(d), expected.bytes());

    EmitterDossier back;
    readRaw(back, raw(d));
    EXPECT_EQ(back, d);
    EXPECT_EQ(back.GetInitialVersionLoaded(), QStringLiteral("1.8"));
}

// --- Completeness ------------------------------------------------------------------------

TEST(EmitterDossier, CompletenessGoesThroughTheParameterBlock)
{
    EmitterDossier d;
    d.SetName(QStringLiteral(""));
    EXPECT_FALSE(d.HasData());
    EXPECT_TRUE(d.AnyData());
    d.SetValidate(true);
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { d.Check(); }),
              QStringLiteral("ELINTParameter: Please set Comments properly."));
    EXPECT_FALSE(d.IsELINTParameterSet());

    // With the flag off the block's absence is logged and nothing written for it.
    d.SetValidate(false);
    auto logger = attachLogger(d);
    const QString xml = d.GetXmlString();
    EXPECT_FALSE(xml.contains(QStringLiteral("ELINTParameter")));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].level, RECORDKIT::WARNING);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Parameters for ELINTParameter are not set properly in 'EmitterDossier'."));

    // An empty name is a name; a null one is not.
    d.GetELINTParameter().SetComments(QStringLiteral("c"));
    EXPECT_TRUE(d.HasData());
    d.Check();
    EmitterDossier unnamed;
    unnamed.GetELINTParameter().SetComments(QStringLiteral("c"));
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { unnamed.Check(); }),
              QStringLiteral("EmitterDossier: Please set Name properly."));
}

TEST(EmitterDossier, ValidationOnWritesNothingForAnIncompleteRecord)
{
    EmitterDossier d;
    d.SetName(QStringLiteral("N"));
    d.SetELINTParameter(ELINTParameter());
    d.SetValidate(true);
    EXPECT_THROW(d.GetXmlString(), OutOfRangeException);
    EXPECT_THROW(tagged(d, EmitterDossier::id), OutOfRangeException);
}

// --- Filters ---------------------------------------------------------------------------------

TEST(EmitterDossier, EmptyFilterVectorHasNoTaggedRecordAndNoRawCount)
{
    EmitterDossier d = minimalDossier("N");
    d.GetFilter();
    EXPECT_TRUE(d.IsFilterSet());
    const EmitterDossier plain = minimalDossier("N");
    EXPECT_EQ(tagged(d, EmitterDossier::id), tagged(plain, EmitterDossier::id));

    // Raw: under its bit, the count comes with the items.
    QByteArray bytes = raw(d);
    EXPECT_EQ(quint8(bytes.at(2)), 0x01);
    EXPECT_TRUE(bytes.endsWith(QByteArray::fromHex("00000000")));
    EXPECT_FALSE(raw(plain).endsWith(QByteArray::fromHex("00000000")));
}

TEST(EmitterDossier, FiltersStandOneByOneAndReadingAppends)
{
    EmitterDossier d = minimalDossier("N");
    Filter f;
    f.SetName(QStringLiteral("F"));
    f.SetComments(QStringLiteral("C"));
    d.AppendFilter(f);
    const QString xml = d.GetXmlString();
    EXPECT_TRUE(xml.contains(QStringLiteral("  </ELINTParameter>\n"
                                            "  <Filter>\n"
                                            "    <Name>F</Name>\n"
                                            "    <Comments>C</Comments>\n"
                                            "  </Filter>\n"
                                            "</EmitterDossier>\n")));
    ASSERT_TRUE(d.SetXmlString(xml, false));
    EXPECT_EQ(d.GetFilter().size(), 2);

    QByteArray bytes = minimalDossier("N").GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(d.SetBinaryRepresentation(bytes));
    EXPECT_EQ(d.GetFilter().size(), 2);  // a record without filters adds none

    d.SetValidate(true);
    Filter incomplete;
    incomplete.SetName(QStringLiteral("no comments"));
    EXPECT_EQ(raisedMessage<IncompleteDefinitionException>([&] { d.AppendFilter(incomplete); }),
              QStringLiteral("EmitterDossier: Tried to append not completely defined or invalid item Filter."));
    EXPECT_EQ(d.GetFilter().size(), 2);
}

// --- Position and bearing ------------------------------------------------------------------------

TEST(DetectionPosition, LatitudeAndLongitudeAreBothNeeded)
{
    DetectionPosition p;
    p.SetLatitude(unitScalar<Latitude>(54.5));
    EXPECT_FALSE(p.HasData());
    EXPECT_TRUE(p.AnyData());
    auto logger = attachLogger(p);
    EXPECT_EQ(p.GetXmlString(), prologue() + QStringLiteral("<DetectionPosition>\n"
                                                            "  <Latitude unit=\"deg\">54.50</Latitude>\n"
                                                            "</DetectionPosition>\n"));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Parameters for Longitude are not set properly in 'DetectionPosition'."));
    // Check walks both always.
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { p.Check(); }),
              QStringLiteral("Longitude: Please set unit properly."));

    p.SetLongitude(unitScalar<Longitude>(10));
    p.SetAltitude(Altitude());
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { p.Check(); }),
              QStringLiteral("Altitude: Please set unit properly."));
}

TEST(DetectionPosition, RawReaderTakesTheMandatoryChildrenWithoutTheirBits)
{
    DetectionPosition p;
    p.SetLatitude(unitScalar<Latitude>(1.5));
    p.SetLongitude(unitScalar<Longitude>(2.5));
    p.SetName(QStringLiteral("S"));
    Bytes expected;
    expected << quint8(0x0b) << quint8(0x03) << qint8(0) << 1.5 << quint8(0x03) << qint8(0) << 2.5
             << QStringLiteral("S");
    EXPECT_EQ(raw(p), expected.bytes());
    DetectionPosition back;
    readRaw(back, raw(p));
    EXPECT_EQ(back, p);
}

TEST(Bearing, UnitAloneIsDataAndAnglesAloneAreNot)
{
    Bearing b;
    b.Setunit(Bearing::unit(0));
    b.SetValidate(true);
    EXPECT_EQ(b.GetXmlString(), prologue() + QStringLiteral("<Bearing unit=\"deg\"/>\n"));

    Bearing angles;
    angles.SetAzimuth(90);
    angles.SetElevationTol(0.5);
    EXPECT_FALSE(angles.HasData());
    EXPECT_TRUE(angles.AnyData());
    EXPECT_EQ(angles.GetXmlString(), prologue() + QStringLiteral("<Bearing unit=\"\">\n"
                                                                 "  <Azimuth>90.00</Azimuth>\n"
                                                                 "  <ElevationTol>0.50</ElevationTol>\n"
                                                                 "</Bearing>\n"));
    EXPECT_EQ(raisedMessage<OutOfRangeException>([&] { angles.Check(); }),
              QStringLiteral("Bearing: Please set unit properly."));

    // The unit may come as an element too; the raw form has it last.
    Bearing read;
    ASSERT_TRUE(read.SetXmlString(QStringLiteral("<Bearing><unit>deg</unit><Azimuth>1</Azimuth></Bearing>"), false));
    EXPECT_TRUE(read.IsunitSet());
    EXPECT_EQ(raw(read), (Bytes() << quint8(0x11) << 1.0 << qint8(0)).bytes());
}

// --- The complete dossier ------------------------------------------------------------------------

TEST(CompleteDossier, EveryFormGivesTheRecordBack)
{
    const EmitterDossier original = filledDossier();
    original.SetValidate(true);
    original.Check();

    EmitterDossier fromXml;
    fromXml.SetValidate(true);
    ASSERT_TRUE(fromXml.SetXmlString(original.GetXmlString(), true));
    EXPECT_EQ(fromXml, original);
    EXPECT_EQ(fromXml.GetXmlString(), original.GetXmlString());

    QByteArray taggedBytes = original.GetBinaryRepresentationAsQByteArray();
    EmitterDossier fromTagged;
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(taggedBytes));
    EXPECT_EQ(fromTagged, original);

    QByteArray compressed = original.GetCompressedBinaryRepresentationAsQByteArray(9);
    EXPECT_LT(compressed.size(), taggedBytes.size());
    EmitterDossier fromCompressed;
    ASSERT_TRUE(fromCompressed.SetBinaryRepresentation(compressed));
    EXPECT_EQ(fromCompressed, original);

    EmitterDossier fromRaw;
    readRaw(fromRaw, raw(original));
    EXPECT_EQ(fromRaw, original);
    EXPECT_EQ(fromRaw.GetDetectionTime(), QDateTime(QDate(2026, 11, 2), QTime(14, 5, 33, 250), Qt::UTC));
}

TEST(CompleteDossier, SavedAndLoadedThroughAFile)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("dossier.xml"));
    const EmitterDossier original = filledDossier();
    ASSERT_TRUE(original.SaveXml(path));
    EmitterDossier loaded;
    ASSERT_TRUE(loaded.LoadXml(path));
    EXPECT_EQ(loaded, original);
    EXPECT_EQ(loaded.GetInitialVersionLoaded(), QStringLiteral("1.8"));

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_TRUE(text.contains("<DetectionTime>2026-11-02T14:05:33,250Z</DetectionTime>"));
    EXPECT_TRUE(text.contains(u8"<Level unit=\"dB\u00b5V\" inverse=\"true\">"));
}

// The bundled sample: a complete dossier in which every schema class stands.
TEST(CompleteDossier, BundledSampleHoldsEveryClassAndPassesCheck)
{
    EmitterDossier d;
    d.SetValidate(true);
    auto logger = attachLogger(d);
    ASSERT_TRUE(d.LoadXml(QStringLiteral(EDD_EXAMPLES_DIR "/dossier.xml")));
    d.Check();
    EXPECT_TRUE(logger->entries.isEmpty());

    QFile file(QStringLiteral(EDD_EXAMPLES_DIR "/dossier.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    QSet<QString> elements;
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement)
            elements.insert(reader.name().toString());
    for (const Frame::ClassEntry& entry : Frame::AllClasses())
        EXPECT_TRUE(elements.contains(entry.info().objectName())) << entry.info().name;
}
