// Writes the seed corpora and dictionaries of the fuzz targets from the
// bundled samples and the library's own field tables, so that they follow the
// schema without a copy of it.
//
//   edd_fuzz_seeds OUT_DIR SAMPLE.xml...
//
// OUT_DIR gets xml/, tagged/, raw/, any/ and json/ with seeds, and xml.dict,
// json.dict and binary.dict.

#include <QDir>
#include <QFile>
#include <QSet>
#include <QXmlStreamReader>

#include <cstdio>

#include "FuzzCommon.h"

using namespace EMITTERDOSSIERDOC;

namespace {

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray withPrefix(char prefix, const QByteArray& bytes) { return QByteArray(1, prefix) + bytes; }

QByteArray rawOf(const Frame::Record& record) { return Frame::RawFormBytes(record); }

// The records of an object's block, as a parent hands them to SetBinary.
QByteArray recordsOf(const Frame::Record& record)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    record.GetBinary(stream, 0, false);
    return bytes.mid(4);
}

QString dictWord(const QByteArray& bytes)
{
    QString word = QStringLiteral("\"");
    for (char c : bytes)
        word += QStringLiteral("\\x%1").arg(uchar(c), 2, 16, QLatin1Char('0'));
    return word + QLatin1Char('"');
}

QByteArray bigEndian(quint32 value)
{
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << value;
    return bytes;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s OUT_DIR SAMPLE.xml...\n", argv[0]);
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    for (const char* dir : {"xml", "tagged", "raw", "any", "json"})
        out.mkpath(QLatin1String(dir));
    const auto& classes = Frame::AllClasses();

    int written = 0;
    for (int i = 2; i < argc; ++i) {
        QFile file(QString::fromLocal8Bit(argv[i]));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "cannot read %s\n", argv[i]);
            return 1;
        }
        const QByteArray text = file.readAll();
        QXmlStreamReader reader(text);
        while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::StartElement) {
        }
        const Frame::ClassEntry* entry = Frame::FindClass(reader.name().toString());
        if (!entry) {
            std::fprintf(stderr, "%s: no schema class for its element\n", argv[i]);
            return 1;
        }
        auto record = Fuzzing::fresh(*entry, false);
        record->SetXmlString(QString::fromUtf8(text), false);
        const QString base = QFileInfo(file).baseName();
        if (Frame::ClassId(entry->info()) == EmitterDossier::id) {
            for (char validate : {'\0', '\1'}) {
                const QString suffix = QStringLiteral("%1-%2").arg(base).arg(int(validate));
                write(out.filePath(QStringLiteral("xml/") + suffix), withPrefix(validate, text));
                write(out.filePath(QStringLiteral("tagged/") + suffix),
                      withPrefix(validate, record->GetBinaryRepresentationAsQByteArray()));
                write(out.filePath(QStringLiteral("tagged/compressed-") + suffix),
                      withPrefix(validate, record->GetCompressedBinaryRepresentationAsQByteArray(9)));
                write(out.filePath(QStringLiteral("raw/") + suffix), withPrefix(validate, rawOf(*record)));
                written += 4;
            }
        }
        for (char validate : {'\0', '\1'}) {
            write(out.filePath(QStringLiteral("json/%1-%2").arg(base).arg(int(validate))),
                  withPrefix(validate, Frame::ToJson(*record, Frame::JsonLayout::Compact)));
            ++written;
        }
        // Every object of the sample, as the block of its own class.
        Frame::ForEachChecked(*record, [&](const QString& path, const Frame::Record& object) {
            int index = 0;
            while (index < classes.size() &&
                   Frame::ClassId(classes.at(index).info()) != Frame::ClassId(object.GetClassInfo()))
                ++index;
            QByteArray seed(1, char(index));
            seed += '\0';
            seed += recordsOf(object);
            const QString name = QStringLiteral("%1-%2").arg(base, path.isEmpty() ? QStringLiteral("root") : path);
            write(out.filePath(QStringLiteral("any/") + QString(name).replace(QLatin1Char('/'), QLatin1Char('.'))),
                  seed);
            ++written;
        });
    }

    // Dictionaries: the names of the XML form and the words of the binary forms.
    QSet<QString> names;
    QSet<QByteArray> words;
    for (const Frame::ClassEntry& entry : classes) {
        const Frame::ClassInfo& info = entry.info();
        names.insert(Frame::ClassName(info));
        words.insert(bigEndian(quint32(Frame::ClassId(info))));
        if (!Frame::ClassSchemaVersion(info).isEmpty()) {
            names.insert(QStringLiteral("Version"));
            words.insert(bigEndian(Frame::ClassVersionTag(info)));
        }
        for (int f = 0; f < Frame::FieldCount(info); ++f) {
            const Frame::FieldInfo& field = Frame::FieldAt(info, f);
            names.insert(Frame::FieldName(field));
            words.insert(bigEndian(Frame::FieldTag(field)));
            for (const QString& name : Frame::EnumNames(field))
                names.insert(name);
        }
    }
    QStringList xmlDict;
    for (const QString& name : names) {
        const QByteArray utf8 = name.toUtf8();
        xmlDict << dictWord(utf8) << dictWord("<" + utf8 + ">") << dictWord("</" + utf8 + ">")
                << dictWord(" " + utf8 + "=\"");
    }
    QStringList binaryDict;
    for (const QByteArray& word : words)
        binaryDict << dictWord(word);
    xmlDict.sort();
    binaryDict.sort();
    write(out.filePath(QStringLiteral("xml.dict")), xmlDict.join(QLatin1Char('\n')).toUtf8() + '\n');
    QStringList jsonDict;
    for (const QString& name : names)
        jsonDict << dictWord('"' + name.toUtf8() + '"');
    jsonDict << dictWord("null") << dictWord("true") << dictWord("false") << dictWord("\"NaN\"")
             << dictWord("\"Infinity\"") << dictWord("\\u");
    jsonDict.sort();
    write(out.filePath(QStringLiteral("json.dict")), jsonDict.join(QLatin1Char('\n')).toUtf8() + '\n');
    write(out.filePath(QStringLiteral("binary.dict")), binaryDict.join(QLatin1Char('\n')).toUtf8() + '\n');
    std::printf("%d seeds, %d XML words, %d binary words\n", written, int(xmlDict.size()), int(binaryDict.size()));
    return 0;
}
