#include "core/settings/stored_list.h"

#include <utility>

#include "core/history_encoder.h"
#include "core/settings/settings_owner.h"
#include "core/settings/stored_lists.h"

namespace tallowcrest {

template <class Records, class Encoder>
StoredList<Records, Encoder>::StoredList(SettingsOwner& owner,
                                         const stored::List<Records>& declaration, Records initial)
    : owner_(owner),
      declaration_(declaration),
      records_(owner.load(declaration).value_or(std::move(initial))) {}

template <class Records, class Encoder>
void StoredList<Records, Encoder>::save() {
    owner_.save(declaration_, records_, encoder_);
}

// Here and not in the header, which then needs nothing of the owner.
template class StoredList<std::vector<ActivityEvent>>;
template class StoredList<std::vector<HistoryPoint>, HistoryEncoder>;
template class StoredList<std::vector<RemoteHistoryPoint>>;
template class StoredList<std::vector<AIChatMessage>>;
template class StoredList<std::vector<AIRuleDraft>>;
template class StoredList<std::map<std::string, AITrustRecord>>;
template class StoredList<std::map<std::string, RemoteProfile>>;

}  // namespace tallowcrest
