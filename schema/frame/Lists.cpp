// Appending to repeated fields: the test of completeness or validity of each item.

#include "schema/frame/Runtime_p.h"

namespace EMITTERDOSSIERDOC {
namespace Frame {

static void reportIncompleteItem(Record& owner, const FieldInfo& f)
{
    // The item's class name; for a list of enumeration values, the enumeration's name.
    const QString& item = f.kind == Kind::List ? f.listOps().itemName() : *f.name;
    IncompleteDefinitionException e(
        owner.GetObjectName() +
        QStringLiteral(": Tried to append not completely defined or invalid item %1.").arg(item));
    Internal::report(owner, e);
}

void Internal::append(Record& owner, Payload& p, const FieldInfo& f, const Record& item)
{
    const bool complete = item.HasData();
    if (complete || !owner.GetValidate()) {
        f.listOps().append(field(p, f), item);
        p.set(f.bit);
    }
    if (!complete)
        reportIncompleteItem(owner, f);
}

void Internal::appendEnumValue(Record& owner, Payload& p, const FieldInfo& f, quint8 v)
{
    const bool valid = enumValid(f, v);
    if (valid || !owner.GetValidate()) {
        f.enumListInfo().append(field(p, f), v);
        p.set(f.bit);
    }
    if (!valid)
        reportIncompleteItem(owner, f);
}

Internal::PendingItem::PendingItem(Record& owner, Payload& payload, const FieldInfo& field)
    : m_owner(owner), m_payload(payload), m_field(field),
      m_item(field.listOps().appendDefault(Internal::field(payload, field)))
{
    Internal::adopt(owner, m_item);
}

Internal::PendingItem::~PendingItem()
{
    if (!m_finished)
        m_field.listOps().removeLast(Internal::field(m_payload, m_field));
}

void Internal::PendingItem::finish()
{
    m_finished = true;
    const bool complete = m_item.HasData();
    if (complete || !m_owner.GetValidate())
        m_payload.set(m_field.bit);
    else
        m_field.listOps().removeLast(Internal::field(m_payload, m_field));
    if (!complete)
        reportIncompleteItem(m_owner, m_field);
}

}  // namespace Frame
}  // namespace EMITTERDOSSIERDOC
