// JSON: a record as an object of its set properties, by the class's field table.
// The writer and the reader work on UTF-8 bytes directly; the reader is a
// strict RFC 8259 parser that stores each value as it meets it, with no tree
// of its own in between.

#include <EmitterDossierDoc/frame/Json.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include <QDateTime>

#include "schema/frame/Runtime_p.h"
#include <EmitterDossierDoc/recordkit/Converters.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

namespace {

// The largest integer that every JSON reader holds exactly in a double; a
// larger quint64 is written as a string.
constexpr quint64 MaxExactJsonInteger = quint64(1) << 53;

const QString& versionMember()
{
    static const QString name = QStringLiteral("Version");
    return name;
}

// --- Writing ------------------------------------------------------------------------

class JsonOut {
public:
    explicit JsonOut(JsonLayout layout) : m_indented(layout == JsonLayout::Indented) {}

    void put(char c) { *room(1) = c; }
    void put(const char* text, int size) { std::memcpy(room(size), text, size_t(size)); }
    void put(const char* text) { put(text, int(std::strlen(text))); }

    // A line break and the indentation of `depth`, in the indented layout.
    void newLine(int depth)
    {
        if (!m_indented)
            return;
        char* out = room(1 + 2 * depth);
        *out++ = '\n';
        std::memset(out, ' ', size_t(2 * depth));
    }
    void nameSeparator() { m_indented ? put(": ", 2) : put(':'); }
    bool indented() const { return m_indented; }

    // A JSON string of UTF-16 text, as UTF-8 with the escapes JSON needs; a
    // lone surrogate, which UTF-8 cannot hold, as its \u escape.
    void string(QStringView text)
    {
        // Each UTF-16 unit takes at most six bytes (\uXXXX); the quotes two.
        const qint64 reserved = 6 * qint64(text.size()) + 2;
        char* out = room(reserved);
        char* const start = out;
        *out++ = '"';
        const char16_t* s = reinterpret_cast<const char16_t*>(text.data());
        const char16_t* const end = s + text.size();
        while (s < end) {
            const char16_t c = *s++;
            if (c < 0x80) {
                if (c >= 0x20 && c != '"' && c != '\\') {
                    *out++ = char(c);
                    continue;
                }
                *out++ = '\\';
                switch (c) {
                case '"': *out++ = '"'; break;
                case '\\': *out++ = '\\'; break;
                case '\n': *out++ = 'n'; break;
                case '\r': *out++ = 'r'; break;
                case '\t': *out++ = 't'; break;
                case '\b': *out++ = 'b'; break;
                case '\f': *out++ = 'f'; break;
                default: out = hexEscape(out - 1, c);
                }
            } else if (c < 0x800) {
                *out++ = char(0xC0 | (c >> 6));
                *out++ = char(0x80 | (c & 0x3F));
            } else if (QChar::isHighSurrogate(c) && s < end && QChar::isLowSurrogate(*s)) {
                const char32_t code = QChar::surrogateToUcs4(c, *s++);
                *out++ = char(0xF0 | (code >> 18));
                *out++ = char(0x80 | ((code >> 12) & 0x3F));
                *out++ = char(0x80 | ((code >> 6) & 0x3F));
                *out++ = char(0x80 | (code & 0x3F));
            } else if (QChar::isSurrogate(c)) {
                out = hexEscape(out, c);
            } else {
                *out++ = char(0xE0 | (c >> 12));
                *out++ = char(0x80 | ((c >> 6) & 0x3F));
                *out++ = char(0x80 | (c & 0x3F));
            }
        }
        *out++ = '"';
        // Give back what the text did not need.
        m_used -= int(reserved - (out - start));
    }

    void number(double value)
    {
        if (std::isnan(value)) {
            put("\"NaN\"");
        } else if (std::isinf(value)) {
            put(value > 0 ? "\"Infinity\"" : "\"-Infinity\"");
        } else {
            // The shortest text that reads back to the same double.
            char digits[32];
            const auto result = std::to_chars(digits, digits + sizeof digits, value);
            put(digits, int(result.ptr - digits));
        }
    }

    void number(quint64 value)
    {
        char digits[24];
        const auto result = std::to_chars(digits, digits + sizeof digits, value);
        const int size = int(result.ptr - digits);
        if (value <= MaxExactJsonInteger) {
            put(digits, size);
        } else {
            put('"');
            put(digits, size);
            put('"');
        }
    }

