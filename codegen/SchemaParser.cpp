#include "SchemaParser.h"

#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QTextStream>

namespace Codegen {

namespace {

// Flags a field may carry: rules of its own that its row does not say.
//   omitWhenEmpty           the tagged form has the list's record only when it holds
//                           items, and the raw form its count only under the bit
//   noIncompleteItemReport  the XML writer does not report the list's incomplete items
const QStringList KnownFlags = {QStringLiteral("omitWhenEmpty"), QStringLiteral("noIncompleteItemReport")};

struct Line {
    QStringList words;  // quoted words keep their quotes
    int number = 0;
};

QString where(const QString& file, int line) { return QStringLiteral("%1:%2: ").arg(file).arg(line); }

// Splits a line into words; "quoted text" is one word, # starts a comment.
bool splitLine(const QString& text, QStringList& words, QString& error)
{
    int i = 0;
    while (i < text.size()) {
        const QChar c = text.at(i);
        if (c.isSpace()) {
            ++i;
        } else if (c == QLatin1Char('#')) {
            break;
        } else if (c == QLatin1Char('"')) {
            const int end = text.indexOf(QLatin1Char('"'), i + 1);
            if (end < 0) {
                error = QStringLiteral("unterminated quoted text");
                return false;
            }
            words.append(text.mid(i, end - i + 1));
            i = end + 1;
        } else {
            int end = i;
            while (end < text.size() && !text.at(end).isSpace())
                ++end;
            words.append(text.mid(i, end - i));
            i = end;
        }
    }
    return true;
}

bool isQuoted(const QString& word) { return word.size() >= 2 && word.startsWith(QLatin1Char('"')); }
QString unquote(const QString& word) { return word.mid(1, word.size() - 2); }

bool isIdentifier(const QString& word)
{
    static const QRegularExpression identifier(QStringLiteral("^[A-Za-z_][A-Za-z0-9_]*$"));
    return identifier.match(word).hasMatch();
}

bool parseHex32(const QString& word, quint32& value)
{
    if (!word.startsWith(QLatin1String("0x")) || word.size() != 10)
        return false;
    bool ok = false;
    value = word.mid(2).toUInt(&ok, 16);
    return ok;
}

class Parser {
public:
    Parser(const QString& path, const QString& folder, Schema& schema)
        : m_path(path), m_folder(folder), m_schema(schema)
    {
    }

    bool run(QString& error)
    {
        QFile file(m_path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            error = QStringLiteral("%1: cannot open: %2").arg(m_path, file.errorString());
            return false;
        }
        QTextStream in(&file);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        in.setCodec("UTF-8");  // a Qt 6 text stream reads UTF-8 unless told otherwise
#endif
        int number = 0;
        while (!in.atEnd()) {
            const QString text = in.readLine();
            ++number;
            Line line;
            line.number = number;
            QString problem;
            if (!splitLine(text, line.words, problem))
                return fail(number, problem, error);
            if (line.words.isEmpty())
                continue;
            // A line that starts with a quoted name goes on with the list of
            // names of the line before it.
            if (isQuoted(line.words.first()) && !m_lines.isEmpty() && isQuoted(m_lines.last().words.last()))
                m_lines.last().words += line.words;
            else
                m_lines.append(line);
        }
        for (m_pos = 0; m_pos < m_lines.size();) {
            const Line& line = m_lines.at(m_pos);
            const QString& head = line.words.first();
            bool ok = false;
            if (head == QLatin1String("class"))
                ok = parseClass(error);
            else if (head == QLatin1String("family"))
                ok = parseFamily(error);
            else
                return fail(line.number, QStringLiteral("expected 'class' or 'family', found '%1'").arg(head), error);
            if (!ok)
                return false;
        }
        return true;
    }

private:
    bool fail(int line, const QString& message, QString& error) const
    {
        error = where(m_path, line) + message;
        return false;
    }

