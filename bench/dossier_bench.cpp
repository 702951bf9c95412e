// A whole dossier of 20 MB of XML (or the size --size_mb=N asks for) through
// every form, each beside a yardstick in the same run:
//   - XML read: a bare QXmlStreamReader token pass over the same text;
//   - XML write: QXmlStreamWriter writing the bulk of the same content from plain structs;
//   - raw read and write: plain QDataStream operators on the same numbers of the bulk;
//   - tagged: the raw form plus the two-decimal text of its doubles, both ways.
// The bulk is the lists of pulses, frequencies, PRIs and sequences with their
// elements, more than 99 % of the record; the yardsticks leave out the few
// hundred fields around them.
//
// The table of ratios, at 2, 20 or 200 MB:
//
//   build-rel/bench/edd_bench --size_mb=20 --benchmark_filter=Dossier_ \
//       --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
//
// Each ratio is the library's median time over its yardstick's:
//   XML read      Dossier_XmlRead          / Dossier_XmlTokenPass
//   XML write     Dossier_XmlWriteToWriter / Dossier_XmlWritePlainStructs
//   raw write     Dossier_RawWrite         / Dossier_RawWritePlainStructs
//   raw read      Dossier_RawRead          / Dossier_RawReadPlainStructs
//   tagged write  Dossier_TaggedWrite      / Dossier_TaggedWriteYardstick
//   tagged read   Dossier_TaggedRead       / Dossier_TaggedReadYardstick
// Memory is measured apart from the timed runs: Dossier_HeapAfterRead (heap
// held after each read) and Dossier_PeakRss/<reader> (peak resident memory of
// one read in a fresh process), each beside the size of the XML.
// bench/ratios.sh runs the same and prints the ratios as a table.

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <QBuffer>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QTemporaryFile>
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QStringDecoder>
#else
#include <QTextCodec>
#include <QTextDecoder>
#endif
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <EmitterDossierDoc/EmitterDossierDoc.h>
#include <EmitterDossierDoc/frame/Json.h>

#include "DossierBench.h"
#include "recordkit/XmlGuard_p.h"
#include "support/SampleTrees.h"

using namespace EMITTERDOSSIERDOC;

