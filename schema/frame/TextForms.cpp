#include "schema/frame/TextForms.h"

#include "recordkit/Converters.h"
#include "schema/frame/Runtime.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

QString doubleText(double value) { return QStringLiteral("%1").arg(value, 0, 'f', 2); }

QString boolText(bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); }

QString fieldText(Payload& p, const FieldInfo& f)
{
    switch (f.kind) {
    case Kind::Double: return doubleText(Runtime::value<double>(p, f));
    case Kind::UInt64: return QString::number(Runtime::value<quint64>(p, f));
    case Kind::Bool: return boolText(Runtime::value<bool>(p, f));
    case Kind::Text: return Runtime::value<QString>(p, f);
    case Kind::DateTime: return Converters::ToString(Runtime::value<QDateTime>(p, f));
    case Kind::Enum: {
        const QStringList& names = *f.enumInfo().names;
        const qint8 index = qint8(Runtime::value<quint8>(p, f));
        return index >= 0 && index < names.size() ? names.at(index) : QString();
    }
    case Kind::Child:
    case Kind::List:
    case Kind::EnumList: break;
    }
    return QString();
}

QString decodeUtf8(const QByteArray& bytes)
{
    if (bytes.isEmpty())
        return QStringLiteral("");
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