    QByteArray take()
    {
        m_bytes.resize(m_used);
        return std::move(m_bytes);
    }

private:
    static char* hexEscape(char* out, char16_t c)
    {
        static const char hex[] = "0123456789abcdef";
        *out++ = '\\';
        *out++ = 'u';
        *out++ = hex[(c >> 12) & 0xF];
        *out++ = hex[(c >> 8) & 0xF];
        *out++ = hex[(c >> 4) & 0xF];
        *out++ = hex[c & 0xF];
        return out;
    }

    // `size` more bytes at the end, for the caller to fill.
    char* room(qint64 size)
    {
        const qint64 needed = qint64(m_used) + size;
        if (needed > m_bytes.size()) {
            // A QByteArray holds a little less than 2 GiB.
            constexpr qint64 MaxBytes = std::numeric_limits<int>::max() - 64;
            if (needed > MaxBytes)
                throw RKException(QStringLiteral("The JSON text of the record would exceed %1 bytes.").arg(MaxBytes));
            m_bytes.resize(int(qMin(MaxBytes, qMax(needed + 4096, 2 * qint64(m_bytes.size())))));
        }
        char* out = m_bytes.data() + m_used;
        m_used += int(size);
        return out;
    }

    QByteArray m_bytes;
    int m_used = 0;
    bool m_indented;
};

class JsonWriter {
public:
    explicit JsonWriter(JsonLayout layout) : m_out(layout) {}

    QByteArray document(const Record& record)
    {
        m_out.put('{');
        m_out.newLine(1);
        m_out.string(record.GetObjectName());
        m_out.nameSeparator();
        writeRecord(record, 1);
        m_out.newLine(0);
        m_out.put('}');
        if (m_out.indented())
            m_out.put('\n');
        return m_out.take();
    }

private:
    void member(const QString& name, bool& first, int depth)
    {
        if (!first)
            m_out.put(',');
        first = false;
        m_out.newLine(depth);
        m_out.string(name);
        m_out.nameSeparator();
    }

    void enumValue(const EnumInfo& names, quint8 value)
    {
        if (const QString* name = Internal::enumName(names, value))
            m_out.string(*name);
        else
            m_out.put("null");
    }

    // An array of `n` items at `depth`, each written by `writeItem(k)` on a line of its own.
    template <class WriteItem>
    void writeArray(int n, int depth, WriteItem writeItem)
    {
        m_out.put('[');
        for (int k = 0; k < n; ++k) {
            if (k > 0)
                m_out.put(',');
            m_out.newLine(depth + 1);
            writeItem(k);
        }
        if (n > 0)
            m_out.newLine(depth);
        m_out.put(']');
    }

    void writeRecord(const Record& r, int depth)
    {
        Payload& p = Internal::payload(r);
        const ClassInfo& info = r.GetClassInfo();
        const int inner = depth + 1;
        bool first = true;
        m_out.put('{');
        if (info.version) {
            member(versionMember(), first, inner);
            m_out.string(Internal::schemaVersionOf(p, *info.version));
        }
        for (int i = 0; i < info.fieldCount; ++i) {
            const FieldInfo& f = info.fields[i];
            void* slot = Internal::field(p, f);
            // A list of names is kept whenever it holds some, as the other forms keep them.
            const bool enumValues = f.kind == Kind::EnumList && f.enumListInfo().size(slot) > 0;
            if (!p.test(f.bit) && !enumValues)
                continue;
            member(*f.name, first, inner);
            switch (f.kind) {
            case Kind::Double: m_out.number(*static_cast<const double*>(slot)); break;
            case Kind::UInt64: m_out.number(*static_cast<const quint64*>(slot)); break;
            case Kind::Bool: m_out.put(*static_cast<const bool*>(slot) ? "true" : "false"); break;
            case Kind::Text: {
                const QString& text = *static_cast<const QString*>(slot);
                if (text.isNull())
                    m_out.put("null");
                else
                    m_out.string(text);
                break;
            }
            case Kind::DateTime: m_out.string(Converters::ToString(*static_cast<const QDateTime*>(slot))); break;
            case Kind::Enum: enumValue(f.enumInfo(), *static_cast<const quint8*>(slot)); break;
            case Kind::Child: writeRecord(f.childOps().cget(slot), inner); break;
            case Kind::List: {
                const ListOps& ops = f.listOps();
                writeArray(ops.size(slot), inner, [&](int k) { writeRecord(ops.cat(slot, k), inner + 1); });
                break;
            }
            case Kind::EnumList: {
                const EnumListInfo& values = f.enumListInfo();
                writeArray(values.size(slot), inner, [&](int k) { enumValue(values.names, values.at(slot, k)); });
                break;
            }
            }
        }
        if (!first)
            m_out.newLine(depth);
        m_out.put('}');
    }

