#pragma once

// The records of the tagged form as they stand in the bytes, for tools that
// show a stream record by record: every record with its offset, tag, length
// and field, the values it holds, and the first place where the lengths do
// not add up. The records are split as the reader splits them.
//
// A block is its class id (or field tag) and a length word, then records: a
// tag word, a length word and a payload each. A child's record is the
// child's block; a list's record holds an item count, then each item as a
// length word and the item's records; an enumeration list's record holds a
// value count, then each value as a length word and a byte array. All words
// are big-endian.

#include <QString>

#include <EmitterDossierDoc/edd_export.h>
#include <EmitterDossierDoc/frame/Reflection.h>

namespace EMITTERDOSSIERDOC {
namespace Frame {

/// One record of a block.
struct TaggedRecord {
    qint64 offset = 0;                 ///< of its tag word, in the bytes walked
    quint32 tag = 0;                   ///< its tag word
    qint32 length = 0;                 ///< of its payload, as its length word states it
    const FieldInfo* field = nullptr;  ///< the field of the tag; null for the version record and unknown tags
    bool version = false;              ///< the version record of a root
    int depth = 0;                     ///< 0 for the records of the outer block; one more for those of a
                                       ///< child, for list items and enumeration values; two more for
                                       ///< the records of a list item
};

/// What a record or an enumeration value holds, as far as it is read.
enum class TaggedValueKind : quint8 {
    Skipped,  ///< a record of an unknown tag: its payload is passed over
    Text,     ///< a byte array (UTF-8), or the version record's string (UTF-16): `text`, and
              ///< the payload's bytes as they stand in `bytes`
    Null,     ///< a null byte array or string
    Integer,  ///< an unsigned 64-bit integer: `integer`
    Boolean,  ///< `boolean`
    Block,    ///< a child's block: its records follow, one deeper
    Items,    ///< a list: `count` items, each with its records, follow
    Values,   ///< an enumeration list: `count` values follow
};

/// What a record or an enumeration value holds; which members count depends on `kind`.
struct TaggedValue {
    TaggedValueKind kind = TaggedValueKind::Skipped;  ///< what the payload is
    QString text;                                     ///< for Text: the text
    QByteArray bytes;                                 ///< for Text: the payload's bytes
    quint64 integer = 0;                              ///< for Integer
    bool boolean = false;                             ///< for Boolean
    qint32 count = 0;                                 ///< as the record states it
};

/// A list item or an enumeration value: its length word and what follows.
struct TaggedItem {
    const FieldInfo* field = nullptr;  ///< the list or enumeration list
    qint64 offset = 0;                 ///< of its length word
    int index = 0;                     ///< its place in the list, from 0
    qint32 length = 0;                 ///< as its length word states it
    int depth = 0;                     ///< as TaggedRecord::depth
};

/// Where the lengths stop adding up. `offset` is the place the fault starts:
/// the record, count, item or value that does not fit.
enum class TaggedFaultKind : quint8 {
    HeaderCut,       ///< `left` bytes of the block, too few for a tag and a length word
    NegativeLength,  ///< `record` states a length below 0
    PastBlock,       ///< `record` states `count` bytes, its block has `left` after its head;
                     ///< it is walked as far as the block goes, then the walk stops
    NoByteCount,     ///< no room for a byte array's count
    ByteCount,       ///< a byte count of `count` with `left` bytes left
    IntegerCut,      ///< an integer needs 8 bytes, `left` left
    BooleanCut,      ///< a boolean needs 1 byte, none left
    NoItemCount,     ///< no room for a list's item count
    ItemCount,       ///< `count` items cannot fit in `left` bytes
    NoItemLength,    ///< no room for the length word of item `index`
    ItemLength,      ///< item `index` states `count` bytes with `left` left in its record
    NoValueCount,    ///< no room for an enumeration list's value count
    NoValueLength,   ///< no room for the length word of value `index`
    ValueLength,     ///< value `index` states `count` bytes with `left` left
    PayloadLength,   ///< the payload of the record at `offset` takes `left` bytes, it states `count`
};

/// The first place where the lengths of a tagged form do not add up.
struct TaggedFault {
    TaggedFaultKind kind = TaggedFaultKind::HeaderCut;  ///< what does not fit
    qint64 offset = 0;                                  ///< where the fault starts, in the bytes walked
    qint64 count = 0;                                   ///< the length or count stated
    qint64 left = 0;                                    ///< the bytes left for it
    int index = 0;                                      ///< the item or value, counted from 0
    TaggedRecord record;                                ///< for NegativeLength and PastBlock
};

/// Told of what a walk finds, in the order of the bytes.
class EDD_EXPORT TaggedVisitor {
public:
    /// Subclasses are destroyed through this base.
    virtual ~TaggedVisitor();
    /// A record and what its payload holds. Not called for a record whose
    /// payload cannot be read; fault() is called then.
    virtual void record(const TaggedRecord& record, const TaggedValue& value);
    /// The head of a list item, before its length is checked and its records walked.
    virtual void item(const TaggedItem& item);
    /// A value of an enumeration list: Null or Text.
    virtual void enumValue(const TaggedItem& item, const TaggedValue& value);
    /// A place where the lengths do not add up. Only PastBlock lets the walk go on.
    virtual void fault(const TaggedFault& fault);
};

/// The head of an outer block at the start of `bytes`: its class id and the
/// length it states. False when the bytes end inside it.
EDD_EXPORT bool TaggedBlockHead(const QByteArray& bytes, quint32& classId, qint32& length);

/// Walks the records of the outer block of `info` at the start of `bytes`, as
/// far as its stated length and the bytes go, with nested blocks, list items
/// and enumeration values. False after the first fault.
EDD_EXPORT bool WalkTaggedRecords(const QByteArray& bytes, const ClassInfo& info, TaggedVisitor& visitor);

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
