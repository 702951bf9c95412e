// Speed of the three forms per object, against plain QDataStream operators
// writing the same numbers, and the heap a loaded list holds.
//
//   edd_bench [--size_mb=N] [--benchmark_filter=...]
//
// --size_mb=N sets the size of the whole dossier of DossierBench.cpp in
// megabytes of XML (default 20).

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <QBuffer>
#include <QDataStream>
#include <QXmlStreamReader>

#include <EmitterDossierDoc/EmitterDossierDoc.h>

#include "DossierBench.h"
#include "support/SampleTrees.h"

using namespace EMITTERDOSSIERDOC;

namespace {

BeamDuration makeBeamDuration()
{
    BeamDuration b;
    b.Setunit(b.NameTounit(QStringLiteral("ns")));
    b.SetMean(1250.75);
    b.SetMin(1200.5);
    b.SetMax(1300.25);
    b.SetTol(12.5);
    return b;
}

Alternatives makeAlternatives(int count)
{
    Alternatives list;
    QVector<Alternative>& items = list.GetAlternative();
    items.reserve(count);
    for (int i = 0; i < count; ++i) {
        Alternative a;
        a.SetName(QStringLiteral("Emitter-%1").arg(i));
        a.SetDatabaseID(QStringLiteral("DB-%1").arg(i * 7));
        a.SetConfidence((i % 100) / 100.0);
        items.append(a);
    }
    return list;
}

Alternatives makeThousand() { return makeAlternatives(1000); }

// A technical block with every property set, 10,000 pulse items and 1,000 PRI items.
ELINTParameter makeParameters() { return TestSupport::filledParameters(10000, 1000); }

QByteArray rawBytes(const Frame::Record& object) { return Frame::RawFormBytes(object); }

// --- The three forms ----------------------------------------------------------

template <class T>
void XmlWrite(benchmark::State& state, T (*make)())
{
    const T object = make();
    qint64 bytes = 0;
    for (auto _ : state) {
        const QString text = object.GetXmlString();
        bytes += text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    state.SetBytesProcessed(bytes);
}

template <class T>
void XmlRead(benchmark::State& state, T (*make)())
{
    const QString text = make().GetXmlString();
    for (auto _ : state) {
        T object;
        benchmark::DoNotOptimize(object.SetXmlString(text, false));
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}

template <class T>
void TaggedWrite(benchmark::State& state, T (*make)())
{
    const T object = make();
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray tagged = object.GetBinaryRepresentationAsQByteArray();
        bytes += tagged.size();
        benchmark::DoNotOptimize(tagged.constData());
    }
    state.SetBytesProcessed(bytes);
}

template <class T>
void TaggedRead(benchmark::State& state, T (*make)())
{
    QByteArray tagged = make().GetBinaryRepresentationAsQByteArray();
    for (auto _ : state) {
        T object;
        benchmark::DoNotOptimize(object.SetBinaryRepresentation(tagged));
    }
    state.SetBytesProcessed(state.iterations() * tagged.size());
}

template <class T>
void RawWrite(benchmark::State& state, T (*make)())
{
    const T object = make();
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray raw = rawBytes(object);
        bytes += raw.size();
        benchmark::DoNotOptimize(raw.constData());
    }
    state.SetBytesProcessed(bytes);
}

template <class T>
void RawRead(benchmark::State& state, T (*make)())
{
    QByteArray raw = rawBytes(make());
    for (auto _ : state) {
        T object;
        QBuffer buffer(&raw);
        buffer.open(QIODevice::ReadOnly);
        QDataStream stream(&buffer);
        object.SetVersionSpecificBinaryWithoutValidation(stream);
        benchmark::DoNotOptimize(object.IsInitialized());
    }
    state.SetBytesProcessed(state.iterations() * raw.size());
}

#define EDD_FORMS(name, maker)                   \
    BENCHMARK_CAPTURE(XmlWrite, name, maker);    \
    BENCHMARK_CAPTURE(XmlRead, name, maker);     \
    BENCHMARK_CAPTURE(TaggedWrite, name, maker); \
    BENCHMARK_CAPTURE(TaggedRead, name, maker);  \
    BENCHMARK_CAPTURE(RawWrite, name, maker);    \
    BENCHMARK_CAPTURE(RawRead, name, maker)

EDD_FORMS(BeamDuration, &makeBeamDuration);
EDD_FORMS(Alternatives1000, &makeThousand);
EDD_FORMS(Parameters10000Pulses, &makeParameters);

// --- Yardstick: the same numbers through plain QDataStream operators ------------

struct PlainAlternative {
    QString name;
    QString databaseId;
    double confidence;
};

QVector<PlainAlternative> plainThousand()
{
    QVector<PlainAlternative> items;
    const Alternatives list = makeThousand();
    for (const Alternative& a : list.GetAlternative())
        items.append({a.GetName(), a.GetDatabaseID(), a.GetConfidence()});
    return items;
}

void PlainWrite_BeamDuration(benchmark::State& state)
{
    const BeamDuration b = makeBeamDuration();
    const double mean = b.GetMean(), min = b.GetMin(), max = b.GetMax(), tol = b.GetTol();
    for (auto _ : state) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        stream.writeRawData("\x1f", 1);
        stream << mean << min << max << tol << qint8(0);
        benchmark::DoNotOptimize(bytes.constData());
    }
}
BENCHMARK(PlainWrite_BeamDuration);

