// edd_example: loads a document of any schema class, reports its faults, gives
// a short summary and takes it through the three binary forms, reading each
// back into a fresh object of the same class.
//
//   edd_example examples/dossier.xml
//
// The class is found by the document's first element. Faults of the loaded
// record are written to standard error by the default logger. The exit code
// is 0 when every form reads back equal, 1 when the file cannot be loaded or a
// form does not come back equal, 2 on wrong usage.

#include <EmitterDossierDoc/EmitterDossierDoc.h>

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QFile>
#include <QString>
#include <QXmlStreamReader>

#include <cstdio>
#include <memory>

using namespace EMITTERDOSSIERDOC;

namespace {

bool report(const char* form, int size, bool equal)
{
    std::printf("%-10s %7d bytes, read back %s\n", form, size, equal ? "equal" : "DIFFERENT");
    return equal;
}

// The name of the document's first element, or an empty text.
QString topElement(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    QXmlStreamReader reader(&file);
    while (!reader.atEnd())
        if (reader.readNext() == QXmlStreamReader::StartElement)
            return reader.name().toString();
    return QString();
}

// A few lines about a dossier. Reads through const references: the non-const
// accessors of children and lists mark them present.
void summarize(const EmitterDossier& d)
{
    const ELINTParameter& p = d.GetELINTParameter();
    std::printf("%s (%s), %s, priority %s\n", qPrintable(d.GetName()), qPrintable(d.GetDatabaseID()),
                qPrintable(d.GetStatusAsString()), qPrintable(d.GetPriorityAsString()));
    std::printf("  detected %s from %s\n", qPrintable(Converters::ToString(d.GetDetectionTime())),
                qPrintable(d.GetDetectionPosition().GetName()));
    std::printf("  %d alternatives, %d frequencies, %d PRIs, %d pulse widths, %d modulations\n",
                d.GetAlternatives().GetAlternative().size(),
                p.GetFrequencyBehavior().GetFrequencyList().GetFrequencyItem().size(),
                p.GetPRIBehavior().GetPRIList().GetPRIItem().size(),
                p.GetPulseWidthBehavior().GetPulseWidthList().GetPulseWidthItem().size(),
                p.GetModulation().GetModulationList().GetModulationItem().size());
    std::printf("  %d sequences, %d pulses, %d filters, %d screenshots\n",
                p.GetSequence().GetSequenceList().GetSequenceItem().size(),
                p.GetSequence().GetPulseList().GetPulseItem().size(), d.GetFilter().size(),
                d.GetFiles().GetScreenshotList().GetScreenshot().size());
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FILE.xml\n", argc > 0 ? argv[0] : "edd_example");
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    const QString top = topElement(path);
    const Frame::ClassEntry* entry = Frame::FindClass(top);
    if (!entry) {
        std::fprintf(stderr, "%s: no schema class for the element '%s'\n", argv[1], qPrintable(top));
        return 1;
    }

    auto logger = std::make_shared<RECORDKIT::Logger>();
    auto fresh = [&] {
        std::unique_ptr<Frame::Record> object(entry->create());
        object->SetLogger(logger);
        return object;
    };
    std::unique_ptr<Frame::Record> loaded = fresh();
    if (!loaded->LoadXml(path)) {
        std::fprintf(stderr, "could not load %s\n", argv[1]);
        return 1;
    }
    // Logs every fault of the record and goes on.
    loaded->Check(true);

    std::printf("%s: %s\n", argv[1], qPrintable(Frame::ClassName(entry->info())));
    if (auto* dossier = dynamic_cast<const EmitterDossier*>(loaded.get()))
        summarize(*dossier);

    bool allEqual = true;
    try {
        // The tagged form: fields with tags and lengths; doubles keep two decimals.
        QByteArray tagged = loaded->GetBinaryRepresentationAsQByteArray();
        std::unique_ptr<Frame::Record> fromTagged = fresh();
        const bool taggedRead = fromTagged->SetBinaryRepresentation(tagged);
        allEqual &= report("tagged", tagged.size(), taggedRead && fromTagged->IsEqualTo(*loaded));

        // The same through qCompress at level 9.
        QByteArray compressed = loaded->GetCompressedBinaryRepresentationAsQByteArray(9);
        std::unique_ptr<Frame::Record> fromCompressed = fresh();
        const bool compressedRead = fromCompressed->SetBinaryRepresentation(compressed);
        allEqual &= report("compressed", compressed.size(), compressedRead && fromCompressed->IsEqualTo(*loaded));

        // The raw form: presence bits and fields in bit order, exact, no checks.
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        {
            QDataStream out(&buffer);
            loaded->GetVersionSpecificBinaryWithoutValidation(out);
        }
        const QByteArray raw = buffer.data();
        QDataStream in(raw);
        std::unique_ptr<Frame::Record> fromRaw = fresh();
        fromRaw->SetVersionSpecificBinaryWithoutValidation(in);
        allEqual &= report("raw", raw.size(), in.status() == QDataStream::Ok && fromRaw->IsEqualTo(*loaded));
    } catch (const RKException& e) {
        std::fprintf(stderr, "%s\n", qPrintable(e.GetMessage()));
        return 1;
    }
    return allEqual ? 0 : 1;
}