    JsonOut m_out;
};

// --- Reading ------------------------------------------------------------------------

// A fault of the JSON text or of its shape, with its message complete.
struct JsonFault {
    QString message;
};

// One step of the path to the value being read: a member's name or an item's index.
struct PathStep {
    const QString* name;  // null for an index
    int index;
};

class JsonReader {
public:
    explicit JsonReader(const QByteArray& json)
        : m_begin(json.constData()), m_pos(json.constData()), m_end(json.constData() + json.size())
    {
        m_path.reserve(16);
    }

    // The outer object, its one member and what follows it.
    void document(Record& record)
    {
        skipByteOrderMark();
        skipSpace();
        expect('{', "an object");
        skipSpace();
        const char* namePos = m_pos;
        if (peek() != '"')
            fail(QStringLiteral("expected the name of a class, found %1").arg(found()));
        const QString name = readString();
        const QString& className = record.GetObjectName();
        if (name != className) {
            m_pos = namePos;
            fail(QStringLiteral("the document holds %1, not %2").arg(quoted(name), className));
        }
        skipSpace();
        expect(':', "':'");
        m_path.push_back({&className, -1});
        skipSpace();
        readRecord(record);
        m_path.pop_back();
        skipSpace();
        if (peek() == ',')
            fail(QStringLiteral("a document holds one record, and this one holds more"));
        expect('}', "'}'");
        skipSpace();
        if (m_pos != m_end)
            fail(QStringLiteral("expected the end of the document, found %1").arg(found()));
    }

    // The name of the first member of the outer object.
    QString rootName()
    {
        skipByteOrderMark();
        skipSpace();
        expect('{', "an object");
        skipSpace();
        if (peek() != '"')
            fail(QStringLiteral("expected the name of a class, found %1").arg(found()));
        return readString();
    }

private:
    // --- The record -------------------------------------------------------------------

    void readRecord(Record& r)
    {
        const ClassInfo& info = r.GetClassInfo();
        expectValue('{', "an object");
        skipSpace();
        // An empty object makes no payload: a list of `{}` costs a handle an
        // item, as the default items it reads as would.
        if (peek() == '}' && !info.version) {
            ++m_pos;
            return;
        }
        Payload& p = Internal::payload(r);
        quint64 seen = 0;
        bool first = true;
        if (peek() == '}') {
            ++m_pos;
            if (info.version)
                Internal::versionGate(r, p, QString());
            return;
        }
        for (;;) {
            const char* namePos = m_pos;
            if (peek() != '"')
                fail(QStringLiteral("expected the name of a property, found %1").arg(found()));
            const char* nameStart = m_pos + 1;
            QString escapedName;
            const int nameSize = readName(escapedName);
            skipSpace();
            expect(':', "':'");
            skipSpace();
            if (info.version && first) {
                // The version goes first, as the other forms have it: a record of
                // an older version is cleared before anything is stored in it.
                first = false;
                if (isName(versionMember(), nameStart, nameSize, escapedName)) {
                    m_path.push_back({&versionMember(), -1});
                    if (peek() != '"')
                        wrongType("a string");
                    Internal::versionGate(r, p, readString());
                    m_path.pop_back();
                    if (!another('}', "a property"))
                        return;
                    continue;
                }
                Internal::versionGate(r, p, QString());
            }
            const FieldInfo* f = findField(info, nameStart, nameSize, escapedName);
            if (!f) {
                m_pos = namePos;
                const QString name = escapedName.isNull() ? decodeName(nameStart, nameSize) : escapedName;
                if (info.version && name == versionMember())
                    fail(QStringLiteral("\"Version\" stands first in %1").arg(QLatin1String(info.name)));
                fail(QStringLiteral("%1 has no property %2").arg(QLatin1String(info.name), quoted(name)));
            }
            const quint64 mask = quint64(1) << f->bit;
            if (seen & mask) {
                m_pos = namePos;
                fail(QStringLiteral("%1 is given twice").arg(quoted(*f->name)));
            }
            seen |= mask;
            m_path.push_back({f->name, -1});
            readField(r, p, *f);
            m_path.pop_back();
            if (!another('}', "a property"))
                return;
        }
    }

