// The base layer's defences against input made to cost more than its size:
// start tags with too many attributes, compressed forms that unpack to too
// much, and the recognition of each form by its first bytes.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtEndian>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

// One start tag with `count` attributes, on a line of its own.
QString manyAttributes(int count)
{
    QString tag = QStringLiteral("<Alternative");
    for (int i = 0; i < count; ++i)
        tag += QStringLiteral(" a%1=\"%1\"").arg(i);
    return tag + QStringLiteral(
                     "><Name>Late</Name><DatabaseID>EDB-9</DatabaseID><Confidence>0.05</Confidence></Alternative>");
}

// Alternatives with one complete item on line 2 and the start tag under test on line 3.
QString listWith(const QString& tag)
{
    return QStringLiteral("<Alternatives>\n"
                          "<Alternative><Name>Harbour Lantern</Name><DatabaseID>EDB-0412-A</DatabaseID>"
                          "<Confidence>0.75</Confidence></Alternative>\n") +
           tag + QStringLiteral("\n</Alternatives>\n");
}

const char* const TooMany = "XML error at line 3, column [0-9]+: a start tag has more than 256 attributes";

bool matchesWhole(const QString& pattern, const QString& text)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch();
}

void expectStoppedAtLine3(const Alternatives& list, const RecordingLogger& logger)
{
    ASSERT_EQ(logger.entries.size(), 1);
    EXPECT_EQ(logger.entries.at(0).level, RECORDKIT::ERROR);
    EXPECT_TRUE(matchesWhole(QLatin1String(TooMany), logger.entries.at(0).message))
        << logger.entries.at(0).message.toStdString();
    // What came before the cut stays, as with any broken document.
    ASSERT_EQ(list.GetAlternative().size(), 1);
    EXPECT_EQ(list.GetAlternative().at(0).GetName(), QStringLiteral("Harbour Lantern"));
}

// Restores the default limit of unpacking when a test ends.
struct UnpackLimit {
    explicit UnpackLimit(qint64 bytes) { RECORDKIT::SetMaxUnpackedSize(bytes); }
    ~UnpackLimit() { RECORDKIT::SetMaxUnpackedSize(-1); }
};

}  // namespace

// --- Attributes per start tag ---------------------------------------------------

// Through every way in (text, bytes in each encoding, file), a start tag with
// more than 256 attributes stops the read at its line; 256 pass, the ones the
// class does not know passed over.
TEST(AttributeLimit, PastTheLimitEveryWayInIsStoppedAtItsLine)
{
    QTemporaryDir dir;
    for (const int count : {256, 257, 100000}) {
        const QString document = listWith(manyAttributes(count));
        std::vector<std::pair<std::string, std::function<bool(Alternatives&)>>> ways = {
            {"text", [&](Alternatives& list) { return list.SetXmlString(document, false); }},
            {"UTF-8 bytes", [&](Alternatives& list) { return list.SetXmlBytes(document.toUtf8()); }},
            {"file", [&](Alternatives& list) {
                 const QString path = dir.filePath(QStringLiteral("many.xml"));
                 QFile file(path);
                 file.open(QIODevice::WriteOnly);
                 file.write(document.toUtf8());
                 file.close();
                 return list.LoadXml(path);
             }}};
        for (const WideForm& wide : WideForms)
            ways.push_back(
                {wide.name, [&, wide](Alternatives& list) { return list.SetXmlBytes(encodeWide(document, wide)); }});
        for (const auto& way : ways) {
            SCOPED_TRACE(way.first + ", " + std::to_string(count) + " attributes");
            Alternatives list;
            auto logger = attachLogger(list);
            if (count == 256) {
                EXPECT_TRUE(way.second(list));
                EXPECT_TRUE(logger->entries.isEmpty());
                EXPECT_EQ(list.GetAlternative().size(), 2);
            } else {
                EXPECT_FALSE(way.second(list));
                expectStoppedAtLine3(list, *logger);
            }
        }
    }
}

// The first bytes tell the encoding and are counted too; a space before the
// first '<' is no sign of a wide encoding.
TEST(AttributeLimit, TheFirstBytesAreCountedAndASpaceBeforeTheTagIsNoWideForm)
{
    Alternative first;
    EXPECT_FALSE(first.SetXmlBytes(manyAttributes(300).toUtf8()));
    Alternatives spaced;
    auto logger = attachLogger(spaced);
    EXPECT_FALSE(spaced.SetXmlBytes(" " + listWith(manyAttributes(300)).toUtf8()));
    expectStoppedAtLine3(spaced, *logger);
}

TEST(AttributeLimit, QuotesOutsideStartTagsAreNoAttributes)
{
    QString quotes;
    QString singleQuotes;
    for (int i = 0; i < 300; ++i) {
        quotes += QStringLiteral(" x%1=\"1\" y='2'").arg(i);
        singleQuotes += QStringLiteral(" y%1='2'").arg(i);
    }
    const QString document = QStringLiteral("<?xml version=\"1.0\"?>\n<?note ") + quotes +
                             QStringLiteral("?>\n<!DOCTYPE Alternatives [\n  <!-- a ' quote --> <!ENTITY e \"]>") +
                             singleQuotes + QStringLiteral("\">\n  <?pi \" ?>\n]>\n<Alternatives><!-- ") + quotes +
                             QStringLiteral(" -->\n") +
                             QStringLiteral("<Alternative a=\"'>\" b='\"/>'><Name><![CDATA[") + quotes +
                             QStringLiteral(" ]] ]]></Name><DatabaseID>") + quotes.toHtmlEscaped() +
                             QStringLiteral("</DatabaseID><Confidence>0.5</Confidence></Alternative></Alternatives>");
    Alternatives fromText;
    auto logger = attachLogger(fromText);
    EXPECT_TRUE(fromText.SetXmlString(document, false))
        << (logger->entries.isEmpty() ? std::string() : logger->entries.at(0).message.toStdString());
    ASSERT_EQ(fromText.GetAlternative().size(), 1);
    EXPECT_EQ(fromText.GetAlternative().at(0).GetName(), quotes + QStringLiteral(" ]] "));
    Alternatives fromBytes;
    EXPECT_TRUE(fromBytes.SetXmlBytes(document.toUtf8()));
    EXPECT_EQ(fromBytes, fromText);
}

