// The source of a generated class: its payload, its field table and the
// definitions of its members.

#include "CodeText.h"
#include "Template.h"

namespace Codegen {

namespace {

const char* const SourceTemplate = R"cpp(${banner}#include <EmitterDossierDoc/${subsystem}/${Class}.h>

#include <utility>

#include <QCoreApplication>

#include "schema/frame/Ops_p.h"

namespace EMITTERDOSSIERDOC {

using namespace Frame::Internal;

namespace {

const QString fieldNames[] = {
${fieldNames}};
${enums}
}  // namespace

struct ${Class}::Data : Frame::PayloadOf<${Class}::Data> {
${versionMembers}${members}};

const Frame::ClassInfo& ${Class}::StaticClassInfo()
{
    using Frame::Kind;
    using Frame::Presence;
    using Frame::XmlForm;
    static const Frame::FieldInfo fields[] = {
        // name, tag, offset, bit, kind, XML form, presence, flags, names or nested operations
${rows}    };
${byBit}${versionInfo}    // name, object name, id, rows, rows by bit, version, payload factory
    static const Frame::ClassInfo info = Frame::makeClassInfo(
${classInfo}    return info;
}

qint64 ${Class}::GetId() { return id; }
QString ${Class}::GetStaticObjectName() { return QStringLiteral("${Class}"); }
${translation}
${Class}::${Class}() : Record(StaticClassInfo()) {}
${copy}${Class}::~${Class}() = default;
${Class}& ${Class}::operator=(const ${Class}& other)
{
    assign(*this, other);
    return *this;
}
bool ${Class}::operator==(const ${Class}& other) const { return equals(*this, other); }
bool ${Class}::operator!=(const ${Class}& other) const { return !equals(*this, other); }
const Frame::ClassInfo& ${Class}::GetClassInfo() const { return StaticClassInfo(); }
${Class}::Data& ${Class}::data() const { return static_cast<Data&>(payload(*this)); }
${leaf}${versionAccess}${definitions}
}  // namespace EMITTERDOSSIERDOC
)cpp";

const char* const EnumTemplate = R"cpp(const QStringList ${X}Names = {
${names}};
const Frame::EnumInfo ${X}Enum = {&${X}Names, "${member}"};
)cpp";

const char* const EnumListTemplate = R"cpp(const QStringList ${X}Names = {
${names}};
const Frame::EnumListInfo ${X}Enum =
    Frame::EnumListOpsFor<${Class}::${X}>::info(&${X}Names, "${member}");
)cpp";

const char* const VersionMembersTemplate = R"cpp(    QString m_version = QStringLiteral("${version}");
    QString m_initialVersionLoaded;
)cpp";

const char* const MemberTemplate = "    ${T} ${member}${initial};\n";

const char* const RowTemplate =
    "        {&fieldNames[${index}], ${tag}u, EDD_FIELD_OFFSET(Data, ${member}), ${bit}, Kind::${kind}, "
    "XmlForm::${xml}, Presence::${presence}, ${flags}, ${aux}},\n";

const char* const VersionInfoTemplate = R"cpp(    static const QString versionText = QStringLiteral("${version}");
    static const Frame::VersionInfo versionInfo = {
        &versionText, ${tag}u, EDD_FIELD_OFFSET(Data, m_version), EDD_FIELD_OFFSET(Data, m_initialVersionLoaded)};
)cpp";

const char* const TranslationTemplate = R"cpp(QString ${Class}::tr(const char* source, const char* comment, int n)
{
    return QCoreApplication::translate("EMITTERDOSSIERDOC::${Class}", source, comment, n);
}
${trUtf8})cpp";

const char* const LeafTemplate =
    "void ${Class}::ReadValuesFromXml(QXmlStreamReader& reader) { readLeafXml(*this, reader); }\n";

const char* const VersionAccessTemplate =
    "const QString& ${Class}::GetVersion() const { return schemaVersion(*this); }\n"
    "const QString& ${Class}::GetInitialVersionLoaded() const { return loadedVersion(*this); }\n";

// A member function: its signature and its one-statement body.
struct Definition {
    const char* signature;
    const char* body;
};

