// The complete sample dossier in every form, against bytes committed under
// tests/golden/ (the XML form is the sample file itself). The binary files
// were written by the Qt 5 build before the library fixed the version of its
// own streams, and the Qt 5 and Qt 6 builds both run this suite and the tool's
// (tests/tools/Forms.cmake writes each form and reads it back to the sample):
// each must give these bytes. Here, the bytes through a caller's own stream.
//
// The compressed file also depends on zlib's output for level 9, which is the
// same for every zlib of Debian 12. To write the files again after a change
// of a form: dossier convert examples/dossier.xml --to tagged|compressed|raw -o FILE

#include "support/TestSupport.h"

#include <QFile>

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

const QString SamplePath = QStringLiteral(EDD_EXAMPLES_DIR "/dossier.xml");

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ADD_FAILURE() << "cannot read " << path.toStdString();
        return QByteArray();
    }
    return file.readAll();
}

QByteArray golden(const char* name) { return fileBytes(QStringLiteral(EDD_GOLDEN_DIR "/%1").arg(QLatin1String(name))); }

EmitterDossier sample()
{
    EmitterDossier dossier;
    EXPECT_TRUE(dossier.LoadXml(SamplePath));
    return dossier;
}

// Equal bytes, or the first offset where they part and a few bytes of each there.
::testing::AssertionResult sameBytes(const QByteArray& expected, const QByteArray& actual)
{
    if (expected == actual)
        return ::testing::AssertionSuccess();
    int at = 0;
    while (at < expected.size() && at < actual.size() && expected.at(at) == actual.at(at))
        ++at;
    return ::testing::AssertionFailure() << "sizes " << expected.size() << " and " << actual.size()
                                         << ", first difference at offset " << at << ": expected "
                                         << expected.mid(at, 8).toHex(' ').toStdString() << ", got "
                                         << actual.mid(at, 8).toHex(' ').toStdString();
}

// A stream over a byte array, as a caller would open one.
struct CallerStream {
    QByteArray bytes;
    QBuffer buffer{&bytes};
    QDataStream stream;
    CallerStream()
    {
        buffer.open(QIODevice::WriteOnly);
        stream.setDevice(&buffer);
    }
};

}  // namespace

// A caller's stream at the library's version gives the same bytes; one of
// other settings keeps them, and the compressed form is made on the library's
// own stream whatever the caller's.
TEST(GoldenForms, ACallersStreamGivesTheSameBytesAndKeepsItsSettings)
{
    const EmitterDossier dossier = sample();
    CallerStream tagged;
    tagged.stream.setVersion(RECORDKIT::StreamVersion);
    dossier.GetBinaryRepresentation(tagged.stream);
    EXPECT_TRUE(sameBytes(golden("dossier.tagged"), tagged.bytes));
    CallerStream raw;
    raw.stream.setVersion(RECORDKIT::StreamVersion);
    dossier.GetVersionSpecificBinaryWithoutValidation(raw.stream);
    EXPECT_TRUE(sameBytes(golden("dossier.raw"), raw.bytes));

    CallerStream caller;
    caller.stream.setVersion(QDataStream::Qt_5_2);
    caller.stream.setByteOrder(QDataStream::LittleEndian);
    caller.stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    dossier.GetBinaryRepresentation(caller.stream);
    dossier.GetCompressedBinaryRepresentation(caller.stream, 9);
    dossier.GetVersionSpecificBinaryWithoutValidation(caller.stream);
    EXPECT_EQ(caller.stream.version(), int(QDataStream::Qt_5_2));
    EXPECT_EQ(caller.stream.byteOrder(), QDataStream::LittleEndian);
    EXPECT_EQ(caller.stream.floatingPointPrecision(), QDataStream::SinglePrecision);
    EXPECT_TRUE(caller.bytes.contains(golden("dossier.compressed")));
}