    void readField(Record& r, Payload& p, const FieldInfo& f)
    {
        void* slot = Internal::field(p, f);
        switch (f.kind) {
        case Kind::Double: *static_cast<double*>(slot) = readDouble(); break;
        case Kind::UInt64: *static_cast<quint64*>(slot) = readUInt64(); break;
        case Kind::Bool: *static_cast<bool*>(slot) = readBool(); break;
        case Kind::Text:
            if (takeNull()) {
                Internal::storeText(r, p, f, QString());
                return;
            }
            if (peek() != '"')
                wrongType("a string");
            Internal::storeText(r, p, f, readString());
            return;
        case Kind::DateTime:
            if (peek() != '"')
                wrongType("a date text");
            *static_cast<QDateTime*>(slot) = Converters::ToDateTime(readString());
            break;
        case Kind::Enum: Internal::storeEnum(r, p, f, readEnum(f)); return;
        case Kind::Child: readRecord(f.childOps().get(slot)); break;
        case Kind::List: readList(r, p, f); break;
        case Kind::EnumList: readEnumList(r, p, f); break;
        }
        p.set(f.bit);
    }

    void readList(Record& r, Payload& p, const FieldInfo& f)
    {
        readArray(p, f, [&] {
            Internal::PendingItem item(r, p, f);
            readRecord(item.item());
            item.finish();
        });
        f.listOps().trim(Internal::field(p, f));
    }

    void readEnumList(Record& r, Payload& p, const FieldInfo& f)
    {
        readArray(p, f, [&] { Internal::appendEnumValue(r, p, f, readEnum(f)); });
    }

    // An array given for a list field, even an empty one, sets the list;
    // `readItem` reads each item, with its index on the path.
    template <class ReadItem>
    void readArray(Payload& p, const FieldInfo& f, ReadItem readItem)
    {
        expectValue('[', "an array");
        p.set(f.bit);
        skipSpace();
        if (peek() == ']') {
            ++m_pos;
            return;
        }
        for (int k = 0;; ++k) {
            m_path.push_back({nullptr, k});
            readItem();
            m_path.pop_back();
            if (!another(']', "an item"))
                return;
        }
    }

    // After a member or an item: true when another follows, false at the
    // `close` of its object or array.
    bool another(char close, const char* after)
    {
        skipSpace();
        if (peek() == ',') {
            ++m_pos;
            skipSpace();
            return true;
        }
        if (peek() == close) {
            ++m_pos;
            return false;
        }
        fail(QStringLiteral("expected ',' or '%1' after %2, found %3")
                 .arg(QString(QLatin1Char(close)), QLatin1String(after), found()));
    }

    // --- Values -----------------------------------------------------------------------

    quint8 readEnum(const FieldInfo& f)
    {
        if (takeNull())
            return quint8(0xFF);
        if (peek() != '"')
            wrongType("a name");
        const char* start = m_pos;
        const QString name = readString();
        const quint8 index = Internal::enumIndex(f, name);
        if (index == 0xFF) {
            m_pos = start;
            fail(QStringLiteral("%1 is not a name of %2").arg(quoted(name), *f.name));
        }
        return index;
    }

    bool readBool()
    {
        if (literal("true"))
            return true;
        if (literal("false"))
            return false;
        wrongType("true or false");
    }

    double readDouble()
    {
        if (peek() == '"') {
            const char* start = m_pos;
            const QString text = readString();
            if (text == QLatin1String("NaN"))
                return std::numeric_limits<double>::quiet_NaN();
            if (text == QLatin1String("Infinity"))
                return std::numeric_limits<double>::infinity();
            if (text == QLatin1String("-Infinity"))
                return -std::numeric_limits<double>::infinity();
            m_pos = start;
            wrongType("a number");
        }
        const char* start = m_pos;
        if (!scanNumber())
            wrongType("a number");
        double value = 0;
        const auto result = std::from_chars(start, m_pos, value);
        if (result.ec != std::errc() || result.ptr != m_pos) {
            m_pos = start;
            fail(QStringLiteral("%1 is beyond the range of a double")
                     .arg(QString::fromLatin1(start, int(result.ptr - start))));
        }
        return value;
    }

