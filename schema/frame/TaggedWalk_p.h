#pragma once

// The walk over the records of a block of the tagged form, shared by the
// reader and by WalkTaggedRecords. Internal to the library.

#include <QDataStream>

#include "schema/frame/ClassInfo_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

// The head of one record, read and placed.
struct TaggedHead {
    quint32 tag = 0;
    qint32 size = 0;                   // as the length word states it
    qint64 room = 0;                   // what the block has left for the payload
    const FieldInfo* field = nullptr;  // the field of the tag; null for the version record and unknown tags
    bool version = false;              // the version record of a root
};

// Why a walk ended.
enum class TaggedWalkEnd : quint8 {
    Done,            // the block's length is used up, or the input ended
    HeaderCut,       // the input failed inside a record's tag or length word
    NegativeLength,  // a record states a length below 0; `head` is that record
    Stopped,         // the visitor stopped it
};

struct TaggedWalk {
    qint64 remaining = 0;  // of the block's stated length; 0 when the records add up to it
    TaggedWalkEnd end = TaggedWalkEnd::Done;
    TaggedHead head;  // the last record read
};

inline const FieldInfo* taggedField(const ClassInfo& info, quint32 tag)
{
    for (int i = 0; i < info.fieldCount; ++i)
        if (info.fields[i].tag == tag)
            return &info.fields[i];
    return nullptr;
}

inline void placeTaggedHead(const ClassInfo& info, TaggedHead& head)
{
    head.version = info.version && head.tag == info.version->tag;
    head.field = head.version ? nullptr : taggedField(info, head.tag);
}

// Splits the block of `info` that states `length` bytes into its records: a
// tag word, a length word and a payload each. `visit(head)` is called with
// each record's head, the input standing at its payload; it reads or passes
// over the payload and gives false to stop the walk. The lengths add up when
// the walk ends with `remaining` 0 and the input's status Ok.
//
// `In` reads big-endian words as QDataStream does: operator>>(qint32&),
// atEnd() and status().
template <class In, class Visit>
inline TaggedWalk walkTaggedBlock(In& in, const ClassInfo& info, qint64 length, Visit&& visit)
{
    TaggedWalk walk;
    walk.remaining = length;
    while (walk.remaining > 0 && !in.atEnd()) {
        qint32 tag = 0;
        qint32 size = 0;
        in >> tag >> size;
        TaggedHead& head = walk.head;
        head.tag = quint32(tag);
        head.size = size;
        if (in.status() != QDataStream::Ok) {
            walk.end = TaggedWalkEnd::HeaderCut;
            return walk;
        }
        placeTaggedHead(info, head);
        if (size < 0) {
            walk.end = TaggedWalkEnd::NegativeLength;
            return walk;
        }
        head.room = walk.remaining - 8;
        walk.remaining -= 8 + qint64(size);
        if (!visit(static_cast<const TaggedHead&>(head))) {
            walk.end = TaggedWalkEnd::Stopped;
            return walk;
        }
    }
    return walk;
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
