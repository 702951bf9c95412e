// The date of the raw form, the root's DetectionTime. Every date that Qt
// writes reads back exactly as QDataStream reads it, and a time zone id in
// the input never makes the reader open a file: ids that are paths, that name
// standard input or a FIFO, or that run to a million characters read as no
// date, and the fields behind the date still read right.

#include <gtest/gtest.h>

#include <QDataStream>
#include <QDateTime>
#include <QFile>
#include <QTimeZone>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using TestSupport::Bytes;
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

QDateTime readByQt(const QByteArray& bytes, int version = QDataStream::Qt_DefaultCompiledVersion)
{
    QDataStream stream(bytes);
    stream.setVersion(version);
    QDateTime value;
    stream >> value;
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
    bool streamOk = false;
    bool atEnd = false;
};

RawRead readRawBytes(const QByteArray& bytes, int version = QDataStream::Qt_DefaultCompiledVersion)
{
    RawRead read;
    QDataStream stream(bytes);
    stream.setVersion(version);
    read.dossier.SetVersionSpecificBinaryWithoutValidation(stream);
    read.status = stream.status();
    read.streamOk = stream.status() == QDataStream::Ok;
    read.atEnd = stream.atEnd();
    return read;
}

EmitterDossier bundledSample()
{
    EmitterDossier d;
    if (!d.LoadXml(QStringLiteral(EDD_EXAMPLES_DIR "/dossier.xml")))
        ADD_FAILURE() << "the bundled sample did not load";
    return d;
}

EmitterDossier sampleWithDate(const QDateTime& date)
{
    EmitterDossier d = bundledSample();
    d.SetDetectionTime(date);
    return d;
}

// The head of a date in a named zone, up to the zone.
QByteArray zoneDateHead() { return (Bytes() << SampleJulianDay << SampleMsecs << qint8(Qt::TimeZone)).bytes(); }

QByteArray namedZoneDate(const QString& zoneId) { return zoneDateHead() + qtBytes(zoneId); }

