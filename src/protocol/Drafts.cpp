#include "Drafts.h"

namespace murmeli {

void Drafts::set(const QString& meeting, const QString& draft)
{
    if (of(meeting) == draft) return;
    if (draft.isEmpty()) {
        m_drafts.remove(meeting);
    } else {
        m_drafts[meeting] = draft;
    }
    emit changed(meeting);
}

void Drafts::carryOut(const QString& meeting, const QString& remark)
{
    if (of(meeting) == remark) set(meeting, {});
    emit carriedOut();
}

} // namespace murmeli
