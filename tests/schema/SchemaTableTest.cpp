// The whole schema against its fixed tables: every class with its id and
// element name and no other class, every field with the tag of its name and
// kind, the names of every enumeration in order, and the fresh object of
// every class through the three forms.

#include <gtest/gtest.h>

#include <memory>

#include <QHash>
#include <QSet>

#include "schema/SchemaTables.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

const char* kindName(Frame::Kind kind)
{
    switch (kind) {
    case Frame::Kind::Double: return "double as text";
    case Frame::Kind::UInt64: return "raw 64-bit";
    case Frame::Kind::Bool: return "raw bool";
    case Frame::Kind::Text: return "text";
    case Frame::Kind::DateTime: return "date-time text";
    case Frame::Kind::Enum: return "enum name";
    case Frame::Kind::Child: return "nested record";
    case Frame::Kind::List:
    case Frame::Kind::EnumList: return "counted list";
    }
    return "";
}

struct Use {
    QString className;
    QString field;
    quint32 tag;
    QString kind;
};

// Every field of every class, and the root's version.
QVector<Use> allUses()
{
    QVector<Use> uses;
    for (const Frame::ClassEntry& entry : Frame::AllClasses()) {
        const Frame::ClassInfo& info = entry.info();
        const QString name = QLatin1String(info.name);
        if (info.version)
            uses.append({name, QStringLiteral("Version"), info.version->tag, QStringLiteral("raw QString")});
        for (int i = 0; i < info.fieldCount; ++i) {
            const Frame::FieldInfo& f = info.fields[i];
            uses.append({name, *f.name, f.tag, QLatin1String(kindName(f.kind))});
        }
    }
    return uses;
}

}  // namespace

TEST(SchemaTables, EveryClassAndNoOther)
{
    QHash<QString, quint32> expected;
    for (const SchemaTables::ClassRow& row : SchemaTables::Classes) {
        EXPECT_EQ(qint64(row.id), row.decimal) << row.name;
        expected.insert(QLatin1String(row.name), row.id);
    }
    ASSERT_EQ(expected.size(), 98);

    QSet<QString> seen;
    for (const Frame::ClassEntry& entry : Frame::AllClasses()) {
        const QString name = QLatin1String(entry.info().name);
        ASSERT_TRUE(expected.contains(name)) << "not a schema class: " << name.toStdString();
        EXPECT_FALSE(seen.contains(name)) << "twice: " << name.toStdString();
        seen.insert(name);
        EXPECT_EQ(entry.info().id, qint64(expected.value(name))) << name.toStdString();

        std::unique_ptr<Frame::Record> object(entry.create());
        EXPECT_EQ(object->GetObjectName(), name);
        EXPECT_EQ(entry.info().objectName(), name);
        EXPECT_EQ(Frame::FindClass(name), &entry);
        EXPECT_EQ(Frame::FindClass(entry.info().id), &entry);
    }
    EXPECT_EQ(seen.size(), 98);
}

TEST(SchemaTables, EveryFieldHasTheTagOfItsNameAndKind)
{
    const QVector<Use> uses = allUses();

    for (const SchemaTables::TagRow& row : SchemaTables::Tags) {
        const QString field = QLatin1String(row.field);
        const QString kind = QLatin1String(row.kind);
        QStringList listed = QString::fromLatin1(row.classes).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        int matches = 0;
        for (const Use& use : uses) {
            if (use.field != field || use.tag != row.tag)
                continue;
            ++matches;
            EXPECT_TRUE(kind.split(QStringLiteral("; ")).contains(use.kind))
                << use.className.toStdString() << "::" << field.toStdString() << " is " << use.kind.toStdString()
                << ", expected " << row.kind;
            if (!listed.isEmpty()) {
                EXPECT_TRUE(listed.contains(use.className))
                    << field.toStdString() << " has its tag in " << use.className.toStdString();
                listed.removeAll(use.className);
            }
        }
        if (row.classCount)
            EXPECT_EQ(matches, row.classCount) << field.toStdString();
        EXPECT_TRUE(listed.isEmpty()) << field.toStdString() << " is missing from "
                                      << listed.join(QLatin1Char(' ')).toStdString();
    }

    // And the other way round: no field with a tag that its name does not have.
    for (const Use& use : uses) {
        bool known = false;
        for (const SchemaTables::TagRow& row : SchemaTables::Tags)
            known = known || (use.field == QLatin1String(row.field) && use.tag == row.tag);
        EXPECT_TRUE(known) << use.className.toStdString() << "::" << use.field.toStdString() << " has tag 0x"
                           << QByteArray::number(use.tag, 16).toStdString();
    }
}

TEST(SchemaTables, UnitHasOneTagInEveryClassThatHasOne)
{
    int withUnit = 0;
    for (const Use& use : allUses()) {
        if (use.field == QLatin1String("unit")) {
            ++withUnit;
            EXPECT_EQ(use.tag, 0xa5b3acfcu) << use.className.toStdString();
        }
    }
    EXPECT_EQ(withUnit, 57);
}