namespace {

// The list lengths of a dossier of about 18.04 MB of XML; other sizes scale
// all four linearly, so the actual size drifts a little from the one asked for
// (longer ids at larger sizes). The benchmarks report the actual size.
constexpr double BaseMegabytes = 18.04;
constexpr int BasePulses = 40000;
constexpr int BasePris = 10000;
constexpr int BaseFrequencies = 10000;
constexpr int BaseSequences = 2000;
constexpr int ElementsPerSequence = 6;

double sizeMegabytes = 20;

struct Counts {
    int pulses, pris, frequencies, sequences;
};

Counts counts()
{
    const double scale = sizeMegabytes / BaseMegabytes;
    auto scaled = [scale](int base) { return std::max(1, int(std::lround(base * scale))); };
    return {scaled(BasePulses), scaled(BasePris), scaled(BaseFrequencies), scaled(BaseSequences)};
}

FrequencyItem frequencyItem(quint64 id, double hz)
{
    FrequencyItem item;
    item.Setid(id);
    item.Setunit(FrequencyItem::unit(0));
    item.SetValue(hz);
    return item;
}

EmitterDossier makeBigDossier()
{
    const Counts n = counts();
    EmitterDossier d = TestSupport::filledDossier(n.pulses, n.pris);
    ELINTParameter& p = d.GetELINTParameter();
    QVector<FrequencyItem>& frequencies = p.GetFrequencyBehavior().GetFrequencyList().GetFrequencyItem();
    for (int k = 0; k < n.frequencies; ++k)
        frequencies.append(frequencyItem(quint64(100 + k), 9000000000.0 + 12500.25 * k));
    QVector<SequenceItem>& sequences = p.GetSequence().GetSequenceList().GetSequenceItem();
    for (int k = 0; k < n.sequences; ++k) {
        SequenceItem s;
        s.Setid(quint64(100 + k));
        s.SetFrequencyID(quint64(100 + k % n.frequencies));
        DeadTime deadTime;
        deadTime.Setunit(DeadTime::unit(0));
        deadTime.SetValue(125.5);
        s.SetDeadTime(deadTime);
        QVector<ElementItem>& elements = s.GetElementList().GetElementItem();
        for (int e = 0; e < ElementsPerSequence; ++e) {
            ElementItem element;
            element.SetChildID(quint64((k * ElementsPerSequence + e) % n.pulses));
            element.SetChildType(ElementItem::ChildType(1));
            element.SetNumRepetitions(quint64(8 + e));
            element.SetPRIID(quint64(e));
            elements.append(element);
        }
        sequences.append(s);
    }
    return d;
}

// --- The bulk as plain structs ---------------------------------------------------------

struct PlainScalar {
    qint8 unit;
    double value;
};
struct PlainPulse {
    quint64 id, pulseWidthId, modulationId;
    PlainScalar norm, rise, fall, envelope;
};
struct PlainFrequency {
    quint64 id;
    qint8 unit;
    double value;
};
struct PlainPri {
    quint64 id;
    qint8 valType, unit;
    double value;
};
struct PlainElement {
    quint64 childId;
    qint8 childType;
    quint64 repetitions, priId;
};
struct PlainSequence {
    quint64 id, frequencyId;
    PlainScalar deadTime;
    std::vector<PlainElement> elements;
};
struct PlainBulk {
    std::vector<PlainPulse> pulses;
    std::vector<PlainFrequency> frequencies;
    std::vector<PlainPri> pris;
    std::vector<PlainSequence> sequences;
};

template <class S>
PlainScalar plain(const S& s)
{
    return {qint8(s.Getunit()), s.GetValue()};
}

PlainBulk plainBulk(const EmitterDossier& d)
{
    PlainBulk bulk;
    const ELINTParameter& p = d.GetELINTParameter();
    for (const PulseItem& i : p.GetSequence().GetPulseList().GetPulseItem())
        bulk.pulses.push_back({i.Getid(), i.GetPulseWidthID(), i.GetModulationID(), plain(i.GetNormLevel()),
                               plain(i.GetRiseTime()), plain(i.GetFallTime()), plain(i.GetEnvelopeGradient())});
    for (const FrequencyItem& i : p.GetFrequencyBehavior().GetFrequencyList().GetFrequencyItem())
        bulk.frequencies.push_back({i.Getid(), qint8(i.Getunit()), i.GetValue()});
    for (const PRIItem& i : p.GetPRIBehavior().GetPRIList().GetPRIItem())
        bulk.pris.push_back({i.Getid(), qint8(i.GetpRIValType()), qint8(i.Getunit()), i.GetValue()});
    for (const SequenceItem& s : p.GetSequence().GetSequenceList().GetSequenceItem()) {
        PlainSequence plainSequence{s.Getid(), s.GetFrequencyID(), plain(s.GetDeadTime()), {}};
        for (const ElementItem& e : s.GetElementList().GetElementItem())
            plainSequence.elements.push_back(
                {e.GetChildID(), qint8(e.GetChildType()), e.GetNumRepetitions(), e.GetPRIID()});
        bulk.sequences.push_back(plainSequence);
    }
    return bulk;
}

// Calls visit on every double of the bulk, always in the same order.
template <class Bulk, class Visit>
void forEachDouble(Bulk& bulk, Visit visit)
{
    for (auto& i : bulk.pulses) {
        visit(i.norm.value);
        visit(i.rise.value);
        visit(i.fall.value);
        visit(i.envelope.value);
    }
    for (auto& i : bulk.frequencies)
        visit(i.value);
    for (auto& i : bulk.pris)
        visit(i.value);
    for (auto& s : bulk.sequences)
        visit(s.deadTime.value);
}

// Everything a run needs, made once.
struct Fixture {
    EmitterDossier dossier = makeBigDossier();
    QString xml = dossier.GetXmlString();
    QByteArray xmlUtf8 = xml.toUtf8();
    qint64 xmlBytes = xmlUtf8.size();
    QByteArray tagged = dossier.GetBinaryRepresentationAsQByteArray();
    QByteArray raw = Frame::RawFormBytes(dossier);
    QByteArray json = Frame::ToJson(dossier);
    PlainBulk bulk = plainBulk(dossier);