    // "class Name 0xID" followed by rows, doc, enum and flag lines, and "end".
    // "doc \"text\"" documents the class, "doc <field> \"text\"" one of its fields.
    bool parseClass(QString& error)
    {
        const Line& head = m_lines.at(m_pos++);
        if (head.words.size() != 3 || !isIdentifier(head.words.at(1)))
            return fail(head.number, QStringLiteral("expected: class <Name> <0xid>"), error);
        SchemaClass cls;
        cls.name = head.words.at(1);
        cls.folder = m_folder;
        cls.sourceFile = m_path;
        cls.file = m_path;
        cls.line = head.number;
        if (!parseHex32(head.words.at(2), cls.id))
            return fail(head.number, QStringLiteral("class id must be 0x followed by 8 hex digits"), error);
        QHash<QString, QStringList> enums;
        QHash<QString, int> enumLines;
        QVector<QPair<QString, QString>> flags;  // field, flag
        QVector<int> flagLines;
        QVector<Line> fieldDocs;
        while (true) {
            if (m_pos >= m_lines.size())
                return fail(head.number, QStringLiteral("class %1 has no 'end'").arg(cls.name), error);
            const Line& line = m_lines.at(m_pos++);
            const QString& word = line.words.first();
            if (word == QLatin1String("end"))
                break;
            if (word == QLatin1String("doc") && line.words.size() == 3) {
                fieldDocs.append(line);
            } else if (word == QLatin1String("doc")) {
                if (!parseDoc(line, cls.doc, error))
                    return false;
            } else if (word == QLatin1String("enum")) {
                if (line.words.size() < 3 || !isIdentifier(line.words.at(1)))
                    return fail(line.number, QStringLiteral("expected: enum <field> \"name\" ..."), error);
                QStringList names;
                if (!parseNames(line, 2, names, error))
                    return false;
                enums.insert(line.words.at(1), names);
                enumLines.insert(line.words.at(1), line.number);
            } else if (word == QLatin1String("flag")) {
                if (line.words.size() != 3 || !KnownFlags.contains(line.words.at(1)))
                    return fail(line.number,
                                QStringLiteral("expected: flag <name> <field>; known flags: %1")
                                    .arg(KnownFlags.join(QStringLiteral(", "))),
                                error);
                flags.append(qMakePair(line.words.at(2), line.words.at(1)));
                flagLines.append(line.number);
            } else if (word == QLatin1String("version")) {
                if (line.words.size() != 3 || !isQuoted(line.words.at(1)) ||
                    !parseHex32(line.words.at(2), cls.versionTag))
                    return fail(line.number, QStringLiteral("expected: version \"<text>\" <0xtag>"), error);
                cls.version = unquote(line.words.at(1));
            } else {
                Field field;
                if (!parseRow(line, field, error))
                    return false;
                cls.fields.append(field);
            }
        }
        for (Field& field : cls.fields) {
            if (field.type != FieldType::Enum)
                continue;
            if (!enums.contains(field.name))
                return fail(field.line,
                            QStringLiteral("enumeration %1 has no 'enum %1' line with its names").arg(field.name),
                            error);
            field.enumNames = enums.take(field.name);
        }
        if (!enums.isEmpty())
            return fail(enumLines.value(enums.keys().first()),
                        QStringLiteral("'enum %1' names no enumeration field").arg(enums.keys().first()), error);
        for (int i = 0; i < flags.size(); ++i) {
            Field* target = nullptr;
            for (Field& field : cls.fields)
                if (field.name == flags.at(i).first)
                    target = &field;
            if (!target || target->xml != XmlShape::List)
                return fail(flagLines.at(i),
                            QStringLiteral("flag %1 needs a list field of %2, found '%3'")
                                .arg(flags.at(i).second, cls.name, flags.at(i).first),
                            error);
            target->flags.append(flags.at(i).second);
        }
        if (!applyFieldDocs(fieldDocs, cls.name, cls.fields, error))
            return false;
        m_schema.classes.append(cls);
        return true;
    }

