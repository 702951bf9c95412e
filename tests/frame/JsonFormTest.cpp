// JSON documents of every class, their recognition, and hostile input. What
// single documents read and write, and the faults they give, are cases of
// cases/json.txt; the samples go through every form in the tool's tests.

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QSet>

#include <EmitterDossierDoc/frame/ClassRegistry.h>
#include <EmitterDossierDoc/frame/Json.h>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;
using Frame::JsonLayout;

namespace {

QByteArray compact(const Frame::Record& record) { return Frame::ToJson(record, JsonLayout::Compact); }

}  // namespace

TEST(JsonRoundTrip, EveryObjectOfAFilledDossierComesBackEqualAsItsOwnDocument)
{
    const EmitterDossier dossier = filledDossier();
    QSet<qint64> classes;
    Frame::ForEachChecked(dossier, [&](const QString& path, const Frame::Record& object) {
        const Frame::ClassEntry* entry = Frame::FindClass(Frame::ClassId(object.GetClassInfo()));
        ASSERT_TRUE(entry) << path.toStdString();
        std::unique_ptr<Frame::Record> back(entry->create());
        QString error;
        ASSERT_TRUE(Frame::FromJson(*back, Frame::ToJson(object), &error))
            << path.toStdString() << ": " << error.toStdString();
        EXPECT_TRUE(back->IsEqualTo(object)) << path.toStdString();
        classes.insert(Frame::ClassId(object.GetClassInfo()));
    });
    EXPECT_EQ(classes.size(), Frame::AllClasses().size());
}

// --- Recognising a document ---------------------------------------------------------

TEST(JsonDocument, IsRecognisedByItsFirstCharacterAndNamesItsClass)
{
    EXPECT_TRUE(Frame::LooksLikeJson("\xEF\xBB\xBF \r\n\t{"));
    EXPECT_FALSE(Frame::LooksLikeJson(" <EmitterDossier/>"));
    EXPECT_FALSE(Frame::LooksLikeJson(""));
    EXPECT_EQ(Frame::JsonRootName(R"( {"Alternatives": {}})"), QStringLiteral("Alternatives"));
    QString problem;
    EXPECT_EQ(Frame::JsonRootName("[1]", &problem), QString());
    EXPECT_EQ(problem, QStringLiteral("JSON error at $ (line 1, column 1): expected an object, found an array"));
}

// A child that was given another flag through its own handle takes its parent's
// for the read, as the other forms hand it down.
TEST(JsonDocument, TheReadHandsTheFlagDownToTheChildrenItReadsInto)
{
    PulseItem item;
    item.SetValidate(true);
    item.GetNormLevel().SetValidate(false);
    ASSERT_FALSE(item.GetNormLevel().GetValidate());
    QString error;
    EXPECT_FALSE(Frame::FromJson(item, R"({"PulseItem":{"NormLevel":{"unit":null}}})", &error));
    EXPECT_EQ(error, QStringLiteral("enum is not valid (classname=NormLevel,membername=m_unit)"));
}

// --- Hostile input -------------------------------------------------------------------

TEST(JsonHostile, EveryCutIsRefusedAndEveryFlippedBitReadsOrIsRefused)
{
    Alternatives sample;
    QFile file(QStringLiteral(EDD_EXAMPLES_DIR "/alternatives.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ASSERT_TRUE(sample.SetXmlBytes(file.readAll()));
    const QByteArray json = compact(sample);
    for (int size = 0; size < json.size(); ++size) {
        Alternatives cut;
        EXPECT_FALSE(Frame::FromJson(cut, json.left(size))) << size;
    }
    int refused = 0;
    for (int bit = 0; bit < 8 * json.size(); ++bit) {
        QByteArray flipped = json;
        flipped[bit / 8] = char(flipped[bit / 8] ^ (1 << (bit % 8)));
        Alternatives read;
        if (!Frame::FromJson(read, flipped)) {
            ++refused;
            continue;
        }
        // Whatever is read writes a document that reads back to the same record.
        Alternatives back;
        ASSERT_TRUE(Frame::FromJson(back, Frame::ToJson(read))) << bit;
        EXPECT_EQ(compact(back), compact(read)) << bit;
    }
    EXPECT_GT(refused, 4 * json.size());
}
