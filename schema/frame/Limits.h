#pragma once

// Bounds that keep hostile input from making the readers allocate without limit.
// Counts in a stream are trusted only as far as the bytes behind them reach.

#include <QDataStream>
#include <QIODevice>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Items reserved ahead when the device cannot tell how much input is left.
constexpr qint64 UnknownInputReserve = 4096;

// Smallest size of one item in the stream: in the tagged form its length word,
// in the raw form its presence bitmap.
constexpr qint64 MinTaggedItemBytes = 4;
constexpr qint64 MinRawItemBytes = 1;

// Bytes the stream can still deliver, or -1 if its device cannot tell.
inline qint64 bytesLeft(const QDataStream& stream)
{
    const QIODevice* device = stream.device();
    if (!device || device->isSequential())
        return -1;
    return device->bytesAvailable();
}

// How many of `count` announced items may be reserved ahead.
inline int reservableItems(const QDataStream& stream, qint64 count, qint64 minItemBytes)
{
    const qint64 left = bytesLeft(stream);
    const qint64 fit = left < 0 ? UnknownInputReserve : left / minItemBytes;
    return int(qBound<qint64>(0, count, fit));
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
