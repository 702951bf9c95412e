#pragma once

// XML text handed to Qt's reader as UTF-8 bytes, a piece at a time. Internal
// to the base layer.

#include <QByteArray>
#include <QIODevice>
#include <QString>

namespace RECORDKIT {

// Qt's reader, given a whole QString, first encodes all of it as UTF-8 and
// then decodes that again: two copies of the document, the larger one twice
// its size. Given a device it decodes a few kilobytes at a time. This device
// serves the text's UTF-8 bytes in pieces, so that a text reads as a file does,
// without those copies.
class Utf8TextDevice : public QIODevice {
public:
    explicit Utf8TextDevice(const QString& text);

    // Whether the reader, given this text's bytes, reads exactly what it reads
    // from the text itself. From bytes it tells the encoding from the first
    // four of them and follows an encoding that the XML declaration names;
    // from a text it takes UTF-8 throughout. So a text qualifies unless it is
    // shorter than four characters, holds a NUL among its first four (which
    // would read as UTF-16 or UTF-32), or declares an encoding other than UTF-8.
    static bool readsLikeText(const QString& text);

    bool isSequential() const override { return true; }
    bool atEnd() const override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QString& m_text;
    int m_encoded = 0;   // characters of the text encoded so far
    QByteArray m_piece;  // the bytes of the last piece encoded
    int m_served = 0;    // of m_piece
};

}  // namespace RECORDKIT