    static Fixture& get()
    {
        static Fixture fixture;
        return fixture;
    }
};

// Every whole-dossier result says the size of the XML it ran with.
void reportSize(benchmark::State& state) { state.counters["xml_bytes"] = double(Fixture::get().xmlBytes); }

size_t heapInUse()
{
    malloc_trim(0);
    return mallinfo2().uordblks;
}

// The heap a dossier holds after reading one of its forms, beside the size of
// its XML text. Measured once, apart from the timed runs: giving memory back
// to the system between iterations would distort their times.
void Dossier_HeapAfterRead(benchmark::State& state)
{
    Fixture& f = Fixture::get();
    const int form = int(state.range(0));
    size_t held = 0;
    for (auto _ : state) {
        const size_t before = heapInUse();
        auto d = std::make_unique<EmitterDossier>();
        if (form == 0) {
            d->SetXmlString(f.xml, false);
        } else if (form == 1) {
            d->SetBinaryRepresentation(f.tagged);
        } else {
            QBuffer buffer(&f.raw);
            buffer.open(QIODevice::ReadOnly);
            QDataStream stream(&buffer);
            d->SetVersionSpecificBinaryWithoutValidation(stream);
        }
        held = heapInUse() - before;
        benchmark::DoNotOptimize(d.get());
    }
    state.SetLabel(form == 0 ? "XML" : form == 1 ? "tagged" : "raw");
    state.counters["heap_bytes"] = double(held);
    state.counters["xml_bytes"] = double(f.xmlBytes);
    state.counters["heap_per_xml_byte"] = double(held) / double(f.xmlBytes);
}
BENCHMARK(Dossier_HeapAfterRead)->DenseRange(0, 2)->Iterations(1)->Unit(benchmark::kMillisecond);

// The peak resident memory of reading the dossier's XML, once through each of
// LoadXml (from a file), SetXmlString and SetXmlBytes, each in a fresh process
// of its own: this program run again with --peak_child (see peakChild below).
// The peak is given above the child's baseline, taken once Qt and the library
// have started and the caller's input is in memory. The time is that of the
// child's whole run, start-up included, and means nothing.

// The dossier's XML as a file, written once; removed when the program ends.
const QString& xmlFilePath()
{
    static std::unique_ptr<QTemporaryFile> file;
    static QString path;
    if (!file) {
        file = std::make_unique<QTemporaryFile>(QDir::tempPath() + QStringLiteral("/edd_bench_dossier_XXXXXX.xml"));
        const QByteArray& bytes = Fixture::get().xmlUtf8;
        if (file->open() && file->write(bytes) == bytes.size() && file->flush())
            path = file->fileName();
    }
    return path;
}

struct PeakResult {
    std::string error;  // empty when the child ran and reported
    long peakKib = 0;
    long baselineKib = 0;
};

// Runs this program as a child to measure `form`, and reads its report.
PeakResult runPeakChild(const char* form, const QString& path)
{
    PeakResult result;
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0) {
        result.error = std::string("pipe: ") + std::strerror(errno);
        return result;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    std::string program = "edd_bench";
    std::string formArg = std::string("--peak_child=") + form;
    std::string fileArg = "--peak_file=" + path.toStdString();
    char* args[] = {&program[0], &formArg[0], &fileArg[0], nullptr};
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, "/proc/self/exe", &actions, nullptr, args, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    if (spawned != 0) {
        close(out[0]);
        result.error = std::string("cannot start the child: ") + std::strerror(spawned);
        return result;
    }
    std::string report;
    char buffer[4096];
    for (;;) {
        const ssize_t n = read(out[0], buffer, sizeof buffer);
        if (n > 0)
            report.append(buffer, size_t(n));
        else if (n == 0 || errno != EINTR)
            break;
    }
    close(out[0]);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) {
        result.error = std::string("the child was ended by signal ") + std::to_string(WTERMSIG(status));
    } else if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        result.error = std::string("the child failed with exit code ") + std::to_string(WEXITSTATUS(status));
    } else if (std::sscanf(report.c_str(), "peak_kib=%ld baseline_kib=%ld", &result.peakKib, &result.baselineKib) !=
               2) {
        result.error = "the child's report cannot be read: '" + report + "'";
    }
    return result;
}

void Dossier_PeakRss(benchmark::State& state, const char* form)
{
    const QString& path = xmlFilePath();
    PeakResult result;
    for (auto _ : state) {
        if (path.isEmpty())
            result.error = "cannot write the XML to a temporary file";
        else
            result = runPeakChild(form, path);
    }
    if (!result.error.empty()) {
        state.SkipWithError(result.error.c_str());
        return;
    }
    const double peak = 1024.0 * double(result.peakKib - result.baselineKib);  // ru_maxrss is in KiB
    const double xmlBytes = double(Fixture::get().xmlBytes);
    state.counters["peak_bytes"] = peak;
    state.counters["baseline_bytes"] = 1024.0 * double(result.baselineKib);
    state.counters["xml_bytes"] = xmlBytes;
    state.counters["peak_per_xml_byte"] = peak / xmlBytes;
}
BENCHMARK_CAPTURE(Dossier_PeakRss, LoadXml, "loadxml")->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Dossier_PeakRss, SetXmlString, "setxmlstring")->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Dossier_PeakRss, SetXmlBytes, "setxmlbytes")->Iterations(1)->Unit(benchmark::kMillisecond);

// --- XML ---------------------------------------------------------------------------------

