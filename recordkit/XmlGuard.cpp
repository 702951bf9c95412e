#include "recordkit/XmlGuard_p.h"

#include <algorithm>
#include <cstring>

#include <QStringView>

#include <EmitterDossierDoc/recordkit/Input.h>

namespace RECORDKIT {

namespace {

char32_t unitValue(char unit) { return char32_t(uchar(unit)); }
char32_t unitValue(char16_t unit) { return char32_t(unit); }
char32_t unitValue(char32_t unit) { return unit; }

// The first unit equal to the ASCII character `c`, or `end`. The document's
// bulk (text, values, end tags) is passed over here, so it is as fast as the
// library gives.
const char* find(const char* p, const char* end, char32_t c)
{
    const void* hit = std::memchr(p, int(c), size_t(end - p));
    return hit ? static_cast<const char*>(hit) : end;
}

const char16_t* find(const char16_t* p, const char16_t* end, char32_t c)
{
    const qsizetype at = QStringView(p, end - p).indexOf(QChar(char16_t(c)));
    return at < 0 ? end : p + at;
}

const char32_t* find(const char32_t* p, const char32_t* end, char32_t c) { return std::find(p, end, c); }

// The next quote or '>' of a start tag.
template <class Unit>
const Unit* findTagMark(const Unit* p, const Unit* end)
{
    for (; p < end; ++p) {
        const char32_t c = unitValue(*p);
        if (c == '"' || c == '\'' || c == '>')
            return p;
    }
    return end;
}

char32_t decodeUnit(const char* bytes, const XmlUnits& units)
{
    char32_t value = 0;
    for (int i = 0; i < units.width; ++i) {
        const int at = units.bigEndian ? i : units.width - 1 - i;
        value = (value << 8) | uchar(bytes[at]);
    }
    return value;
}

}  // namespace

XmlUnits detectXmlUnits(const char* head, qint64 size)
{
    XmlUnits units;
    if (size < 4)
        return units;
    const uchar b0 = uchar(head[0]), b1 = uchar(head[1]), b2 = uchar(head[2]), b3 = uchar(head[3]);
    if ((b0 == 0 && b1 == 0 && b2 == 0xFE && b3 == 0xFF) || (b0 == 0 && b1 == 0 && b2 == 0 && b3 == '<'))
        units = {4, true};
    else if ((b0 == 0xFF && b1 == 0xFE && b2 == 0 && b3 == 0) || (b0 == '<' && b1 == 0 && b2 == 0 && b3 == 0))
        units = {4, false};
    else if ((b0 == 0xFE && b1 == 0xFF) || (b0 == 0 && b1 == '<'))
        units = {2, true};
    else if ((b0 == 0xFF && b1 == 0xFE) || (b0 == '<' && b1 == 0))
        units = {2, false};
    return units;
}

QString AttributeGuard::problem() const
{
    if (m_stop == Stop::AttributeList)
        return QStringLiteral("attribute list declarations (<!ATTLIST) are not accepted");
    return QStringLiteral("a start tag has more than %1 attributes").arg(MaxXmlAttributes);
}

qint64 AttributeGuard::scanText(const char16_t* data, qint64 size) { return scan(data, size); }

qint64 AttributeGuard::scanBytes(const char* data, qint64 size)
{
    if (tripped())
        return 0;
    qint64 offset = 0;
    if (!m_unitsKnown) {
        while (m_headSize < 4 && offset < size)
            m_head[m_headSize++] = data[offset++];
        if (m_headSize < 4)
            return size;  // too little to tell the encoding, and far too little for a start tag of many attributes
        m_units = detectXmlUnits(m_head, m_headSize);
        m_unitsKnown = true;
        if (m_units.width == 1)
            scan(m_head, m_headSize);
        else
            scanWide(m_head, m_headSize);
    }
    const qint64 rest = size - offset;
    return offset + (m_units.width == 1 ? scan(data + offset, rest) : scanWide(data + offset, rest));
}

qint64 AttributeGuard::scanWide(const char* data, qint64 size)
{
    // Wide units are decoded in batches; a unit cut by the end of one piece
    // of input is completed by the next.
    constexpr int Batch = 1024;
    char32_t units[Batch];
    qint64 taken = 0;
    while (taken < size) {
        const qint64 batchStart = taken - m_partialSize;  // where the batch's first unit begins in `data`
        int count = 0;
        while (count < Batch && taken < size) {
            m_partial[m_partialSize++] = data[taken++];
            if (m_partialSize == m_units.width) {
                units[count++] = decodeUnit(m_partial, m_units);
                m_partialSize = 0;
            }
        }
        const qint64 passed = scan(units, count);
        if (tripped())
            return qMax<qint64>(0, batchStart + passed * m_units.width);
    }
    return size;
}

template <class Unit>
bool AttributeGuard::skipPast(const Unit*& p, const Unit* end, char32_t c, State next)
{
    p = find(p, end, c);
    if (p == end)
        return false;
    m_state = next;
    ++p;
    return true;
}

// The state after `c` in the last character of a section's end marker: the end
// itself on '>', the same state on one more `repeated` ("--->"), else back
// inside the section.
AttributeGuard::State AttributeGuard::closing(char32_t c, char32_t repeated, State same, State after, State inside)
{
    if (c == '>')
        return after;
    return c == repeated ? same : inside;
}

template <class Unit>
qint64 AttributeGuard::scan(const Unit* data, qint64 size)
{
    if (tripped())
        return 0;
    const Unit* p = data;
    const Unit* const end = data + size;
    while (p < end) {
        switch (m_state) {
        case State::Text:
            if (!skipPast(p, end, '<', State::Open))
                return size;
            break;
        case State::Open: {
            const char32_t c = unitValue(*p);
            if (c == '/') {
                m_state = State::EndTag;
                ++p;
            } else if (c == '?') {
                m_state = State::Instruction;
                m_resume = State::Text;
                ++p;
            } else if (c == '!') {
                m_state = State::Bang;
                ++p;
            } else {
                // The first character of an element's name.
                m_state = State::StartTag;
                m_attributes = 0;
            }
            break;
        }
        case State::StartTag: {
            p = findTagMark(p, end);
            if (p == end)
                return size;
            const char32_t c = unitValue(*p);
            if (c == '>') {
                m_state = State::Text;
                ++p;
                break;
            }
            // Each attribute has one quoted value: its opening quote counts it.
            if (++m_attributes > MaxXmlAttributes) {
                m_stop = Stop::Attributes;
                return p - data;
            }
            m_quote = c;
            m_state = State::Value;
            ++p;
            break;
        }
        case State::Value:
            if (!skipPast(p, end, m_quote, State::StartTag))
                return size;
            break;
        case State::EndTag:
            if (!skipPast(p, end, '>', State::Text))
                return size;
            break;
        case State::Bang: {
            const char32_t c = unitValue(*p);
            if (c == '-') {
                m_state = State::BangDash;
                ++p;
            } else if (c == '[') {
                m_state = State::CData;
                ++p;
            } else {
                m_state = State::Declaration;
                m_depth = 0;
            }
            break;
        }
        case State::BangDash:
            if (unitValue(*p) == '-') {
                m_state = State::Comment;
                m_resume = State::Text;
                ++p;
            } else {
                m_state = State::Declaration;
                m_depth = 0;
            }
            break;
        // "-->", "]]>" and "?>" end their sections.
        case State::Comment:
            if (!skipPast(p, end, '-', State::CommentDash))
                return size;
            break;
        case State::CommentDash: m_state = unitValue(*p++) == '-' ? State::CommentDashDash : State::Comment; break;
        case State::CommentDashDash:
            m_state = closing(unitValue(*p++), '-', State::CommentDashDash, m_resume, State::Comment);
            break;
        case State::CData:
            if (!skipPast(p, end, ']', State::CDataBracket))
                return size;
            break;
        case State::CDataBracket: m_state = unitValue(*p++) == ']' ? State::CDataBracketBracket : State::CData; break;
        case State::CDataBracketBracket:
            m_state = closing(unitValue(*p++), ']', State::CDataBracketBracket, State::Text, State::CData);
            break;
        case State::Instruction:
            if (!skipPast(p, end, '?', State::InstructionQuestion))
                return size;
            break;
        case State::InstructionQuestion:
            m_state = closing(unitValue(*p++), '?', State::InstructionQuestion, m_resume, State::Instruction);
            break;
        case State::Declaration: {
            const char32_t c = unitValue(*p);
            ++p;
            if (c == '"' || c == '\'') {
                m_quote = c;
                m_state = State::DeclarationValue;
            } else if (c == '[') {
                ++m_depth;
            } else if (c == ']') {
                if (m_depth > 0)
                    --m_depth;
            } else if (c == '<') {
                m_state = State::DeclarationOpen;
            } else if (c == '>' && m_depth == 0) {
                m_state = State::Text;
            }
            break;
        }
        case State::DeclarationValue:
            if (!skipPast(p, end, m_quote, State::Declaration))
                return size;
            break;
        case State::DeclarationOpen: {
            const char32_t c = unitValue(*p);
            if (c == '!') {
                m_state = State::DeclarationBang;
                ++p;
            } else if (c == '?') {
                m_state = State::Instruction;
                m_resume = State::Declaration;
                ++p;
            } else {
                m_state = State::Declaration;
            }
            break;
        }
        case State::DeclarationBang: {
            const char32_t c = unitValue(*p);
            if (c == '-') {
                m_state = State::DeclarationBangDash;
                ++p;
            } else if (c == 'A') {
                m_state = State::DeclarationKeyword;
                m_matched = 1;
                ++p;
            } else {
                m_state = State::Declaration;
            }
            break;
        }
        case State::DeclarationKeyword: {
            static const char keyword[] = "ATTLIST";
            if (unitValue(*p) != char32_t(keyword[m_matched])) {
                m_state = State::Declaration;
                break;
            }
            ++p;
            if (++m_matched == int(sizeof keyword) - 1) {
                m_stop = Stop::AttributeList;
                return p - data;
            }
            break;
        }
        case State::DeclarationBangDash:
            if (unitValue(*p) == '-') {
                m_state = State::Comment;
                m_resume = State::Declaration;
                ++p;
            } else {
                m_state = State::Declaration;
            }
            break;
        }
    }
    return size;
}

QString xmlErrorText(const QXmlStreamReader& reader, const AttributeGuard& guard)
{
    return QStringLiteral("XML error at line %1, column %2: %3")
        .arg(reader.lineNumber())
        .arg(reader.columnNumber())
        .arg(guard.tripped() ? guard.problem() : reader.errorString());
}

// --- The device ------------------------------------------------------------

GuardedXmlDevice::GuardedXmlDevice(QIODevice* source) : m_source(source) {}

bool GuardedXmlDevice::atEnd() const { return m_guard.tripped() || m_sourceEnded; }

qint64 GuardedXmlDevice::readData(char* data, qint64 maxSize)
{
    if (m_guard.tripped() || m_sourceEnded)
        return -1;
    const qint64 count = m_source->read(data, maxSize);
    if (count <= 0) {
        // A file or a pipe gives nothing only at its end.
        m_sourceEnded = true;
        return -1;
    }
    const qint64 passed = m_guard.scanBytes(data, count);
    return passed == 0 && m_guard.tripped() ? -1 : passed;
}

}  // namespace RECORDKIT