    quint64 readUInt64()
    {
        const char* start = m_pos;
        const char* digits = m_pos;
        const char* digitsEnd = nullptr;
        if (peek() == '"') {
            ++digits;
            digitsEnd = digits;
            while (digitsEnd < m_end && *digitsEnd >= '0' && *digitsEnd <= '9')
                ++digitsEnd;
            if (digitsEnd == digits || digitsEnd == m_end || *digitsEnd != '"')
                wrongType("an unsigned integer");
            m_pos = digitsEnd + 1;
        } else {
            bool integer = false;
            if (!scanNumber(&integer) || !integer || *start == '-') {
                m_pos = start;
                wrongType("an unsigned integer");
            }
            digitsEnd = m_pos;
        }
        quint64 value = 0;
        const auto result = std::from_chars(digits, digitsEnd, value);
        if (result.ec != std::errc()) {
            m_pos = start;
            fail(QStringLiteral("%1 is beyond the range of an unsigned 64-bit integer")
                     .arg(QString::fromLatin1(digits, int(digitsEnd - digits))));
        }
        return value;
    }

    // Moves past a number of JSON's grammar; false, with the position kept,
    // when none stands here. `integer` tells whether it had no fraction or exponent.
    bool scanNumber(bool* integer = nullptr)
    {
        const char* s = m_pos;
        if (s < m_end && *s == '-')
            ++s;
        if (s == m_end || *s < '0' || *s > '9')
            return false;
        if (*s == '0')
            ++s;
        else
            while (s < m_end && *s >= '0' && *s <= '9')
                ++s;
        bool whole = true;
        if (s < m_end && *s == '.') {
            whole = false;
            const char* digits = ++s;
            while (s < m_end && *s >= '0' && *s <= '9')
                ++s;
            if (s == digits)
                return false;
        }
        if (s < m_end && (*s == 'e' || *s == 'E')) {
            whole = false;
            ++s;
            if (s < m_end && (*s == '+' || *s == '-'))
                ++s;
            const char* digits = s;
            while (s < m_end && *s >= '0' && *s <= '9')
                ++s;
            if (s == digits)
                return false;
        }
        if (integer)
            *integer = whole;
        m_pos = s;
        return true;
    }

    bool takeNull() { return literal("null"); }

    bool literal(const char* word)
    {
        const size_t size = std::strlen(word);
        if (size_t(m_end - m_pos) < size || std::memcmp(m_pos, word, size) != 0)
            return false;
        const char* after = m_pos + size;
        // "nullx" is no literal.
        if (after < m_end && ((*after >= 'a' && *after <= 'z') || (*after >= '0' && *after <= '9')))
            return false;
        m_pos = after;
        return true;
    }

    // --- Names and strings --------------------------------------------------------------

    // Moves past a member's name and gives the size of its bytes, which stand
    // from m_pos + 1 as they are; a name with escapes is decoded into `decoded`.
    int readName(QString& decoded)
    {
        const char* start = m_pos + 1;
        const char* s = start;
        while (s < m_end && *s != '"' && *s != '\\' && uchar(*s) >= 0x20 && uchar(*s) < 0x80)
            ++s;
        if (s < m_end && *s == '"') {
            m_pos = s + 1;
            return int(s - start);
        }
        decoded = readString();
        return -1;
    }

    static bool isName(const QString& name, const char* bytes, int size, const QString& decoded)
    {
        if (size < 0)
            return decoded == name;
        return name.size() == size && QLatin1String(bytes, size) == name;
    }

    static const FieldInfo* findField(const ClassInfo& info, const char* bytes, int size, const QString& decoded)
    {
        for (int i = 0; i < info.fieldCount; ++i)
            if (isName(*info.fields[i].name, bytes, size, decoded))
                return &info.fields[i];
        return nullptr;
    }

    static QString decodeName(const char* bytes, int size) { return QString::fromLatin1(bytes, size); }

