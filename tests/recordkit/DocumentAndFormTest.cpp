// The base layer's functions that a tool shares with the records: the XML
// document that SaveXml and GetXmlString write, and the test for the
// compressed form that the reader applies.

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

// On a device it is what SaveXml writes; on a text, what GetXmlString gives,
// without an encoding of its own.
TEST(XmlDocument, IsWhatSaveXmlAndGetXmlStringWrite)
{
    const EmitterDossier d = filledDossier(2, 1);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("d.xml"));
    ASSERT_TRUE(d.SaveXml(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter toDevice(&buffer);
    RECORDKIT::WriteXmlDocument(d, toDevice);
    EXPECT_EQ(bytes, file.readAll());
    EXPECT_TRUE(bytes.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<EmitterDossier"));

    QString text;
    QXmlStreamWriter toText(&text);
    RECORDKIT::WriteXmlDocument(d, toText);
    EXPECT_EQ(text, d.GetXmlString());
    EXPECT_TRUE(text.startsWith(QStringLiteral("<?xml version=\"1.0\"?>\n<EmitterDossier")));
}

TEST(CompressedForm, TheTestAgreesWithTheReader)
{
    const EmitterDossier d = filledDossier(2, 1);

    // A real compressed form: recognised, and read.
    QByteArray packed = d.GetCompressedBinaryRepresentationAsQByteArray(9);
    EXPECT_TRUE(RECORDKIT::LooksCompressed(packed));
    EmitterDossier fromPacked;
    EXPECT_TRUE(fromPacked.SetBinaryRepresentation(packed));

    // Too short for a size word and a zlib header: not recognised, and the
    // reader says it is neither form.
    QByteArray cut = packed.left(5);
    EXPECT_FALSE(RECORDKIT::LooksCompressed(cut));
    EmitterDossier fromCut;
    const auto cutLog = attachLogger(fromCut);
    EXPECT_FALSE(fromCut.SetBinaryRepresentation(cut));
    ASSERT_FALSE(cutLog->entries.isEmpty());
    EXPECT_TRUE(cutLog->entries.last().message.contains(QStringLiteral("nor its compressed form")))
        << cutLog->entries.last().message.toStdString();

    // The head of a compressed form with its zlib stream cut: recognised, and
    // the reader tries to unpack it.
    QByteArray headOnly = packed.left(6);
    EXPECT_TRUE(RECORDKIT::LooksCompressed(headOnly));
    EmitterDossier fromHead;
    const auto headLog = attachLogger(fromHead);
    EXPECT_FALSE(fromHead.SetBinaryRepresentation(headOnly));
    ASSERT_FALSE(headLog->entries.isEmpty());
    EXPECT_TRUE(headLog->entries.last().message.contains(QStringLiteral("the compressed form")))
        << headLog->entries.last().message.toStdString();

    // The plain tagged form is not compressed: the reader reads it as a block.
    QByteArray plain = d.GetBinaryRepresentationAsQByteArray();
    EXPECT_FALSE(RECORDKIT::LooksCompressed(plain));
    EmitterDossier fromPlain;
    EXPECT_TRUE(fromPlain.SetBinaryRepresentation(plain));
}
