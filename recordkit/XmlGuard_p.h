#pragma once

// The watch on XML input that keeps Qt's reader from a start tag with more
// attributes than MaxXmlAttributes. Internal to the base layer.

#include <QIODevice>
#include <QString>
#include <QXmlStreamReader>

namespace RECORDKIT {

// How the code units of an XML document are laid out in its bytes, told from
// its first four bytes as the XML reader tells them.
struct XmlUnits {
    int width = 1;  // 1, 2 or 4 bytes
    bool bigEndian = false;
};
XmlUnits detectXmlUnits(const char* head, qint64 size);

// Follows the markup of a document as its text passes, in time linear in its
// size, and finds the first start tag with more than MaxXmlAttributes
// attributes, or the first attribute list declaration of a document type:
// Qt's reader adds its defaults to every start tag of the element, at a cost
// of their count squared, and no record is written with a document type. Quotes in comments, CDATA sections, processing
// instructions and the document type declaration are not attributes; attribute values may hold any character but their
// own quote. The text may come in pieces of any size.
class AttributeGuard {
public:
    // Scans the next `size` bytes of a document given as bytes; the encoding
    // is told from its first four bytes. Gives how many of them may pass to
    // the reader: all of them, or fewer once the limit is passed.
    qint64 scanBytes(const char* data, qint64 size);
    // The same for a document given as UTF-16 text.
    qint64 scanText(const char16_t* data, qint64 size);

    bool tripped() const { return m_stop != Stop::None; }
    // What stopped the document, for a message that names its place.
    QString problem() const;

private:
    template <class Unit>
    qint64 scan(const Unit* data, qint64 size);
    qint64 scanWide(const char* data, qint64 size);

    enum class State : quint8 {
        Text,
        Open,      // after '<'
        StartTag,  // between a start tag's name and attributes
        Value,     // inside a quoted attribute value
        EndTag,
        Bang,      // after "<!"
        BangDash,  // after "<!-"
        Comment,
        CommentDash,
        CommentDashDash,
        CData,
        CDataBracket,
        CDataBracketBracket,
        Instruction,  // inside "<?...?>"
        InstructionQuestion,
        Declaration,       // inside "<!DOCTYPE ...>", its internal subset included
        DeclarationValue,  // a quoted literal inside it
        DeclarationOpen,   // '<' inside the internal subset
        DeclarationBang,
        DeclarationBangDash,
        DeclarationKeyword,  // "<!A..." inside the internal subset, maybe "<!ATTLIST"
    };
    enum class Stop : quint8 { None, Attributes, AttributeList };

    // Passes over units up to the next `c`; on finding it, moves past it into `next`.
    template <class Unit>
    bool skipPast(const Unit*& p, const Unit* end, char32_t c, State next);
    static State closing(char32_t c, char32_t repeated, State same, State after, State inside);

    State m_state = State::Text;
    State m_resume = State::Text;  // where a comment or an instruction returns to
    char32_t m_quote = 0;
    int m_attributes = 0;
    int m_depth = 0;    // of brackets in a document type declaration
    int m_matched = 0;  // characters of "ATTLIST" matched so far
    Stop m_stop = Stop::None;

    // Bytes of a document given as bytes, before its encoding is known, and
    // the part of a wide code unit that one piece of input has cut.
    char m_head[4] = {0, 0, 0, 0};
    int m_headSize = 0;
    bool m_unitsKnown = false;
    XmlUnits m_units;
    char m_partial[4] = {0, 0, 0, 0};
    int m_partialSize = 0;
};

// A device between the source of an XML document and the reader: it passes
// the bytes on as they come and ends the document early, as if it had been
// cut there, at the first start tag with too many attributes.
class GuardedXmlDevice : public QIODevice {
public:
    explicit GuardedXmlDevice(QIODevice* source);

    bool isSequential() const override { return true; }
    bool atEnd() const override;
    const AttributeGuard& guard() const { return m_guard; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QIODevice* m_source;
    AttributeGuard m_guard;
    bool m_sourceEnded = false;
};

// "XML error at line L, column C: ..." for a reader that has stopped on a
// fault, with the guard's reason when the guard cut its input.
QString xmlErrorText(const QXmlStreamReader& reader, const AttributeGuard& guard);

}  // namespace RECORDKIT
