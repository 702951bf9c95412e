// Every truncation and single-bit flip of a small, complete dossier
// (data/sweep-dossier.xml) in the tagged, compressed and raw forms, read with
// the validate flag off and on, after the steps of the fuzz targets. A cut form
// is refused (raw: the stream fails); a flipped compressed form is refused or
// reads as the dossier (zlib checks what it unpacks); a flipped class id is
// refused; whatever is read writes a tagged form that reads back and settles
// after one pass. The inputs are dealt out to chunks that ctest runs side by side.

#include <gtest/gtest.h>

#include <QStringList>

#include "fuzz/FuzzCommon.h"
#include "support/TestSupport.h"

namespace {

using EMITTERDOSSIERDOC::EmitterDossier;

constexpr int Chunks = 4;

// RawEndingInAList is the sample without its service request: its raw form
// ends with the filter's modulations, so that a cut between two values leaves
// no later field whose read could fail the stream.
enum Form { Tagged, Compressed, Raw, RawEndingInAList };
const char* const FormNames[] = {"tagged", "compressed", "raw", "raw ending in a list"};

const EmitterDossier& sample(Form form)
{
    static const EmitterDossier whole = [] {
        EmitterDossier d;
        if (!d.LoadXml(QStringLiteral(EDD_REGRESSIONS_DIR "/data/sweep-dossier.xml")))
            ADD_FAILURE() << "cannot read the sweep's dossier";
        return d;
    }();
    static const EmitterDossier endingInAList = [] {
        EmitterDossier d = whole;
        d.ResetRADService();
        return d;
    }();
    return form == RawEndingInAList ? endingInAList : whole;
}

QByteArray bytesOf(Form form)
{
    const EmitterDossier& d = sample(form);
    if (form == Tagged)
        return d.GetBinaryRepresentationAsQByteArray();
    if (form == Compressed)
        return d.GetCompressedBinaryRepresentationAsQByteArray(-1);
    return TestSupport::raw(d);
}

// Reads `input` as the fuzz target of its form does, then into a quiet dossier:
// true when the read succeeds (for the raw form: the stream ends Ok).
bool read(Form form, const QByteArray& input, bool validate, EmitterDossier& d)
{
    const QByteArray data = QByteArray(1, char(validate)) + input;
    const auto* bytes = reinterpret_cast<const uint8_t*>(data.constData());
    if (form == Tagged || form == Compressed)
        Fuzzing::runTagged(bytes, size_t(data.size()));
    else
        Fuzzing::runRaw(bytes, size_t(data.size()));
    d.SetValidate(validate);
    d.SetLogger(Fuzzing::silentLogger());
    if (form == Tagged || form == Compressed) {
        QByteArray copy = input;
        return d.SetBinaryRepresentation(copy);
    }
    QDataStream stream(input);
    try {
        d.SetVersionSpecificBinaryWithoutValidation(stream);
    } catch (const RKException&) {
        // With validation on, an incomplete item refuses to be appended, which ends the read.
    }
    return stream.status() == QDataStream::Ok;
}

// What goes wrong when the tagged form of `d` is read back and written again.
// The tagged form cannot carry everything a record may hold (a mandatory text
// never set is written null and read back empty), so it may settle in one
// pass; from then on a read and a write give the same bytes.
QString taggedRoundTripFault(const EmitterDossier& d)
{
    d.SetValidate(false);
    QByteArray bytes = d.GetBinaryRepresentationAsQByteArray();
    for (int pass = 0; pass < 2; ++pass) {
        EmitterDossier back;
        back.SetLogger(Fuzzing::silentLogger());
        if (!back.SetBinaryRepresentation(bytes))
            return QStringLiteral("its tagged form is refused after %1 passes").arg(pass);
        const QByteArray again = back.GetBinaryRepresentationAsQByteArray();
        if (again == bytes)
            return QString();
        bytes = again;
    }
    return QStringLiteral("its tagged form does not settle");
}

// qUncompress warns of every corrupt input; the sweep gives it thousands on purpose.
void quietUncompress(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type != QtWarningMsg || !message.startsWith(QLatin1String("qUncompress:")))
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

// What the read of a damaged input may not do, or an empty text.
QString damageFault(Form form, bool cut, bool accepted, const EmitterDossier& d, int byte)
{
    if (cut && accepted)
        return QStringLiteral("accepted");
    if (!cut && accepted && form == Compressed && !(d == sample(form)))
        return QStringLiteral("accepted, and differs from the dossier");
    if (!cut && accepted && form == Tagged && byte < 4)
        return QStringLiteral("accepted with another class id");
    const QString fault = taggedRoundTripFault(d);
    return fault.isEmpty() ? fault : QStringLiteral("what was read: ") + fault;
}

using SweepParam = std::tuple<Form, bool, int>;  // form, cut (else flip), chunk
class Sweep : public ::testing::TestWithParam<SweepParam> {};

TEST_P(Sweep, DamagedInputsAreRefusedOrReadIntoWhatWritesAgain)
{
    const Form form = std::get<0>(GetParam());
    const bool cut = std::get<1>(GetParam());
    const QtMessageHandler previous = qInstallMessageHandler(quietUncompress);
    const QByteArray whole = bytesOf(form);
    QStringList findings;
    for (int byte = std::get<2>(GetParam()); byte < whole.size(); byte += Chunks) {
        for (int bit = 0; bit < (cut ? 1 : 8); ++bit) {
            QByteArray input = cut ? whole.left(byte) : whole;
            if (!cut)
                input[byte] = char(input.at(byte) ^ (1 << bit));
            for (bool validate : {false, true}) {
                EmitterDossier d;
                const QString fault = damageFault(form, cut, read(form, input, validate, d), d, byte);
                if (!fault.isEmpty())
                    findings << QStringLiteral("%1 form, %2 %3, validate %4: %5")
                                    .arg(QLatin1String(FormNames[form]), cut ? "cut to" : "bit flipped in byte")
                                    .arg(byte)
                                    .arg(validate ? "on" : "off")
                                    .arg(fault);
            }
        }
    }
    qInstallMessageHandler(previous);
    EXPECT_TRUE(findings.isEmpty()) << findings.size() << " faults, the first:\n"
                                    << findings.mid(0, 40).join(QLatin1Char('\n')).toStdString();
}

INSTANTIATE_TEST_SUITE_P(Cuts, Sweep,
                         ::testing::Combine(::testing::Values(Tagged, Compressed, Raw, RawEndingInAList),
                                            ::testing::Values(true), ::testing::Range(0, Chunks)));
INSTANTIATE_TEST_SUITE_P(Flips, Sweep,
                         ::testing::Combine(::testing::Values(Tagged, Compressed, Raw), ::testing::Values(false),
                                            ::testing::Range(0, Chunks)));

// The ground the sweep stands on: undamaged, every form reads back as the dossier.
TEST(SweepSample, ReadsBackEqualInEveryForm)
{
    for (Form form : {Tagged, Compressed, Raw, RawEndingInAList}) {
        for (bool validate : {false, true}) {
            SCOPED_TRACE(std::string(FormNames[form]) + (validate ? ", validate on" : ", validate off"));
            EmitterDossier d;
            EXPECT_TRUE(read(form, bytesOf(form), validate, d));
            EXPECT_TRUE(d == sample(form));
            EXPECT_EQ(taggedRoundTripFault(d), QString());
        }
    }
}

}  // namespace
