#pragma once

// Typed operations that field tables refer to. Included by generated sources only.

#include <cstddef>

#include <QVector>

#include "schema/frame/ClassInfo_p.h"
#include "schema/frame/Payload_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

template <class C>
struct ChildOpsFor {
    static Record& get(void* field) { return *static_cast<C*>(field); }
    static const Record& cget(const void* field) { return *static_cast<const C*>(field); }
    static void reset(void* field) { *static_cast<C*>(field) = C(); }
    static constexpr ChildOps ops = {&C::StaticClassInfo, &get, &cget, &reset};
};

template <class C>
struct ListOpsFor {
    using List = QVector<C>;
    static List& list(void* p) { return *static_cast<List*>(p); }
    static const List& clist(const void* p) { return *static_cast<const List*>(p); }

    static int size(const void* p) { return clist(p).size(); }
    static Record& at(void* p, int i) { return list(p)[i]; }
    static const Record& cat(const void* p, int i) { return clist(p).at(i); }
    static void reserve(void* p, int count) { list(p).reserve(count); }
    static Record& appendDefault(void* p)
    {
        List& l = list(p);
        l.resize(l.size() + 1);  // made in place, no copy
        return l.last();
    }
    static void append(void* p, const Record& item) { list(p).append(static_cast<const C&>(item)); }
    static void removeLast(void* p) { list(p).removeLast(); }
    static void clear(void* p) { list(p).clear(); }
    static void trim(void* p)
    {
        List& l = list(p);
        if (l.capacity() - l.size() > l.size() / 8)
            l.squeeze();
    }
    static const QString& itemName()
    {
        static const QString name = C::GetStaticObjectName();
        return name;
    }
    static constexpr ListOps ops = {&C::StaticClassInfo, &size,  &at,   &cat,     &reserve, &appendDefault, &append,
                                    &removeLast,         &clear, &trim, &itemName};
};

template <class E>
struct EnumListOpsFor {
    using List = QVector<E>;
    static int size(const void* p) { return static_cast<const List*>(p)->size(); }
    static quint8 at(const void* p, int i) { return quint8(static_cast<const List*>(p)->at(i)); }
    static void append(void* p, quint8 value) { static_cast<List*>(p)->append(E(value)); }
    static void reserve(void* p, int count) { static_cast<List*>(p)->reserve(static_cast<List*>(p)->size() + count); }
    static void clear(void* p) { static_cast<List*>(p)->clear(); }
    static constexpr EnumListInfo info(const QStringList* names, const char* memberName)
    {
        return {{names, memberName}, &size, &at, &append, &reserve, &clear};
    }
};

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC

// Offset of a payload member; payloads are not standard-layout (QSharedData base),
// but they have no virtual bases, so the offset is fixed.
#define EDD_FIELD_OFFSET(Data, member) quint16(offsetof(Data, member))