const Definition NumberDefinitions[] = {
    {"${T} ${Class}::Get${X}() const", "return data().${m};"},
    {"void ${Class}::Set${X}(${T} value)", "setValue(*this, ${bit}, data().${m}, value);"},
    {"bool ${Class}::IsValid${X}(const ${T}&) const", "return true;"},
    {"const ${T} ${Class}::GetDefault${X}() const", "return 0;"},
};

const Definition BoolDefinitions[] = {
    {"bool ${Class}::Get${X}() const", "return data().${m};"},
    {"void ${Class}::Set${X}(bool value)", "setValue(*this, ${bit}, data().${m}, value);"},
    {"const bool ${Class}::GetDefault${X}() const", "return false;"},
};

const Definition TextDefinitions[] = {
    {"QString ${Class}::Get${X}() const", "return data().${m};"},
    {"void ${Class}::Set${X}(const QString& value)", "setText(*this, ${bit}, value);"},
    {"bool ${Class}::IsValid${X}(const QString& value) const", "return !value.isNull();"},
    {"const QString ${Class}::GetDefault${X}() const", "return QString();"},
};

const Definition DateTimeDefinitions[] = {
    {"QDateTime& ${Class}::Get${X}()", "return marked(*this, ${bit}, data().${m});"},
    {"const QDateTime& ${Class}::Get${X}() const", "return data().${m};"},
    {"void ${Class}::Set${X}(const QDateTime& value)", "setValue(*this, ${bit}, data().${m}, value);"},
    {"bool ${Class}::IsValid${X}(const QDateTime&) const", "return true;"},
    {"const QDateTime ${Class}::GetDefault${X}() const", "return QDateTime();"},
};

const Definition EnumListDefinitions[] = {
    {"QVector<${Class}::${X}>& ${Class}::Get${X}()", "return marked(*this, ${bit}, data().${m});"},
    {"const QVector<${Class}::${X}>& ${Class}::Get${X}() const", "return data().${m};"},
    {"void ${Class}::Set${X}(const QVector<${X}>& value)", "setValue(*this, ${bit}, data().${m}, value);"},
    {"void ${Class}::Append${X}(const ${X}& value)", "appendEnum(*this, ${bit}, value);"},
    {"bool ${Class}::IsValid${X}(const QVector<${X}>& values) const", "return allValid(*this, ${bit}, values);"},
};

const Definition EnumDefinitions[] = {
    {"const ${Class}::${X}& ${Class}::Get${X}() const", "return data().${m};"},
    {"void ${Class}::Set${X}(const ${X}& value)", "setEnum(*this, ${bit}, value);"},
    {"QString ${Class}::Get${X}AsString() const", "return ${X}ToName(Get${X}());"},
};

// The members of every enumeration, one value or repeated.
const Definition EnumMemberDefinitions[] = {
    {"bool ${Class}::IsValid${X}(const ${X}& value) const", "return enumValid(*this, ${bit}, value);"},
    {"const ${Class}::${X} ${Class}::GetDefault${X}() const", "return ${X}(0xFF);"},
    {"const ${Class}::${X} ${Class}::GetInvalid${X}() const", "return ${X}(0xFF);"},
    {"QString ${Class}::${X}ToName(const ${X}& value) const", "return enumName(*this, ${bit}, value);"},
    {"${Class}::${X} ${Class}::NameTo${X}(const QString& name) const", "return ${X}(enumIndex(*this, ${bit}, name));"},
    {"QStringList ${Class}::Get${X}s()", "return ${X}Names;"},
    {"QStringList ${Class}::GetGUI${X}s()", "return translatedNames(${X}Names);"},
};

const Definition ChildDefinitions[] = {
    {"${T}& ${Class}::Get${X}()", "return marked(*this, ${bit}, data().${m});"},
    {"const ${T}& ${Class}::Get${X}() const", "return data().${m};"},
    {"void ${Class}::Set${X}(const ${T}& value)", "setValue(*this, ${bit}, data().${m}, value);"},
};

const Definition ListMemberDefinitions[] = {
    {"void ${Class}::Append${X}(const ${Item}& item)", "appendItem(*this, ${bit}, item);"},
    {"bool ${Class}::IsValid${X}(const ${Item}&) const", "return true;"},
};

const Definition ClassValueDefinitions[] = {
    {"bool ${Class}::IsValid${X}(const ${T}&) const", "return true;"},
    {"const ${T} ${Class}::GetDefault${X}() const", "return ${T}();"},
};

