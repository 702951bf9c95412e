// QDataStream's own QDateTime reader gives the id of a named time zone to the
// tz backend, which opens the zone file by joining the id to its directory:
// an id such as "../../../../dev/stdin" opens whatever the record names. So
// the date is read here part by part (day and time with QDataStream's own
// QDate and QTime readers, which touch no file), and a system zone is made
// only from an id that is well formed and one the system lists.
//
// The layout, from stream version Qt_5_2 on:
//   qint64 Julian day, quint32 msecs since midnight (0xFFFFFFFF: null time),
//   qint8 Qt::TimeSpec, then
//     OffsetFromUTC: qint32 offset in seconds;
//     TimeZone:      QString id, and when that id is "OffsetFromUtc" a zone
//                    given by its offset: QString id, qint32 offset,
//                    QString name, QString abbreviation, qint32 country,
//                    QString comment.

#include "schema/frame/RawDateTime_p.h"

#include <QByteArray>
#include <QList>
#include <QLocale>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimeZone>

namespace EMITTERDOSSIERDOC {
namespace Frame {

namespace {

// The longest id the system lists is about 30 characters.
const int MaxZoneIdLength = 64;

bool isZoneIdCharacter(QChar c)
{
    const ushort u = c.unicode();
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_' || u == '-' ||
           u == '+' || u == '/' || u == '.' || u == ':';
}

// An IANA-style name such as "America/Argentina/Buenos_Aires" or "UTC+01:00".
// Empty components also rule out a leading or trailing '/', and "." and ".."
// rule out climbing out of the zone directory.
bool isWellFormedZoneId(const QString& id)
{
    if (id.isEmpty() || id.size() > MaxZoneIdLength)
        return false;
    for (const QChar c : id)
        if (!isZoneIdCharacter(c))
            return false;
    for (const QString& component : id.split(QLatin1Char('/')))
        if (component.isEmpty() || component == QLatin1String(".") || component == QLatin1String(".."))
            return false;
    return true;
}

const QSet<QByteArray>& listedZoneIds()
{
    // Asked once: the list is read from the system's zone tables. A
    // function-local static is initialised once, even when threads race.
    // The system's own zone is taken too: the tables leave out some that
    // systems are set to, such as "Etc/UTC".
    static const QSet<QByteArray> ids = [] {
        const QList<QByteArray> list = QTimeZone::availableTimeZoneIds();
        QSet<QByteArray> known(list.begin(), list.end());
        known.insert(QTimeZone::systemTimeZoneId());
        return known;
    }();
    return ids;
}

bool isListedZoneId(const QString& id) { return isWellFormedZoneId(id) && listedZoneIds().contains(id.toUtf8()); }

// The zone that follows a date in Qt::TimeZone; an invalid QTimeZone when the
// zone is refused. All bytes of the zone are consumed in either case.
QTimeZone readZone(QDataStream& stream)
{
    QString id;
    stream >> id;
    if (id != QLatin1String("OffsetFromUtc"))
        return isListedZoneId(id) ? QTimeZone(id.toUtf8()) : QTimeZone();

    QString offsetZoneId;
    qint32 offset = 0;
    QString name;
    QString abbreviation;
    qint32 country = 0;
    QString comment;
    stream >> offsetZoneId >> offset >> name >> abbreviation >> country >> comment;
    // As QDataStream does: a zone of the system when the id names one,
    // otherwise the zone as its parts describe it.
    if (isListedZoneId(offsetZoneId))
        return QTimeZone(offsetZoneId.toUtf8());
    if (!isWellFormedZoneId(offsetZoneId) || country < 0 || country > QLocale::LastCountry)
        return QTimeZone();
    // This constructor looks the id up in the system's list and opens no file.
    return QTimeZone(offsetZoneId.toUtf8(), offset, name, abbreviation, QLocale::Country(country), comment);
}

}  // namespace

void writeRawDateTime(QDataStream& stream, const QDateTime& value)
{
    if (value.timeSpec() == Qt::TimeZone && !value.timeZone().isValid())
        stream << QDateTime();
    else
        stream << value;
}

void readRawDateTime(QDataStream& stream, QDateTime& value)
{
    if (stream.version() < QDataStream::Qt_5_2) {
        // These versions write no zone, so QDataStream's reader opens nothing.
        stream >> value;
        return;
    }
    QDate date;
    QTime time;
    qint8 timeKind = 0;
    stream >> date >> time >> timeKind;
    switch (timeKind) {
    case Qt::LocalTime:
    case Qt::UTC: value = QDateTime(date, time, Qt::TimeSpec(timeKind)); return;
    case Qt::OffsetFromUTC: {
        qint32 offset = 0;
        stream >> offset;
        value = QDateTime(date, time, Qt::OffsetFromUTC, offset);
        return;
    }
    case Qt::TimeZone: {
        // A date whose zone is refused is no date: Qt could not write it again.
        const QTimeZone zone = readZone(stream);
        value = zone.isValid() ? QDateTime(date, time, zone) : QDateTime();
        return;
    }
    default:
        // Not a Qt::TimeSpec; QDataStream reads nothing more for it either.
        value = QDateTime();
        return;
    }
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
