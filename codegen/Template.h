#pragma once

// Code text is written from templates with named fields: ${Class} in a
// template stands for the value named "Class".

#include <QHash>
#include <QString>

#include <stdexcept>

namespace Codegen {

using TemplateValues = QHash<QString, QString>;

// A template that names a field without a value: a mistake of the generator.
class TemplateError : public std::runtime_error {
public:
    explicit TemplateError(const QString& message);
};

// The template `text`, called `name` in errors, with every ${field} replaced
// by its value. Throws TemplateError naming the template and the field when a
// field has no value or a ${ is not closed.
QString render(const char* name, const char* text, const TemplateValues& values);

}  // namespace Codegen
