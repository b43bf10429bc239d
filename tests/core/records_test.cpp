#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <unordered_set>

#include <gtest/gtest.h>

#include "core/activity_event.h"
#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/remote_records.h"

namespace tallowcrest {
namespace {

// Names -------------------------------------------------------------------------------------------

struct PathCase {
    const char* command;
    const char* displayName;
};

class DisplayName : public ::testing::TestWithParam<PathCase> {};

TEST_P(DisplayName, IsTheLastComponentOrTheCommand) {
    ProcessSample row;
    row.command = GetParam().command;
    EXPECT_EQ(row.displayName(), GetParam().displayName);
}

INSTANTIATE_TEST_SUITE_P(Commands, DisplayName,
                         ::testing::Values(PathCase{"/usr/bin/vi", "vi"}, PathCase{"vi", "vi"},
                                           PathCase{"", ""}, PathCase{"/", "/"},
                                           PathCase{"///", "///"}, PathCase{"/usr/lib/", "lib"},
                                           PathCase{"/usr/lib///", "lib"}, PathCase{"lib/", "lib"},
                                           PathCase{"/Applications/A B.app/A B", "A B"},
                                           PathCase{"./vi", "vi"}, PathCase{"/usr/bin/..", ".."},
                                           PathCase{" ", " "}, PathCase{"/usr/bin/vi ", "vi "},
                                           PathCase{"[kworker/0:1]", "[kworker/0:1]"},
                                           PathCase{"[a]/b", "b"}, PathCase{"/x/[a]", "[a]"}));

TEST(RemoteDisplayName, IsTheLastComponentOrTheCommand) {
    for (const PathCase& c : {PathCase{"/usr/bin/vi", "vi"}, PathCase{"vi", "vi"}, PathCase{"", ""},
                              PathCase{"///", "///"}, PathCase{"/usr/lib/", "lib"},
                              PathCase{"/Applications/A B.app/A|B", "A|B"},
                              PathCase{"[kworker/0:1]", "[kworker/0:1]"}}) {
        RemoteProcess row;
        row.command = c.command;
        EXPECT_EQ(row.displayName(), c.displayName);
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

/// Each variant differs from `original` in the field at its own index.
template <class R>
void expectMemberwise(const R& original, const std::vector<R>& variants) {
    ASSERT_EQ(variants.size(), std::tuple_size_v<decltype(original.fields())>)
        << "one variant for each field";
    const R copy = original;
    EXPECT_EQ(copy, original);
    EXPECT_EQ(std::hash<R>{}(copy), std::hash<R>{}(original));
    std::unordered_set<R> all{original};
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

TEST(RecordEquality, ProcessSample) {
    using R = ProcessSample;
    const R r{7, 1.5, 2.5, 3.5, "/bin/a", "/bin/a"};
    expectMemberwise<R>(
        r, {with(r, &R::pid, 8), with(r, &R::cpu, 1.6), with(r, &R::memoryPercent, 2.6),
            with(r, &R::rssMB, 3.6), with(r, &R::command, "/bin/b"),
            with(r, &R::arguments, "/bin/b"), with(r, &R::startTime, std::uint64_t{1})});
}

TEST(RecordEquality, AppImpact) {
    using R = AppImpact;
    const R r{"Arc", 2, 3.5, 4.5, 7, 1};
    expectMemberwise<R>(r, {with(r, &R::name, "arc"), with(r, &R::processCount, 3),
                            with(r, &R::totalCPU, 3.6), with(r, &R::totalMemoryMB, 4.6),
                            with(r, &R::topPID, std::nullopt), with(r, &R::protectedCount, 0)});
    EXPECT_NE(with(r, &R::topPID, 0), with(r, &R::topPID, std::nullopt));
}

TEST(RecordEquality, MemorySnapshot) {
    using R = MemorySnapshot;
    const R r{1, 2, 3, 4, 5, 6};
    expectMemberwise<R>(
        r, {with(r, &R::totalGB, 9), with(r, &R::usedGB, 9), with(r, &R::freeGB, 9),
            with(r, &R::wiredGB, 9), with(r, &R::compressedGB, 9), with(r, &R::pressure, 9)});
}

TEST(RecordEquality, DiskSnapshot) {
    using R = DiskSnapshot;
    const R r{1, 2};
    expectMemberwise<R>(r, {with(r, &R::totalGB, 9), with(r, &R::freeGB, 9)});
    EXPECT_NE(R({1, 2}), R({2, 1}));
}

TEST(RecordEquality, SystemSnapshot) {
    using R = SystemSnapshot;
    const R r{{1, 2, 3, 4, 5, 6}, {1, 2}, 50, {ProcessSample{}}, {AppImpact{}}, "Normal", someDate};
    expectMemberwise<R>(
        r, {with(r, &R::memory, MemorySnapshot{}), with(r, &R::disk, DiskSnapshot{}),
            with(r, &R::cpuPercent, 51), with(r, &R::topProcesses, std::vector<ProcessSample>{}),
            with(r, &R::appImpacts, std::vector<AppImpact>(2)), with(r, &R::pressureText, ""),
            with(r, &R::sampledAt, Date{1})});
}

TEST(RecordEquality, Recommendation) {
    using R = Recommendation;
    const R r{someID, "t", "d", R::Severity::info, std::nullopt};
    expectMemberwise<R>(r,
                        {with(r, &R::id, UUID{}), with(r, &R::title, "x"), with(r, &R::detail, "x"),
                         with(r, &R::severity, R::Severity::urgent), with(r, &R::relatedPID, 0)});
}

TEST(RecordEquality, HistoryPoint) {
    using R = HistoryPoint;
    const R r{someID, someDate, 1, 2};
    expectMemberwise<R>(r, {with(r, &R::id, UUID{}), with(r, &R::date, Date{1}),
                            with(r, &R::cpu, 9), with(r, &R::memory, 9)});
}

TEST(RecordEquality, ActivityEvent) {
    using R = ActivityEvent;
    const R r{someID, someDate, "t", "d"};
    expectMemberwise<R>(r, {with(r, &R::id, UUID{}), with(r, &R::date, Date{1}),
                            with(r, &R::title, "x"), with(r, &R::detail, "x")});
}

TEST(RecordEquality, SessionInsight) {
    using R = SessionInsight;
    const R r{someID, "t", "v", "d"};
    expectMemberwise<R>(r, {with(r, &R::id, UUID{}), with(r, &R::title, "x"),
                            with(r, &R::value, "x"), with(r, &R::detail, "x")});
}

TEST(RecordEquality, ConfirmationRequest) {
    using R = ConfirmationRequest;
    const R r{someID, "t", "m", "c", "k", "host", 7};
    expectMemberwise<R>(
        r, {with(r, &R::id, UUID{}), with(r, &R::title, "x"), with(r, &R::message, "x"),
            with(r, &R::confirmTitle, "x"), with(r, &R::kind, "x"),
            with(r, &R::hostName, std::nullopt), with(r, &R::pid, std::nullopt)});
    EXPECT_NE(with(r, &R::hostName, std::nullopt), with(r, &R::hostName, ""));
}

TEST(RecordEquality, TailDevice) {
    using R = TailDevice;
    const R r{"id", "n", "h", false, {"100.64.0.1"}, "macOS", false, false, "c", "r"};
    expectMemberwise<R>(
        r, {with(r, &R::id, "x"), with(r, &R::name, "x"), with(r, &R::hostName, "x"),
            with(r, &R::online, true), with(r, &R::addresses, std::vector<std::string>{}),
            with(r, &R::os, "x"), with(r, &R::active, true), with(r, &R::inMagicSock, true),
            with(r, &R::currentAddress, "x"), with(r, &R::relay, "x")});
}

TEST(RecordEquality, RemoteProcess) {
    using R = RemoteProcess;
    const R r{7, 1.5, 2.5, "c"};
    expectMemberwise<R>(r, {with(r, &R::pid, 8), with(r, &R::cpu, 9), with(r, &R::rssMB, 9),
                            with(r, &R::command, "x")});
}

TEST(RecordEquality, RemoteAppImpact) {
    using R = RemoteAppImpact;
    const R r{"Arc", 2, 3.5, 4.5, 7, 1};
    expectMemberwise<R>(r, {with(r, &R::name, "arc"), with(r, &R::processCount, 3),
                            with(r, &R::totalCPU, 3.6), with(r, &R::totalMemoryMB, 4.6),
                            with(r, &R::topPID, std::nullopt), with(r, &R::protectedCount, 0)});
}

TEST(RecordEquality, RemoteHealth) {
    using R = RemoteHealth;
    R r;
    r.cpuPercent = 1.0;
    expectMemberwise<R>(
        r,
        {with(r, &R::id, "x"), with(r, &R::hostName, "x"), with(r, &R::address, "x"),
         with(r, &R::online, true), with(r, &R::status, R::Status::reachable),
         with(r, &R::cpuPercent, std::nullopt), with(r, &R::memoryPercent, 1.0),
         with(r, &R::osVersion, "x"), with(r, &R::topCPUProcess, "x"),
         with(r, &R::topMemoryProcess, "x"),
         with(r, &R::topProcesses, std::vector<RemoteProcess>(1)),
         with(r, &R::appImpacts, std::vector<RemoteAppImpact>(1)), with(r, &R::recommendation, "x"),
         with(r, &R::summary, "x"), with(r, &R::setupHint, "x"), with(r, &R::sampledAt, Date{1}),
         with(r, &R::isLinux, true)});
}

TEST(RecordEquality, RemoteProfile) {
    using R = RemoteProfile;
    const R r{"id", "n", "r", 82, false};
    expectMemberwise<R>(r,
                        {with(r, &R::id, "x"), with(r, &R::nickname, "x"), with(r, &R::role, "x"),
                         with(r, &R::warningThreshold, 83), with(r, &R::allowRemotePurge, true)});
}

TEST(RecordEquality, RemoteHistoryPoint) {
    using R = RemoteHistoryPoint;
    const R r{someID, "h", someDate, 1, 2, "Reachable"};
    expectMemberwise<R>(
        r, {with(r, &R::id, UUID{}), with(r, &R::hostName, "x"), with(r, &R::date, Date{1}),
            with(r, &R::cpu, 9), with(r, &R::memory, 9), with(r, &R::status, "x")});
}

TEST(RecordEquality, AdvisorRecords) {
    expectMemberwise<AIError>({"m"}, {{"x"}});

    const AIChatMessage message{someID, "user", "t", someDate};
    expectMemberwise<AIChatMessage>(
        message,
        {with(message, &AIChatMessage::id, UUID{}), with(message, &AIChatMessage::role, "x"),
         with(message, &AIChatMessage::text, "x"), with(message, &AIChatMessage::date, Date{1})});

    using S = AIActionSuggestion;
    const S s{someID, "type", "title", "detail", "risk"};
    expectMemberwise<S>(s,
                        {with(s, &S::id, UUID{}), with(s, &S::type, "x"), with(s, &S::title, "x"),
                         with(s, &S::detail, "x"), with(s, &S::risk, "x")});

    using T = AITrustRecord;
    const T t{"type", 1, 2, 3, someDate};
    expectMemberwise<T>(
        t, {with(t, &T::actionType, "x"), with(t, &T::approvedCount, 9), with(t, &T::runCount, 9),
            with(t, &T::blockedCount, 9), with(t, &T::lastUpdated, Date{1})});

    using D = AIRuleDraft;
    const D d{someID, "title", "trigger", "action", "risk", false};
    expectMemberwise<D>(
        d, {with(d, &D::id, UUID{}), with(d, &D::title, "x"), with(d, &D::trigger, "x"),
            with(d, &D::action, "x"), with(d, &D::risk, "x"), with(d, &D::enabled, true)});
}

TEST(RecordEquality, CountsAreSixtyFourBitsWide) {
    AppImpact group;
    group.processCount = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(group.processCount, 9223372036854775807);
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