TEST(AttributeLimit, AttributeListDeclarationsAreRefused)
{
    // Each declared default would be added to every start tag of its element.
    QString definitions;
    for (int i = 0; i < 20000; ++i)
        definitions += QStringLiteral(" a%1 CDATA 'x'").arg(i);
    const QString document = QStringLiteral(
                                 "<!DOCTYPE Alternatives [\n<!ELEMENT Alternatives ANY>\n<!ATTLIST Alternative") +
                             definitions + QStringLiteral(">\n]>\n") + listWith(manyAttributes(1));
    Alternatives list;
    auto logger = attachLogger(list);
    EXPECT_FALSE(list.SetXmlString(document, false));
    ASSERT_EQ(logger->entries.size(), 1);
    EXPECT_TRUE(matchesWhole(
        QStringLiteral(
            "XML error at line 3, column [0-9]+: attribute list declarations \\(<!ATTLIST\\) are not accepted"),
        logger->entries.at(0).message))
        << logger->entries.at(0).message.toStdString();
    EXPECT_FALSE(list.HasData());
    Alternatives fromBytes;
    EXPECT_FALSE(fromBytes.SetXmlBytes(document.toUtf8()));
}

TEST(AttributeLimit, StartTagsAcrossTheReadersBuffersAreCounted)
{
    // The file is read in pieces: the start tag falls across their borders at
    // every offset around the first few.
    QTemporaryDir dir;
    for (int padding = 4000; padding < 4000 + 16 * 1024; padding += 997) {
        SCOPED_TRACE(padding);
        const QString document = QStringLiteral("<Alternatives>\n<!--") + QString(padding, QLatin1Char('.')) +
                                 QStringLiteral("-->\n") + manyAttributes(300) + QStringLiteral("\n</Alternatives>");
        const QString path = dir.filePath(QStringLiteral("p%1.xml").arg(padding));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(document.toUtf8());
        file.close();
        Alternatives list;
        auto logger = attachLogger(list);
        EXPECT_FALSE(list.LoadXml(path));
        ASSERT_EQ(logger->entries.size(), 1);
        EXPECT_TRUE(matchesWhole(QLatin1String(TooMany), logger->entries.at(0).message))
            << logger->entries.at(0).message.toStdString();
    }
}

// --- Unpacking ---------------------------------------------------------------------
// The tool's tests read compressed files that state too much, too little or
// more than their bytes can hold, cut streams, and forms at and over the limit.
// Here, what no file of the tool reaches.

TEST(UnpackLimit, ShortFormsAndTheRatioAboveAnyLimitSayWhy)
{
    QByteArray out;
    QString problem;
    EXPECT_FALSE(RECORDKIT::Uncompress(QByteArray::fromHex("00ff"), out, problem));
    EXPECT_EQ(problem, QStringLiteral("the compressed form ends inside its size word"));
    QByteArray corrupt = qCompress(QByteArray(3000, 'y'));
    corrupt[6] = char(0xFF);
    corrupt[7] = char(0xFF);
    EXPECT_FALSE(RECORDKIT::Uncompress(corrupt, out, problem));
    EXPECT_TRUE(problem.startsWith(QStringLiteral("the compressed form cannot be decompressed: ")))
        << problem.toStdString();
    // 0x7FFFFFFF stated by ten bytes: refused by the ratio before the limit is asked.
    UnpackLimit unlimited(qint64(1) << 40);
    EXPECT_FALSE(RECORDKIT::Uncompress(QByteArray::fromHex("7fffffff789c00000000"), out, problem));
    EXPECT_EQ(problem,
              QStringLiteral("the compressed form states 2147483647 bytes, more than the limit of 2147483583 bytes"));
    EXPECT_TRUE(out.isEmpty());
}

TEST(FormRecognition, XmlIsKnownInEveryEncodingTheReaderKnows)
{
    const QString document = QStringLiteral(" \n<Alternatives/>");
    EXPECT_TRUE(RECORDKIT::LooksLikeXml(document.toUtf8()));
    EXPECT_TRUE(RECORDKIT::LooksLikeXml("\xEF\xBB\xBF" + document.toUtf8()));
    for (const WideForm& wide : WideForms) {
        EXPECT_TRUE(RECORDKIT::LooksLikeXml(encodeWide(document, wide))) << wide.name;
        // Without a byte order mark, the first '<' tells the encoding.
        const QByteArray bare = encodeWide(document.trimmed(), wide, false);
        EXPECT_TRUE(RECORDKIT::LooksLikeXml(bare)) << wide.name;
    }
    EXPECT_FALSE(RECORDKIT::LooksLikeXml(QByteArray()));
    EXPECT_FALSE(RECORDKIT::LooksLikeXml(" \n "));
    EXPECT_FALSE(RECORDKIT::LooksLikeXml(filledDossier().GetBinaryRepresentationAsQByteArray()));
    EXPECT_TRUE(RECORDKIT::LooksCompressed(filledDossier().GetCompressedBinaryRepresentationAsQByteArray(9)));
    EXPECT_FALSE(RECORDKIT::LooksCompressed(filledDossier().GetBinaryRepresentationAsQByteArray()));
}
