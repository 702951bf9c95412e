#pragma once

// The schema description as the generator holds it after parsing.

#include <QString>
#include <QStringList>
#include <QVector>

namespace Codegen {

enum class FieldType { Double, UInt64, Bool, Text, DateTime, Enum, Class };
// A list of enumeration values is a `list` row of type `enum`.
enum class XmlShape { Attribute, Element, Content, Child, List };

struct Field {
    int bit = -1;
    QString name;
    XmlShape xml = XmlShape::Element;
    FieldType type = FieldType::Double;
    QString className;  // for Class: the child's or item's class
    bool mandatory = false;
    quint32 tag = 0;
    QStringList enumNames;  // for Enum, in index order
    QStringList flags;      // rules of the field beyond its kind and presence
    QString doc;            // what the value is, one line
    QString file;
    int line = 0;
};

struct SchemaClass {
    QString name;
    quint32 id = 0;
    QString doc;
    QString folder;  // subsystem folder relative to the source root, e.g. "schema/values"
    QString sourceFile;
    QVector<Field> fields;  // in the order of writing
    QString version;        // the schema version a root class carries, or empty
    quint32 versionTag = 0;
    QString file;
    int line = 0;

    bool isLeaf() const
    {
        for (const Field& f : fields)
            if (f.xml == XmlShape::Content)
                return true;
        return false;
    }
    bool hasEnum() const
    {
        for (const Field& f : fields)
            if (f.type == FieldType::Enum)
                return true;
        return false;
    }
};

struct Schema {
    QVector<SchemaClass> classes;
};

}  // namespace Codegen