void Dossier_XmlRead(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        EmitterDossier d;
        benchmark::DoNotOptimize(d.SetXmlString(f.xml, false));
    }
    state.SetBytesProcessed(state.iterations() * f.xmlBytes);
    reportSize(state);
}
BENCHMARK(Dossier_XmlRead)->Unit(benchmark::kMillisecond);

void Dossier_XmlTokenPass(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        QXmlStreamReader reader(f.xml);
        int tokens = 0;
        while (!reader.atEnd()) {
            reader.readNext();
            ++tokens;
        }
        benchmark::DoNotOptimize(tokens);
    }
    state.SetBytesProcessed(state.iterations() * f.xmlBytes);
    reportSize(state);
}
BENCHMARK(Dossier_XmlTokenPass)->Unit(benchmark::kMillisecond);

void Dossier_XmlReadBytes(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        EmitterDossier d;
        benchmark::DoNotOptimize(d.SetXmlBytes(f.xmlUtf8));
    }
    state.SetBytesProcessed(state.iterations() * f.xmlBytes);
    reportSize(state);
}
BENCHMARK(Dossier_XmlReadBytes)->Unit(benchmark::kMillisecond);

// The pass that every XML read makes ahead of Qt's reader to count the
// attributes of each start tag, alone: over the text as SetXmlString has it,
// and over the bytes as LoadXml and SetXmlBytes have them.
void Dossier_XmlAttributeGuardText(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        RECORDKIT::AttributeGuard guard;
        benchmark::DoNotOptimize(guard.scanText(reinterpret_cast<const char16_t*>(f.xml.utf16()), f.xml.size()));
    }
    state.SetBytesProcessed(state.iterations() * f.xmlBytes);
    reportSize(state);
}
BENCHMARK(Dossier_XmlAttributeGuardText)->Unit(benchmark::kMillisecond);

void Dossier_XmlAttributeGuardBytes(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        RECORDKIT::AttributeGuard guard;
        benchmark::DoNotOptimize(guard.scanBytes(f.xmlUtf8.constData(), f.xmlUtf8.size()));
    }
    state.SetBytesProcessed(state.iterations() * f.xmlBytes);
    reportSize(state);
}
BENCHMARK(Dossier_XmlAttributeGuardBytes)->Unit(benchmark::kMillisecond);

void Dossier_XmlWrite(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        const QString text = f.dossier.GetXmlString();
        benchmark::DoNotOptimize(text.constData());
    }
    state.SetBytesProcessed(state.iterations() * f.xmlBytes);
    reportSize(state);
}
BENCHMARK(Dossier_XmlWrite)->Unit(benchmark::kMillisecond);

