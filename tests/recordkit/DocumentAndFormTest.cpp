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

// Six bytes, a size word and a zlib header, are the least that is taken for a
// compressed form: the reader then tries to unpack it.
TEST(CompressedForm, TheTestAgreesWithTheReader)
{
    const QByteArray packed = filledDossier(2, 1).GetCompressedBinaryRepresentationAsQByteArray(9);
    EXPECT_FALSE(RECORDKIT::LooksCompressed(packed.left(5)));
    EXPECT_TRUE(RECORDKIT::LooksCompressed(packed.left(6)));
    for (int size : {5, 6}) {
        EmitterDossier d;
        const auto logger = attachLogger(d);
        QByteArray cut = packed.left(size);
        EXPECT_FALSE(d.SetBinaryRepresentation(cut));
        ASSERT_EQ(logger->entries.size(), 1);
        EXPECT_EQ(logger->entries[0].message.contains(QStringLiteral("nor its compressed form")), size == 5)
            << logger->entries[0].message.toStdString();
    }
}