void PlainRead_BeamDuration(benchmark::State& state)
{
    QByteArray bytes = rawBytes(makeBeamDuration());
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QDataStream stream(&buffer);
        char bitmap;
        double mean, min, max, tol;
        qint8 unit;
        stream.readRawData(&bitmap, 1);
        stream >> mean >> min >> max >> tol >> unit;
        benchmark::DoNotOptimize(mean + min + max + tol + unit);
    }
}
BENCHMARK(PlainRead_BeamDuration);

void PlainWrite_Alternatives1000(benchmark::State& state)
{
    const QVector<PlainAlternative> items = plainThousand();
    for (auto _ : state) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        stream << qint32(items.size());
        for (const PlainAlternative& a : items) {
            stream.writeRawData("\x07", 1);
            stream << a.name << a.databaseId << a.confidence;
        }
        benchmark::DoNotOptimize(bytes.constData());
    }
}
BENCHMARK(PlainWrite_Alternatives1000);

void PlainRead_Alternatives1000(benchmark::State& state)
{
    const Alternatives list = makeThousand();
    QByteArray bytes = rawBytes(list).mid(1);
    for (auto _ : state) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QDataStream stream(&buffer);
        qint32 count = 0;
        stream >> count;
        QVector<PlainAlternative> items;
        items.reserve(count);
        for (qint32 i = 0; i < count; ++i) {
            char bitmap;
            PlainAlternative a;
            stream.readRawData(&bitmap, 1);
            stream >> a.name >> a.databaseId >> a.confidence;
            items.append(a);
        }
        benchmark::DoNotOptimize(items.constData());
    }
}
BENCHMARK(PlainRead_Alternatives1000);