// The same write through a writer set up as Dossier_XmlWritePlainStructs sets
// up its own, so that the two differ only in what writes the elements.
void Dossier_XmlWriteToWriter(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    qint64 textChars = 0;
    for (auto _ : state) {
        QString text;
        QXmlStreamWriter w(&text);
        w.setAutoFormatting(true);
        w.setAutoFormattingIndent(2);
        w.writeStartDocument();
        f.dossier.GetXml(w);
        w.writeEndDocument();
        textChars = text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    state.counters["text_chars"] = double(textChars);
    state.SetBytesProcessed(state.iterations() * f.xmlBytes);
    reportSize(state);
}
BENCHMARK(Dossier_XmlWriteToWriter)->Unit(benchmark::kMillisecond);

void writeScalar(QXmlStreamWriter& w, const QString& name, const QString& unit, double value)
{
    w.writeStartElement(name);
    w.writeAttribute(QStringLiteral("unit"), unit);
    w.writeCharacters(QString::number(value, 'f', 2));
    w.writeEndElement();
}

void Dossier_XmlWritePlainStructs(benchmark::State& state)
{
    const PlainBulk& bulk = Fixture::get().bulk;
    const QString ns = QStringLiteral("ns"), db = QStringLiteral("dB"), hz = QStringLiteral("Hz");
    const QString perSecond = QStringLiteral("%/s"), id = QStringLiteral("id"), unit = QStringLiteral("unit");
    const QStringList valTypes = {QStringLiteral("Pulse"), QStringLiteral("Group")};
    const QStringList childTypes = {QStringLiteral("Sequence"), QStringLiteral("Pulse")};
    qint64 textChars = 0;
    for (auto _ : state) {
        QString text;
        QXmlStreamWriter w(&text);
        w.setAutoFormatting(true);
        w.setAutoFormattingIndent(2);
        w.writeStartDocument();
        // The bulk at the depth where the document has it: Qt's writer makes
        // one write per level of indentation, so depth is part of the work.
        w.writeStartElement(QStringLiteral("EmitterDossier"));
        w.writeStartElement(QStringLiteral("ELINTParameter"));
        w.writeStartElement(QStringLiteral("FrequencyBehavior"));
        w.writeStartElement(QStringLiteral("FrequencyList"));
        for (const PlainFrequency& i : bulk.frequencies) {
            w.writeStartElement(QStringLiteral("FrequencyItem"));
            w.writeAttribute(id, QString::number(i.id));
            w.writeAttribute(unit, hz);
            w.writeCharacters(QString::number(i.value, 'f', 2));
            w.writeEndElement();
        }
        w.writeEndElement();
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("PRIBehavior"));
        w.writeStartElement(QStringLiteral("PRIList"));
        for (const PlainPri& i : bulk.pris) {
            w.writeStartElement(QStringLiteral("PRIItem"));
            w.writeAttribute(id, QString::number(i.id));
            w.writeAttribute(QStringLiteral("pRIValType"), valTypes.at(i.valType));
            w.writeAttribute(unit, ns);
            w.writeCharacters(QString::number(i.value, 'f', 2));
            w.writeEndElement();
        }
        w.writeEndElement();
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("Sequence"));
        w.writeStartElement(QStringLiteral("SequenceList"));
        for (const PlainSequence& s : bulk.sequences) {
            w.writeStartElement(QStringLiteral("SequenceItem"));
            w.writeAttribute(id, QString::number(s.id));
            w.writeTextElement(QStringLiteral("FrequencyID"), QString::number(s.frequencyId));
            writeScalar(w, QStringLiteral("DeadTime"), ns, s.deadTime.value);
            w.writeStartElement(QStringLiteral("ElementList"));
            for (const PlainElement& e : s.elements) {
                w.writeStartElement(QStringLiteral("ElementItem"));
                w.writeTextElement(QStringLiteral("ChildID"), QString::number(e.childId));
                w.writeTextElement(QStringLiteral("ChildType"), childTypes.at(e.childType));
                w.writeTextElement(QStringLiteral("NumRepetitions"), QString::number(e.repetitions));
                w.writeTextElement(QStringLiteral("PRIID"), QString::number(e.priId));
                w.writeEndElement();
            }
            w.writeEndElement();
            w.writeEndElement();
        }
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("PulseList"));
        for (const PlainPulse& i : bulk.pulses) {
            w.writeStartElement(QStringLiteral("PulseItem"));
            w.writeAttribute(id, QString::number(i.id));
            w.writeTextElement(QStringLiteral("PulseWidthID"), QString::number(i.pulseWidthId));
            w.writeTextElement(QStringLiteral("ModulationID"), QString::number(i.modulationId));
            writeScalar(w, QStringLiteral("NormLevel"), db, i.norm.value);
            writeScalar(w, QStringLiteral("RiseTime"), ns, i.rise.value);
            writeScalar(w, QStringLiteral("FallTime"), ns, i.fall.value);
            writeScalar(w, QStringLiteral("EnvelopeGradient"), perSecond, i.envelope.value);
            w.writeEndElement();
        }
        w.writeEndElement();
        w.writeEndElement();
        w.writeEndElement();
        w.writeEndElement();
        w.writeEndDocument();
        textChars = text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    state.counters["text_chars"] = double(textChars);
    reportSize(state);
}
BENCHMARK(Dossier_XmlWritePlainStructs)->Unit(benchmark::kMillisecond);

// --- JSON --------------------------------------------------------------------------------
// Measured beside the XML form's write (GetXmlString) and read from bytes
// (SetXmlBytes), which do the same work for the other text form.

void Dossier_JsonWrite(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        const QByteArray bytes = Frame::ToJson(f.dossier);
        benchmark::DoNotOptimize(bytes.constData());
    }
    state.SetBytesProcessed(state.iterations() * f.json.size());
    reportSize(state);
}
BENCHMARK(Dossier_JsonWrite)->Unit(benchmark::kMillisecond);

void Dossier_JsonRead(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        EmitterDossier d;
        benchmark::DoNotOptimize(Frame::FromJson(d, f.json));
    }
    state.SetBytesProcessed(state.iterations() * f.json.size());
    reportSize(state);
}
BENCHMARK(Dossier_JsonRead)->Unit(benchmark::kMillisecond);

// The size of the dossier in every form, as counters.
void Dossier_FormSizes(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    QByteArray compressed;
    for (auto _ : state)
        compressed = f.dossier.GetCompressedBinaryRepresentationAsQByteArray(9);
    state.counters["xml_bytes"] = double(f.xmlBytes);
    state.counters["json_bytes"] = double(f.json.size());
    state.counters["compact_json_bytes"] = double(Frame::ToJson(f.dossier, Frame::JsonLayout::Compact).size());
    state.counters["tagged_bytes"] = double(f.tagged.size());
    state.counters["compressed_bytes"] = double(compressed.size());
    state.counters["raw_bytes"] = double(f.raw.size());
}
BENCHMARK(Dossier_FormSizes)->Iterations(1)->Unit(benchmark::kMillisecond);

