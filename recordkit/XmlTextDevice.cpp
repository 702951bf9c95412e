#include "recordkit/XmlTextDevice_p.h"

#include <cstring>

#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QStringConverter>
#else
#include <QTextCodec>
#endif

namespace RECORDKIT {

namespace {

// Characters encoded at a time: a few pieces of what the reader asks for.
constexpr int PieceCharacters = 16384;

bool isSpace(QChar c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

// The value of the encoding that the XML declaration at the start of `text`
// names: empty if it names none, null if the declaration cannot be told.
QString declaredEncoding(QStringView text)
{
    if (text.startsWith(QChar(0xFEFF)))
        text = text.mid(1);
    if (!text.startsWith(QLatin1String("<?xml")))
        return QStringLiteral("");
    const qsizetype end = text.indexOf(QLatin1String("?>"));
    if (end < 0)
        return QString();
    const QStringView declaration = text.left(end);
    qsizetype at = declaration.indexOf(QLatin1String("encoding"));
    if (at < 0)
        return QStringLiteral("");
    at += 8;
    while (at < declaration.size() && isSpace(declaration.at(at)))
        ++at;
    if (at >= declaration.size() || declaration.at(at) != u'=')
        return QString();
    ++at;
    while (at < declaration.size() && isSpace(declaration.at(at)))
        ++at;
    if (at >= declaration.size() || (declaration.at(at) != u'"' && declaration.at(at) != u'\''))
        return QString();
    const QChar quote = declaration.at(at++);
    const qsizetype close = declaration.indexOf(quote, at);
    if (close < 0)
        return QString();
    return declaration.mid(at, close - at).toString();
}

}  // namespace

Utf8TextDevice::Utf8TextDevice(const QString& text) : m_text(text) {}

bool Utf8TextDevice::readsLikeText(const QString& text)
{
    if (text.size() < 4)
        return false;
    for (int i = 0; i < 4; ++i)
        if (text.at(i).isNull())
            return false;
    const QString encoding = declaredEncoding(text);
    if (encoding.isNull())
        return false;
    if (encoding.isEmpty())
        return true;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    // Qt 6 reads a string as UTF-8 and ignores what it declares; given bytes,
    // it follows the declaration. Only a declared UTF-8 reads alike both ways.
    return QStringConverter::encodingForName(encoding.toLatin1().constData()) == QStringConverter::Utf8;
#else
    // The reader follows a declared encoding only to a codec other than the
    // one it reads with; a name Qt does not know is an error either way.
    const QTextCodec* declared = QTextCodec::codecForName(encoding.toLatin1());
    return !declared || declared == QTextCodec::codecForMib(106);
#endif
}

bool Utf8TextDevice::atEnd() const { return m_served == m_piece.size() && m_encoded == m_text.size(); }

qint64 Utf8TextDevice::readData(char* data, qint64 maxSize)
{
    if (m_served == m_piece.size()) {
        if (m_encoded == m_text.size())
            return -1;
        int count = qMin(PieceCharacters, m_text.size() - m_encoded);
        // A surrogate pair is encoded whole, in one piece.
        if (m_encoded + count < m_text.size() && m_text.at(m_encoded + count - 1).isHighSurrogate())
            --count;
        m_piece = QStringView(m_text).mid(m_encoded, count).toUtf8();
        m_encoded += count;
        m_served = 0;
    }
    const qint64 count = qMin<qint64>(maxSize, m_piece.size() - m_served);
    std::memcpy(data, m_piece.constData() + m_served, size_t(count));
    m_served += int(count);
    return count;
}

}  // namespace RECORDKIT
