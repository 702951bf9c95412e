#include "schema/frame/TextForms_p.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "schema/frame/Runtime_p.h"
#include <EmitterDossierDoc/recordkit/Converters.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

namespace {

// Two decimals, rounded half away from zero as Qt rounds them, for values
// whose hundredfold fits a 64-bit integer. With a 64-bit long double mantissa
// the product of a 53-bit mantissa and 100 (5 significant bits) is exact, and
// so is adding one half below 2^62: the rounding is decided on the exact binary
// value, as Qt's own conversion decides it. Other values take Qt's way.
int fixed2(double value, char* out)
{
    if (std::numeric_limits<long double>::digits < 64 || !(std::fabs(value) < 4.0e16))
        return -1;
    const long double hundredfold = std::fabs(static_cast<long double>(value) * 100.0L);
    unsigned long long cents = static_cast<unsigned long long>(hundredfold + 0.5L);
    char* p = out;
    if (value < 0)
        *p++ = '-';
    char digits[24];
    int n = 0;
    unsigned long long whole = cents / 100;
    do {
        digits[n++] = char('0' + whole % 10);
        whole /= 10;
    } while (whole);
    while (n)
        *p++ = digits[--n];
    cents %= 100;
    *p++ = '.';
    *p++ = char('0' + cents / 10);
    *p++ = char('0' + cents % 10);
    return int(p - out);
}

}  // namespace

int doubleTextFast(double value, char* out) { return fixed2(value, out); }

QString doubleText(double value)
{
    char text[DoubleTextCapacity];
    const int n = fixed2(value, text);
    return n >= 0 ? QString::fromLatin1(text, n) : QStringLiteral("%1").arg(value, 0, 'f', 2);
}

bool parseDoubleTextFast(const char* text, int size, double& value)
{
    // Only the plain shape: an optional minus, whole digits without leading
    // zeros, and a fraction; at most twenty digits each, so nothing overflows.
    // For these Qt and std::from_chars both give the correctly rounded double.
    const char* p = text;
    const char* end = text + size;
    if (p < end && *p == '-')
        ++p;
    const char* whole = p;
    while (p < end && *p >= '0' && *p <= '9')
        ++p;
    const long wholeDigits = p - whole;
    if (wholeDigits == 0 || wholeDigits > 20 || (wholeDigits > 1 && *whole == '0'))
        return false;
    if (p < end) {
        if (*p++ != '.')
            return false;
        const char* fraction = p;
        while (p < end && *p >= '0' && *p <= '9')
            ++p;
        if (p != end || p - fraction == 0 || p - fraction > 20)
            return false;
    }
    const std::from_chars_result result = std::from_chars(text, end, value);
    return result.ec == std::errc() && result.ptr == end;
}

QString boolText(bool value) { return value ? QStringLiteral("true") : QStringLiteral("false"); }

QString fieldText(Payload& p, const FieldInfo& f)
{
    switch (f.kind) {
    case Kind::Double: return doubleText(Internal::value<double>(p, f));
    case Kind::UInt64: return QString::number(Internal::value<quint64>(p, f));
    case Kind::Bool: return boolText(Internal::value<bool>(p, f));
    case Kind::Text: return Internal::value<QString>(p, f);
    case Kind::DateTime: return Converters::ToString(Internal::value<QDateTime>(p, f));
    case Kind::Enum: {
        const QString* name = Internal::enumName(f.enumInfo(), Internal::value<quint8>(p, f));
        return name ? *name : QString();
    }
    case Kind::Child:
    case Kind::List:
    case Kind::EnumList: break;
    }
    return QString();
}

QString decodeUtf8(const QByteArray& bytes) { return decodeUtf8(bytes.constData(), bytes.size()); }

QString decodeUtf8(const char* bytes, int size)
{
    if (size == 0)
        return QStringLiteral("");
    return QString::fromUtf8(bytes, size);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