// --- Tagged ------------------------------------------------------------------------------

void Dossier_TaggedRead(benchmark::State& state)
{
    Fixture& f = Fixture::get();
    for (auto _ : state) {
        EmitterDossier d;
        benchmark::DoNotOptimize(d.SetBinaryRepresentation(f.tagged));
    }
    state.SetBytesProcessed(state.iterations() * f.tagged.size());
    reportSize(state);
}
BENCHMARK(Dossier_TaggedRead)->Unit(benchmark::kMillisecond);

void Dossier_TaggedWrite(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        const QByteArray bytes = f.dossier.GetBinaryRepresentationAsQByteArray();
        benchmark::DoNotOptimize(bytes.constData());
    }
    state.SetBytesProcessed(state.iterations() * f.tagged.size());
    reportSize(state);
}
BENCHMARK(Dossier_TaggedWrite)->Unit(benchmark::kMillisecond);

// The text conversion that the tagged form adds to the raw one: every double
// of the bulk to two-decimal text and back.
void Dossier_DoubleTextBothWays(benchmark::State& state)
{
    const PlainBulk& bulk = Fixture::get().bulk;
    for (auto _ : state) {
        double sum = 0;
        forEachDouble(bulk, [&sum](double v) { sum += QByteArray::number(v, 'f', 2).toDouble(); });
        benchmark::DoNotOptimize(sum);
    }
    reportSize(state);
}
BENCHMARK(Dossier_DoubleTextBothWays)->Unit(benchmark::kMillisecond);

// --- Raw ----------------------------------------------------------------------------------

void Dossier_RawRead(benchmark::State& state)
{
    Fixture& f = Fixture::get();
    for (auto _ : state) {
        EmitterDossier d;
        QBuffer buffer(&f.raw);
        buffer.open(QIODevice::ReadOnly);
        QDataStream stream(&buffer);
        d.SetVersionSpecificBinaryWithoutValidation(stream);
        benchmark::DoNotOptimize(d.IsInitialized());
    }
    state.SetBytesProcessed(state.iterations() * f.raw.size());
    reportSize(state);
}
BENCHMARK(Dossier_RawRead)->Unit(benchmark::kMillisecond);

void Dossier_RawWrite(benchmark::State& state)
{
    const Fixture& f = Fixture::get();
    for (auto _ : state) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        f.dossier.GetVersionSpecificBinaryWithoutValidation(stream);
        benchmark::DoNotOptimize(bytes.constData());
    }
    state.SetBytesProcessed(state.iterations() * f.raw.size());
    reportSize(state);
}
BENCHMARK(Dossier_RawWrite)->Unit(benchmark::kMillisecond);

// The raw layout of the bulk written and read with plain operators.
QDataStream& operator<<(QDataStream& s, const PlainScalar& v)
{
    s.writeRawData("\x03", 1);
    return s << v.unit << v.value;
}
QDataStream& operator>>(QDataStream& s, PlainScalar& v)
{
    char bitmap;
    s.readRawData(&bitmap, 1);
    return s >> v.unit >> v.value;
}

void writePlain(QDataStream& s, const PlainBulk& bulk)
{
    s << qint32(bulk.frequencies.size());
    for (const PlainFrequency& i : bulk.frequencies) {
        s.writeRawData("\x07", 1);
        s << i.id << i.unit << i.value;
    }
    s << qint32(bulk.pris.size());
    for (const PlainPri& i : bulk.pris) {
        s.writeRawData("\x0f", 1);
        s << i.id << i.valType << i.unit << i.value;
    }
    s << qint32(bulk.sequences.size());
    for (const PlainSequence& q : bulk.sequences) {
        s.writeRawData("\x0f", 1);
        s << q.frequencyId << q.deadTime;
        s.writeRawData("\x01", 1);
        s << qint32(q.elements.size());
        for (const PlainElement& e : q.elements) {
            s.writeRawData("\x0f", 1);
            s << e.childId << e.childType << e.repetitions << e.priId;
        }
        s << q.id;
    }
    s << qint32(bulk.pulses.size());
    for (const PlainPulse& i : bulk.pulses) {
        s.writeRawData("\x7f", 1);
        s << i.pulseWidthId << i.modulationId << i.norm << i.rise << i.fall << i.envelope << i.id;
    }
}

