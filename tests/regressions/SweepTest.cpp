// Every truncation and every single-bit flip of one small, complete dossier in
// the tagged, compressed and raw forms, each read with the validate flag off
// and on. Every input first goes through the steps of the fuzz targets (read,
// check, write in every form, read back); then what was read is held to what
// the damage allows:
//  - the whole input reads back equal to the dossier;
//  - a cut tagged or compressed form is refused, and a cut raw form leaves
//    the stream failed;
//  - a flipped compressed form is refused or reads as the dossier, since zlib
//    checks what it unpacks;
//  - a flipped class id in the tagged form is refused;
//  - whatever a read leaves in a record, its tagged form is read back as a
//    success and, after one pass, written again unchanged.
//
// The inputs of each form are dealt out to a few chunks, each its own test,
// so that ctest runs them side by side.

#include <gtest/gtest.h>

#include <QStringList>

#include "fuzz/FuzzCommon.h"
#include "support/SampleTrees.h"
#include "support/TestSupport.h"

namespace {

using EMITTERDOSSIERDOC::EmitterDossier;

constexpr int TruncationChunks = 4;
constexpr int FlipChunks = 8;

// A small dossier with every mandatory part and a few of each kind of
// record: texts, enumerations, doubles, a date, children, lists of records and
// of enumeration values. Its doubles have two decimals, so that the tagged form
// gives it back unchanged. The sweep's work grows with its size.
EmitterDossier makeSample()
{
    using namespace EMITTERDOSSIERDOC;
    using TestSupport::unitScalar;
    EmitterDossier d;
    d.SetName(QStringLiteral("Harbour Lantern"));
    d.SetDatabaseID(QStringLiteral("EDB-0412"));
    d.SetConfidence(0.75);
    d.GetAlternatives().AppendAlternative(TestSupport::makeAlternative("Tin Drum", "EDB-0930", 0.1));
    d.GetAlternatives().AppendAlternative(TestSupport::makeAlternative("Granite", "EDB-1187", 0.15));
    d.SetPriority(d.NameToPriority(QStringLiteral("High")));
    d.SetStatus(d.NameToStatus(QStringLiteral("Active")));
    d.SetDetectionTime(QDateTime(QDate(2026, 11, 2), QTime(14, 5, 33, 250), Qt::UTC));
    d.GetDetectionPosition().SetLatitude(unitScalar<Latitude>(54.32));
    d.GetDetectionPosition().SetLongitude(unitScalar<Longitude>(10.14));
    Bearing& bearing = d.GetBearing();
    bearing.Setunit(Bearing::unit(0));
    bearing.SetAzimuth(271.25);
    bearing.SetAzimuthTol(1.5);

    ELINTParameter& parameters = d.GetELINTParameter();
    parameters.SetComments(QStringLiteral("Two PRIs"));
    parameters.SetWaveForm(parameters.NameToWaveForm(QStringLiteral("Pulse")));
    PRIBehavior& pri = parameters.GetPRIBehavior();
    pri.SetPRIType(pri.NameToPRIType(QStringLiteral("Stagger")));
    pri.GetPRIList().AppendPRIItem(TestSupport::priItem(0, 1000.25));
    pri.GetPRIList().AppendPRIItem(TestSupport::priItem(1, 1250.5, 1));
    for (quint64 id = 0; id < 2; ++id) {
        PulseItem pulse;
        pulse.Setid(id);
        pulse.SetPulseWidthID(id);
        pulse.SetRiseTime(unitScalar<RiseTime>(12.25));
        parameters.GetSequence().GetPulseList().AppendPulseItem(pulse);
    }

    Filter filter;
    filter.SetName(QStringLiteral("Main beam"));
    filter.SetComments(QStringLiteral("Strong pulses"));
    filter.GetLevel().Setunit(Level::unit(1));
    filter.GetLevel().SetMin(-70);
    filter.GetLevel().SetMax(-20.25);
    Modulations& modulations = filter.GetModulations();
    modulations.AppendModulation(modulations.NameToModulation(QStringLiteral("LFM")));
    modulations.AppendModulation(modulations.NameToModulation(QStringLiteral("PSK4")));
    d.AppendFilter(filter);

    d.GetFiles().SetPDWFileName(QStringLiteral("result.pdw"));
    Screenshot shot;
    shot.SetFileName(QStringLiteral("screen.png"));
    shot.SetComment(QStringLiteral("Spectrum"));
    d.GetFiles().GetScreenshotList().AppendScreenshot(shot);

    RADService& service = d.GetRADService();
    service.SetAction(service.NameToAction(QStringLiteral("ToReport")));
    service.SetAdditionalInformation(QStringLiteral("Compare"));
    return d;
}

const EmitterDossier& sample()
{
    static const EmitterDossier dossier = makeSample();
    return dossier;
}

// The sample without its service request. Its raw form ends with the filter
// list, the last values of which are the filter's modulations: a cut between
// two items or two values leaves no later field whose read could fail the stream.
const EmitterDossier& sampleEndingInAList()
{
    static const EmitterDossier dossier = [] {
        EmitterDossier d = makeSample();
        d.ResetRADService();
        return d;
    }();
    return dossier;
}

enum class Form { Tagged, Compressed, Raw };

const char* formName(Form form)
{
    switch (form) {
    case Form::Tagged: return "tagged";
    case Form::Compressed: return "compressed";
    case Form::Raw: return "raw";
    }
    return "?";
}

QByteArray bytesOf(Form form, const EmitterDossier& d)
{
    switch (form) {
    case Form::Tagged: return d.GetBinaryRepresentationAsQByteArray();
    case Form::Compressed: return d.GetCompressedBinaryRepresentationAsQByteArray(-1);
    case Form::Raw: return TestSupport::raw(d);
    }
    return QByteArray();
}

// A dossier to read into, as quiet as the fuzz targets keep theirs.
void prepare(EmitterDossier& d, bool validate)
{
    d.SetValidate(validate);
    d.SetLogger(Fuzzing::silentLogger());
}

// The steps of the fuzz target of the form, with the validate flag in the first byte.
void runFuzzSteps(Form form, const QByteArray& input, bool validate)
{
    const QByteArray data = QByteArray(1, char(validate ? 1 : 0)) + input;
    const auto* bytes = reinterpret_cast<const uint8_t*>(data.constData());
    if (form == Form::Raw)
        Fuzzing::runRaw(bytes, size_t(data.size()));
    else
        Fuzzing::runTagged(bytes, size_t(data.size()));
}

// SetBinaryRepresentation, which tells the plain tagged form from the compressed one.
bool readTaggedOrCompressed(EmitterDossier& d, QByteArray bytes) { return d.SetBinaryRepresentation(bytes); }

// The raw reader, with the state it leaves the stream in. With validation on
// an incomplete item refuses to be appended, which ends the read.
QDataStream::Status readRaw(EmitterDossier& d, const QByteArray& bytes)
{
    QDataStream stream(bytes);
    try {
        d.SetVersionSpecificBinaryWithoutValidation(stream);
    } catch (const RKException&) {
    }
    return stream.status();
}

// What goes wrong when the tagged form of `d` is read back and written again,
// or an empty text. Written without validation, so that a record validation
// would refuse to write is held to the rule as well.
//
// The tagged form cannot carry everything a record may hold as it is (a
// mandatory text never set is written as a null text and read back as an
// empty one), so it is allowed one pass to settle: from then on a read and a
// write give the same bytes. The raw form is not held to this: it is defined
// only for records whose mandatory children are set.
QString taggedRoundTripFault(const EmitterDossier& d)
{
    d.SetValidate(false);
    const QByteArray first = d.GetBinaryRepresentationAsQByteArray();
    EmitterDossier once;
    prepare(once, false);
    if (!readTaggedOrCompressed(once, first))
        return QStringLiteral("its tagged form is refused");
    const QByteArray settled = once.GetBinaryRepresentationAsQByteArray();
    if (settled == first)
        return QString();  // the same bytes read the same way again
    EmitterDossier twice;
    prepare(twice, false);
    if (!readTaggedOrCompressed(twice, settled))
        return QStringLiteral("its tagged form, read and written once, is refused");
    if (twice.GetBinaryRepresentationAsQByteArray() != settled)
        return QStringLiteral("its tagged form does not settle: read and written twice, it changes again");
    return QString();
}

// Collects the inputs that break a rule, so that a fault is reported once
// with the inputs that show it rather than a thousand times.
class Findings {
public:
    void add(const QString& input, const QString& fault)
    {
        ++m_count;
        if (m_shown.size() < MaxShown)
            m_shown << input + QStringLiteral(": ") + fault;
    }
    int count() const { return m_count; }
    std::string text() const
    {
        QString all = m_shown.join(QLatin1Char('\n'));
        if (m_count > m_shown.size())
            all += QStringLiteral("\n... and %1 more").arg(m_count - m_shown.size());
        return all.toStdString();
    }

private:
    static constexpr int MaxShown = 60;
    QStringList m_shown;
    int m_count = 0;
};

QString describe(Form form, const QString& damage, bool validate)
{
    return QStringLiteral("%1 form, %2, validate %3")
        .arg(QLatin1String(formName(form)), damage, validate ? QStringLiteral("on") : QStringLiteral("off"));
}

// qUncompress warns of every corrupt input it is given; the sweep gives it
// thousands on purpose. Other messages pass on.
class QuietUncompress {
public:
    QuietUncompress() { s_previous = qInstallMessageHandler(&QuietUncompress::handle); }
    ~QuietUncompress() { qInstallMessageHandler(s_previous); }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (type == QtWarningMsg && message.startsWith(QLatin1String("qUncompress:")))
            return;
        if (s_previous)
            s_previous(type, context, message);
    }
    static QtMessageHandler s_previous;
};
QtMessageHandler QuietUncompress::s_previous = nullptr;

