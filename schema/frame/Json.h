#pragma once

/// \file
/// JSON: a record of any class as a JSON document and back, by the same field
/// tables as the XML, tagged and raw forms.

#include <QByteArray>
#include <QString>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/frame/Record.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

/// How ToJson lays out its text.
enum class JsonLayout : quint8 {
    Indented,  ///< One member or item a line, two spaces a level, and a final newline.
    Compact,   ///< No whitespace at all.
};

/// The record as a JSON document of one member, named after the record's class
/// as its XML element is: `{"EmitterDossier": {...}}`.
///
/// A record is an object whose members are its set properties, keyed by
/// property name in the order of writing; unset properties are absent, and
/// attributes and elements alike are members. A root record's schema version
/// comes first, as "Version". Values:
/// - doubles as numbers, in the shortest text that reads back to the same
///   double, so JSON keeps what the raw form keeps where XML rounds to two
///   places; NaN and the infinities, which JSON numbers cannot hold, as the
///   strings "NaN", "Infinity" and "-Infinity";
/// - unsigned 64-bit integers as numbers up to 2^53, above it as strings of
///   digits, which every JSON reader keeps exactly;
/// - booleans as true and false, texts as strings, dates as the date text of
///   the XML form ("yyyy-MM-ddThh:mm:ss,zzzZ", an empty string for an invalid
///   date);
/// - enumerations by name;
/// - a child as an object, a list as an array (an empty array when the list
///   is set and holds nothing);
/// - null for a value that the setters refuse: an invalid enumeration value
///   or a null text.
///
/// Nothing is checked and nothing is reported: the record is written as it
/// stands. Text is UTF-8; a lone UTF-16 surrogate is written as its \\u escape.
/// Throws RKException only for a text beyond what a QByteArray holds (2 GiB).
EDD_EXPORT QByteArray ToJson(const Record& record, JsonLayout layout = JsonLayout::Indented);

/// Reads a document that ToJson writes into `record`, which must be of the class
/// that the document names. Properties that the document has are set as the XML
/// reader sets them (lists are appended to, a root of an older version is
/// cleared first); the others stay as they are.
///
/// Returns false for a document that is no JSON, or is JSON of another shape:
/// another class, an unknown property, a property given twice, a value of the
/// wrong type, an enumeration name that is not in the list, a number out of
/// range. The reason, one line naming the place of the fault as a JSON path
/// with its line and column, goes to the record's logger at "ERROR" and to
/// `error` if given:
/// `JSON error at $.EmitterDossier.Bearing.unit (line 9, column 15): "rad" is not a name of unit`.
/// What the library itself reports while storing values (an invalid
/// enumeration value given as null, an incomplete list item) follows the
/// validate flag as every reader does: a warning without it; with it the
/// first such fault ends the read with false. Never throws an RKException; what
/// was read before a fault stays in the record.
EDD_EXPORT bool FromJson(Record& record, const QByteArray& json, QString* error = nullptr);

/// True when the first character after any byte-order mark and white space
/// is `{`, as for every document that ToJson writes.
EDD_EXPORT bool LooksLikeJson(const QByteArray& bytes);

/// The name of the one member of a JSON document's outer object, which is the
/// class of its record; empty, with the reason in `problem` if given, when the
/// document does not begin with an object whose first member has a name.
EDD_EXPORT QString JsonRootName(const QByteArray& json, QString* problem = nullptr);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
