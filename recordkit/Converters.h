#pragma once

#include <QDateTime>
#include <QString>

#include <EmitterDossierDoc/edd_export.h>

/// Text forms of dates and times used by every record.
///
/// "yyyy-MM-ddThh:mm:ss,zzzZ" for a date and time (always written in UTC),
/// "hh:mm:ss,zzz" for a time of day.
class EDD_EXPORT Converters {
public:
    /// "yyyy-MM-ddThh:mm:ss,zzzZ".
    static const QString& DateTimeFormat();
    /// "hh:mm:ss,zzz".
    static const QString& TimeFormat();

    /// The text of a date and time, in UTC.
    static QString ToString(const QDateTime& value);
    /// The date and time of a text in DateTimeFormat(); an invalid QDateTime
    /// for a text that is not one.
    static QDateTime ToDateTime(const QString& text);
};