    // "family Name", rows shared by its members, and "member Class 0xID "name"..."
    // lines whose names are those of the family's one enumeration.
    bool parseFamily(QString& error)
    {
        const Line& head = m_lines.at(m_pos++);
        if (head.words.size() != 2 || !isIdentifier(head.words.at(1)))
            return fail(head.number, QStringLiteral("expected: family <Name>"), error);
        QString doc;
        QVector<Field> rows;
        QVector<Line> members;
        QVector<Line> fieldDocs;
        while (true) {
            if (m_pos >= m_lines.size())
                return fail(head.number, QStringLiteral("family %1 has no 'end'").arg(head.words.at(1)), error);
            const Line& line = m_lines.at(m_pos++);
            const QString& word = line.words.first();
            if (word == QLatin1String("end"))
                break;
            if (word == QLatin1String("doc") && line.words.size() == 3) {
                fieldDocs.append(line);
            } else if (word == QLatin1String("doc")) {
                if (!parseDoc(line, doc, error))
                    return false;
            } else if (word == QLatin1String("member")) {
                members.append(line);
            } else {
                Field field;
                if (!parseRow(line, field, error))
                    return false;
                rows.append(field);
            }
        }
        if (!applyFieldDocs(fieldDocs, head.words.at(1), rows, error))
            return false;
        int enumRows = 0;
        for (const Field& f : rows)
            enumRows += f.type == FieldType::Enum ? 1 : 0;
        if (enumRows > 1)
            return fail(head.number, QStringLiteral("a family may have one enumeration at most"), error);
        for (const Line& line : members) {
            if (line.words.size() < 3 || !isIdentifier(line.words.at(1)))
                return fail(line.number, QStringLiteral("expected: member <Class> <0xid> \"name\" ..."), error);
            SchemaClass cls;
            cls.name = line.words.at(1);
            cls.doc = doc;
            cls.folder = m_folder;
            cls.sourceFile = m_path;
            cls.file = m_path;
            cls.line = line.number;
            if (!parseHex32(line.words.at(2), cls.id))
                return fail(line.number, QStringLiteral("class id must be 0x followed by 8 hex digits"), error);
            QStringList names;
            if (!parseNames(line, 3, names, error))
                return false;
            if (enumRows == 0 && !names.isEmpty())
                return fail(line.number, QStringLiteral("the family has no enumeration to name"), error);
            if (enumRows == 1 && names.isEmpty())
                return fail(line.number, QStringLiteral("the member needs the names of the family's enumeration"),
                            error);
            cls.fields = rows;
            for (Field& f : cls.fields)
                if (f.type == FieldType::Enum)
                    f.enumNames = names;
            m_schema.classes.append(cls);
        }
        return true;
    }

    bool parseDoc(const Line& line, QString& doc, QString& error) const
    {
        if (line.words.size() != 2 || !isQuoted(line.words.at(1)))
            return fail(line.number,
                        QStringLiteral("expected: doc \"text\" or doc <field> \"text\", the text without quotes"),
                        error);
        doc = unquote(line.words.at(1));
        return true;
    }

    // "doc <field> \"text\"" lines: each names a field of `owner` once.
    bool applyFieldDocs(const QVector<Line>& docs, const QString& owner, QVector<Field>& fields, QString& error) const
    {
        for (const Line& line : docs) {
            if (!isIdentifier(line.words.at(1)) || !isQuoted(line.words.at(2)))
                return fail(line.number, QStringLiteral("expected: doc <field> \"text\""), error);
            Field* target = nullptr;
            for (Field& field : fields)
                if (field.name == line.words.at(1))
                    target = &field;
            if (!target)
                return fail(line.number, QStringLiteral("'doc %1' names no field of %2").arg(line.words.at(1), owner),
                            error);
            if (!target->doc.isEmpty())
                return fail(line.number, QStringLiteral("field %1 of %2 has a second doc").arg(target->name, owner),
                            error);
            target->doc = unquote(line.words.at(2));
            if (target->doc.isEmpty())
                return fail(line.number, QStringLiteral("the doc of %1 is empty").arg(target->name), error);
        }
        return true;
    }

    bool parseNames(const Line& line, int from, QStringList& names, QString& error) const
    {
        for (int i = from; i < line.words.size(); ++i) {
            const QString& word = line.words.at(i);
            if (!isQuoted(word))
                return fail(line.number, QStringLiteral("enumeration names are quoted: %1").arg(word), error);
            const QString name = unquote(word);
            for (const QChar c : name)
                if (c.unicode() > 0xFF)
                    return fail(line.number, QStringLiteral("'%1' is not 8-bit text").arg(name), error);
            if (name.isEmpty() || names.contains(name))
                return fail(line.number, QStringLiteral("enumeration name '%1' is empty or repeated").arg(name), error);
            names.append(name);
        }
        return true;
    }

