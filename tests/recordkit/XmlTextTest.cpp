// A record read from XML text reads what Qt's reader reads from that text:
// the same characters, whatever the declaration says of the encoding, and a
// fault reported at the same line and column.

#include <gtest/gtest.h>

#include <QXmlStreamReader>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

QString alternative(const QString& name)
{
    return QStringLiteral("<Alternative><Name>%1</Name><DatabaseID>EDB-1</DatabaseID>"
                          "<Confidence>0.50</Confidence></Alternative>")
        .arg(name);
}

// The message a read of `text` gives for a broken document: the line, column
// and text of Qt's own reader given the same text.
QString readersFault(const QString& text)
{
    QXmlStreamReader reader(text);
    while (!reader.atEnd())
        reader.readNext();
    EXPECT_TRUE(reader.hasError());
    return QStringLiteral("XML error at line %1, column %2: %3")
        .arg(reader.lineNumber())
        .arg(reader.columnNumber())
        .arg(reader.errorString());
}

void expectFault(const QString& text)
{
    Alternatives list;
    auto logger = attachLogger(list);
    EXPECT_FALSE(list.SetXmlString(text, false));
    // An item that the fault cut short is kept with a warning before it.
    ASSERT_FALSE(logger->entries.isEmpty());
    EXPECT_EQ(logger->entries.last().level, RECORDKIT::ERROR);
    EXPECT_EQ(logger->entries.last().message, readersFault(text));
}

}  // namespace

// The text is characters already: a declaration of Latin-1 or UTF-16 does not
// make the reader decode them again, and a byte order mark before it is passed over.
TEST(XmlText, AnEncodingTheDeclarationNamesIsNotFollowed)
{
    for (const char* encoding : {"ISO-8859-1", "UTF-16", "windows-1252", "utf-8", "UTF8"}) {
        for (const QString& mark : {QString(), QString(QChar(0xFEFF))}) {
            const QString text =
                mark + QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?>\n").arg(QLatin1String(encoding)) +
                alternative(QStringLiteral("Café Noël ☂"));
            Alternative item;
            auto logger = attachLogger(item);
            EXPECT_TRUE(item.SetXmlString(text, false)) << encoding;
            EXPECT_EQ(item.GetName(), QStringLiteral("Café Noël ☂")) << encoding;
            EXPECT_TRUE(logger->entries.isEmpty()) << encoding;
        }
    }
}

TEST(XmlText, LongTextsKeepEverySurrogatePair)
{
    // Characters outside the basic plane are two UTF-16 units; a long run of
    // them, after start tags of both parities, has pairs at every offset.
    QString name;
    for (int i = 0; i < 30000; ++i)
        name += QStringLiteral("\U0001F4E1");
    name += QStringLiteral("é");
    for (const QString& open : {QStringLiteral("<Alternative>"), QStringLiteral("<Alternative >")}) {
        Alternative item;
        QString text = alternative(name);
        text.replace(0, 13, open);
        EXPECT_TRUE(item.SetXmlString(text, false));
        EXPECT_EQ(item.GetName(), name);
    }
}

// Wide characters before the fault: a column counted in bytes would differ.
// Short texts and a NUL fault as the reader says too.
TEST(XmlText, FaultsAreAtTheLineAndColumnOfTheText)
{
    QString text = QStringLiteral("<Alternatives>\n");
    for (int i = 0; i < 2000; ++i)
        text += alternative(QStringLiteral("Ærøskøbing \U0001F4E1 %1").arg(i)) + QLatin1Char('\n');
    expectFault(text + QStringLiteral("  <Alternative><Name>Ø</Nme></Alternative>\n</Alternatives>\n"));
    expectFault(text);  // ends early
    expectFault(QStringLiteral("<a/"));
    expectFault(QStringLiteral("<") + QChar(0) + QStringLiteral("a/>"));
}

TEST(XmlText, AnUnknownEncodingIsJudgedAsTheReaderJudgesIt)
{
    const QString text = QStringLiteral("<?xml version=\"1.0\" encoding=\"no-such-encoding\"?><Alternatives/>");
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // Qt 6's reader pays no heed to what a text declares of its encoding.
    Alternatives list;
    auto logger = attachLogger(list);
    EXPECT_TRUE(list.SetXmlString(text, false));
    EXPECT_TRUE(logger->entries.isEmpty());
#else
    // Qt 5's refuses a name it does not know, even in a text.
    expectFault(text);
#endif
}
