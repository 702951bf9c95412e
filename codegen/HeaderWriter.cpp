// The public header of a generated class.

#include <QSet>

#include "CodeText.h"
#include "Template.h"

namespace Codegen {

namespace {

const char* const HeaderTemplate = R"cpp(${banner}#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QXmlStreamReader>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/frame/Record.h>
${includes}
namespace EMITTERDOSSIERDOC {

${doc}///
/// Element "${Class}", class id ${id}. Each property has its accessors in a
/// group of its own, titled with its XML shape, presence, bit and tag.
/// \ingroup ${subsystem}
class EDD_EXPORT ${Class} : public Frame::Record {
public:
${enums}
    /// The class id, which is also the tag of the class's block in the tagged form.
    static constexpr qint64 id = ${id};
    /// The class id, as #id.
    static qint64 GetId();
    /// The class name without the namespace, "${Class}", which is also the element name.
    static QString GetStaticObjectName();
    /// The field table of the class, for the functions of Reflection.h.
    static const Frame::ClassInfo& StaticClassInfo();
${translation}
    /// An object without a payload; the payload is made at the first access.
    ${Class}();
    /// A copy of `other`'s properties and validate flag; the logger is not taken over.
    ${Class}(const ${Class}& other);
    /// Takes the whole object over, logger included, and leaves `other` empty.
    ${Class}(${Class}&& other) noexcept;
    /// Drops this object's share of its payload.
    ~${Class}() override;
    /// Shares the payload of `other` until either side is accessed; name, flag and logger stay.
    ${Class}& operator=(const ${Class}& other);
    /// True if both hold the same properties with the same values.
    bool operator==(const ${Class}& other) const;
    /// The negation of operator==.
    bool operator!=(const ${Class}& other) const;
    const Frame::ClassInfo& GetClassInfo() const override;
${leaf}${version}${fields}
private:
    struct Data;
    Data& data() const;
};

}  // namespace EMITTERDOSSIERDOC

EDD_DECLARE_RELOCATABLE(EMITTERDOSSIERDOC::${Class});
)cpp";

const char* const IncludeTemplate = "#include <EmitterDossierDoc/${subsystem}/${Class}.h>\n";

const char* const TranslationTemplate =
    R"cpp(    /// QCoreApplication::translate in the context "EMITTERDOSSIERDOC::${Class}".
    static QString tr(const char* source, const char* comment = nullptr, int n = -1);
    /// As tr().
    static QString trUtf8(const char* source, const char* comment = nullptr, int n = -1);
)cpp";

const char* const LeafTemplate = R"cpp(    /// Reads the element the reader stands on; the body of ProcessXml.
    void ReadValuesFromXml(QXmlStreamReader& reader);
)cpp";

const char* const VersionTemplate = R"cpp(
    /// The schema version, "${version}", written first in every form.
    const QString& GetVersion() const override;
    /// The version text of what was last read; null until then.
    const QString& GetInitialVersionLoaded() const;
)cpp";

const char* const NumberDeclarations = R"cpp(    ${T} Get${X}() const;
    void Set${X}(${T} value);
${common}    bool IsValid${X}(const ${T}& value) const;
    const ${T} GetDefault${X}() const;
)cpp";

const char* const BoolDeclarations = R"cpp(    bool Get${X}() const;
    void Set${X}(bool value);
${common}    const bool GetDefault${X}() const;
)cpp";

const char* const TextDeclarations = R"cpp(    QString Get${X}() const;
    void Set${X}(const QString& value);
${common}    bool IsValid${X}(const QString& value) const;
    const QString GetDefault${X}() const;
)cpp";

const char* const DateTimeDeclarations = R"cpp(    QDateTime& Get${X}();
    const QDateTime& Get${X}() const;
    void Set${X}(const QDateTime& value);
${common}    bool IsValid${X}(const QDateTime& value) const;
    const QDateTime GetDefault${X}() const;
)cpp";

const char* const EnumListDeclarations = R"cpp(    QVector<${X}>& Get${X}();
    const QVector<${X}>& Get${X}() const;
    void Set${X}(const QVector<${X}>& value);
    void Append${X}(const ${X}& value);
${common}    bool IsValid${X}(const ${X}& value) const;
    bool IsValid${X}(const QVector<${X}>& values) const;
    const ${X} GetDefault${X}() const;
    const ${X} GetInvalid${X}() const;
    QString ${X}ToName(const ${X}& value) const;
    ${X} NameTo${X}(const QString& name) const;
    static QStringList Get${X}s();
    static QStringList GetGUI${X}s();
)cpp";

const char* const EnumDeclarations = R"cpp(    const ${X}& Get${X}() const;
    void Set${X}(const ${X}& value);