    // "<bit> <field> <xml> <type> <presence> <tag>"
    bool parseRow(const Line& line, Field& field, QString& error) const
    {
        const QStringList& w = line.words;
        if (w.size() != 6)
            return fail(line.number, QStringLiteral("expected a row: <bit> <field> <xml> <type> <presence> <tag>"),
                        error);
        field.file = m_path;
        field.line = line.number;
        bool ok = false;
        field.bit = w.at(0).toInt(&ok);
        if (!ok || field.bit < 0 || field.bit > 31)
            return fail(line.number, QStringLiteral("bit must be a number from 0 to 31, found '%1'").arg(w.at(0)),
                        error);
        field.name = w.at(1);
        if (!isIdentifier(field.name))
            return fail(line.number, QStringLiteral("'%1' is not a field name").arg(field.name), error);
        static const QHash<QString, XmlShape> shapes = {{QStringLiteral("attribute"), XmlShape::Attribute},
                                                        {QStringLiteral("element"), XmlShape::Element},
                                                        {QStringLiteral("content"), XmlShape::Content},
                                                        {QStringLiteral("child"), XmlShape::Child},
                                                        {QStringLiteral("list"), XmlShape::List}};
        if (!shapes.contains(w.at(2)))
            return fail(
                line.number,
                QStringLiteral("unknown XML shape '%1' (attribute, element, content, child, list)").arg(w.at(2)),
                error);
        field.xml = shapes.value(w.at(2));
        static const QHash<QString, FieldType> types = {{QStringLiteral("double"), FieldType::Double},
                                                        {QStringLiteral("uint64"), FieldType::UInt64},
                                                        {QStringLiteral("bool"), FieldType::Bool},
                                                        {QStringLiteral("text"), FieldType::Text},
                                                        {QStringLiteral("datetime"), FieldType::DateTime},
                                                        {QStringLiteral("enum"), FieldType::Enum}};
        if (types.contains(w.at(3))) {
            field.type = types.value(w.at(3));
        } else if (isIdentifier(w.at(3)) && w.at(3).at(0).isUpper()) {
            field.type = FieldType::Class;
            field.className = w.at(3);
        } else {
            return fail(line.number,
                        QStringLiteral("unknown type '%1' (double, uint64, bool, text, datetime, enum or a class)")
                            .arg(w.at(3)),
                        error);
        }
        const bool nested = field.xml == XmlShape::Child || field.xml == XmlShape::List;
        const bool enumList = field.xml == XmlShape::List && field.type == FieldType::Enum;
        if (nested != (field.type == FieldType::Class) && !enumList)
            return fail(line.number,
                        QStringLiteral("child and list fields hold a class (a list may hold an enum), "
                                       "other fields a value"),
                        error);
        if (w.at(4) == QLatin1String("mandatory"))
            field.mandatory = true;
        else if (w.at(4) != QLatin1String("optional"))
            return fail(line.number, QStringLiteral("presence is 'mandatory' or 'optional', found '%1'").arg(w.at(4)),
                        error);
        if (!parseHex32(w.at(5), field.tag))
            return fail(line.number, QStringLiteral("tag must be 0x followed by 8 hex digits"), error);
        return true;
    }