// --- Truncations ---------------------------------------------------------------------

void sweepTruncations(Form form, const EmitterDossier& original, int chunk, Findings& findings)
{
    const QuietUncompress quiet;
    const QByteArray whole = bytesOf(form, original);
    for (int length = chunk; length < whole.size(); length += TruncationChunks) {
        const QByteArray cut = whole.left(length);
        for (bool validate : {false, true}) {
            runFuzzSteps(form, cut, validate);
            const auto report = [&](const QString& fault) {
                const QString damage = QStringLiteral("cut to %1 of %2 bytes").arg(length).arg(whole.size());
                findings.add(describe(form, damage, validate), fault);
            };
            EmitterDossier d;
            prepare(d, validate);
            if (form == Form::Raw) {
                if (readRaw(d, cut) == QDataStream::Ok)
                    report(d == original ? QStringLiteral("stream Ok, read equal to the whole")
                                         : QStringLiteral("stream Ok, read less than the whole"));
            } else if (readTaggedOrCompressed(d, cut)) {
                report(QStringLiteral("accepted"));
            }
            const QString fault = taggedRoundTripFault(d);
            if (!fault.isEmpty())
                report(QStringLiteral("what was read: ") + fault);
        }
    }
}

class TaggedTruncations : public ::testing::TestWithParam<int> {};
class CompressedTruncations : public ::testing::TestWithParam<int> {};
class RawTruncations : public ::testing::TestWithParam<int> {};
class RawTruncationsEndingInAList : public ::testing::TestWithParam<int> {};

