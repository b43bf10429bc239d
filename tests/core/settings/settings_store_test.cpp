#include "core/settings/settings_store.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(MemorySettingsStore, AKeyThatWasNeverWrittenIsAbsent) {
    MemorySettingsStore store;
    EXPECT_FALSE(store.read("never"));
    store.write("other", true);
    EXPECT_FALSE(store.read("never"));
    EXPECT_FALSE(store.read(""));
}

TEST(MemorySettingsStore, AKeyCanBeRemoved) {
    MemorySettingsStore store;
    store.write("key", true);
    store.write("other", true);
    for (int times = 0; times < 2; ++times) {
        store.write("key", std::nullopt);
        EXPECT_FALSE(store.read("key"));
    }
    EXPECT_TRUE(store.read("other"));
}

TEST(MemorySettingsStore, EveryKindReadsBackAsItself) {
    MemorySettingsStore store;
    const std::vector<SettingsValue> values{
        false,
        true,
        0.0,
        82.5,
        std::string(),
        std::string("text"),
        SettingsTextList{},
        SettingsTextList{"a", "b"},
        SettingsTable{},
        SettingsTable{{"a", 1}, {"b", -2}},
        JSONData{"[]"},
        SettingsData{"bytes"},
    };
    for (const SettingsValue& value : values) {
        store.write("key", value);
        EXPECT_EQ(store.read("key"), value) << value.index();
    }
}

TEST(MemorySettingsStore, FalseZeroAndEmptyAreNotAbsent) {
    MemorySettingsStore store;
    store.write("flag", false);
    store.write("number", 0.0);
    store.write("text", std::string());
    EXPECT_TRUE(store.read("flag"));
    EXPECT_TRUE(store.read("number"));
    EXPECT_TRUE(store.read("text"));
}

TEST(MemorySettingsStore, AWriteReplacesTheOlderValueAndItsKind) {
    MemorySettingsStore store;
    store.write("key", 1.0);
    store.write("key", std::string("1"));
    EXPECT_EQ(store.read("key"), SettingsValue(std::string("1")));
}

TEST(MemorySettingsStore, KeysAreExact) {
    MemorySettingsStore store;
    store.write("Key", 1.0);
    EXPECT_FALSE(store.read("key"));
    EXPECT_FALSE(store.read("Key "));
    EXPECT_TRUE(store.read(std::string("Keys").substr(0, 3)));
}

TEST(MemorySettingsStore, JSONAndTextAreDifferentKinds) {
    MemorySettingsStore store;
    store.write("key", JSONData{"[]"});
    EXPECT_NE(store.read("key"), SettingsValue(std::string("[]")));
}

}  // namespace
}  // namespace tallowcrest