    QString m_path;
    QString m_folder;
    Schema& m_schema;
    QVector<Line> m_lines;
    int m_pos = 0;
};

QString kindKey(const Field& f)
{
    if (f.xml == XmlShape::List && f.type == FieldType::Enum)
        return QStringLiteral("object");  // a list of names shares its tag with the object of that name
    switch (f.type) {
    case FieldType::Class: return f.xml == XmlShape::List ? QStringLiteral("list") : QStringLiteral("object");
    case FieldType::Double: return QStringLiteral("double");
    case FieldType::UInt64: return QStringLiteral("uint64");
    case FieldType::Bool: return QStringLiteral("bool");
    case FieldType::Text: return QStringLiteral("text");
    case FieldType::DateTime: return QStringLiteral("datetime");
    case FieldType::Enum: return QStringLiteral("enum");
    }
    return QString();
}

}  // namespace

bool parseSchemaFile(const QString& path, const QString& folder, Schema& schema, QString& error)
{
    Parser parser(path, folder, schema);
    return parser.run(error);
}

bool validateSchema(const Schema& schema, QString& error)
{
    QHash<QString, const SchemaClass*> byName;
    QHash<quint32, const SchemaClass*> byId;
    for (const SchemaClass& cls : schema.classes) {
        const QString at = where(cls.file, cls.line);
        if (byName.contains(cls.name)) {
            error = at + QStringLiteral("class %1 is described twice").arg(cls.name);
            return false;
        }
        if (byId.contains(cls.id)) {
            error = at + QStringLiteral("class id of %1 is also that of %2").arg(cls.name, byId.value(cls.id)->name);
            return false;
        }
        byName.insert(cls.name, &cls);
        byId.insert(cls.id, &cls);
    }
    // One tag per field name and kind, across the whole schema.
    QHash<QString, quint32> tagOfField;
    QHash<quint32, QString> fieldOfTag;
    for (const SchemaClass& cls : schema.classes) {
        if (cls.fields.isEmpty() || cls.fields.size() > 32) {
            error = where(cls.file, cls.line) + QStringLiteral("class %1 needs 1 to 32 fields").arg(cls.name);
            return false;
        }
        QSet<int> bits;
        QSet<QString> names;
        QSet<quint32> tags;
        int contents = 0;
        for (const Field& f : cls.fields) {
            const QString at = where(f.file, f.line);
            if (f.bit >= cls.fields.size() || bits.contains(f.bit)) {
                error = at + QStringLiteral("bit %1 of %2 is repeated or outside 0..%3")
                                 .arg(f.bit)
                                 .arg(cls.name)
                                 .arg(cls.fields.size() - 1);
                return false;
            }
            if (names.contains(f.name) || tags.contains(f.tag)) {
                error = at + QStringLiteral("field %1 of %2 repeats a name or a tag").arg(f.name, cls.name);
                return false;
            }
            bits.insert(f.bit);
            names.insert(f.name);
            tags.insert(f.tag);
            if (f.type == FieldType::Class && !byName.contains(f.className)) {
                error = at + QStringLiteral("unknown class %1").arg(f.className);
                return false;
            }
            if (f.xml == XmlShape::Content)
                ++contents;
            const QString key = f.name + QLatin1Char('/') + kindKey(f);
            if (tagOfField.contains(key) && tagOfField.value(key) != f.tag) {
                error = at + QStringLiteral("field %1 has tag 0x%2 here and 0x%3 elsewhere")
                                 .arg(f.name)
                                 .arg(f.tag, 8, 16, QLatin1Char('0'))
                                 .arg(tagOfField.value(key), 8, 16, QLatin1Char('0'));
                return false;
            }
            tagOfField.insert(key, f.tag);
            if (fieldOfTag.contains(f.tag) && fieldOfTag.value(f.tag) != f.name) {
                error = at + QStringLiteral("tag 0x%1 of %2 is also the tag of %3")
                                 .arg(f.tag, 8, 16, QLatin1Char('0'))
                                 .arg(f.name, fieldOfTag.value(f.tag));
                return false;
            }
            fieldOfTag.insert(f.tag, f.name);
        }
        if (contents > 1) {
            error = where(cls.file, cls.line) +
                    QStringLiteral("class %1 has more than one content field").arg(cls.name);
            return false;
        }
        if (contents == 1) {
            for (const Field& f : cls.fields)
                if (f.xml != XmlShape::Content && f.xml != XmlShape::Attribute) {
                    error = where(f.file, f.line) +
                            QStringLiteral("a class with text content has attributes only beside it");
                    return false;
                }
        }
    }
    // The API reference is written from these texts, so each class and field has one.
    for (const SchemaClass& cls : schema.classes) {
        if (cls.doc.isEmpty()) {
            error = where(cls.file, cls.line) + QStringLiteral("class %1 has no doc \"text\" line").arg(cls.name);
            return false;
        }
        for (const Field& f : cls.fields)
            if (f.doc.isEmpty()) {
                error = where(f.file, f.line) +
                        QStringLiteral("field %1 of %2 has no doc %1 \"text\" line").arg(f.name, cls.name);
                return false;
            }
    }
    return true;
}

}  // namespace Codegen