TEST_P(TaggedTruncations, Chunk)
{
    Findings findings;
    sweepTruncations(Form::Tagged, sample(), GetParam(), findings);
    EXPECT_EQ(findings.count(), 0) << findings.text();
}

TEST_P(CompressedTruncations, Chunk)
{
    Findings findings;
    sweepTruncations(Form::Compressed, sample(), GetParam(), findings);
    EXPECT_EQ(findings.count(), 0) << findings.text();
}

TEST_P(RawTruncations, Chunk)
{
    Findings findings;
    sweepTruncations(Form::Raw, sample(), GetParam(), findings);
    EXPECT_EQ(findings.count(), 0) << findings.text();
}

TEST_P(RawTruncationsEndingInAList, Chunk)
{
    Findings findings;
    sweepTruncations(Form::Raw, sampleEndingInAList(), GetParam(), findings);
    EXPECT_EQ(findings.count(), 0) << findings.text();
}

INSTANTIATE_TEST_SUITE_P(Sweep, TaggedTruncations, ::testing::Range(0, TruncationChunks));
INSTANTIATE_TEST_SUITE_P(Sweep, CompressedTruncations, ::testing::Range(0, TruncationChunks));
INSTANTIATE_TEST_SUITE_P(Sweep, RawTruncations, ::testing::Range(0, TruncationChunks));
INSTANTIATE_TEST_SUITE_P(Sweep, RawTruncationsEndingInAList, ::testing::Range(0, TruncationChunks));

