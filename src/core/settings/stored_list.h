#pragma once

#include <optional>
#include <string>

namespace tallowcrest {

class SettingsOwner;

namespace stored {
template <class Records>
struct List;

/// Encodes the whole list for every save.
struct WholeEncoder {
    template <class Records>
    std::optional<std::string> encode(const Records& records) const;
};
}  // namespace stored

/// A list that survives a restart: loaded when it is built, stored whole after each change.
/// `Encoder` is for a list that can be encoded in less than the time of all its records.
/// Main thread.
template <class Records, class Encoder = stored::WholeEncoder>
class StoredList {
public:
    /// `declaration` is one of those in `stored`. `owner` must outlive the object. Where nothing is
    /// stored that can be read, the list begins with `initial`, which the first change stores.
    StoredList(SettingsOwner& owner, const stored::List<Records>& declaration,
               Records initial = {});

    const Records& operator*() const { return records_; }
    const Records* operator->() const { return &records_; }

    /// Calls `change(records)` and stores what it left.
    template <class Change>
    void change(Change change) {
        change(records_);
        save();
    }

private:
    void save();

    SettingsOwner& owner_;
    const stored::List<Records>& declaration_;
    Encoder encoder_;
    Records records_;
};

}  // namespace tallowcrest