// Yardstick for the XML reader: a bare token pass over the same text.
void TokenPass_Parameters10000Pulses(benchmark::State& state)
{
    const QString text = makeParameters().GetXmlString();
    for (auto _ : state) {
        QXmlStreamReader reader(text);
        int tokens = 0;
        while (!reader.atEnd()) {
            reader.readNext();
            ++tokens;
        }
        benchmark::DoNotOptimize(tokens);
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(TokenPass_Parameters10000Pulses);

// --- Heap held by a loaded list -------------------------------------------------

size_t heapInUse()
{
    malloc_trim(0);
    return mallinfo2().uordblks;
}

void HeapHeld_Alternatives100000(benchmark::State& state)
{
    QByteArray tagged;
    qint64 xmlBytes = 0;
    {
        const Alternatives list = makeAlternatives(100000);
        tagged = list.GetBinaryRepresentationAsQByteArray();
        xmlBytes = list.GetXmlString().toUtf8().size();
    }
    size_t held = 0;
    for (auto _ : state) {
        const size_t before = heapInUse();
        auto object = std::make_unique<Alternatives>();
        object->SetBinaryRepresentation(tagged);
        held = heapInUse() - before;
        benchmark::DoNotOptimize(object.get());
    }
    state.counters["heap_bytes"] = double(held);
    state.counters["xml_bytes"] = double(xmlBytes);
    state.counters["heap_per_xml_byte"] = double(held) / double(xmlBytes);
}
BENCHMARK(HeapHeld_Alternatives100000)->Iterations(1)->Unit(benchmark::kMillisecond);

// The heap an object holds after it has read one of its forms, beside the size of its XML text.
enum class Form { Xml, Tagged, Raw };

void HeapHeld_Parameters10000Pulses(benchmark::State& state)
{
    const Form form = Form(state.range(0));
    QString xml;
    QByteArray bytes;
    {
        const ELINTParameter p = makeParameters();
        xml = p.GetXmlString();
        bytes = form == Form::Tagged ? p.GetBinaryRepresentationAsQByteArray() : rawBytes(p);
    }
    const qint64 xmlBytes = xml.toUtf8().size();
    size_t held = 0;
    for (auto _ : state) {
        const size_t before = heapInUse();
        auto object = std::make_unique<ELINTParameter>();
        if (form == Form::Xml) {
            object->SetXmlString(xml, false);
        } else if (form == Form::Tagged) {
            object->SetBinaryRepresentation(bytes);
        } else {
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::ReadOnly);
            QDataStream stream(&buffer);
            object->SetVersionSpecificBinaryWithoutValidation(stream);
        }
        held = heapInUse() - before;
        benchmark::DoNotOptimize(object.get());
    }
    state.SetLabel(form == Form::Xml      ? "after XML read"
                   : form == Form::Tagged ? "after tagged read"
                                          : "after raw read");
    state.counters["heap_bytes"] = double(held);
    state.counters["xml_bytes"] = double(xmlBytes);
    state.counters["heap_per_xml_byte"] = double(held) / double(xmlBytes);
}
BENCHMARK(HeapHeld_Parameters10000Pulses)->DenseRange(0, 2)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

// Takes this program's own options out of argv, then hands the rest to Google Benchmark.
int main(int argc, char** argv)
{
    static const char sizeOption[] = "--size_mb=";
    static const char peakChildOption[] = "--peak_child=";
    static const char peakFileOption[] = "--peak_file=";
    double sizeMb = 20;
    const char* peakChild = nullptr;
    const char* peakFile = nullptr;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        // The private options of the child that Dossier_PeakRss runs.
        if (std::strncmp(arg, peakChildOption, sizeof peakChildOption - 1) == 0) {
            peakChild = arg + sizeof peakChildOption - 1;
            continue;
        }
        if (std::strncmp(arg, peakFileOption, sizeof peakFileOption - 1) == 0) {
            peakFile = arg + sizeof peakFileOption - 1;
            continue;
        }
        if (std::strncmp(arg, sizeOption, sizeof sizeOption - 1) == 0) {
            const char* value = arg + sizeof sizeOption - 1;
            char* end = nullptr;
            sizeMb = std::strtod(value, &end);
            // The whole text is one QString, which Qt 5 keeps below 2^30 characters.
            if (end == value || *end != '\0' || !std::isfinite(sizeMb) || sizeMb <= 0 || sizeMb > 1000) {
                std::fprintf(stderr, "%s: --size_mb takes a number of megabytes above 0 and up to 1000, not '%s'\n",
                             argv[0], value);
                return 1;
            }
            continue;
        }
        argv[kept++] = argv[i];
    }
    argc = kept;
    argv[argc] = nullptr;

    if (peakChild || peakFile) {
        if (!peakChild || !peakFile) {
            std::fprintf(stderr, "%s: --peak_child and --peak_file go together\n", argv[0]);
            return 2;
        }
        return DossierBench::peakChild(peakChild, peakFile);
    }

    DossierBench::setSizeMb(sizeMb);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
