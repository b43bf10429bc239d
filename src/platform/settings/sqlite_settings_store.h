#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/queues.h"
#include "core/settings_store.h"
#include "platform/settings/settings_rows.h"
#include "platform/settings/sqlite_connection.h"

namespace tallowcrest {

/// The settings in a file. When `write` returns, the value is with the system: the end of this
/// process at any moment, by a signal too, leaves every value whole and loses none. A power failure
/// may cost the latest seconds, and never more than those. Main thread.
///
/// A write appends to a log beside the file and waits for no disk. Every so often the log's content
/// has to move into the file, which does wait; that happens on the work queue, through a connection
/// of its own, and once more when the store is destroyed.
///
/// Another process may write to the same file; a value is then one's or the other's, whole. Within
/// one process a file is to be opened once.
class SqliteSettingsStore final : public SettingsStore {
public:
    /// Takes one sentence for the owner. Called within a write, so it must not itself write before
    /// that has returned. Main thread.
    using Complain = std::function<void(const std::string&)>;

    /// How many pages of 4 kB the log may have before it is moved: some 10 minutes of samples.
    static constexpr int defaultLogPages = 1024;

    /// `rows` are prepared on `connection`, and `path` is its file. `workQueue` must outlive the
    /// store. The rows of the keys `untouched` are left as they are: what is written to those lasts
    /// as long as the store.
    SqliteSettingsStore(SqliteConnection connection, SettingsRows rows, std::filesystem::path path,
                        WorkQueue& workQueue, Complain complain, int logPages,
                        const std::vector<std::string_view>& untouched = {});
    SqliteSettingsStore(const SqliteSettingsStore&) = delete;
    SqliteSettingsStore& operator=(const SqliteSettingsStore&) = delete;
    ~SqliteSettingsStore() override;

    std::optional<SettingsValue> read(std::string_view key) const override;

    /// A failure (a full disk, a lock that is not let go of) leaves the older value. It is
    /// complained of once an outage, which ends when everything is stored; the value is kept in
    /// memory and tried again after the next write that succeeds, and at the end. Once a lock has
    /// been waited for in vain, no write waits for it again until one succeeds.
    void write(std::string_view key, const SettingsValue& value) override;

private:
    bool isUntouched(std::string_view key) const;
    int tryToWrite(std::string_view key, const SettingsValue& value);
    void retryUnsaved();
    void moveLogAtLeisure();

    SqliteConnection connection_;
    mutable SettingsRows rows_;
    std::filesystem::path path_;
    WorkQueue& workQueue_;
    Complain complain_;
    int longestLog_;
    int logPages_ = 0;
    /// Shared with the job, which may outlive the store.
    std::shared_ptr<std::atomic<bool>> logIsMoving_ = std::make_shared<std::atomic<bool>>(false);
    std::map<std::string, SettingsValue, std::less<>> unsaved_;
    std::vector<std::string> untouched_;
    MemorySettingsStore instead_;  ///< what was written to the keys `untouched_`
    bool hasComplained_ = false;
    bool isLocked_ = false;
};

}  // namespace tallowcrest
