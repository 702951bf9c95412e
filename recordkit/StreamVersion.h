#pragma once

#include <QDataStream>

namespace RECORDKIT {

/// The version of every QDataStream that the library opens itself: over the
/// byte arrays and files of the tagged, compressed and raw forms. It is Qt 5.15's,
/// the default of the Qt 5 builds that wrote these forms before the version was
/// fixed here, so what they wrote still reads the same, and a Qt 6 build, whose
/// default stream is newer, writes the same bytes as a Qt 5 build.
///
/// A stream that a caller gives is used as it is: its version, byte order and
/// precision are never changed. The forms' bytes depend on the version only
/// through QDateTime, which writes its time zone from Qt_5_2 on; a caller's
/// stream at StreamVersion gives exactly the bytes of the library's own.
constexpr int StreamVersion = QDataStream::Qt_5_15;

}  // namespace RECORDKIT