void Dossier_RawWritePlainStructs(benchmark::State& state)
{
    const PlainBulk& bulk = Fixture::get().bulk;
    for (auto _ : state) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        writePlain(stream, bulk);
        benchmark::DoNotOptimize(bytes.constData());
    }
    reportSize(state);
}
BENCHMARK(Dossier_RawWritePlainStructs)->Unit(benchmark::kMillisecond);

void readPlain(QDataStream& s, PlainBulk& bulk)
{
    char bitmap;
    qint32 n;
    s >> n;
    bulk.frequencies.resize(n);
    for (PlainFrequency& i : bulk.frequencies) {
        s.readRawData(&bitmap, 1);
        s >> i.id >> i.unit >> i.value;
    }
    s >> n;
    bulk.pris.resize(n);
    for (PlainPri& i : bulk.pris) {
        s.readRawData(&bitmap, 1);
        s >> i.id >> i.valType >> i.unit >> i.value;
    }
    s >> n;
    bulk.sequences.resize(n);
    for (PlainSequence& q : bulk.sequences) {
        s.readRawData(&bitmap, 1);
        s >> q.frequencyId >> q.deadTime;
        s.readRawData(&bitmap, 1);
        qint32 elements;
        s >> elements;
        q.elements.resize(elements);
        for (PlainElement& e : q.elements) {
            s.readRawData(&bitmap, 1);
            s >> e.childId >> e.childType >> e.repetitions >> e.priId;
        }
        s >> q.id;
    }
    s >> n;
    bulk.pulses.resize(n);
    for (PlainPulse& i : bulk.pulses) {
        s.readRawData(&bitmap, 1);
        s >> i.pulseWidthId >> i.modulationId >> i.norm >> i.rise >> i.fall >> i.envelope >> i.id;
    }
}

void writeDoubleTexts(QDataStream& s, const PlainBulk& bulk);

// The plain raw bytes of the bulk, with the doubles' texts behind them for the tagged yardstick.
QByteArray plainBytes(bool withDoubleTexts)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    writePlain(stream, Fixture::get().bulk);
    if (withDoubleTexts)
        writeDoubleTexts(stream, Fixture::get().bulk);
    return bytes;
}

void Dossier_RawReadPlainStructs(benchmark::State& state)
{
    QByteArray bytes = plainBytes(false);
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QDataStream s(&buffer);
        PlainBulk bulk;
        readPlain(s, bulk);
        benchmark::DoNotOptimize(bulk.pulses.data());
    }
    reportSize(state);
}
BENCHMARK(Dossier_RawReadPlainStructs)->Unit(benchmark::kMillisecond);

// --- Tagged yardsticks ---------------------------------------------------------------------

// What the tagged form costs over the raw one is the two-decimal text of every
// double. Its yardsticks are the plain raw write or read of the bulk together
// with that text, written as byte arrays into the same stream after the raw
// bytes, and parsed back into the doubles.

void writeDoubleTexts(QDataStream& s, const PlainBulk& bulk)
{
    forEachDouble(bulk, [&s](double v) { s << QByteArray::number(v, 'f', 2); });
}

void readDoubleTexts(QDataStream& s, PlainBulk& bulk)
{
    forEachDouble(bulk, [&s](double& v) {
        QByteArray text;
        s >> text;
        v = text.toDouble();
    });
}

void Dossier_TaggedWriteYardstick(benchmark::State& state)
{
    const PlainBulk& bulk = Fixture::get().bulk;
    qint64 written = 0;
    for (auto _ : state) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        writePlain(stream, bulk);
        writeDoubleTexts(stream, bulk);
        written = bytes.size();
        benchmark::DoNotOptimize(bytes.constData());
    }
    state.SetBytesProcessed(state.iterations() * written);
    reportSize(state);
}
BENCHMARK(Dossier_TaggedWriteYardstick)->Unit(benchmark::kMillisecond);

void Dossier_TaggedReadYardstick(benchmark::State& state)
{
    QByteArray bytes = plainBytes(true);
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QDataStream s(&buffer);
        PlainBulk bulk;
        readPlain(s, bulk);
        readDoubleTexts(s, bulk);
        if (s.status() != QDataStream::Ok || !s.atEnd()) {
            state.SkipWithError("the yardstick's bytes did not read back whole");
            break;
        }
        benchmark::DoNotOptimize(bulk.pulses.data());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
    reportSize(state);
}
BENCHMARK(Dossier_TaggedReadYardstick)->Unit(benchmark::kMillisecond);

