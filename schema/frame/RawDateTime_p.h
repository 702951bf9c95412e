#pragma once

// The date of the raw form, read without letting the record choose a file, and
// written whatever zone a caller set.

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
// Writes `value` as QDataStream does, except a date in a zone Qt does not know
// (its writer cannot write one): that is no date, as in the text forms, and
// is written as the null date.
void writeRawDateTime(QDataStream& stream, const QDateTime& value);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
