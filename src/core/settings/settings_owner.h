#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "core/settings/settings.h"
#include "core/settings/settings_store.h"
#include "core/settings/stored_lists.h"

namespace tallowcrest {

class MainQueue;
class Observable;

/// The one owner of everything that survives a restart: nobody else reads or writes the store.
/// Main thread.
class SettingsOwner {
public:
    /// Reads every value once. A key that is absent, of another kind, out of range or undecodable
    /// leaves its default, and nothing is written back. `loginName` stands in for a missing SSH
    /// user name. The references must outlive the object.
    SettingsOwner(SettingsStore& store, MainQueue& mainQueue, std::string loginName);
    ~SettingsOwner();
    SettingsOwner(const SettingsOwner&) = delete;
    SettingsOwner& operator=(const SettingsOwner&) = delete;

    const Settings& values() const { return values_; }

    /// Sets a field, for example `set(&Settings::warningThreshold, 90.0)`, corrected by its rule,
    /// and stores it at once. Writes nothing when the store already holds that value.
    template <class Value>
    void set(Value Settings::*field, std::type_identity_t<Value> value) {
        const settings_keys::Declared<Value>& declaration = settings_keys::declared(field);
        if (declaration.adjust != nullptr) {
            value = declaration.adjust(std::move(value));
        }
        SettingsValue stored = storedForm(value);
        const bool isHeld = values_.*field == value;
        if (!isHeld) {
            values_.*field = std::move(value);
            notifyObservers();
        }
        if (!isHeld || store_.read(declaration.key) != stored) {
            store_.write(declaration.key, std::move(stored));
        }
    }

    /// A stored list; absent when none is stored that can be read.
    template <class Records>
    std::optional<Records> load(const stored::List<Records>& list) const {
        const std::optional<std::string> text = loadText(list.key);
        std::optional<Records> records = text ? list.decode(*text) : std::nullopt;
        if (records) {
            list.trim(*records);
        }
        return records;
    }

    /// Stores a list whole. One that has no JSON form is not written; no error is reported.
    /// `encoder.encode(records)` gives the text, absent for such a list.
    template <class Records, class Encoder = stored::WholeEncoder>
    void save(const stored::List<Records>& list, const Records& records, Encoder&& encoder = {}) {
        if (list.excess(records) == 0) {
            saveText(list.key, encoder.encode(records));
            return;
        }
        Records kept = records;
        list.trim(kept);
        saveText(list.key, encoder.encode(kept));
    }

    /// In how many remote scans an application came first; empty when nothing is stored that is
    /// such a table.
    SettingsTable loadRemoteTopApps() const;
    void saveRemoteTopApps(SettingsTable samples);

    /// Removes the stored permission to use a folder, if there is one.
    void removeStorageAnalysisBookmark();

    /// Why changes are not being stored, in one sentence; empty while they are.
    const std::string& savingProblem() const { return savingProblem_; }
    void setSavingProblem(std::string sentence);

    /// Notifies of changed values and of `savingProblem`, not of lists.
    Observable& observable() { return *observable_; }

private:
    template <class Value>
    static SettingsValue storedForm(const Value& value) {
        if constexpr (std::is_same_v<Value, TextSet>) {
            return SettingsTextList(value.begin(), value.end());
        } else if constexpr (std::is_same_v<Value, AIAutonomyMode>) {
            return std::string(rawValue(value));
        } else {
            return value;
        }
    }

    template <class Value>
    void loadValues();
    void notifyObservers();
    std::optional<std::string> loadText(std::string_view key) const;
    void saveText(std::string_view key, std::optional<std::string> json);

    SettingsStore& store_;
    std::unique_ptr<Observable> observable_;
    std::string savingProblem_;
    Settings values_;
};

}  // namespace tallowcrest