    // A string at m_pos, decoded: strict UTF-8, JSON's escapes, and \u escapes
    // of lone surrogates kept as they are.
    QString readString()
    {
        const char* s = ++m_pos;
        // Plain ASCII without escapes, the common case, in one pass.
        while (s < m_end && *s != '"' && *s != '\\' && uchar(*s) >= 0x20 && uchar(*s) < 0x80)
            ++s;
        if (s < m_end && *s == '"') {
            QString text = QString::fromLatin1(m_pos, int(s - m_pos));
            m_pos = s + 1;
            return text;
        }
        QString text;
        text.reserve(int(s - m_pos) + 16);
        text.append(QLatin1String(m_pos, int(s - m_pos)));
        m_pos = s;
        for (;;) {
            if (m_pos == m_end)
                fail(QStringLiteral("the string has no end"));
            const uchar c = uchar(*m_pos);
            if (c == '"') {
                ++m_pos;
                return text;
            }
            if (c < 0x20)
                fail(QStringLiteral("a control character stands unescaped in a string"));
            if (c == '\\') {
                readEscape(text);
            } else if (c < 0x80) {
                text.append(QLatin1Char(char(c)));
                ++m_pos;
            } else {
                appendUtf8(text);
            }
        }
    }

    void readEscape(QString& text)
    {
        const char* start = m_pos;
        if (m_end - m_pos < 2)
            fail(QStringLiteral("the string has no end"));
        const char c = m_pos[1];
        m_pos += 2;
        switch (c) {
        case '"': text.append(QLatin1Char('"')); return;
        case '\\': text.append(QLatin1Char('\\')); return;
        case '/': text.append(QLatin1Char('/')); return;
        case 'b': text.append(QLatin1Char('\b')); return;
        case 'f': text.append(QLatin1Char('\f')); return;
        case 'n': text.append(QLatin1Char('\n')); return;
        case 'r': text.append(QLatin1Char('\r')); return;
        case 't': text.append(QLatin1Char('\t')); return;
        case 'u': {
            int code = 0;
            for (int i = 0; i < 4; ++i) {
                const int digit = m_pos < m_end ? hexDigit(*m_pos) : -1;
                if (digit < 0) {
                    m_pos = start;
                    fail(QStringLiteral("\\u takes four hexadecimal digits"));
                }
                code = code * 16 + digit;
                ++m_pos;
            }
            text.append(QChar(char16_t(code)));
            return;
        }
        default: m_pos = start; fail(QStringLiteral("\\%1 is no escape of JSON").arg(QLatin1Char(c)));
        }
    }

    static int hexDigit(char c)
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        return -1;
    }

