#pragma once

// Text forms of field values, shared by the XML and the tagged form.

#include <QString>

#include "schema/frame/ClassInfo.h"
#include "schema/frame/Record.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

// Fixed notation with exactly two decimals, as QString::arg(value, 0, 'f', 2) gives it.
QString doubleText(double value);
// "true" or "false".
QString boolText(bool value);
// The text of a scalar, text or enumeration field (an invalid enumeration gives a null text).
QString fieldText(Payload& p, const FieldInfo& f);
// The value of a tagged byte array: UTF-8, where an empty or null array is an empty, non-null text.
QString decodeUtf8(const QByteArray& bytes);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