// A zone given by its offset: the marker id, then id, offset, name,
// abbreviation, country and comment.
QByteArray offsetZoneDate(const QString& zoneId, qint32 country = 0)
{
    return zoneDateHead() + (Bytes() << QStringLiteral("OffsetFromUtc") << zoneId << qint32(3600)
                                     << QStringLiteral("Zone name") << QStringLiteral("ZN") << country
                                     << QStringLiteral("Zone comment"))
                                .bytes();
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
// every byte consumed, and the fields behind the date as in the sample.
void expectNoDateAndTheRestIntact(const QByteArray& input)
{
    RawRead read = readRawBytes(input);
    const EmitterDossier& d = read.dossier;
    EXPECT_TRUE(read.streamOk);
    EXPECT_TRUE(read.atEnd);
    EXPECT_TRUE(d.IsDetectionTimeSet());
    EXPECT_FALSE(d.GetDetectionTime().isValid());
    EXPECT_TRUE(d.GetDetectionTime().isNull());

    // Fields written after the date, with the sample's values.
    EXPECT_EQ(d.GetDetectionDuration().GetValue(), 1500000000.0);
    EXPECT_EQ(d.GetDetectionPosition().GetName(), QStringLiteral("Station North"));
    EXPECT_EQ(d.GetBearing().GetAzimuth(), 271.25);
    EXPECT_EQ(d.GetELINTParameter().GetComments(), QStringLiteral("Coastal surveillance radar, two modes"));

    // All else equals the sample.
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

// The regression inputs: validate flag 1, then the sample with the date's zone id replaced.
struct CommittedInput {
    const char* file;
    QByteArray date;
};

std::vector<CommittedInput> committedInputs()
{
    return {
        {"zone-id-parent-path.bin", namedZoneDate(QStringLiteral("../../../../etc/passwd"))},
        {"zone-id-absolute-path.bin", namedZoneDate(QStringLiteral("/etc/passwd"))},
        {"zone-id-stdin.bin", namedZoneDate(QStringLiteral("../../../../dev/stdin"))},
        {"zone-id-fifo.bin", namedZoneDate(QStringLiteral("../../../../tmp/edd-regression-fifo"))},
        {"zone-id-million-characters.bin", namedZoneDate(millionCharacterId())},
        {"offset-zone-id-parent-path.bin", offsetZoneDate(QStringLiteral("../../../../etc/passwd"))},
    };
}

}  // namespace

// The layout the reader follows, as Qt writes it for each kind of time.
TEST(RawDateLayout, QtWritesDatesAsTheReaderExpects)
{
    EXPECT_EQ(qtBytes(QDateTime(sampleDay(), sampleTimeOfDay(), Qt::LocalTime)),
              QByteArray::fromHex("0000000000258ea3 030620c2 00"));
    EXPECT_EQ(qtBytes(QDateTime(sampleDay(), sampleTimeOfDay(), Qt::UTC)),
              QByteArray::fromHex("0000000000258ea3 030620c2 01"));
    EXPECT_EQ(qtBytes(QDateTime(sampleDay(), sampleTimeOfDay(), Qt::OffsetFromUTC, 5400)),
              QByteArray::fromHex("0000000000258ea3 030620c2 02 00001518"));
    // A null date: the smallest Julian day and the null time.
    EXPECT_EQ(qtBytes(QDateTime()), QByteArray::fromHex("8000000000000000 ffffffff 00"));

    // A named zone: its id.
    EXPECT_EQ(qtBytes(berlinDate()),
              QByteArray::fromHex("0000000000258ea3 030620c2 03 0000001a") +
                  QByteArray::fromHex("0045 0075 0072 006f 0070 0065 002f 0042 0065 0072 006c 0069 006e"));
    EXPECT_EQ(qtBytes(berlinDate()), namedZoneDate(QStringLiteral("Europe/Berlin")));

    // A zone given by its offset, made by Qt from the offset alone.
    const QString utcPlusOne = QStringLiteral("UTC+01");
    EXPECT_EQ(qtBytes(QDateTime(sampleDay(), sampleTimeOfDay(), QTimeZone(3600))),
              zoneDateHead() + (Bytes() << QStringLiteral("OffsetFromUtc") << utcPlusOne << qint32(3600) << utcPlusOne
                                        << utcPlusOne << qint32(QLocale::AnyCountry) << utcPlusOne)
                                   .bytes());
    // A custom zone from the constructor with all its parts.
    EXPECT_EQ(qtBytes(QDateTime(sampleDay(), sampleTimeOfDay(), customZone())),
              zoneDateHead() + (Bytes() << QStringLiteral("OffsetFromUtc") << QStringLiteral("Edd/Custom")
                                        << qint32(7200) << QStringLiteral("Custom Time") << QStringLiteral("CUT")
                                        << qint32(QLocale::Germany) << QStringLiteral("a comment"))
                                   .bytes());

    // Before stream version 5.2 no zone is written, whatever the kind of time.
    EXPECT_EQ(qtBytes(berlinDate(), QDataStream::Qt_5_1), QByteArray::fromHex("0000000000258ea3 030620c2 04"));
    EXPECT_EQ(qtBytes(berlinDate(), QDataStream::Qt_5_0), QByteArray::fromHex("0000000000258ea3 02cf3242 03"));
}

// Every kind of date goes through the raw form as QDataStream's own reader
// takes it: the same date, kind of time, zone and offset, and the same bytes again.
TEST(RawDate, EverySpecAndZoneRoundTripsExactly)
{
    const QDate day = sampleDay();
    const QTime time = sampleTimeOfDay();
    const struct {
        const char* name;
        QDateTime date;
    } cases[] = {
        {"local time", QDateTime(day, time, Qt::LocalTime)},
        {"UTC", QDateTime(day, time, Qt::UTC)},
        {"offset from UTC", QDateTime(day, time, Qt::OffsetFromUTC, 5400)},
        {"negative offset from UTC", QDateTime(day, time, Qt::OffsetFromUTC, -37800)},
        {"named zone", berlinDate()},
        {"named zone, three components", QDateTime(day, time, QTimeZone("America/Argentina/Buenos_Aires"))},
        {"zone of a whole-hour offset", QDateTime(day, time, QTimeZone(3600))},
        {"zone of an odd offset", QDateTime(day, time, QTimeZone(-12345))},
        {"listed UTC offset zone", QDateTime(day, time, QTimeZone("UTC+05:30"))},
        {"UTC zone", QDateTime(day, time, QTimeZone::utc())},
        {"custom zone", QDateTime(day, time, customZone())},
        {"null time", QDateTime(day, QTime(), Qt::UTC)},
        {"first day of the calendar", QDateTime(QDate::fromJulianDay(0), time, Qt::UTC)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(c.date.isValid());
        const QDateTime viaQt = readByQt(qtBytes(c.date));

        const EmitterDossier original = sampleWithDate(c.date);
        const QByteArray bytes = raw(original);
        RawRead read = readRawBytes(bytes);
        const EmitterDossier& back = read.dossier;
        EXPECT_TRUE(read.streamOk);
        EXPECT_TRUE(read.atEnd);
        EXPECT_TRUE(back == original);
        ASSERT_TRUE(back.IsDetectionTimeSet());

        const QDateTime& date = back.GetDetectionTime();
        EXPECT_EQ(date, c.date);
        EXPECT_EQ(date, viaQt);
        EXPECT_EQ(date.timeSpec(), c.date.timeSpec());
        EXPECT_EQ(date.timeSpec(), viaQt.timeSpec());
        EXPECT_EQ(date.offsetFromUtc(), c.date.offsetFromUtc());
        EXPECT_EQ(date.timeZone().id(), c.date.timeZone().id());
        EXPECT_EQ(date.timeZone().id(), viaQt.timeZone().id());
        EXPECT_EQ(date.time(), c.date.time());
        EXPECT_EQ(qtBytes(date), qtBytes(c.date));
        EXPECT_EQ(qtBytes(date), qtBytes(viaQt));
        EXPECT_EQ(raw(back), bytes);
    }
}

// A date read from a stream of an older version is what QDataStream gives there.
TEST(RawDate, OlderStreamVersionsReadAsQDataStreamReadsThem)
{
    const QDateTime dates[] = {berlinDate(), QDateTime(sampleDay(), sampleTimeOfDay(), Qt::UTC),
                               QDateTime(sampleDay(), sampleTimeOfDay(), Qt::OffsetFromUTC, 5400)};
    for (const int version : {int(QDataStream::Qt_5_1), int(QDataStream::Qt_5_0), int(QDataStream::Qt_4_8)}) {
        for (const QDateTime& date : dates) {
            SCOPED_TRACE(std::to_string(version) + " " + date.toString(Qt::ISODateWithMs).toStdString());
            const QDateTime viaQt = readByQt(qtBytes(date, version), version);
            const QByteArray bytes = rawBytes(sampleWithDate(date), version);
            RawRead read = readRawBytes(bytes, version);
            EXPECT_TRUE(read.streamOk);
            EXPECT_TRUE(read.atEnd);
            const QDateTime& back = read.dossier.GetDetectionTime();
            EXPECT_EQ(back, viaQt);
            EXPECT_EQ(back.timeSpec(), viaQt.timeSpec());
            EXPECT_EQ(back.offsetFromUtc(), viaQt.offsetFromUtc());
            EXPECT_EQ(rawBytes(read.dossier, version), rawBytes(sampleWithDate(viaQt), version));
        }
    }
}

// Zone ids that are no well-formed name the system lists: each is consumed
// and read as no date.
TEST(RawDate, RefusedZoneIdsReadAsNoDateAndTheFieldsBehindStillRead)
{
    const QString refused[] = {
        QStringLiteral("../../../../etc/passwd"),
        QStringLiteral("/etc/passwd"),
        QStringLiteral("/etc/localtime"),
        QStringLiteral("../../../../dev/stdin"),
        QStringLiteral("/dev/stdin"),
        QStringLiteral("../../../../tmp/edd-regression-fifo"),
        millionCharacterId(),
        // A real zone reached by a detour is still a path.
        QStringLiteral("Europe/../Europe/Berlin"),
        QStringLiteral("./Europe/Berlin"),
        QStringLiteral("Europe//Berlin"),
        QStringLiteral("Europe/Berlin/"),
        QStringLiteral("Europe/Berlin\\..\\x"),
        QString::fromUtf8("Europe/B\xc3\xa9rlin"),
        QStringLiteral("Europe/Berlin "),
        QStringLiteral("Europe/Berlin") + QChar(0),
        QString(),
        QStringLiteral(""),
        // Well formed, but not a zone of this system.
        QStringLiteral("Mars/Olympus_Mons"),
        QStringLiteral("OffsetFromUtc/x"),
        QString(65, QLatin1Char('a')),
    };
    for (const QString& id : refused) {
        SCOPED_TRACE(id.left(40).toStdString());
        expectNoDateAndTheRestIntact(sampleWithDateBytes(namedZoneDate(id)));
    }

    // In a zone given by its offset, a well-formed id that the system does not
    // list makes a custom zone (as the round trip shows); anything else is refused.
    const QString refusedInOffsetZone[] = {
        QStringLiteral("../../../../etc/passwd"),
        QStringLiteral("/etc/passwd"),
        QStringLiteral("../../../../dev/stdin"),
        QStringLiteral("../../../../tmp/edd-regression-fifo"),
        millionCharacterId(),
        QString(),
        QString(65, QLatin1Char('a')),
    };
    for (const QString& id : refusedInOffsetZone) {
        SCOPED_TRACE("offset zone " + id.left(40).toStdString());
        expectNoDateAndTheRestIntact(sampleWithDateBytes(offsetZoneDate(id)));
    }
    {
        SCOPED_TRACE("offset zone with a country beyond the list");
        expectNoDateAndTheRestIntact(sampleWithDateBytes(offsetZoneDate(QStringLiteral("Edd/Custom"), 100000)));
    }
}

TEST(RawDate, AWellFormedUnlistedIdOfAnOffsetZoneMakesACustomZone)
{
    RawRead read = readRawBytes(sampleWithDateBytes(offsetZoneDate(QStringLiteral("Edd/Other"), QLocale::France)));
    EXPECT_TRUE(read.streamOk);
    EXPECT_TRUE(read.atEnd);
    const QDateTime& date = read.dossier.GetDetectionTime();
    ASSERT_TRUE(date.isValid());
    EXPECT_EQ(date.timeSpec(), Qt::TimeZone);
    EXPECT_EQ(date.timeZone().id(), QByteArray("Edd/Other"));
    EXPECT_EQ(date.offsetFromUtc(), 3600);
    EXPECT_EQ(date.timeZone().comment(), QStringLiteral("Zone comment"));
    EXPECT_EQ(date.timeZone().country(), QLocale::France);
    EXPECT_EQ(date.toUTC(), QDateTime(sampleDay(), QTime(13, 5, 33, 250), Qt::UTC));
}

// A kind-of-time byte that is no Qt::TimeSpec carries nothing more, in Qt's reader too.
TEST(RawDate, UnknownTimeSpecReadsAsNoDate)
{
    for (const qint8 timeKind : {qint8(4), qint8(0x7f), qint8(-1)}) {
        SCOPED_TRACE(int(timeKind));
        expectNoDateAndTheRestIntact(
            sampleWithDateBytes((Bytes() << SampleJulianDay << SampleMsecs << timeKind).bytes()));
    }
}

// A zone id cut short by the end of the input leaves the stream failed, as
// QDataStream's own reader leaves it, and gives no date.
TEST(RawDate, ZoneIdCutShortFailsTheStream)
{
    const QByteArray whole = raw(sampleWithDate(berlinDate()));
    const QByteArray date = qtBytes(berlinDate());
    const int dateStart = whole.indexOf(date);
    ASSERT_GT(dateStart, 0);
    // Three characters of "Europe/Berlin" missing.
    const QByteArray cutDate = date.left(date.size() - 6);

    QDataStream qtStream(cutDate);
    QDateTime viaQt;
    qtStream >> viaQt;
    EXPECT_EQ(qtStream.status(), QDataStream::ReadPastEnd);

    RawRead read = readRawBytes(whole.left(dateStart) + cutDate);
    EXPECT_EQ(read.status, QDataStream::ReadPastEnd);
    EXPECT_TRUE(read.dossier.IsDetectionTimeSet());
    EXPECT_FALSE(read.dossier.GetDetectionTime().isValid());
}

// The inputs under regressions/raw are what their names say: the bundled
// sample with the date's zone id replaced.
TEST(RawDate, RegressionInputsHoldTheHostileZoneIds)
{
    for (const CommittedInput& input : committedInputs()) {
        SCOPED_TRACE(input.file);
        const QByteArray bytes = committedInput(input.file);
        EXPECT_TRUE(bytes == QByteArray(1, '\x01') + sampleWithDateBytes(input.date));
        expectNoDateAndTheRestIntact(bytes.mid(1));
    }
}

// Were the id opened, the child would wait on the FIFO for a writer until the
// alarm ends it.
TEST(RawDate, AZoneIdNamingAFifoDoesNotOpenIt)
{
    // Each child is a fresh process: Qt keeps the zones it has looked up, and
    // an id met earlier in this one would not be looked up again.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ::unlink(FifoPath);
    ASSERT_EQ(::mkfifo(FifoPath, 0600), 0) << std::strerror(errno);
    const QByteArray named = committedInput("zone-id-fifo.bin").mid(1);
    const QByteArray inOffsetZone = sampleWithDateBytes(
        offsetZoneDate(QStringLiteral("../../../../tmp/edd-regression-fifo")));
    for (const QByteArray& input : {named, inOffsetZone}) {
        EXPECT_EXIT(
            {
                ::alarm(10);
                RawRead read = readRawBytes(input);
                const bool noDate = read.dossier.IsDetectionTimeSet() && !read.dossier.GetDetectionTime().isValid();
                ::_exit(noDate && read.atEnd ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "");
    }
    ::unlink(FifoPath);
}

// Were the id opened, the zone reader would take the bytes waiting on
// standard input.
TEST(RawDate, AZoneIdNamingStandardInputLeavesItUnread)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const QByteArray input = committedInput("zone-id-stdin.bin").mid(1);
    EXPECT_EXIT(
        {
            ::alarm(10);
            static const char waiting[] = "bytes that belong to the host application";
            int ends[2];
            if (::pipe(ends) != 0 || ::write(ends[1], waiting, sizeof waiting) != ssize_t(sizeof waiting))
                ::_exit(2);
            ::close(ends[1]);
            if (::dup2(ends[0], STDIN_FILENO) < 0)
                ::_exit(2);
            RawRead read = readRawBytes(input);
            char left[sizeof waiting + 8] = {};
            const ssize_t n = ::read(STDIN_FILENO, left, sizeof left);
            const bool unread = n == ssize_t(sizeof waiting) && std::memcmp(left, waiting, sizeof waiting) == 0;
            ::_exit(unread && !read.dossier.GetDetectionTime().isValid() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
