#pragma once

#include <QDateTime>
#include <QString>

#include <EmitterDossierDoc/edd_export.h>

// Text forms of dates and times used by every record: "yyyy-MM-ddThh:mm:ss,zzzZ"
// for a date and time (always written in UTC), "hh:mm:ss,zzz" for a time of day.
class EDD_EXPORT Converters {
public:
    static const QString& DateTimeFormat();
    static const QString& TimeFormat();

    static QString ToString(const QDateTime& value);
    static QDateTime ToDateTime(const QString& text);
};
