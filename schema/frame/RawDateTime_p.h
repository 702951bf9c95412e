#pragma once

// The date of the raw form, read without letting the record choose a file.

#include <QDataStream>
#include <QDateTime>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Reads a QDateTime as QDataStream writes it and consumes the same bytes.
// A system time zone is made only from an id that is well formed and that the
// system lists; a zone given by its offset and a well-formed id of its own is
// made from its parts. Any other zone, and a kind of time (Qt::TimeSpec) that Qt does not
// define, gives QDateTime(). Nothing is reported.
void readRawDateTime(QDataStream& stream, QDateTime& value);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
