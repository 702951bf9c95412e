#pragma once

// What the header, source and registry writers share: the names and spellings
// that the generated code uses for a field, and the layout of long lists.

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include "SchemaModel.h"

namespace Codegen {

using ClassMap = QHash<QString, const SchemaClass*>;

// The first line of every generated file.
QString banner(const QString& from);

QString hex32(quint32 value);
// m_<property> with a lower-case first letter, as reports name the member.
QString memberName(const QString& property);
// A C string literal of 8-bit text.
QString latin1Literal(const QString& text);
bool isEnumList(const Field& f);
// The C++ type of a field's value, its initialiser in the payload (" = 0" or
// empty), its Frame::Kind and Frame::XmlForm names, its flags and its
// one-line description.
QString cppType(const Field& f);
QString initialValue(const Field& f);
QString kindName(const Field& f);
QString xmlName(const Field& f);
QString flagsOf(const Field& f);
QString describe(const Field& f);
// The subsystem of a class: the last folder of its description, "values" for schema/values.
QString subsystem(const SchemaClass& cls);
// The fields in bit order, as the class declares its properties.
QVector<Field> fieldsInBitOrder(const SchemaClass& cls);

// The widest line the generator writes where the content allows it.
constexpr int LineWidth = 120;

// `items` joined by `separator` after `first`, wrapped onto lines that start
// with `indent`, with `last` after the final item; one line when it fits.
QString wrapList(const QString& first, const QStringList& items, const QString& indent, const QString& last,
                 const QString& separator = QStringLiteral(", "));
// Words of text wrapped onto lines that start with `indent`.
QString wrapWords(const QString& text, const QString& indent);
// `items`, one per line with `indent`, each followed by a comma.
QString oneItemPerLine(const QStringList& items, const QString& indent);
// A function definition: "signature { body }" when it fits on a line,
// otherwise signature, braces and body on lines of their own.
QString functionDefinition(const QString& signature, const QString& body);

// The generated files of one class and of the whole description.
QString headerText(const SchemaClass& cls, const ClassMap& classes);
QString sourceText(const SchemaClass& cls);
QString umbrellaText(const Schema& schema);
QString registryText(const Schema& schema);

}  // namespace Codegen
