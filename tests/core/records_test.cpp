#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <unordered_set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core/activity_event.h"
#include "core/advisor_records.h"
#include "core/disk_records.h"
#include "core/local_records.h"
#include "core/remote_records.h"

namespace tallowcrest {
namespace {

// Names -------------------------------------------------------------------------------------------

TEST(DisplayName, IsTheLastComponentOrTheCommand) {
    for (const auto& [command, name] : {std::pair{"/usr/bin/vi", "vi"},
                                        {"vi", "vi"},
                                        {"", ""},
                                        {"/", "/"},
                                        {"///", "///"},
                                        {"/usr/lib/", "lib"},
                                        {"/usr/lib///", "lib"},
                                        {"lib/", "lib"},
                                        {"/Applications/A B.app/A B", "A B"},
                                        {"/Applications/A B.app/A|B", "A|B"},
                                        {"./vi", "vi"},
                                        {"/usr/bin/..", ".."},
                                        {" ", " "},
                                        {"/usr/bin/vi ", "vi "},
                                        {"[kworker/0:1]", "[kworker/0:1]"},
                                        {"[a]/b", "b"},
                                        {"/x/[a]", "[a]"}}) {
        ProcessSample row;
        row.command = command;
        EXPECT_EQ(row.displayName(), name);
    }
    for (const auto& [command, name] : {std::pair{"/usr/bin/vi", "vi"},
                                        {"vi", "vi"},
                                        {"", ""},
                                        {"///", "///"},
                                        {"/usr/lib/", "lib"},
                                        {"/Applications/A B.app/A|B", "A|B"}}) {
        RemoteProcess row;
        row.command = command;
        EXPECT_EQ(row.displayName(), name);
    }
}

TEST(LastPathComponent, IsEmptyWhenThereIsNone) {
    EXPECT_EQ(lastPathComponent(""), "");
    EXPECT_EQ(lastPathComponent("/"), "");
    EXPECT_EQ(lastPathComponent("//"), "");
    EXPECT_EQ(lastPathComponent("a/b"), "b");
}

// Equality and hashing ----------------------------------------------------------------------------

const UUID someID = *UUID::fromText("0F1E2D3C-4B5A-4978-8695-A4B3C2D1E0FF");
constexpr Date someDate{700000000.25};

/// Another value of the same type. Of a record, a date or an identifier that is not the default.
template <class T>
T another(const T& value) {
    if constexpr (std::is_same_v<T, bool>) {
        return !value;
    } else if constexpr (std::is_arithmetic_v<T>) {
        return value + 1;
    } else if constexpr (std::is_same_v<T, std::string>) {
        return value + "x";
    } else if constexpr (std::is_enum_v<T>) {
        return value == T{} ? static_cast<T>(1) : T{};
    } else if constexpr (requires { value.has_value(); }) {
        return value ? T{} : T(typename T::value_type{});
    } else if constexpr (requires(T list) { list.emplace_back(); }) {
        T longer = value;
        longer.emplace_back();
        return longer;
    } else {
        return T{};
    }
}

template <class R, std::size_t... index>
std::vector<R> withOneFieldChanged(const R& original, std::index_sequence<index...>) {
    std::vector<R> variants(sizeof...(index), original);
    const auto change = [](auto& field) {
        const_cast<std::remove_cvref_t<decltype(field)>&>(field) = another(field);
    };
    (change(std::get<index>(variants[index].fields())), ...);
    return variants;
}

template <class R>
void expectMemberwise(const R& original) {
    SCOPED_TRACE(typeid(R).name());
    const R copy = original;
    EXPECT_EQ(copy, original);
    EXPECT_EQ(std::hash<R>{}(copy), std::hash<R>{}(original));
    std::unordered_set<R> all{original};
    const auto variants = withOneFieldChanged(
        original, std::make_index_sequence<std::tuple_size_v<decltype(original.fields())>>());
    for (std::size_t i = 0; i < variants.size(); ++i) {
        EXPECT_NE(variants[i], original) << "field " << i;
        EXPECT_NE(std::hash<R>{}(variants[i]), std::hash<R>{}(original)) << "field " << i;
        EXPECT_TRUE(all.insert(variants[i]).second) << "field " << i;
    }
}

/// `original` with one member changed.
template <class R, class T, class V>
R with(R original, T R::*member, V value) {
    original.*member = value;
    return original;
}

TEST(RecordEquality, EveryFieldCounts) {
    expectMemberwise(ProcessSample{7, 1.5, 2.5, 3.5, "/bin/a", "/bin/a"});
    expectMemberwise(AppImpact{"Arc", 2, 3.5, 4.5, 7, 1});
    expectMemberwise(MemorySnapshot{1, 2, 3, 4, 5, 6});
    expectMemberwise(DiskSnapshot{1, 2});
    expectMemberwise(SystemSnapshot{
        {1, 2, 3, 4, 5, 6}, {1, 2}, 50, {ProcessSample{}}, {AppImpact{}}, "Normal", someDate});
    expectMemberwise(
        Recommendation{someID, "t", "d", Recommendation::Severity::info, std::nullopt});
    expectMemberwise(HistoryPoint{someID, someDate, 1, 2});
    expectMemberwise(ActivityEvent{someID, someDate, "t", "d"});
    expectMemberwise(SessionInsight{someID, "t", "v", "d"});
    expectMemberwise(ConfirmationRequest{someID, "t", "m", "c", "k", "host", 7});
    expectMemberwise(
        TailDevice{"id", "n", "h", false, {"100.64.0.1"}, "macOS", false, false, "c", "r"});
    expectMemberwise(RemoteProcess{7, 1.5, 2.5, "c"});
    expectMemberwise(RemoteAppImpact{"Arc", 2, 3.5, 4.5, 7, 1});
    RemoteHealth health;
    health.cpuPercent = 1.0;
    health.sampledAt = someDate;
    expectMemberwise(health);
    expectMemberwise(RemoteProfile{"id", "n", "r", 82, false});
    expectMemberwise(RemoteHistoryPoint{someID, "h", someDate, 1, 2, "Reachable"});
    expectMemberwise(AIError{"m"});
    expectMemberwise(AIChatMessage{someID, "user", "t", someDate});
    expectMemberwise(AIActionSuggestion{someID, "type", "title", "detail", "risk"});
    expectMemberwise(AITrustRecord{"type", 1, 2, 3, someDate});
    expectMemberwise(AIRuleDraft{someID, "title", "trigger", "action", "risk", false});
    expectMemberwise(DiskCleanupPlan{{"/a", "/b"}, 7, someDate});
    expectMemberwise(DiskStorageOffender{"name", "/path", 7});
    expectMemberwise(StorageOptimizationSuggestion{someID, "t", "d", "/p", 7, "rec", "why"});
}

TEST(RecordEquality, OrderCountsAndAnAbsentValueDiffersFromAnEmptyOne) {
    EXPECT_NE((DiskSnapshot{1, 2}), (DiskSnapshot{2, 1}));
    EXPECT_NE((DiskCleanupPlan{{"/a", "/b"}, 7, someDate}),
              (DiskCleanupPlan{{"/b", "/a"}, 7, someDate}));
    EXPECT_NE(with(AppImpact{}, &AppImpact::topPID, 0), AppImpact{});
    EXPECT_NE(with(ConfirmationRequest{}, &ConfirmationRequest::hostName, ""),
              ConfirmationRequest{});
}

TEST(RecordIdentity, IsTheIdentifyingField) {
    EXPECT_EQ((ProcessSample{7, 1.5, 2.5, 3.5, "/bin/a", "/bin/a"}).id(), 7);
    EXPECT_EQ((AppImpact{"Arc", 2, 3.5, 4.5, 7, 1}).id(), "Arc");
    EXPECT_EQ((RemoteProcess{7, 1.5, 2.5, "c"}).id(), 7);
    EXPECT_EQ((RemoteAppImpact{"Arc", 2, 3.5, 4.5, 7, 1}).id(), "Arc");
    EXPECT_EQ((DiskStorageOffender{"name", "/path", 7}).id(), "/path");
}

TEST(RecordEquality, BytesAndCountsAreSixtyFourBitsWide) {
    const DiskStorageOffender offender{"n", "/p", std::numeric_limits<std::int64_t>::max()};
    EXPECT_EQ(offender.bytes, 9223372036854775807);
}

TEST(RecordEquality, NegativeZeroHashesLikeZero) {
    const DiskSnapshot zero{0.0, 0.0};
    const DiskSnapshot negative{-0.0, -0.0};
    EXPECT_EQ(zero, negative);
    EXPECT_EQ(std::hash<DiskSnapshot>{}(zero), std::hash<DiskSnapshot>{}(negative));

    const HistoryPoint point{someID, Date{0.0}, 0.0, 0.0};
    const HistoryPoint mirrored{someID, Date{-0.0}, -0.0, -0.0};
    EXPECT_EQ(point, mirrored);
    EXPECT_EQ(std::hash<HistoryPoint>{}(point), std::hash<HistoryPoint>{}(mirrored));

    RemoteHealth health;
    RemoteHealth mirroredHealth;
    health.cpuPercent = 0.0;
    mirroredHealth.cpuPercent = -0.0;
    EXPECT_EQ(health, mirroredHealth);
    EXPECT_EQ(std::hash<RemoteHealth>{}(health), std::hash<RemoteHealth>{}(mirroredHealth));
}

TEST(RecordEquality, TheIdentifierIsPartOfTheValue) {
    const SessionInsight a{UUID::random(), "t", "v", "d"};
    SessionInsight b = a;
    EXPECT_EQ(a, b);
    b.id = UUID::random();
    EXPECT_NE(a, b);
    EXPECT_EQ((std::unordered_set<SessionInsight>{a, b}.size()), 2U);
}

}  // namespace
}  // namespace tallowcrest
