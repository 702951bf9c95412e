#include <EmitterDossierDoc/recordkit/Converters.h>

const QString& Converters::DateTimeFormat()
{
    static const QString format = QStringLiteral("yyyy-MM-ddThh:mm:ss,zzzZ");
    return format;
}

const QString& Converters::TimeFormat()
{
    static const QString format = QStringLiteral("hh:mm:ss,zzz");
    return format;
}

QString Converters::ToString(const QDateTime& value)
{
    if (!value.isValid())
        return QString();
    return value.toUTC().toString(DateTimeFormat());
}

QDateTime Converters::ToDateTime(const QString& text)
{
    QDateTime value = QDateTime::fromString(text, DateTimeFormat());
    if (value.isValid())
        value.setTimeSpec(Qt::UTC);
    return value;
}
