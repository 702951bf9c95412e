// Reads and writes of the XML, tagged and raw forms, each case an input and
// what it must leave, written down in the files under cases/. A case is a block
// of lines "key value"; a key given on consecutive lines joins its values with
// line breaks.
//
//   == title                 starts a case
//   class NAME               the class of a fresh object
//   validate                 turns the validate flag on
//   given-json JSON          the object's state before the read
//   read-xml TEXT            SetXmlString(TEXT, false); read-xml-checked checks after reading
//   read-bytes HEX           SetBinaryRepresentation (the framed tagged or compressed form)
//   read-tagged LENGTH HEX   SetBinary with that length
//   read-raw HEX             the raw reader, on a stream of the library's version
//   read-json TEXT           FromJson; read-json-hex gives the document's bytes in hex
//   check                    Check(true), which logs every fault; check-raising: Check()
//   merge CLASS JSON         MergeRKObject of a record of CLASS read from JSON; merge-itself
//   returns true|false       what the read gave (read-xml, read-bytes, read-json)
//   error TEXT               the error FromJson gives; without it, none may be given
//   raises TYPE MESSAGE      the exception the read raises; without it, none may be raised
//   status NAME              the raw stream's status after the read (Ok unless given)
//   log LEVEL MESSAGE        each report of the read and of the writes after, in order; without one, none
//   json JSON                the state after, as ToJson writes it compactly
//   json-indented TEXT       the state after, as ToJson writes it indented, the last line end left out
//   xml TEXT                 what GetXmlString writes after, the prologue left out
//   tagged HEX / raw HEX     the block GetBinary writes (no tag) / the raw form, after
//   bytes HEX                what GetBinaryRepresentationAsQByteArray writes, after

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <EmitterDossierDoc/frame/Json.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

// A key without a value has the empty value; one not given, the null one.
struct Case {
    QString where;
    QVector<QPair<QString, QString>> lines;

    QString value(const QString& key) const
    {
        for (const auto& line : lines)
            if (line.first == key)
                return line.second;
        return QString();
    }
    bool has(const QString& key) const { return !value(key).isNull(); }
};

QVector<Case> readCases(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text)) << path.toStdString();
    QVector<Case> cases;
    int number = 0;
    QString lastKey;
    for (const QByteArray& bytes : file.readAll().split('\n')) {
        ++number;
        const QString line = QString::fromUtf8(bytes);
        if (line.startsWith(QLatin1String("== "))) {
            cases.append({QStringLiteral("%1:%2 %3").arg(QFileInfo(path).fileName()).arg(number).arg(line.mid(3)), {}});
            lastKey.clear();
            continue;
        }
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')) || cases.isEmpty())
            continue;
        const int space = line.indexOf(QLatin1Char(' '));
        const QString key = space < 0 ? line : line.left(space);
        const QString value = space < 0 ? QStringLiteral("") : line.mid(space + 1);
        if (key == lastKey && key != QLatin1String("log"))
            cases.last().lines.last().second += QLatin1Char('\n') + value;
        else
            cases.last().lines.append({key, value});
        lastKey = key;
    }
    return cases;
}

QString exceptionName(const RKException& e)
{
    return dynamic_cast<const BinaryParsingException*>(&e)          ? QStringLiteral("BinaryParsingException")
           : dynamic_cast<const IncompleteDefinitionException*>(&e) ? QStringLiteral("IncompleteDefinitionException")
           : dynamic_cast<const OutOfRangeException*>(&e)           ? QStringLiteral("OutOfRangeException")
           : dynamic_cast<const InvalidXmlException*>(&e)           ? QStringLiteral("InvalidXmlException")
                                                                    : QStringLiteral("RKException");
}

QString hexOf(const QByteArray& bytes) { return QString::fromLatin1(bytes.toHex(' ')); }

const char* const StatusNames[] = {"Ok", "ReadPastEnd", "ReadCorruptData", "WriteFailed"};

