#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "core/settings/settings_owner.h"
#include "platform/settings/open_settings_store.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

class StoreOfAKind {
public:
    virtual ~StoreOfAKind() = default;
    virtual SettingsStore& store() = 0;
    /// What the next start of the program would read from.
    virtual SettingsStore& reopened() = 0;
    virtual void clear() = 0;
};

class StoreInMemory final : public StoreOfAKind {
public:
    SettingsStore& store() override { return store_; }
    SettingsStore& reopened() override { return store_; }
    void clear() override { store_ = {}; }

private:
    MemorySettingsStore store_;
};

class StoreInAFile final : public StoreOfAKind {
public:
    StoreInAFile() : opened_(openSettingsStore(file_, {jobs_, clock_, {}})) {
        EXPECT_TRUE(opened_.problems.empty());
    }
    SettingsStore& store() override { return *opened_.store; }
    SettingsStore& reopened() override {
        reopened_ = readSettingsStore(file_);
        return *reopened_.store;
    }
    void clear() override {
        SqliteConnection connection;
        connection.open(file_, SqliteConnection::Access::readWrite, {});
        EXPECT_EQ(connection.execute("PRAGMA synchronous = OFF; DELETE FROM settings"), SQLITE_OK);
    }

private:
    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "settings.sqlite";
    ManualMainQueue mainQueue_;
    ManualWorkQueue queue_;
    Jobs jobs_{mainQueue_, queue_};
    ManualClock clock_;
    OpenedStore opened_;
    OpenedStore reopened_;
};

/// The parameter makes the store.
class StoredSettings
    : public ::testing::TestWithParam<std::function<std::unique_ptr<StoreOfAKind>()>> {
protected:
    SettingsStore& store() { return kind_->store(); }

    /// What the next start of the program finds. Valid until the next call.
    SettingsOwner& load() {
        owner_.emplace(kind_->reopened(), mainQueue, "owner");
        return *owner_;
    }

    /// What it finds when nothing but this was ever stored.
    SettingsOwner& loadWith(std::string_view key, const SettingsValue& value) {
        kind_->clear();
        store().write(key, value);
        return load();
    }
    const Settings& settingsWith(std::string_view key, const SettingsValue& value) {
        return loadWith(key, value).values();
    }

    ManualMainQueue mainQueue;

private:
    std::unique_ptr<StoreOfAKind> kind_ = GetParam()();
    std::optional<SettingsOwner> owner_;
};

#define TALLOWCREST_OVER_BOTH_STORES(suite)                                            \
    INSTANTIATE_TEST_SUITE_P(InMemory, suite,                                          \
                             ::testing::Values([]() -> std::unique_ptr<StoreOfAKind> { \
                                 return std::make_unique<StoreInMemory>();             \
                             }));                                                      \
    INSTANTIATE_TEST_SUITE_P(InAFile, suite,                                           \
                             ::testing::Values([]() -> std::unique_ptr<StoreOfAKind> { \
                                 return std::make_unique<StoreInAFile>();              \
                             }))

}  // namespace tallowcrest
