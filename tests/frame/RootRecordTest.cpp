// The root record: what it keeps of the version it read, completeness through
// a mandatory child, lists of children, and files.

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

// A record that is complete with the least: a name and the parameter block's comment.
EmitterDossier minimalDossier(const char* name)
{
    EmitterDossier d;
    d.SetName(QString::fromUtf8(name));
    d.GetELINTParameter().SetComments(QStringLiteral("c"));
    return d;
}

}  // namespace

// Which versions read over the record is in cases/root.txt; here, what the
// record keeps of the version it read, and the gate of the tagged form.
TEST(VersionGate, TheVersionReadIsKeptApartAndTheTaggedFormHasTheGateToo)
{
    const EmitterDossier fresh;
    EXPECT_EQ(fresh.GetVersion(), QStringLiteral("1.8"));
    EXPECT_TRUE(fresh.GetInitialVersionLoaded().isNull());
    for (const char* attribute : {" Version=\"1.80\"", " Version=\"draft\"", ""}) {
        EmitterDossier d;
        ASSERT_TRUE(d.SetXmlString(QStringLiteral("<EmitterDossier%1/>").arg(QLatin1String(attribute)), false));
        EXPECT_EQ(d.GetInitialVersionLoaded(), QString::fromLatin1(attribute).section(QLatin1Char('"'), 1, 1));
        EXPECT_EQ(d.GetVersion(), QStringLiteral("1.8"));  // and so it is written
    }
    // Neither Reset nor comparison looks at the version read.
    EmitterDossier older;
    ASSERT_TRUE(
        older.SetXmlString(QStringLiteral("<EmitterDossier Version=\"1.7\"><Name>N</Name></EmitterDossier>"), false));
    older.Reset();
    EXPECT_EQ(older.GetInitialVersionLoaded(), QStringLiteral("1.7"));
    EXPECT_EQ(older, EmitterDossier());

    // The tagged form: patch "1.8" to "1.7" in the version record, its last code unit.
    QByteArray bytes = minimalDossier("New").GetBinaryRepresentationAsQByteArray();
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

// With the flag on, the writers refuse a root whose mandatory child is unset
// (what Check and the writers report is in cases/).
TEST(RootRecord, CompletenessGoesThroughAMandatoryChild)
{
    EmitterDossier d;
    d.SetName(QStringLiteral(""));  // an empty name is a name
    EXPECT_FALSE(d.HasData());
    EXPECT_TRUE(d.AnyData());
    d.SetValidate(true);
    EXPECT_THROW(d.GetXmlString(), OutOfRangeException);
    EXPECT_THROW(tagged(d, EmitterDossier::id), OutOfRangeException);
    EXPECT_FALSE(d.IsELINTParameterSet());
}

TEST(RootRecord, ListsOfChildrenStandOneByOneAndReadingAppends)
{
    EmitterDossier d = minimalDossier("N");
    d.GetFilter();  // an empty set list: no tagged record, and in raw its bit and a count of 0
    EXPECT_EQ(tagged(d, EmitterDossier::id), tagged(minimalDossier("N"), EmitterDossier::id));
    EXPECT_TRUE(raw(d).endsWith(QByteArray::fromHex("00000000")));
    EXPECT_FALSE(raw(minimalDossier("N")).endsWith(QByteArray::fromHex("00000000")));
    Filter f;
    f.SetName(QStringLiteral("F"));
    f.SetComments(QStringLiteral("C"));
    d.AppendFilter(f);
    ASSERT_TRUE(d.SetXmlString(d.GetXmlString(), false));
    QByteArray plain = minimalDossier("N").GetBinaryRepresentationAsQByteArray();
    ASSERT_TRUE(d.SetBinaryRepresentation(plain));
    EXPECT_EQ(d.GetFilter().size(), 2);  // the XML read appended; a record without filters adds none
}

TEST(RootRecord, FilesSaveLoadAndAFailedSaveLeavesTheOldFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("alternatives.xml"));
    Alternatives list;
    list.AppendAlternative(makeAlternative("Fan Song", "DB-0042", 0.75));
    ASSERT_TRUE(list.SaveXml(path));
    Alternatives back;
    ASSERT_TRUE(back.LoadXml(path));
    EXPECT_EQ(back, list);
    QFile file(path);
    Alternatives viaDevice;
    ASSERT_TRUE(viaDevice.LoadXml(&file));
    EXPECT_EQ(viaDevice, list);
    QFile binary(dir.filePath(QStringLiteral("alternatives.bin")));
    ASSERT_TRUE(binary.open(QIODevice::WriteOnly));
    binary.write(list.GetCompressedBinaryRepresentationAsQByteArray(6));
    binary.close();
    Alternatives viaBinary;
    ASSERT_TRUE(viaBinary.LoadBinary(&binary));
    EXPECT_EQ(viaBinary, list);

    Alternatives bad;
    bad.SetValidate(true);
    auto logger = attachLogger(bad);
    bad.GetAlternative().append(Alternative());
    EXPECT_FALSE(bad.SaveXml(path));
    EXPECT_FALSE(logger->entries.isEmpty());
    Alternatives kept;
    ASSERT_TRUE(kept.LoadXml(path));
    EXPECT_EQ(kept, list);
    EXPECT_FALSE(bad.LoadXml(dir.filePath(QStringLiteral("missing.xml"))));
}