    // One character of two to four bytes of UTF-8, checked as strictly as the
    // standard asks: no overlong forms, no surrogates, nothing above U+10FFFF.
    void appendUtf8(QString& text)
    {
        const uchar* s = reinterpret_cast<const uchar*>(m_pos);
        const qint64 left = m_end - m_pos;
        int size = 0;
        char32_t code = 0;
        char32_t least = 0;
        if (s[0] >= 0xC2 && s[0] <= 0xDF) {
            size = 2;
            code = s[0] & 0x1F;
            least = 0x80;
        } else if (s[0] >= 0xE0 && s[0] <= 0xEF) {
            size = 3;
            code = s[0] & 0x0F;
            least = 0x800;
        } else if (s[0] >= 0xF0 && s[0] <= 0xF4) {
            size = 4;
            code = s[0] & 0x07;
            least = 0x10000;
        }
        bool valid = size > 0 && left >= size;
        for (int i = 1; valid && i < size; ++i) {
            valid = (s[i] & 0xC0) == 0x80;
            code = (code << 6) | (s[i] & 0x3F);
        }
        if (!valid || code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
            fail(QStringLiteral("the text is not valid UTF-8"));
        if (code >= 0x10000) {
            text.append(QChar(QChar::highSurrogate(code)));
            text.append(QChar(QChar::lowSurrogate(code)));
        } else {
            text.append(QChar(char16_t(code)));
        }
        m_pos += size;
    }

    // --- Tokens and faults --------------------------------------------------------------

    char peek() const { return m_pos < m_end ? *m_pos : '\0'; }

    void skipSpace()
    {
        while (m_pos < m_end && (*m_pos == ' ' || *m_pos == '\n' || *m_pos == '\r' || *m_pos == '\t'))
            ++m_pos;
    }

    void skipByteOrderMark()
    {
        if (m_end - m_pos >= 3 && std::memcmp(m_pos, "\xEF\xBB\xBF", 3) == 0)
            m_pos += 3;
    }

    void expect(char c, const char* what)
    {
        if (peek() != c)
            fail(QStringLiteral("expected %1, found %2").arg(QLatin1String(what), found()));
        ++m_pos;
    }

    // The opening of a value that a property's type asks for.
    void expectValue(char c, const char* what)
    {
        if (peek() != c)
            wrongType(what);
        ++m_pos;
    }

    [[noreturn]] void wrongType(const char* what)
    {
        fail(QStringLiteral("expected %1, found %2").arg(QLatin1String(what), found()));
    }

    // What stands at the position, in words.
    QString found() const
    {
        if (m_pos >= m_end)
            return QStringLiteral("the end of the text");
        switch (*m_pos) {
        case '"': return QStringLiteral("a string");
        case '{': return QStringLiteral("an object");
        case '[': return QStringLiteral("an array");
        case 't':
        case 'f':
            if (startsWith("true") || startsWith("false"))
                return QStringLiteral("a boolean");
            break;
        case 'n':
            if (startsWith("null"))
                return QStringLiteral("null");
            break;
        default:
            if (*m_pos == '-' || (*m_pos >= '0' && *m_pos <= '9'))
                return QStringLiteral("a number");
        }
        const uchar c = uchar(*m_pos);
        if (c >= 0x20 && c < 0x7F)
            return QStringLiteral("'%1'").arg(QLatin1Char(char(c)));
        return QStringLiteral("the byte 0x%1").arg(c, 2, 16, QLatin1Char('0'));
    }

    bool startsWith(const char* word) const
    {
        const size_t size = std::strlen(word);
        return size_t(m_end - m_pos) >= size && std::memcmp(m_pos, word, size) == 0;
    }

    static QString quoted(const QString& name) { return QLatin1Char('"') + name + QLatin1Char('"'); }

    // The JSON path of the value being read, as "$.EmitterDossier.Filter[2].Name".
    QString path() const
    {
        QString text = QStringLiteral("$");
        for (const PathStep& step : m_path) {
            if (step.name)
                text += QLatin1Char('.') + *step.name;
            else
                text += QStringLiteral("[%1]").arg(step.index);
        }
        return text;
    }

    [[noreturn]] void fail(const QString& what) const
    {
        // Lines counted from 1; columns in characters, not bytes.
        int line = 1;
        int column = 1;
        for (const char* s = m_begin; s < m_pos && s < m_end; ++s) {
            if (*s == '\n') {
                ++line;
                column = 1;
            } else if ((uchar(*s) & 0xC0) != 0x80) {
                ++column;
            }
        }
        throw JsonFault{
            QStringLiteral("JSON error at %1 (line %2, column %3): %4").arg(path()).arg(line).arg(column).arg(what)};
    }

    const char* const m_begin;
    const char* m_pos;
    const char* const m_end;
    std::vector<PathStep> m_path;
};

}  // namespace

QByteArray ToJson(const Record& record, JsonLayout layout) { return JsonWriter(layout).document(record); }

bool FromJson(Record& record, const QByteArray& json, QString* error)
{
    QString message;
    try {
        // Once for the whole read: every child made during it takes the setting when it is made.
        Internal::handDown(record);
        JsonReader(json).document(record);
        return true;
    } catch (const JsonFault& fault) {
        message = fault.message;
    } catch (const RKException& e) {
        message = e.GetMessage();
    }
    Internal::RecordAccess::trace(record, RECORDKIT::ERROR, RKException(message));
    if (error)
        *error = message;
    return false;
}

bool LooksLikeJson(const QByteArray& bytes)
{
    const char* s = bytes.constData();
    const char* end = s + bytes.size();
    if (end - s >= 3 && std::memcmp(s, "\xEF\xBB\xBF", 3) == 0)
        s += 3;
    while (s < end && (*s == ' ' || *s == '\n' || *s == '\r' || *s == '\t'))
        ++s;
    return s < end && *s == '{';
}

QString JsonRootName(const QByteArray& json, QString* problem)
{
    try {
        return JsonReader(json).rootName();
    } catch (const JsonFault& fault) {
        if (problem)
            *problem = fault.message;
        return QString();
    }
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
