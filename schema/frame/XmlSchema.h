#pragma once

/// @file
/// An XML Schema of the XML form, made from the field tables.

#include <QByteArray>

#include <EmitterDossierDoc/edd_export.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

/// An XML Schema (XSD 1.0) of the XML form as the library writes it, made from
/// the field tables of every class.
///
/// The schema describes the document that the library writes of a record that
/// passes `Check()`:
/// - each class is a named complex type and a global element of the same name,
///   so that a document whose root is any class validates;
/// - a branch class has its attributes and a sequence of its child elements in
///   the order of writing; a leaf class has its attributes and text content;
/// - a mandatory attribute or text element is required, an optional one may be
///   left out; a child element may always be left out, since the writer writes
///   a child only when its presence bit is set; a list is any number of items;
/// - doubles are texts with exactly two decimals (or `nan`, `inf`, `-inf`),
///   ids, indices and counts unsigned 64-bit integers, booleans `true` or
///   `false`, dates `yyyy-MM-ddThh:mm:ss,zzzZ` in UTC (or empty, for an invalid
///   date), enumerations one of their names;
/// - the root class's `Version` attribute is required and fixed to the schema
///   version.
///
/// The reader accepts more than this: attributes of a branch class given as
/// child elements of the same name, elements it does not know (passed over;
/// a root of the current version reports them), any boolean text, numbers with
/// any number of decimals, and documents of older versions.
///
/// @return The schema as a UTF-8 document with an XML declaration, indented by
///         two spaces.
EDD_EXPORT QByteArray XmlSchema();

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