void runCase(const Case& c)
{
    SCOPED_TRACE(c.where.toStdString());
    const Frame::ClassEntry* entry = Frame::FindClass(c.value(QStringLiteral("class")));
    ASSERT_TRUE(entry) << "no class " << c.value(QStringLiteral("class")).toStdString();
    std::unique_ptr<Frame::Record> object(entry->create());
    if (c.has(QStringLiteral("given-json")))
        ASSERT_TRUE(Frame::FromJson(*object, c.value(QStringLiteral("given-json")).toUtf8()));
    object->SetValidate(c.has(QStringLiteral("validate")));
    auto logger = attachLogger(*object);

    QString returned = QStringLiteral("true");
    QString raised;
    QString status = QStringLiteral("Ok");
    QString jsonError;
    try {
        for (const auto& line : c.lines) {
            const QString& key = line.first;
            if (key == QLatin1String("read-xml") || key == QLatin1String("read-xml-checked")) {
                returned = object->SetXmlString(line.second, key.endsWith(QLatin1String("checked"))) ? "true" : "false";
            } else if (key == QLatin1String("read-bytes")) {
                QByteArray bytes = QByteArray::fromHex(line.second.toLatin1());
                returned = object->SetBinaryRepresentation(bytes) ? "true" : "false";
            } else if (key == QLatin1String("read-tagged")) {
                const int space = line.second.indexOf(QLatin1Char(' '));
                readTagged(*object, QByteArray::fromHex(line.second.mid(space + 1).toLatin1()),
                           line.second.left(space).toInt());
            } else if (key == QLatin1String("merge")) {
                const int space = line.second.indexOf(QLatin1Char(' '));
                std::unique_ptr<Frame::Record> other(Frame::FindClass(line.second.left(space))->create());
                EXPECT_TRUE(Frame::FromJson(*other, line.second.mid(space + 1).toUtf8()));
                returned = object->MergeRKObject(*other) ? "true" : "false";
            } else if (key == QLatin1String("merge-itself")) {
                returned = object->MergeRKObject(*object) ? "true" : "false";
            } else if (key == QLatin1String("check")) {
                object->Check(true);
            } else if (key == QLatin1String("check-raising")) {
                object->Check();
            } else if (key.startsWith(QLatin1String("read-json"))) {
                const QByteArray json = key.endsWith(QLatin1String("-hex"))
                                            ? QByteArray::fromHex(line.second.toLatin1())
                                            : line.second.toUtf8();
                returned = Frame::FromJson(*object, json, &jsonError) ? "true" : "false";
            } else if (key == QLatin1String("read-raw")) {
                QByteArray bytes = QByteArray::fromHex(line.second.toLatin1());
                QDataStream stream(bytes);
                stream.setVersion(RECORDKIT::StreamVersion);
                try {
                    object->SetVersionSpecificBinaryWithoutValidation(stream);
                } catch (...) {
                    status = QLatin1String(StatusNames[stream.status()]);
                    throw;
                }
                status = QLatin1String(StatusNames[stream.status()]);
            }
        }
    } catch (const RKException& e) {
        raised = exceptionName(e) + QLatin1Char(' ') + e.GetMessage();
    }
    EXPECT_EQ(raised, c.value(QStringLiteral("raises")));
    EXPECT_EQ(jsonError, c.value(QStringLiteral("error")));
    if (c.has(QStringLiteral("returns")))
        EXPECT_EQ(returned, c.value(QStringLiteral("returns")));
    EXPECT_EQ(status, c.has(QStringLiteral("status")) ? c.value(QStringLiteral("status")) : QStringLiteral("Ok"));
    object->SetValidate(false);
    for (const auto& line : c.lines) {
        if (line.first == QLatin1String("json"))
            EXPECT_EQ(QString::fromUtf8(Frame::ToJson(*object, Frame::JsonLayout::Compact)), line.second);
        else if (line.first == QLatin1String("json-indented"))
            EXPECT_EQ(QString::fromUtf8(Frame::ToJson(*object)), line.second + QLatin1Char('\n'));
        else if (line.first == QLatin1String("xml"))
            EXPECT_EQ(object->GetXmlString(), document(line.second));
        else if (line.first == QLatin1String("tagged"))
            EXPECT_EQ(hexOf(tagged(*object, 0, false)), hexOf(QByteArray::fromHex(line.second.toLatin1())));
        else if (line.first == QLatin1String("bytes"))
            EXPECT_EQ(hexOf(object->GetBinaryRepresentationAsQByteArray()),
                      hexOf(QByteArray::fromHex(line.second.toLatin1())));
        else if (line.first == QLatin1String("raw"))
            EXPECT_EQ(hexOf(raw(*object)), hexOf(QByteArray::fromHex(line.second.toLatin1())));
    }
    QStringList log, expectedLog;
    for (const LogEntry& entry : logger->entries)
        log << RECORDKIT::LogLevelNames().at(entry.level) + QLatin1Char(' ') + entry.message;
    for (const auto& line : c.lines)
        if (line.first == QLatin1String("log"))
            expectedLog << line.second;
    EXPECT_EQ(log, expectedLog);
}

}  // namespace

TEST(FormCases, EveryCaseLeavesWhatItsFileSays)
{
    const QDir dir(QStringLiteral(EDD_CASES_DIR));
    const QStringList files = dir.entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name);
    ASSERT_FALSE(files.isEmpty());
    for (const QString& name : files) {
        const QVector<Case> cases = readCases(dir.filePath(name));
        EXPECT_FALSE(cases.isEmpty()) << name.toStdString();
        for (const Case& c : cases)
            runCase(c);
    }
}
