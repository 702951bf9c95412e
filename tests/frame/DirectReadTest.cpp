// The binary readers take the numbers of a plain QBuffer straight from its
// bytes. Everything they leave must be what reading through the stream leaves:
// the record, the stream's status, the device's position and the log. A
// QBuffer of a class of its own is read through the stream, and is the yardstick.

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QTemporaryFile>

#include <cmath>

#include "support/SampleTrees.h"
#include "support/TestSupport.h"

using namespace EMITTERDOSSIERDOC;
using namespace TestSupport;

namespace {

class StreamedBuffer : public QBuffer {};

enum class Form { Raw, Tagged };

// Everything a read leaves: its result, the stream's status, the device's
// position, the record (in the tagged form) and the log, in one text.
QString read(Form form, const QByteArray& bytes, QDataStream::ByteOrder order, bool direct)
{
    QBuffer plain;
    StreamedBuffer streamed;
    QBuffer& device = direct ? plain : streamed;
    device.setData(bytes);
    device.open(QIODevice::ReadOnly);
    QDataStream stream(&device);
    stream.setByteOrder(order);
    EmitterDossier dossier;
    auto logger = attachLogger(dossier);
    bool ok = true;
    if (form == Form::Raw)
        dossier.SetVersionSpecificBinaryWithoutValidation(stream);
    else
        ok = dossier.SetBinaryRepresentation(stream);
    QString outcome = QStringLiteral("ok %1, status %2, position %3, record %4, log:")
                          .arg(ok)
                          .arg(stream.status())
                          .arg(device.pos())
                          .arg(QString::fromLatin1(dossier.GetBinaryRepresentationAsQByteArray().toHex()));
    for (const auto& entry : logger->entries)
        outcome += QLatin1Char(' ') + entry.message;
    return outcome;
}

QByteArray written(Form form, const EmitterDossier& dossier, QDataStream::ByteOrder order)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QDataStream stream(&buffer);
    stream.setByteOrder(order);
    if (form == Form::Raw)
        dossier.GetVersionSpecificBinaryWithoutValidation(stream);
    else
        dossier.GetBinaryRepresentation(stream);
    return bytes;
}

void expectSameEverywhere(Form form)
{
    const EmitterDossier dossier = filledDossier(2, 2);
    for (QDataStream::ByteOrder order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
        const QByteArray whole = written(form, dossier, order);
        const QString complete = read(form, whole, order, true);
        EXPECT_EQ(complete, read(form, whole, order, false));
        EXPECT_EQ(complete, QStringLiteral("ok 1, status 0, position %1, record %2, log:")
                                .arg(whole.size())
                                .arg(QString::fromLatin1(dossier.GetBinaryRepresentationAsQByteArray().toHex())));
        // Every cut, and a flipped bit in every byte.
        for (int size = 0; size < whole.size(); ++size) {
            const QByteArray cut = whole.left(size);
            ASSERT_EQ(read(form, cut, order, true), read(form, cut, order, false)) << "cut at " << size;
        }
        for (int at = 0; at < whole.size(); ++at) {
            QByteArray flipped = whole;
            flipped[at] = char(flipped[at] ^ (1 << (at % 8)));
            ASSERT_EQ(read(form, flipped, order, true), read(form, flipped, order, false)) << "flip at " << at;
        }
    }
}

}  // namespace

TEST(DirectRead, RawReadsAsTheStreamReadsEveryCutAndFlip) { expectSameEverywhere(Form::Raw); }

TEST(DirectRead, TaggedReadsAsTheStreamReadsEveryCutAndFlip) { expectSameEverywhere(Form::Tagged); }

TEST(DirectRead, AReadStartingInsideABufferLeavesItAfterTheRecord)
{
    const EmitterDossier dossier = filledDossier(2, 2);
    const QByteArray raw = written(Form::Raw, dossier, QDataStream::BigEndian);
    QByteArray bytes = QByteArray("head") + raw + QByteArray("tail");
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);
    char head[4];
    stream.readRawData(head, 4);
    EmitterDossier read;
    read.SetVersionSpecificBinaryWithoutValidation(stream);
    EXPECT_EQ(read, dossier);
    EXPECT_EQ(buffer.pos(), 4 + raw.size());
    EXPECT_EQ(buffer.read(4), QByteArray("tail"));
}

// A BeamDuration whose Mean record holds `text`.
QByteArray beamDurationWithMean(const QByteArray& text)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << qint32(quint32(BeamDuration::GetId())) << qint32(12 + text.size());
    stream << qint32(0xe31b2fb9u) << qint32(4 + text.size()) << text;
    return bytes;
}

