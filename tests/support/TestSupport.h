#pragma once

// Helpers shared by the test suites: a logger that keeps what it is told, and
// the three forms of an object as bytes.

#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <QVector>

#include <EmitterDossierDoc/EmitterDossierDoc.h>

// The layout of the field tables, which the tests read to walk every class.
#include "schema/frame/ClassInfo_p.h"

#include <ostream>

// Lets GoogleTest print texts in its failure messages.
inline void PrintTo(const QString& text, std::ostream* os) { *os << '"' << text.toStdString() << '"'; }

namespace TestSupport {

struct LogEntry {
    RECORDKIT::LogLevel level;
    QString message;
};

class RecordingLogger : public RECORDKIT::Logger {
public:
    void Log(RECORDKIT::LogLevel level, const QString& message) override { entries.append({level, message}); }
    QVector<LogEntry> entries;
};

inline std::shared_ptr<RecordingLogger> attachLogger(const RECORDKIT::IRKObject& object)
{
    auto logger = std::make_shared<RecordingLogger>();
    object.SetLogger(logger);
    return logger;
}

// Texts in the wide Unicode forms, written here rather than through a codec,
// which Qt 6 Core no longer has: `width` bytes a unit, little or big end first.
struct WideForm {
    const char* name;
    int width;
    bool little;
};
constexpr WideForm WideForms[] = {{"UTF-16LE", 2, true},
                                  {"UTF-16BE", 2, false},
                                  {"UTF-32LE", 4, true},
                                  {"UTF-32BE", 4, false}};

// `text` in `form`, with a byte order mark in front when `withMark` is true.
inline QByteArray encodeWide(const QString& text, const WideForm& form, bool withMark = true)
{
    const QString marked = withMark ? QChar(0xFEFF) + text : text;
    QByteArray bytes;
    const auto put = [&](uint unit) {
        for (int i = 0; i < form.width; ++i)
            bytes.append(char((unit >> (8 * (form.little ? i : form.width - 1 - i))) & 0xFF));
    };
    if (form.width == 4) {
        for (const uint codePoint : marked.toUcs4())
            put(codePoint);
    } else {
        for (const QChar unit : marked)
            put(unit.unicode());
    }
    return bytes;
}

// The object block that GetBinary writes.
inline QByteArray tagged(const RECORDKIT::IRKObject& object, quint32 tag, bool withTag = true)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    object.GetBinary(stream, int(tag), withTag);
    return bytes;
}

// Reads the records of `bytes` with SetBinary, giving it `length`.
inline void readTagged(RECORDKIT::IRKObject& object, QByteArray bytes, int length)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    object.SetBinary(stream, length);
}

inline QByteArray raw(const EMITTERDOSSIERDOC::Frame::Record& object)
{
    return EMITTERDOSSIERDOC::Frame::RawFormBytes(object);
}

inline void readRaw(EMITTERDOSSIERDOC::Frame::Record& object, const QByteArray& bytes)
{
    EMITTERDOSSIERDOC::Frame::ReadRawForm(object, bytes);
}

// An XML document as GetXmlString gives it: the prologue, the element, a line end.
inline QString document(const QString& element)
{
    return QStringLiteral("<?xml version=\"1.0\"?>\n") + element + QLatin1Char('\n');
}
inline QString document(const char* element) { return document(QString::fromUtf8(element)); }

// Expects `action` to raise E with exactly `message`.
template <class E, class F>
void expectRaised(F&& action, const QString& message)
{
    try {
        action();
        ADD_FAILURE() << "nothing raised, expected: " << message.toStdString();
    } catch (const E& e) {
        EXPECT_EQ(e.GetMessage(), message);
    }
}

inline EMITTERDOSSIERDOC::Alternative makeAlternative(const char* name, const char* id, double confidence)
{
    EMITTERDOSSIERDOC::Alternative a;
    a.SetName(QString::fromUtf8(name));
    a.SetDatabaseID(QString::fromUtf8(id));
    a.SetConfidence(confidence);
    return a;
}

}  // namespace TestSupport