// Every enumeration field of every class has its names in index order, as
// UTF-8 text, and no class has an enumeration that the table does not list.
TEST(SchemaTables, EveryEnumerationHasItsNamesInOrder)
{
    QHash<QString, QStringList> expected;
    for (const SchemaTables::EnumRow& row : SchemaTables::Enums) {
        const QString key = QLatin1String(row.className) + QStringLiteral("::") + QLatin1String(row.field);
        EXPECT_FALSE(expected.contains(key)) << "twice: " << key.toStdString();
        expected.insert(key, QString::fromUtf8(row.names).split(QLatin1Char('|')));
    }
    ASSERT_EQ(expected.size(), 75);

    QSet<QString> seen;
    for (const Frame::ClassEntry& entry : Frame::AllClasses()) {
        const Frame::ClassInfo& info = entry.info();
        for (int i = 0; i < info.fieldCount; ++i) {
            const Frame::FieldInfo& f = info.fields[i];
            if (f.kind != Frame::Kind::Enum && f.kind != Frame::Kind::EnumList)
                continue;
            const QString key = QLatin1String(info.name) + QStringLiteral("::") + *f.name;
            ASSERT_TRUE(expected.contains(key)) << "enumeration not in the table: " << key.toStdString();
            EXPECT_EQ(Frame::EnumNames(f), expected.value(key)) << key.toStdString();
            seen.insert(key);
        }
    }
    EXPECT_EQ(seen.size(), 75);
}

// Whether the raw form of a fresh object is defined: a mandatory child or
// mandatory bool is read whatever its bit, and written only when it is set.
bool rawFormOfFreshObjectIsDefined(const Frame::ClassInfo& info)
{
    for (int i = 0; i < info.fieldCount; ++i) {
        const Frame::FieldInfo& f = info.fields[i];
        if (f.mandatory && (f.kind == Frame::Kind::Bool || f.kind == Frame::Kind::Child))
            return false;
    }
    return true;
}

// A fresh object of every class, with the validate flag off, through the three
// forms. The mandatory fields go out with their initial values and come back
// set (a null text as an empty one), so the first read may differ from the
// fresh object; from then on every form must stand still.
TEST(SchemaTables, FreshObjectsOfEveryClassComeBackStable)
{
    for (const Frame::ClassEntry& entry : Frame::AllClasses()) {
        const std::string name = entry.info().name;
        std::unique_ptr<Frame::Record> fresh(entry.create());
        auto logger = attachLogger(*fresh);

        std::unique_ptr<Frame::Record> once(entry.create());
        std::unique_ptr<Frame::Record> twice(entry.create());
        once->SetLogger(logger);
        twice->SetLogger(logger);
        ASSERT_TRUE(once->SetXmlString(fresh->GetXmlString(), false)) << name;
        ASSERT_TRUE(twice->SetXmlString(once->GetXmlString(), false)) << name;
        EXPECT_EQ(twice->GetXmlString(), once->GetXmlString()) << name;
        EXPECT_TRUE(twice->IsEqualTo(*once)) << name;

        once.reset(entry.create());
        twice.reset(entry.create());
        once->SetLogger(logger);
        twice->SetLogger(logger);
        QByteArray first = fresh->GetBinaryRepresentationAsQByteArray();
        ASSERT_TRUE(once->SetBinaryRepresentation(first)) << name;
        QByteArray second = once->GetBinaryRepresentationAsQByteArray();
        ASSERT_TRUE(twice->SetBinaryRepresentation(second)) << name;
        EXPECT_EQ(twice->GetBinaryRepresentationAsQByteArray(), second) << name;
        EXPECT_TRUE(twice->IsEqualTo(*once)) << name;

        if (rawFormOfFreshObjectIsDefined(entry.info())) {
            std::unique_ptr<Frame::Record> fromRaw(entry.create());
            fromRaw->SetLogger(logger);
            readRaw(*fromRaw, raw(*fresh));
            EXPECT_EQ(raw(*fromRaw), raw(*fresh)) << name;
        }
        // Whatever was logged on the way is a warning: nothing is an error with the flag off.
        for (const LogEntry& entry : logger->entries)
            EXPECT_EQ(entry.level, RECORDKIT::WARNING) << name << ": " << entry.message.toStdString();
    }
}

namespace {

// The longest chain of nested classes below `info`; -1 if a class holds itself.
int nestingDepth(const Frame::ClassInfo& info, QSet<qint64>& onPath)
{
    if (onPath.contains(info.id))
        return -1;
    onPath.insert(info.id);
    std::unique_ptr<Frame::Record> sample(Frame::FindClass(info.id)->create());
    int deepest = 0;
    for (int i = 0; i < info.fieldCount && deepest >= 0; ++i) {
        const Frame::FieldInfo& f = info.fields[i];
        const Frame::ClassInfo* inner = nullptr;
        if (f.kind == Frame::Kind::Child)
            inner = &Frame::ChildOf(*sample, f).GetClassInfo();
        else if (f.kind == Frame::Kind::List)
            inner = &Frame::FindClass(f.listOps().itemName())->info();
        if (inner) {
            const int depth = nestingDepth(*inner, onPath);
            deepest = depth < 0 ? -1 : qMax(deepest, depth + 1);
        }
    }
    onPath.remove(info.id);
    return deepest;
}

}  // namespace

// No class holds itself, directly or through others: the readers, which go
// down only along the schema's children, cannot recurse deeper than it.
TEST(SchemaTables, NestingIsBoundedByTheSchema)
{
    int deepest = 0;
    for (const Frame::ClassEntry& entry : Frame::AllClasses()) {
        QSet<qint64> onPath;
        const int depth = nestingDepth(entry.info(), onPath);
        ASSERT_GE(depth, 0) << entry.info().name << " holds itself";
        deepest = qMax(deepest, depth);
    }
    // EmitterDossier/ELINTParameter/Modulation/ModulationList/ModulationItem/
    // FreqModulation/FreqModulationItem/Duration
    EXPECT_EQ(deepest, 7);
}