TEST(DirectRead, DoubleTextsOfEveryShapeReadAsQtReadsThem)
{
    // One text a line, spaces kept, the empty line the empty text.
    QFile file(QStringLiteral(EDD_TEST_DATA_DIR "/double-texts.txt"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QList<QByteArray> texts = file.readAll().split('\n');
    texts.removeLast();
    // Random two-decimal values as the writer writes them.
    quint64 seed = 12345;
    for (int i = 0; i < 20000; ++i) {
        seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
        const double v = double(qint64(seed >> 20) % 100000000000LL) / 100.0 * ((seed & 1) ? -1 : 1);
        texts << QByteArray::number(v, 'f', 2);
    }
    for (const QByteArray& text : texts) {
        BeamDuration read;
        QByteArray bytes = beamDurationWithMean(text);
        ASSERT_TRUE(read.SetBinaryRepresentation(bytes)) << text.constData();
        const double expected = QString::fromUtf8(text).toDouble();
        if (std::isnan(expected)) {
            ASSERT_TRUE(std::isnan(read.GetMean())) << text.constData();
            continue;
        }
        ASSERT_EQ(read.GetMean(), expected) << text.constData();
        ASSERT_EQ(std::signbit(read.GetMean()), std::signbit(expected)) << text.constData();
    }
}

TEST(DirectWrite, TheRawFormFollowsTheStreamsSettings)
{
    BeamDuration b;
    b.Setunit(b.NameTounit(QStringLiteral("ns")));
    b.SetMean(1250.75);
    b.SetMin(1200.5);
    b.SetMax(1300.25);
    b.SetTol(12.5);
    // Each way of writing a double, beside the stream's own operators.
    for (QDataStream::ByteOrder order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
        for (QDataStream::FloatingPointPrecision precision :
             {QDataStream::DoublePrecision, QDataStream::SinglePrecision}) {
            for (int version : {int(QDataStream::Qt_3_3), int(QDataStream::Qt_4_6), int(QDataStream::Qt_5_15)}) {
                QByteArray bytes;
                QDataStream stream(&bytes, QIODevice::WriteOnly);
                stream.setByteOrder(order);
                stream.setFloatingPointPrecision(precision);
                stream.setVersion(version);
                b.GetVersionSpecificBinaryWithoutValidation(stream);

                QByteArray expected;
                QDataStream plain(&expected, QIODevice::WriteOnly);
                plain.setByteOrder(order);
                plain.setFloatingPointPrecision(precision);
                plain.setVersion(version);
                const char bitmap = 0x1f;
                plain.writeRawData(&bitmap, 1);
                plain << b.GetMean() << b.GetMin() << b.GetMax() << b.GetTol() << qint8(b.Getunit());
                EXPECT_EQ(bytes.toHex(), expected.toHex()) << order << " " << precision << " " << version;
            }
        }
    }
}

// A device that cannot seek back, as a pipe or a socket.
class PipeDevice : public QIODevice {
public:
    QByteArray written;
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override
    {
        written.append(data, int(size));
        return size;
    }
};

TEST(DirectWrite, ATaggedFormIsRightOnADeviceThatSeeksAndOnOneThatCannot)
{
    // Blocks that begin in a piece already handed to the device get their
    // length by seeking back; the form must read back whole, after what the
    // caller wrote before it, in either byte order.
    const EmitterDossier dossier = filledDossier(3000, 300);
    for (QDataStream::ByteOrder order : {QDataStream::BigEndian, QDataStream::LittleEndian}) {
        QTemporaryFile file;
        ASSERT_TRUE(file.open());
        file.write("abc");
        QDataStream out(&file);
        out.setByteOrder(order);
        dossier.GetBinaryRepresentation(out);
        ASSERT_EQ(out.status(), QDataStream::Ok);
        const qint64 end = file.pos();
        ASSERT_TRUE(file.seek(3));
        QDataStream in(&file);
        in.setByteOrder(order);
        EmitterDossier read;
        ASSERT_TRUE(read.SetBinaryRepresentation(in));
        EXPECT_EQ(file.pos(), end);
        EXPECT_EQ(read, dossier);
        if (order == QDataStream::BigEndian) {
            file.seek(3);
            EXPECT_EQ(file.readAll(), dossier.GetBinaryRepresentationAsQByteArray());
        }
    }
    // A device that cannot seek back gets the same bytes, the compressed form's too.
    PipeDevice pipe;
    pipe.open(QIODevice::WriteOnly);
    QDataStream out(&pipe);
    out.setVersion(RECORDKIT::StreamVersion);
    dossier.GetBinaryRepresentation(out);
    dossier.GetCompressedBinaryRepresentation(out, 9);
    EXPECT_TRUE(pipe.written == dossier.GetBinaryRepresentationAsQByteArray() +
                                    dossier.GetCompressedBinaryRepresentationAsQByteArray(9));
}
