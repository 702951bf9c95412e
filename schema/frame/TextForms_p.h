#pragma once

// Text forms of field values, shared by the XML and the tagged form.

#include <QString>

#include "schema/frame/ClassInfo_p.h"
#include <EmitterDossierDoc/frame/Record.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Fixed notation with exactly two decimals, as QString::arg(value, 0, 'f', 2) gives it.
QString doubleText(double value);
// The same text as Latin-1 bytes into `out` (DoubleTextCapacity bytes), without
// an allocation; returns its length, or -1 for a value that only the QString
// form handles (NaN, infinities, magnitudes of 4e16 and above).
constexpr int DoubleTextCapacity = 32;
int doubleTextFast(double value, char* out);
// Reads back the text that doubleTextFast writes, as QString::toDouble reads
// it; false, with nothing read, for a text of any other shape.
bool parseDoubleTextFast(const char* text, int size, double& value);
// "true" or "false".
QString boolText(bool value);
// The text of a scalar, text or enumeration field (an invalid enumeration gives a null text).
QString fieldText(Payload& p, const FieldInfo& f);
// The value of a tagged byte array: UTF-8, where an empty or null array is an empty, non-null text.
QString decodeUtf8(const QByteArray& bytes);
QString decodeUtf8(const char* bytes, int size);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
