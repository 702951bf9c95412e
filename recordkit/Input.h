#pragma once

// What the base layer knows of its input before a record reads it: how each
// form begins, the unpacking of the compressed form, and the limits that keep
// hostile input from costing more than its size.

#include <QByteArray>
#include <QString>

#include <EmitterDossierDoc/edd_export.h>

namespace RECORDKIT {

/// Most attributes one start tag may have. No element of a record has more
/// than a handful; Qt's reader checks attribute names for duplicates in
/// quadratic time, so the XML readers (LoadXml, SetXmlString, SetXmlBytes) stop
/// a document at the first start tag with more, before the reader sees it
/// whole, and give false with "XML error at line L, column C: ...". For the
/// same reason they refuse a document type that declares attribute lists
/// (`<!ATTLIST`): the reader adds their defaults to every matching start tag.
constexpr int MaxXmlAttributes = 256;

/// The compressed form is qCompress's: the size of the tagged form as a 4-byte
/// big-endian word, then a zlib stream of it. Nothing larger than this limit is
/// unpacked: a form that states more is refused before anything is allocated,
/// and one that unpacks to more than it states is stopped where it passes its
/// stated size. So unpacking never holds more than the limit and the input.
constexpr qint64 DefaultMaxUnpackedSize = qint64(1) << 30;  // 1 GiB

/// The most that the compressed form may unpack to, for the whole process;
/// DefaultMaxUnpackedSize unless SetMaxUnpackedSize gave another.
EDD_EXPORT qint64 MaxUnpackedSize();
/// Sets the limit for the whole process; a value below 0 restores the default.
/// Safe to call from any thread.
EDD_EXPORT void SetMaxUnpackedSize(qint64 bytes);

/// True if the bytes begin as an XML document: after a byte order mark and
/// blanks, a '<', in UTF-8 or an 8-bit encoding, UTF-16 or UTF-32 of either
/// byte order (the encodings the XML reader recognises by their first bytes).
EDD_EXPORT bool LooksLikeXml(const QByteArray& bytes);

/// The name of the first element of an XML document given as bytes, read
/// through the same guard as the XML readers; empty, with the reader's or the
/// guard's "XML error at line L, column C: ..." in `problem`, if there is none.
EDD_EXPORT QString XmlRootElement(const QByteArray& bytes, QString& problem);

/// True if the bytes begin as the compressed form: a size word, then a zlib header.
EDD_EXPORT bool LooksCompressed(const QByteArray& bytes);

/// Unpacks the compressed form into `plain`. False, with the reason in
/// `problem` ("the compressed form ..."), when it states more than the limit
/// or than its bytes can unpack to, when it unpacks to more than it states,
/// or when zlib finds it corrupt.
EDD_EXPORT bool Uncompress(const QByteArray& packed, QByteArray& plain, QString& problem);

}  // namespace RECORDKIT