// --- Bit flips -------------------------------------------------------------------------

// The first word of the tagged form is the class id of the dossier.
constexpr int ClassIdBytes = 4;

void sweepBitFlips(Form form, int chunk, Findings& findings)
{
    const QuietUncompress quiet;
    const QByteArray whole = bytesOf(form, sample());
    for (int byte = chunk; byte < whole.size(); byte += FlipChunks) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray flipped = whole;
            flipped[byte] = char(flipped.at(byte) ^ (1 << bit));
            for (bool validate : {false, true}) {
                runFuzzSteps(form, flipped, validate);
                const auto report = [&](const QString& fault) {
                    const QString damage = QStringLiteral("bit %1 of byte %2 flipped").arg(bit).arg(byte);
                    findings.add(describe(form, damage, validate), fault);
                };
                EmitterDossier d;
                prepare(d, validate);
                if (form == Form::Raw) {
                    readRaw(d, flipped);
                } else {
                    const bool accepted = readTaggedOrCompressed(d, flipped);
                    if (accepted && form == Form::Compressed && !(d == sample()))
                        report(QStringLiteral("accepted, and differs from the dossier"));
                    if (accepted && form == Form::Tagged && byte < ClassIdBytes)
                        report(QStringLiteral("accepted with another class id"));
                }
                const QString fault = taggedRoundTripFault(d);
                if (!fault.isEmpty())
                    report(QStringLiteral("what was read: ") + fault);
            }
        }
    }
}

class TaggedBitFlips : public ::testing::TestWithParam<int> {};
class CompressedBitFlips : public ::testing::TestWithParam<int> {};
class RawBitFlips : public ::testing::TestWithParam<int> {};

TEST_P(TaggedBitFlips, Chunk)
{
    Findings findings;
    sweepBitFlips(Form::Tagged, GetParam(), findings);
    EXPECT_EQ(findings.count(), 0) << findings.text();
}

TEST_P(CompressedBitFlips, Chunk)
{
    Findings findings;
    sweepBitFlips(Form::Compressed, GetParam(), findings);
    EXPECT_EQ(findings.count(), 0) << findings.text();
}

TEST_P(RawBitFlips, Chunk)
{
    Findings findings;
    sweepBitFlips(Form::Raw, GetParam(), findings);
    EXPECT_EQ(findings.count(), 0) << findings.text();
}

INSTANTIATE_TEST_SUITE_P(Sweep, TaggedBitFlips, ::testing::Range(0, FlipChunks));
INSTANTIATE_TEST_SUITE_P(Sweep, CompressedBitFlips, ::testing::Range(0, FlipChunks));
INSTANTIATE_TEST_SUITE_P(Sweep, RawBitFlips, ::testing::Range(0, FlipChunks));

// --- The whole input ---------------------------------------------------------------------

// The ground the sweep stands on: undamaged, every form reads back as the dossier.
TEST(SweepSample, ReadsBackEqualInEveryForm)
{
    for (const EmitterDossier* original : {&sample(), &sampleEndingInAList()}) {
        for (Form form : {Form::Tagged, Form::Compressed, Form::Raw}) {
            const QByteArray whole = bytesOf(form, *original);
            for (bool validate : {false, true}) {
                const QString input = describe(form, QStringLiteral("whole, %1 bytes").arg(whole.size()), validate);
                SCOPED_TRACE(input.toStdString());
                runFuzzSteps(form, whole, validate);
                EmitterDossier d;
                prepare(d, validate);
                if (form == Form::Raw)
                    EXPECT_EQ(readRaw(d, whole), QDataStream::Ok);
                else
                    EXPECT_TRUE(readTaggedOrCompressed(d, whole));
                EXPECT_TRUE(d == *original);
                EXPECT_EQ(taggedRoundTripFault(d), QString());
            }
        }
    }
}

}  // namespace