const Definition CommonDefinitions[] = {
    {"bool ${Class}::Is${X}Set() const", "return isSet(*this, ${bit});"},
    {"void ${Class}::Reset${X}()", "resetField(*this, ${bit});"},
};

template <int N>
QString define(const char* name, const Definition (&definitions)[N], const TemplateValues& values)
{
    QString out;
    for (const Definition& d : definitions)
        out += functionDefinition(render(name, d.signature, values), render(name, d.body, values));
    return out;
}

// The definitions of one property.
QString definitions(const SchemaClass& c, const Field& f)
{
    const TemplateValues values = {{"Class", c.name},         {"X", f.name},         {"T", cppType(f)},
                                   {"m", memberName(f.name)}, {"Item", f.className}, {"bit", QString::number(f.bit)}};
    QString d;
    switch (f.type) {
    case FieldType::Double:
    case FieldType::UInt64: d += define("NumberDefinitions", NumberDefinitions, values); break;
    case FieldType::Bool: d += define("BoolDefinitions", BoolDefinitions, values); break;
    case FieldType::Text: d += define("TextDefinitions", TextDefinitions, values); break;
    case FieldType::DateTime: d += define("DateTimeDefinitions", DateTimeDefinitions, values); break;
    case FieldType::Enum:
        if (isEnumList(f))
            d += define("EnumListDefinitions", EnumListDefinitions, values);
        else
            d += define("EnumDefinitions", EnumDefinitions, values);
        d += define("EnumMemberDefinitions", EnumMemberDefinitions, values);
        break;
    case FieldType::Class:
        d += define("ChildDefinitions", ChildDefinitions, values);
        if (f.xml == XmlShape::List)
            d += define("ListMemberDefinitions", ListMemberDefinitions, values);
        d += define("ClassValueDefinitions", ClassValueDefinitions, values);
        break;
    }
    return QLatin1Char('\n') + d + define("CommonDefinitions", CommonDefinitions, values);
}

// The names of the fields and of the enumerations, with the enumerations' tables.
QString enumTables(const SchemaClass& c)
{
    QString out;
    for (const Field& f : c.fields)
        if (f.type == FieldType::Enum) {
            QStringList literals;
            for (const QString& n : f.enumNames)
                literals.append(QStringLiteral("QString::fromLatin1(") + latin1Literal(n) + QLatin1Char(')'));
            const TemplateValues values = {{"X", f.name},
                                           {"Class", c.name},
                                           {"member", memberName(f.name)},
                                           {"names", oneItemPerLine(literals, QStringLiteral("    "))}};
            out += isEnumList(f) ? render("EnumListTemplate", EnumListTemplate, values)
                                 : render("EnumTemplate", EnumTemplate, values);
        }
    return out;
}

// What a row refers to beside its value: EnumInfo or EnumListInfo, ChildOps or ListOps.
QString auxiliary(const Field& f)
{
    if (f.type == FieldType::Enum)
        return render("enumAux", "&${X}Enum", {{"X", f.name}});
    if (f.type == FieldType::Class)
        return render("opsAux", "&Frame::${Ops}<${Item}>::ops",
                      {{"Ops", f.xml == XmlShape::List ? QStringLiteral("ListOpsFor") : QStringLiteral("ChildOpsFor")},
                       {"Item", f.className}});
    return QStringLiteral("nullptr");
}

QString rows(const SchemaClass& c)
{
    QString out;
    for (int i = 0; i < c.fields.size(); ++i) {
        const Field& f = c.fields.at(i);
        out += render("RowTemplate", RowTemplate,
                      {{"index", QString::number(i)},
                       {"tag", hex32(f.tag)},
                       {"member", memberName(f.name)},
                       {"bit", QString::number(f.bit)},
                       {"kind", kindName(f)},
                       {"xml", xmlName(f)},
                       {"presence", f.mandatory ? QStringLiteral("Mandatory") : QStringLiteral("Optional")},
                       {"flags", flagsOf(f)},
                       {"aux", auxiliary(f)}});
    }
    return out;
}

