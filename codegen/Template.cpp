#include "Template.h"

namespace Codegen {

TemplateError::TemplateError(const QString& message) : std::runtime_error(message.toStdString()) {}

QString render(const char* name, const char* text, const TemplateValues& values)
{
    const QString source = QString::fromUtf8(text);
    QString out;
    out.reserve(source.size() * 2);
    int at = 0;
    while (true) {
        const int open = source.indexOf(QLatin1String("${"), at);
        if (open < 0)
            break;
        const int close = source.indexOf(QLatin1Char('}'), open + 2);
        if (close < 0)
            throw TemplateError(QStringLiteral("template %1: unclosed placeholder at offset %2")
                                    .arg(QString::fromUtf8(name))
                                    .arg(open));
        const QString field = source.mid(open + 2, close - open - 2);
        const auto value = values.constFind(field);
        if (value == values.constEnd())
            throw TemplateError(
                QStringLiteral("template %1: no value for placeholder ${%2}").arg(QString::fromUtf8(name), field));
        out += QStringView(source).mid(at, open - at);
        out += *value;
        at = close + 1;
    }
    out += QStringView(source).mid(at);
    return out;
}

}  // namespace Codegen
