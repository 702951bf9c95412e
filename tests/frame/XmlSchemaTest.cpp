// The XML Schema made from the field tables, against the committed document
// (write it again after a meant change: dossier schema --xsd > tests/golden/schema.xsd).
// That what the writer makes validates against it, and that documents with
// one fault do not, is for the xsd tests, with xmllint.

#include <gtest/gtest.h>

#include <QFile>

#include <EmitterDossierDoc/frame/XmlSchema.h>

TEST(XmlSchema, IsTheCommittedDocument)
{
    QFile golden(QStringLiteral(EDD_GOLDEN_DIR "/schema.xsd"));
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
    EXPECT_TRUE(EMITTERDOSSIERDOC::Frame::XmlSchema() == golden.readAll());
}