${common}    bool IsValid${X}(const ${X}& value) const;
    const ${X} GetDefault${X}() const;
    const ${X} GetInvalid${X}() const;
    QString Get${X}AsString() const;
    QString ${X}ToName(const ${X}& value) const;
    ${X} NameTo${X}(const QString& name) const;
    static QStringList Get${X}s();
    static QStringList GetGUI${X}s();
)cpp";

const char* const ChildDeclarations = R"cpp(    ${T}& Get${X}();
    const ${T}& Get${X}() const;
    void Set${X}(const ${T}& value);
${common}    bool IsValid${X}(const ${T}& value) const;
    const ${T} GetDefault${X}() const;
)cpp";

const char* const ListDeclarations = R"cpp(    ${T}& Get${X}();
    const ${T}& Get${X}() const;
    void Set${X}(const ${T}& value);
    void Append${X}(const ${Item}& item);
${common}    bool IsValid${X}(const ${Item}& item) const;
    bool IsValid${X}(const ${T}& value) const;
    const ${T} GetDefault${X}() const;
)cpp";

const char* const CommonDeclarations = R"cpp(    bool Is${X}Set() const;
    void Reset${X}();
)cpp";

// The declarations of one property as a member group: its name, shape, bit
// and tag as the group's title, its doc on the first accessor, which the
// reference gives to every accessor of the group. The group's markers are
// comment blocks of their own, so that the doc stays the first accessor's.
QString declarations(const Field& f)
{
    TemplateValues values = {{"X", f.name}, {"T", cppType(f)}, {"Item", f.className}};
    values.insert(QStringLiteral("common"), render("CommonDeclarations", CommonDeclarations, values));
    const char* name = "";
    const char* text = "";
    switch (f.type) {
    case FieldType::Double:
    case FieldType::UInt64: name = "NumberDeclarations", text = NumberDeclarations; break;
    case FieldType::Bool: name = "BoolDeclarations", text = BoolDeclarations; break;
    case FieldType::Text: name = "TextDeclarations", text = TextDeclarations; break;
    case FieldType::DateTime: name = "DateTimeDeclarations", text = DateTimeDeclarations; break;
    case FieldType::Enum:
        if (isEnumList(f))
            name = "EnumListDeclarations", text = EnumListDeclarations;
        else
            name = "EnumDeclarations", text = EnumDeclarations;
        break;
    case FieldType::Class:
        if (f.xml == XmlShape::List)
            name = "ListDeclarations", text = ListDeclarations;
        else
            name = "ChildDeclarations", text = ChildDeclarations;
        break;
    }
    return render("PropertyTemplate",
                  "\n    /// \\name ${description}\n    /** @{ */\n${doc}${declarations}    /** @} */\n",
                  {{"description", describe(f)},
                   {"doc", wrapWords(f.doc, QStringLiteral("    /// "))},
                   {"declarations", render(name, text, values)}});
}

// The enumeration type of an enum field, with its names in a comment.
QString enumeration(const Field& f)
{
    QStringList quoted;
    for (const QString& n : f.enumNames)
        quoted.append(QLatin1Char('"') + n + QLatin1Char('"'));
    return wrapList(QStringLiteral("    /// A value of ") + f.name + QStringLiteral(": an index into the names "),
                    quoted, QStringLiteral("    ///     "), QStringLiteral("; 0xFF is invalid.")) +
           render("enumeration", "    enum ${X} : quint8 {};\n", {{"X", f.name}});
}

}  // namespace

QString headerText(const SchemaClass& c, const ClassMap& classes)
{
    QString includes;
    QSet<QString> included;
    for (const Field& f : c.fields)
        if (f.type == FieldType::Class && !included.contains(f.className)) {
            included.insert(f.className);
            includes += render("IncludeTemplate", IncludeTemplate,
                               {{"subsystem", subsystem(*classes.value(f.className))}, {"Class", f.className}});
        }
    QString enums;
    for (const Field& f : c.fields)
        if (f.type == FieldType::Enum)
            enums += enumeration(f);
    QString fields;
    for (const Field& f : fieldsInBitOrder(c))
        fields += declarations(f);
    return render("HeaderTemplate", HeaderTemplate,
                  {{"banner", banner(c.sourceFile.section(QLatin1Char('/'), -3))},
                   {"includes", includes},
                   {"doc", wrapWords(c.doc, QStringLiteral("/// "))},
                   {"Class", c.name},
                   {"subsystem", subsystem(c)},
                   {"id", hex32(c.id)},
                   {"enums", enums},
                   {"translation",
                    c.hasEnum() ? render("TranslationTemplate", TranslationTemplate, {{"Class", c.name}}) : QString()},
                   {"leaf", c.isLeaf() ? render("LeafTemplate", LeafTemplate, {}) : QString()},
                   {"version", c.version.isEmpty()
                                   ? QString()
                                   : render("VersionTemplate", VersionTemplate, {{"version", c.version}})},
                   {"fields", fields}});
}

}  // namespace Codegen