long maxRssKib()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// UTF-8 decoded piece by piece, a sequence cut between pieces included.
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
class Utf8Decoder {
public:
    QString decode(const char* data, qint64 size) { return m_decoder.decode(QByteArrayView(data, size)); }
    bool failed() const { return m_decoder.hasError(); }

private:
    QStringDecoder m_decoder{QStringDecoder::Utf8};
};
#else
class Utf8Decoder {
public:
    QString decode(const char* data, qint64 size) { return m_decoder->toUnicode(data, int(size)); }
    bool failed() const { return m_decoder->hasFailure(); }

private:
    std::unique_ptr<QTextDecoder> m_decoder{QTextCodec::codecForName("UTF-8")->makeDecoder()};
};
#endif

// The whole text of a UTF-8 file into one QString, decoded a megabyte at a
// time into room reserved up front: the high-water mark of the resident memory
// then holds the text and little else, where decoding the whole file at once
// would leave both its bytes and the text in it.
bool readText(const QString& path, QString& text)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    text.reserve(int(file.size()));  // a UTF-8 byte for every UTF-16 unit at least
    Utf8Decoder decoder;
    QByteArray chunk(1 << 20, Qt::Uninitialized);
    qint64 n;
    while ((n = file.read(chunk.data(), chunk.size())) > 0)
        text += decoder.decode(chunk.constData(), n);
    return n == 0 && !decoder.failed();
}

bool readBytes(const QString& path, QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    bytes = QByteArray(int(file.size()), Qt::Uninitialized);
    return file.read(bytes.data(), bytes.size()) == bytes.size();
}

// One reader, once, in this process: the peak of its resident memory above
// what the process held before it.
int measurePeak(const QString& form, const QString& path)
{
    const bool loadXml = form == QLatin1String("loadxml");
    const bool setXmlString = form == QLatin1String("setxmlstring");
    const bool setXmlBytes = form == QLatin1String("setxmlbytes");
    if (!loadXml && !setXmlString && !setXmlBytes) {
        std::fprintf(stderr, "peak child: no reader '%s'\n", qPrintable(form));
        return 2;
    }
    // Start-up: the same reader reads a small dossier first, to bring in the
    // code and the static data of Qt and the library that every read needs.
    {
        const QByteArray small = TestSupport::filledDossier().GetXmlString().toUtf8();
        EmitterDossier warm;
        bool ok;
        if (loadXml) {
            QTemporaryFile file(QDir::tempPath() + QStringLiteral("/edd_bench_small_XXXXXX.xml"));
            ok = file.open() && file.write(small) == small.size() && file.flush() && warm.LoadXml(file.fileName());
        } else if (setXmlString) {
            ok = warm.SetXmlString(QString::fromUtf8(small), false);
        } else {
            ok = warm.SetXmlBytes(small);
        }
        if (!ok) {
            std::fprintf(stderr, "peak child: the small dossier did not read\n");
            return 1;
        }
    }
    // The caller's input.
    QString text;
    QByteArray bytes;
    if ((setXmlString && !readText(path, text)) || (setXmlBytes && !readBytes(path, bytes))) {
        std::fprintf(stderr, "peak child: cannot read '%s'\n", qPrintable(path));
        return 1;
    }
    const long baseline = maxRssKib();
    EmitterDossier d;
    const bool ok = loadXml ? d.LoadXml(path) : setXmlString ? d.SetXmlString(text, false) : d.SetXmlBytes(bytes);
    const long peak = maxRssKib();
    if (!ok) {
        std::fprintf(stderr, "peak child: the dossier did not read\n");
        return 1;
    }
    std::printf("peak_kib=%ld baseline_kib=%ld\n", peak, baseline);
    return 0;
}

}  // namespace

namespace DossierBench {

int peakChild(const char* form, const char* path)
{
    // A process started from another inherits the high-water mark of the one it
    // replaced (Linux keeps it across exec), so a child of a benchmark process
    // that holds the big dossier would report that process's peak. A process
    // forked from this one, still small, starts its own count: it measures.
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = fork();
    if (pid < 0) {
        std::perror("peak child: fork");
        return 1;
    }
    if (pid == 0)
        return measurePeak(QString::fromLocal8Bit(form), QString::fromLocal8Bit(path));
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

void setSizeMb(double megabytes)
{
    sizeMegabytes = megabytes;
    const Counts n = counts();
    char text[32];
    std::snprintf(text, sizeof text, "%g", megabytes);
    benchmark::AddCustomContext("dossier_size_mb", text);
    benchmark::AddCustomContext("dossier_lists", "pulses=" + std::to_string(n.pulses) +
                                                     " pris=" + std::to_string(n.pris) +
                                                     " frequencies=" + std::to_string(n.frequencies) +
                                                     " sequences=" + std::to_string(n.sequences));
}

}  // namespace DossierBench
