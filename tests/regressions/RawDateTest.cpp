// The date of the raw form, the root's DetectionTime. Every date that Qt
// writes reads back exactly as QDataStream reads it, and a time zone id in
// the input never makes the reader open a file: ids that are paths, that name
// standard input or a FIFO, or that run to a million characters read as no
// date, and the fields behind the date still read right. The plain refused ids
// are in data/refused-zone-ids.txt, one a line; the inputs under raw/ that
// hold such ids are run through the fuzz targets' steps by RegressionTest.

#include <gtest/gtest.h>

#include <QDataStream>
#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTimeZone>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <EmitterDossierDoc/frame/Json.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using TestSupport::raw;

namespace {

const char* const FifoPath = "/tmp/edd-regression-fifo";

QDate sampleDay() { return QDate(2026, 11, 2); }
QTime sampleTimeOfDay() { return QTime(14, 5, 33, 250); }
// 2026-11-02 and 14:05:33.250 as the stream holds them.
const qint64 SampleJulianDay = 2461347;
const quint32 SampleMsecs = 50733250;

QDateTime berlinDate() { return QDateTime(sampleDay(), sampleTimeOfDay(), QTimeZone("Europe/Berlin")); }

QTimeZone customZone()
{
    return QTimeZone("Edd/Custom", 7200, QStringLiteral("Custom Time"), QStringLiteral("CUT"), QLocale::Germany,
                     QStringLiteral("a comment"));
}

template <class T>
QByteArray qtBytes(const T& value, int version = QDataStream::Qt_DefaultCompiledVersion)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(version);
    stream << value;
    return bytes;
}

// The bytes QDataStream writes for `values`, one after the other.
template <class... T>
QByteArray streamed(const T&... values)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << values);
    return bytes;
}

QDateTime readByQt(const QByteArray& bytes, int version = QDataStream::Qt_DefaultCompiledVersion,
                   QDataStream::Status* status = nullptr)
{
    QDataStream stream(bytes);
    stream.setVersion(version);
    QDateTime value;
    stream >> value;
    if (status)
        *status = stream.status();
    return value;
}

// The raw form of a dossier, written with the given stream version.
QByteArray rawBytes(const EmitterDossier& d, int version = QDataStream::Qt_DefaultCompiledVersion)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(version);
    d.GetVersionSpecificBinaryWithoutValidation(stream);
    return bytes;
}

// Reads the raw form and says whether the stream ended well: every byte used,
// none missing.
struct RawRead {
    EmitterDossier dossier;
    QDataStream::Status status = QDataStream::Ok;
    bool atEnd = false;
};

RawRead readRawBytes(const QByteArray& bytes, int version = QDataStream::Qt_DefaultCompiledVersion)
{
    RawRead read;
    QDataStream stream(bytes);
    stream.setVersion(version);
    read.dossier.SetVersionSpecificBinaryWithoutValidation(stream);
    read.status = stream.status();
    read.atEnd = stream.atEnd();
    return read;
}

// The bundled sample with another date.
EmitterDossier sampleWithDate(const QDateTime& date)
{
    EmitterDossier d;
    if (!d.LoadXml(QStringLiteral(EDD_EXAMPLES_DIR "/dossier.xml")))
        ADD_FAILURE() << "the bundled sample did not load";
    d.SetDetectionTime(date);
    return d;
}

// The head of a date in a named zone, up to the zone.
QByteArray zoneDateHead() { return streamed(SampleJulianDay, SampleMsecs, qint8(Qt::TimeZone)); }

QByteArray namedZoneDate(const QString& zoneId) { return zoneDateHead() + qtBytes(zoneId); }

// A zone given by its offset: the marker id, then id, offset, name,
// abbreviation, country and comment.
QByteArray offsetZoneDate(const QString& zoneId, qint32 country = 0)
{
    return zoneDateHead() + streamed(QStringLiteral("OffsetFromUtc"), zoneId, qint32(3600), QStringLiteral("Zone name"),
                                     QStringLiteral("ZN"), country, QStringLiteral("Zone comment"));
}

