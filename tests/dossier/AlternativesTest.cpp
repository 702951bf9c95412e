// The identification alternatives: the smallest list and its item.

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

TEST(Alternatives, AFreshItemAndAnEmptyVectorAreValid)
{
    EXPECT_TRUE(Alternatives().IsValidAlternative(Alternative()));
    EXPECT_TRUE(Alternatives().IsValidAlternative(QVector<Alternative>()));
}

TEST(Alternatives, HasDataOfTheItemNeedsAllThree)
{
    Alternative a;
    a.SetName(QStringLiteral("A"));
    a.SetDatabaseID(QStringLiteral(""));
    EXPECT_FALSE(a.HasData());
    EXPECT_TRUE(a.AnyData());
    a.SetConfidence(0);
    EXPECT_TRUE(a.HasData());
}

TEST(Alternatives, XmlOfAFilledList)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("Fan Song", "DB-0042", 0.875));
    EXPECT_EQ(list.GetXmlString(), QStringLiteral("<?xml version=\"1.0\"?>\n"
                                                  "<Alternatives>\n"
                                                  "  <Alternative>\n"
                                                  "    <Name>Fan Song</Name>\n"
                                                  "    <DatabaseID>DB-0042</DatabaseID>\n"
                                                  "    <Confidence>0.88</Confidence>\n"
                                                  "  </Alternative>\n"
                                                  "</Alternatives>\n"));
}

TEST(Alternatives, AllFormsRoundTrip)
{
    Alternatives list;
    list.AppendAlternative(makeAlternative("Fan Song", "DB-0042", 0.87));
    list.AppendAlternative(makeAlternative(u8"Flap Lid \u00e9", "", 0.25));

    Alternatives fromXml;
    ASSERT_TRUE(fromXml.SetXmlString(list.GetXmlString(), false));
    EXPECT_EQ(fromXml, list);

    Alternatives fromTagged;
    QByteArray tagged = list.GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(fromTagged.SetBinaryRepresentation(tagged));
    EXPECT_EQ(fromTagged, list);

    Alternatives fromRaw;
    readRaw(fromRaw, raw(list));
    EXPECT_EQ(fromRaw, list);
}

TEST(Alternatives, ValidationOnRefusesIncompleteItemsWhileReading)
{
    Alternatives list;
    list.SetValidate(true);
    auto logger = attachLogger(list);
    EXPECT_FALSE(list.SetXmlString(QStringLiteral("<Alternatives><Alternative><Name>A</Name></Alternative>"
                                                  "</Alternatives>"),
                                   false));
    EXPECT_TRUE(list.GetAlternative().isEmpty());
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_EQ(logger->entries[0].message,
              QStringLiteral("Alternatives: Tried to append not completely defined or invalid item Alternative."));
}

TEST(Alternatives, FileSaveAndLoad)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("alternatives.xml"));
    Alternatives list;
    list.AppendAlternative(makeAlternative("Fan Song", "DB-0042", 0.75));
    ASSERT_TRUE(list.SaveXml(path));
    Alternatives back;
    ASSERT_TRUE(back.LoadXml(path));
    EXPECT_EQ(back, list);

    QFile file(path);
    Alternatives viaFile;
    ASSERT_TRUE(viaFile.LoadXml(&file));
    EXPECT_EQ(viaFile, list);

    const QString binaryPath = dir.filePath(QStringLiteral("alternatives.bin"));
    QFile binary(binaryPath);
    ASSERT_TRUE(binary.open(QIODevice::WriteOnly));
    binary.write(list.GetCompressedBinaryRepresentationAsQByteArray(6));
    binary.close();
    Alternatives viaBinary;
    ASSERT_TRUE(viaBinary.LoadBinary(&binary));
    EXPECT_EQ(viaBinary, list);
}

TEST(Alternatives, FailedSaveLeavesTheOldFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("alternatives.xml"));
    Alternatives good;
    good.AppendAlternative(makeAlternative("A", "1", 0.5));
    ASSERT_TRUE(good.SaveXml(path));
    Alternatives bad;
    bad.SetValidate(true);
    auto logger = attachLogger(bad);
    bad.GetAlternative().append(Alternative());
    EXPECT_FALSE(bad.SaveXml(path));
    EXPECT_FALSE(logger->entries.isEmpty());
    Alternatives back;
    ASSERT_TRUE(back.LoadXml(path));
    EXPECT_EQ(back, good);
    EXPECT_FALSE(bad.LoadXml(dir.filePath(QStringLiteral("missing.xml"))));
}