// trUtf8, the same as tr.
QString trUtf8(const SchemaClass& c)
{
    const char* const signature = "QString ${Class}::trUtf8(const char* source, const char* comment, int n)";
    return functionDefinition(render("trUtf8", signature, {{"Class", c.name}}),
                              QStringLiteral("return tr(source, comment, n);"));
}

// A constructor from another object of the class, on one line when it fits.
QString constructorFrom(const char* name, const TemplateValues& values)
{
    const QString line = render(
        name, "${Class}::${Class}(${parameter})${qualifier} : Record(${source}, StaticClassInfo()) {}\n", values);
    if (line.size() <= LineWidth + 1)
        return line;
    return render(name,
                  "${Class}::${Class}(${parameter})${qualifier}\n    : Record(${source}, StaticClassInfo())\n{\n}\n",
                  values);
}

// The copy constructor, then the move constructor.
QString copyAndMoveConstructors(const SchemaClass& c)
{
    return constructorFrom("copy", {{"Class", c.name},
                                    {"parameter", QStringLiteral("const %1& other").arg(c.name)},
                                    {"qualifier", QString()},
                                    {"source", QStringLiteral("other")}}) +
           constructorFrom("move", {{"Class", c.name},
                                    {"parameter", QStringLiteral("%1&& other").arg(c.name)},
                                    {"qualifier", QStringLiteral(" noexcept")},
                                    {"source", QStringLiteral("std::move(other)")}});
}

}  // namespace

QString sourceText(const SchemaClass& c)
{
    QStringList names;
    for (const Field& f : c.fields)
        names.append(QStringLiteral("QStringLiteral(\"") + f.name + QStringLiteral("\")"));
    QString members;
    for (const Field& f : fieldsInBitOrder(c))
        members += render("MemberTemplate", MemberTemplate,
                          {{"T", cppType(f)}, {"member", memberName(f.name)}, {"initial", initialValue(f)}});
    QStringList byBit;
    for (int i = 0; i < c.fields.size(); ++i)
        byBit.append(QString());
    for (int i = 0; i < c.fields.size(); ++i)
        byBit[c.fields.at(i).bit] = QString::number(i);
    QString definitionText;
    for (const Field& f : fieldsInBitOrder(c))
        definitionText += definitions(c, f);
    const bool versioned = !c.version.isEmpty();
    const QStringList classInfo = {QLatin1Char('"') + c.name + QLatin1Char('"'),
                                   QStringLiteral("&") + c.name + QStringLiteral("::GetStaticObjectName"),
                                   QStringLiteral("id"),
                                   QStringLiteral("fields"),
                                   QStringLiteral("byBit"),
                                   versioned ? QStringLiteral("&versionInfo") : QStringLiteral("Frame::NoVersion"),
                                   QStringLiteral("&Data::create")};
    const TemplateValues classValues = {{"Class", c.name},
                                        {"version", c.version},
                                        {"tag", hex32(c.versionTag)},
                                        {"trUtf8", trUtf8(c)}};
    return render(
        "SourceTemplate", SourceTemplate,
        {{"banner", banner(c.sourceFile.section(QLatin1Char('/'), -3))},
         {"subsystem", subsystem(c)},
         {"Class", c.name},
         {"fieldNames", oneItemPerLine(names, QStringLiteral("    "))},
         {"enums", enumTables(c)},
         {"versionMembers",
          versioned ? render("VersionMembersTemplate", VersionMembersTemplate, classValues) : QString()},
         {"members", members},
         {"rows", rows(c)},
         {"byBit", wrapList(QStringLiteral("    static const quint8 byBit[] = {"), byBit, QStringLiteral("        "),
                            QStringLiteral("};"))},
         {"versionInfo", versioned ? render("VersionInfoTemplate", VersionInfoTemplate, classValues) : QString()},
         {"classInfo",
          wrapList(QStringLiteral("        "), classInfo, QStringLiteral("        "), QStringLiteral(");"))},
         {"translation", c.hasEnum() ? render("TranslationTemplate", TranslationTemplate, classValues) : QString()},
         {"copy", copyAndMoveConstructors(c)},
         {"leaf", c.isLeaf() ? render("LeafTemplate", LeafTemplate, classValues) : QString()},
         {"versionAccess", versioned ? render("VersionAccessTemplate", VersionAccessTemplate, classValues) : QString()},
         {"definitions", definitionText}});
}

}  // namespace Codegen