// The raw form of the bundled sample with its date, there in Europe/Berlin,
// replaced by `dateBytes`.
QByteArray sampleWithDateBytes(const QByteArray& dateBytes)
{
    QByteArray bytes = raw(sampleWithDate(berlinDate()));
    const QByteArray date = qtBytes(berlinDate());
    EXPECT_EQ(bytes.count(date), 1);
    return bytes.replace(date, dateBytes);
}

QString millionCharacterId() { return QString(1000000, QLatin1Char('A')); }

// What must hold after a refused date: the bit as the bitmap says, no date,
// every byte consumed, and every other field, those behind the date too, as
// in the sample.
void expectNoDateAndTheRestIntact(const QByteArray& input)
{
    RawRead read = readRawBytes(input);
    const EmitterDossier& d = read.dossier;
    EXPECT_EQ(read.status, QDataStream::Ok);
    EXPECT_TRUE(read.atEnd);
    EXPECT_TRUE(d.IsDetectionTimeSet());
    EXPECT_TRUE(d.GetDetectionTime().isNull());
    EmitterDossier withDate = d;
    withDate.SetDetectionTime(berlinDate());
    EXPECT_TRUE(withDate == sampleWithDate(berlinDate()));
}

QByteArray committedInput(const char* name)
{
    QFile file(QStringLiteral(EDD_REGRESSIONS_DIR "/raw/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        ADD_FAILURE() << "missing regression input " << name;
    return file.readAll();
}

// The ids the reader refuses: those of the data file, and those a text file cannot hold.
QVector<QString> refusedIds()
{
    QFile file(QStringLiteral(EDD_REGRESSIONS_DIR "/data/refused-zone-ids.txt"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QVector<QString> ids;
    for (const QByteArray& line : file.readAll().split('\n'))
        ids.append(QString::fromUtf8(line));
    ids.removeLast();
    ids << QString() << QStringLiteral("Europe/Berlin") + QChar(0) << millionCharacterId();
    return ids;
}

// Each child is a fresh process: Qt keeps the zones it has looked up, and an
// id met earlier in this one would not be looked up again.
template <class F>
void expectInFreshProcess(F&& check)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            ::alarm(10);
            ::_exit(check() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace

// The helpers above spell dates as Qt writes them.
TEST(RawDateLayout, QtWritesZonesAsTheHelpersSpellThem)
{
    EXPECT_EQ(qtBytes(berlinDate()), namedZoneDate(QStringLiteral("Europe/Berlin")));
    const QTimeZone zone("Edd/Custom", 3600, QStringLiteral("Zone name"), QStringLiteral("ZN"), QLocale::AnyCountry,
                         QStringLiteral("Zone comment"));
    EXPECT_EQ(qtBytes(QDateTime(sampleDay(), sampleTimeOfDay(), zone)), offsetZoneDate(QStringLiteral("Edd/Custom")));
}

// Every kind of date goes through the raw form, at the library's stream
// version and older ones, as QDataStream's own reader takes it.
TEST(RawDate, EveryKindOfDateReadsAsQDataStreamReadsIt)
{
    const QDate day = sampleDay();
    const QTime time = sampleTimeOfDay();
    const QDateTime dates[] = {
        QDateTime(day, time, Qt::LocalTime),
        QDateTime(day, time, Qt::UTC),
        QDateTime(day, time, Qt::OffsetFromUTC, 5400),
        QDateTime(day, time, Qt::OffsetFromUTC, -37800),
        berlinDate(),
        QDateTime(day, time, QTimeZone("America/Argentina/Buenos_Aires")),
        QDateTime(day, time, QTimeZone(3600)),
        QDateTime(day, time, QTimeZone(-12345)),
        QDateTime(day, time, QTimeZone("UTC+05:30")),
        QDateTime(day, time, QTimeZone::utc()),
        QDateTime(day, time, customZone()),
        QDateTime(day, QTime(), Qt::UTC),
        QDateTime(QDate::fromJulianDay(0), time, Qt::UTC),
    };
    for (const int version : {int(QDataStream::Qt_DefaultCompiledVersion), int(QDataStream::Qt_5_1),
                              int(QDataStream::Qt_5_0), int(QDataStream::Qt_4_8)}) {
        for (const QDateTime& date : dates) {
            SCOPED_TRACE(std::to_string(version) + " " + date.toString(Qt::ISODateWithMs).toStdString() + " " +
                         date.timeZone().id().toStdString());
            ASSERT_TRUE(date.isValid());
            const QDateTime viaQt = readByQt(qtBytes(date, version), version);
            const QByteArray bytes = rawBytes(sampleWithDate(date), version);
            RawRead read = readRawBytes(bytes, version);
            EXPECT_TRUE(read.status == QDataStream::Ok && read.atEnd);
            const QDateTime& back = read.dossier.GetDetectionTime();
            EXPECT_EQ(back, viaQt);
            EXPECT_EQ(back.timeSpec(), viaQt.timeSpec());
            EXPECT_EQ(back.offsetFromUtc(), viaQt.offsetFromUtc());
            EXPECT_EQ(back.timeZone().id(), viaQt.timeZone().id());
            EXPECT_EQ(qtBytes(back, version), qtBytes(viaQt, version));
            EXPECT_EQ(rawBytes(read.dossier, version), rawBytes(sampleWithDate(viaQt), version));
            if (version == QDataStream::Qt_DefaultCompiledVersion) {
                EXPECT_EQ(rawBytes(read.dossier, version), bytes);
                EXPECT_TRUE(read.dossier == sampleWithDate(date));
            }
        }
    }
}

// Zone ids that are no well-formed name the system lists: each is consumed and
// read as no date. In a zone given by its offset, a well-formed id that the
// system does not list makes a custom zone; anything else is refused.
TEST(RawDate, RefusedZoneIdsReadAsNoDateAndTheFieldsBehindStillRead)
{
    const QRegularExpression wellFormed(QStringLiteral("^[A-Za-z0-9_+-]{1,64}(/[A-Za-z0-9_+-]{1,64})*$"));
    for (const QString& id : refusedIds()) {
        SCOPED_TRACE(id.left(40).toStdString());
        expectNoDateAndTheRestIntact(sampleWithDateBytes(namedZoneDate(id)));
        if (!wellFormed.match(id).hasMatch() || id.size() > 64)
            expectNoDateAndTheRestIntact(sampleWithDateBytes(offsetZoneDate(id)));
    }
    SCOPED_TRACE("offset zone with a country beyond the list");
    expectNoDateAndTheRestIntact(sampleWithDateBytes(offsetZoneDate(QStringLiteral("Edd/Custom"), 100000)));
}

TEST(RawDate, AWellFormedUnlistedIdOfAnOffsetZoneMakesACustomZone)
{
    RawRead read = readRawBytes(sampleWithDateBytes(offsetZoneDate(QStringLiteral("Edd/Other"), QLocale::France)));
    EXPECT_TRUE(read.status == QDataStream::Ok && read.atEnd);
    const QDateTime& date = read.dossier.GetDetectionTime();
    EXPECT_EQ(date.timeZone().id(), QByteArray("Edd/Other"));
    EXPECT_EQ(date.offsetFromUtc(), 3600);
    EXPECT_EQ(date.timeZone().comment(), QStringLiteral("Zone comment"));
    EXPECT_EQ(date.timeZone().country(), QLocale::France);
    EXPECT_EQ(date.toUTC(), QDateTime(sampleDay(), QTime(13, 5, 33, 250), Qt::UTC));
}

// A date in a zone Qt does not know is set but no date: Qt's writer cannot
// write the zone, so the raw form writes the null date, and every form reads
// back what the others do.
TEST(RawDate, ADateInAnUnknownZoneIsNoDateInEveryForm)
{
    for (const QTimeZone& zone : {QTimeZone("Nowhere/Nothing"), QTimeZone()}) {
        EmitterDossier d = sampleWithDate(QDateTime(sampleDay(), sampleTimeOfDay(), zone));
        EXPECT_EQ(raw(d), raw(sampleWithDate(QDateTime())));
        EmitterDossier fromRaw, fromXml, fromTagged, fromJson;
        TestSupport::readRaw(fromRaw, raw(d));
        ASSERT_TRUE(fromXml.SetXmlString(d.GetXmlString(), false));
        QByteArray tagged = d.GetBinaryRepresentationAsQByteArray();
        ASSERT_TRUE(fromTagged.SetBinaryRepresentation(tagged));
        ASSERT_TRUE(Frame::FromJson(fromJson, Frame::ToJson(d)));
        for (const EmitterDossier* back : {&fromRaw, &fromXml, &fromTagged, &fromJson}) {
            EXPECT_TRUE(back->IsDetectionTimeSet());
            EXPECT_FALSE(back->GetDetectionTime().isValid());
            EXPECT_EQ(raw(*back), raw(fromRaw));
        }
    }
}

// A kind-of-time byte that is no Qt::TimeSpec carries nothing more, in Qt's reader too.
TEST(RawDate, UnknownTimeSpecReadsAsNoDate)
{
    for (const qint8 timeKind : {qint8(4), qint8(0x7f), qint8(-1)})
        expectNoDateAndTheRestIntact(sampleWithDateBytes(streamed(SampleJulianDay, SampleMsecs, timeKind)));
}

// A zone id cut short by the end of the input leaves the stream failed, as
// QDataStream's own reader leaves it, and gives no date.
TEST(RawDate, ZoneIdCutShortFailsTheStream)
{
    const QByteArray whole = raw(sampleWithDate(berlinDate()));
    const QByteArray date = qtBytes(berlinDate());
    const QByteArray cutDate = date.left(date.size() - 6);  // three characters of "Europe/Berlin" missing
    QDataStream::Status qtStatus = QDataStream::Ok;
    readByQt(cutDate, QDataStream::Qt_DefaultCompiledVersion, &qtStatus);
    EXPECT_EQ(qtStatus, QDataStream::ReadPastEnd);
    RawRead read = readRawBytes(whole.left(whole.indexOf(date)) + cutDate);
    EXPECT_EQ(read.status, QDataStream::ReadPastEnd);
    EXPECT_TRUE(read.dossier.IsDetectionTimeSet());
    EXPECT_FALSE(read.dossier.GetDetectionTime().isValid());
}

// Were the id opened, the child would wait on the FIFO for a writer until the alarm ends it.
TEST(RawDate, AZoneIdNamingAFifoDoesNotOpenIt)
{
    ::unlink(FifoPath);
    ASSERT_EQ(::mkfifo(FifoPath, 0600), 0) << std::strerror(errno);
    const QByteArray named = committedInput("zone-id-fifo.bin").mid(1);
    const QByteArray inOffsetZone = sampleWithDateBytes(
        offsetZoneDate(QStringLiteral("../../../../tmp/edd-regression-fifo")));
    for (const QByteArray& input : {named, inOffsetZone}) {
        expectInFreshProcess([&] {
            RawRead read = readRawBytes(input);
            return read.dossier.IsDetectionTimeSet() && !read.dossier.GetDetectionTime().isValid() && read.atEnd;
        });
    }
    ::unlink(FifoPath);
}

// Were the id opened, the zone reader would take the bytes waiting on standard input.
TEST(RawDate, AZoneIdNamingStandardInputLeavesItUnread)
{
    const QByteArray input = committedInput("zone-id-stdin.bin").mid(1);
    expectInFreshProcess([&] {
        static const char waiting[] = "bytes that belong to the host application";
        int ends[2];
        if (::pipe(ends) != 0 || ::write(ends[1], waiting, sizeof waiting) != ssize_t(sizeof waiting))
            return false;
        ::close(ends[1]);
        if (::dup2(ends[0], STDIN_FILENO) < 0)
            return false;
        RawRead read = readRawBytes(input);
        char left[sizeof waiting + 8] = {};
        const ssize_t n = ::read(STDIN_FILENO, left, sizeof left);
        return n == ssize_t(sizeof waiting) && std::memcmp(left, waiting, sizeof waiting) == 0 &&
               !read.dossier.GetDetectionTime().isValid();
    });
}
