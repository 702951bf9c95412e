#pragma once

// Bounds that keep hostile input from making the readers allocate without limit.
// Counts in a stream are trusted only as far as the bytes behind them reach.

#include <QtGlobal>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Items reserved ahead when the device cannot tell how much input is left.
constexpr qint64 UnknownInputReserve = 4096;

// Smallest size of one item in the stream: in the tagged form its length word,
// in the raw form its presence bitmap.
constexpr qint64 MinTaggedItemBytes = 4;
constexpr qint64 MinRawItemBytes = 1;

// How many of `count` announced items may be reserved ahead, when `left`
// bytes of input remain (-1 if the device cannot tell).
inline int reservableItems(qint64 left, qint64 count, qint64 minItemBytes)
{
    const qint64 fit = left < 0 ? UnknownInputReserve : left / minItemBytes;
    return int(qBound<qint64>(0, count, fit));
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
