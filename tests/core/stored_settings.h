#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "core/settings.h"
#include "core/settings_store.h"
#include "platform/settings/open_settings_store.h"
#include "tests/support/manual_clock.h"
#include "tests/support/manual_queues.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {

/// A store of one kind, and what the next start of the program would find in it.
class StoreOfAKind {
public:
    virtual ~StoreOfAKind() = default;
    virtual SettingsStore& store() = 0;
    virtual StoredState load() const = 0;
    virtual void clear() = 0;
};

class StoreInMemory final : public StoreOfAKind {
public:
    SettingsStore& store() override { return store_; }
    StoredState load() const override { return loadStoredState(store_, "owner"); }
    void clear() override { store_ = {}; }

private:
    MemorySettingsStore store_;
};

class StoreInAFile final : public StoreOfAKind {
public:
    StoreInAFile() : opened_(openSettingsStore(file_, {queue_, clock_, {}})) {
        EXPECT_TRUE(opened_.problems.empty());
    }
    SettingsStore& store() override { return *opened_.store; }
    StoredState load() const override {
        return loadStoredState(*readSettingsStore(file_).store, "owner");
    }
    void clear() override {
        SqliteConnection connection;
        connection.open(file_, SqliteConnection::Access::readWrite, {});
        EXPECT_EQ(connection.execute("PRAGMA synchronous = OFF; DELETE FROM settings"), SQLITE_OK);
    }

private:
    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "settings.sqlite";
    ManualWorkQueue queue_;
    ManualClock clock_;
    OpenedStore opened_;
};

/// The parameter makes the store.
class StoredSettings
    : public ::testing::TestWithParam<std::function<std::unique_ptr<StoreOfAKind>()>> {
protected:
    SettingsStore& store() { return kind_->store(); }
    StoredState load() const { return kind_->load(); }

    /// What is found when nothing but this was ever stored.
    StoredState loadWith(std::string_view key, const SettingsValue& value) {
        kind_->clear();
        store().write(key, value);
        return load();
    }
    Settings settingsWith(std::string_view key, const SettingsValue& value) {
        return loadWith(key, value).settings;
    }

private:
    std::unique_ptr<StoreOfAKind> kind_ = GetParam()();
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
