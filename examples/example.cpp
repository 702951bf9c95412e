// edd-example: loads an <Alternatives> document, lists its items and takes it
// through the three binary forms, reading each back into a fresh object.
//
//   edd-example examples/alternatives.xml
//
// Faults of the loaded record are written to standard error by the default
// logger. The exit code is 0 when every form reads back equal, 1 when the file
// cannot be loaded or a form does not come back equal, 2 on wrong usage.

#include <EmitterDossierDoc/EmitterDossierDoc.h>

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QString>

#include <cstdio>
#include <memory>

using EMITTERDOSSIERDOC::Alternative;
using EMITTERDOSSIERDOC::Alternatives;

namespace {

bool report(const char* form, int size, bool equal)
{
    std::printf("%-10s %6d bytes, read back %s\n", form, size, equal ? "equal" : "DIFFERENT");
    return equal;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FILE.xml\n", argc > 0 ? argv[0] : "edd-example");
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);

    auto logger = std::make_shared<RECORDKIT::Logger>();
    Alternatives alternatives;
    alternatives.SetLogger(logger);
    if (!alternatives.LoadXml(path)) {
        std::fprintf(stderr, "could not load %s\n", argv[1]);
        return 1;
    }
    // Logs every fault of the record and goes on.
    alternatives.Check(true);

    // Read through a const reference: the non-const accessor of a list marks
    // it present.
    const Alternatives& loaded = alternatives;
    const QVector<Alternative>& items = loaded.GetAlternative();
    std::printf("%d alternatives in %s\n", items.size(), argv[1]);
    for (const Alternative& item : items) {
        std::printf("  %-20s %-12s %s\n", qPrintable(item.GetName()), qPrintable(item.GetDatabaseID()),
                    qPrintable(QString::number(item.GetConfidence(), 'f', 2)));
    }

    bool allEqual = true;
    try {
        // The tagged form: fields with tags and lengths; doubles keep two decimals.
        QByteArray tagged = loaded.GetBinaryRepresentationAsQByteArray();
        Alternatives fromTagged;
        fromTagged.SetLogger(logger);
        const bool taggedRead = fromTagged.SetBinaryRepresentation(tagged);
        allEqual &= report("tagged", tagged.size(), taggedRead && fromTagged == loaded);

        // The same through qCompress at level 9.
        QByteArray compressed = loaded.GetCompressedBinaryRepresentationAsQByteArray(9);
        Alternatives fromCompressed;
        fromCompressed.SetLogger(logger);
        const bool compressedRead = fromCompressed.SetBinaryRepresentation(compressed);
        allEqual &= report("compressed", compressed.size(), compressedRead && fromCompressed == loaded);

        // The raw form: presence bits and fields in bit order, exact, no checks.
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        {
            QDataStream out(&buffer);
            loaded.GetVersionSpecificBinaryWithoutValidation(out);
        }
        const QByteArray raw = buffer.data();
        QDataStream in(raw);
        Alternatives fromRaw;
        fromRaw.SetLogger(logger);
        fromRaw.SetVersionSpecificBinaryWithoutValidation(in);
        allEqual &= report("raw", raw.size(), in.status() == QDataStream::Ok && fromRaw == loaded);
    } catch (const RKException& e) {
        std::fprintf(stderr, "%s\n", qPrintable(e.GetMessage()));
        return 1;
    }
    return allEqual ? 0 : 1;
}
