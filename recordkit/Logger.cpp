#include <EmitterDossierDoc/recordkit/Logger.h>

#include <cstdio>

namespace RECORDKIT {

const QStringList& LogLevelNames()
{
    static const QStringList names = {QStringLiteral("ERROR"), QStringLiteral("WARNING"), QStringLiteral("INFO")};
    return names;
}

Logger::Logger() = default;
Logger::~Logger() = default;

void Logger::Log(LogLevel level, const QString& message)
{
    const QStringList& names = LogLevelNames();
    const QString name = level >= 0 && level < names.size() ? names.at(level) : QString::number(level);
    const QByteArray line = (name + QStringLiteral(": ") + message + QLatin1Char('\n')).toUtf8();
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
    std::fflush(stderr);
}

}  // namespace RECORDKIT
