#include "monitor/recommendations.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <source_location>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/monitor/recommendation_cards.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using ::testing::ElementsAre;

ProcessSample process(std::int64_t pid, const std::string& command, double rssMB,
                      double cpu = 0.0) {
    return {pid, cpu, 0.0, rssMB, command, command};
}

std::vector<ProcessSample> processes(std::int64_t count, const std::string& command,
                                     double sumOfMB) {
    std::vector<ProcessSample> rows;
    for (std::int64_t i = 0; i < count; ++i) {
        rows.push_back(process(100 + i, command, sumOfMB / static_cast<double>(count)));
    }
    return rows;
}

std::vector<ProcessSample> operator+(std::vector<ProcessSample> rows,
                                     const std::vector<ProcessSample>& more) {
    rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}

struct Machine {
    std::vector<ProcessSample> rows = {};
    double freeGB = 4.0;
    double pressure = 0.0;
    double cpuPercent = 0.0;
};

std::vector<Recommendation> cardsOf(const Machine& machine) {
    return buildRecommendations(machine.rows, machine.freeGB, machine.pressure, machine.cpuPercent,
                                PlainLocale());
}

const std::string healthyTitle = "This Mac looks healthy";

const std::string highPressureDetail =
    "Review the biggest memory users before purging caches. Quitting one heavy app usually helps "
    "more than forcing cache cleanup.";
const std::string busyDetail =
    "If fans, battery drain, or lag are noticeable, sort by CPU and close work you are not using.";
const std::string topUserDetail =
    " is currently the top CPU user. If the Mac feels hot or laggy, quit or restart that app.";
const std::string heavyDetail =
    "Select it in Heavy Processes if you want Tallowcrest to ask it to quit.";
const std::string browserDetail =
    "Browser tabs and extensions are often the fastest win. Close unused windows or restart the "
    "browser if memory keeps climbing.";
const std::string dockerDetail =
    "If you are not developing right now, quitting Docker Desktop can free a meaningful chunk of "
    "memory.";
const std::string healthyDetail =
    "CPU and memory pressure are in a comfortable range. No optimization action is needed right "
    "now.";

const std::vector<ProcessSample> editorAndIndexer{process(7, "/usr/bin/editor", 300.0, 20.0),
                                                  process(8, "/usr/bin/indexer", 200.0, 90.0)};

void expectOnly(const Machine& machine, const Card& card,
                std::source_location row = std::source_location::current()) {
    const testing::ScopedTrace trace(row.file_name(), static_cast<int>(row.line()), "row");
    const auto cards = cardsOf(machine);
    ASSERT_EQ(cards.size(), 1U) << testing::PrintToString(titlesOf(cards));
    EXPECT_EQ(contentOf(cards.front()), card);
}

TEST(OneCard, OfMemoryPressure) {
    expectOnly({.pressure = 85.0},
               {"Memory pressure is high", highPressureDetail, Severity::urgent, noPID});
    expectOnly({.rows = editorAndIndexer, .pressure = 100.0},
               {"Memory pressure is high", highPressureDetail, Severity::urgent, 7});
    expectOnly({.rows = editorAndIndexer, .freeGB = 2.46, .pressure = 84.9},
               {"Memory pressure is rising",
                "You have 2.5 GB free or reclaimable. Keep an eye on the top memory apps.",
                Severity::caution, 7});
    expectOnly({.freeGB = 3.0, .pressure = 72.0},
               {"Memory pressure is rising",
                "You have 3.0 GB free or reclaimable. Keep an eye on the top memory apps.",
                Severity::caution, noPID});
}

TEST(OneCard, OfCPULoad) {
    expectOnly({.rows = editorAndIndexer, .cpuPercent = 85.0},
               {"CPU load is very high", "indexer" + topUserDetail, Severity::urgent, 8});
    expectOnly({.cpuPercent = 100.0},
               {"CPU load is very high", "A process" + topUserDetail, Severity::urgent, noPID});
    expectOnly({.rows = editorAndIndexer, .cpuPercent = 84.9},
               {"CPU is busy", busyDetail, Severity::caution, 8});
    expectOnly({.rows = editorAndIndexer, .cpuPercent = 65.0},
               {"CPU is busy", busyDetail, Severity::caution, 8});
    expectOnly({.cpuPercent = 65.0}, {"CPU is busy", busyDetail, Severity::caution, noPID});
}

TEST(OneCard, OfAHeavyProcess) {
    expectOnly({.rows = {process(5, "/usr/bin/editor", 2000.0)}},
               {"editor is using 2.0 GB", heavyDetail, Severity::caution, 5});
    expectOnly({.rows = {process(5, "/usr/bin/editor", 2304.0)}},
               {"editor is using 2.3 GB", heavyDetail, Severity::caution, 5});
}

TEST(OneCard, OfABrowser) {
    expectOnly({.rows = processes(8, "/opt/Google Chrome Helper", 2480.0)},
               {"Chrome has 8 helper processes", browserDetail, Severity::caution, 100});
    expectOnly({.rows = processes(12, "/opt/chrome", 12.0)},
               {"Chrome has 12 helper processes", browserDetail, Severity::caution, 100});
    expectOnly({.rows = processes(2, "/usr/lib/firefox-bin", 2500.0)},
               {"Firefox has 2 helper processes", browserDetail, Severity::caution, 100});
    expectOnly({.rows = processes(4, "/opt/Safari", 3999.0)},
               {"Safari has 4 helper processes", browserDetail, Severity::caution, 100});
    expectOnly({.rows = processes(4, "/opt/Safari", 4000.0)},
               {"Safari has 4 helper processes", browserDetail, Severity::urgent, 100});
    expectOnly({.rows = processes(4, "/usr/bin/search-a", 1000.0) +
                        processes(4, "/usr/bin/Archiver", 1000.0)},
               {"Arc has 8 helper processes", browserDetail, Severity::caution, 100});
}

TEST(OneCard, OfDocker) {
    expectOnly({.rows = processes(2, "/usr/bin/dockerd", 1500.0)},
               {"Docker is holding 1.5 GB", dockerDetail, Severity::caution, 100});
    expectOnly({.rows = {process(1, "/opt/com.docker.backend", 900.0),
                         process(2, "/opt/Docker Desktop", 1148.0)}},
               {"Docker is holding 2.0 GB", dockerDetail, Severity::caution, 2});
}

TEST(OneCard, OfAHealthyMachine) {
    int machine = 0;
    for (const Machine& atEase :
         {Machine{}, Machine{.rows = editorAndIndexer}, Machine{.pressure = 71.9},
          Machine{.rows = editorAndIndexer, .cpuPercent = 64.9},
          Machine{.rows = {process(5, "/usr/bin/editor", 1999.9)}},
          Machine{.rows = processes(7, "/opt/Google Chrome Helper", 2400.0)},
          Machine{.rows = processes(2, "/usr/lib/firefox-bin", 2499.0)},
          Machine{.rows = processes(2, "/usr/bin/dockerd", 1499.0)}}) {
        SCOPED_TRACE(++machine);
        expectOnly(atEase, {healthyTitle, healthyDetail, Severity::info, noPID});
    }
}

TEST(BuildRecommendations, AHeavyProcessIsUrgentFrom75PercentPressure) {
    for (const auto& [pressure, severity] :
         {std::pair{74.9, Severity::caution}, std::pair{75.0, Severity::urgent}}) {
        const auto cards =
            cardsOf({.rows = {process(5, "/usr/bin/editor", 2000.0)}, .pressure = pressure});
        ASSERT_THAT(titlesOf(cards),
                    ElementsAre("Memory pressure is rising", "editor is using 2.0 GB"));
        EXPECT_EQ(cards[1].severity, severity) << pressure;
    }
}

TEST(BuildRecommendations, AllKindsAreInOrder) {
    const std::vector<ProcessSample> rows =
        processes(8, "/opt/chrome", 800.0) + std::vector{process(1, "/usr/bin/dockerd", 1600.0),
                                                         process(2, "/usr/bin/editor", 4096.0, 99)};
    EXPECT_THAT(
        titlesOf(cardsOf({rows, 1.0, 90.0, 90.0})),
        ElementsAre("Memory pressure is high", "CPU load is very high", "editor is using 4.0 GB",
                    "Chrome has 8 helper processes", "Docker is holding 1.6 GB"));
    EXPECT_THAT(titlesOf(cardsOf({rows, 1.0, 80.0, 70.0})),
                ElementsAre("Memory pressure is rising", "CPU is busy", "editor is using 4.0 GB",
                            "Chrome has 8 helper processes", "Docker is holding 1.6 GB"));
}

TEST(BuildRecommendations, OnlyTheFirstBrowserOverALimitGetsACard) {
    const auto chrome = processes(8, "/opt/chrome", 80.0);
    const auto safari = processes(9, "/opt/safari", 90.0);
    const auto firefox = processes(10, "/opt/firefox", 100.0);
    const auto arc = processes(11, "/opt/arc", 110.0);
    EXPECT_THAT(titlesOf(cardsOf({.rows = arc + firefox + safari + chrome})),
                ElementsAre("Chrome has 8 helper processes"));
    EXPECT_THAT(titlesOf(cardsOf({.rows = arc + firefox + safari})),
                ElementsAre("Safari has 9 helper processes"));
    EXPECT_THAT(titlesOf(cardsOf({.rows = arc + firefox})),
                ElementsAre("Firefox has 10 helper processes"));
    EXPECT_THAT(titlesOf(cardsOf({.rows = arc})), ElementsAre("Arc has 11 helper processes"));
    EXPECT_THAT(titlesOf(cardsOf({.rows = processes(7, "/opt/chrome", 70.0) + safari})),
                ElementsAre("Safari has 9 helper processes"));
}

TEST(BuildRecommendations, ANameCountsForEveryKeywordThatItContains) {
    // "chrome-archive" contains "arc" too.
    EXPECT_THAT(titlesOf(cardsOf({.rows = processes(4, "/opt/chrome-archive", 4.0) +
                                          processes(4, "/opt/arc", 4.0)})),
                ElementsAre("Arc has 8 helper processes"));
}

TEST(BuildRecommendations, NamesAreComparedInLowerCase) {
    for (const char* name :
         {"/Applications/Google Chrome Helper (GPU)", "CHROME", "/x/chromedriver", "/x/ChRoMe/"}) {
        EXPECT_THAT(titlesOf(cardsOf({.rows = processes(8, name, 8.0)})),
                    ElementsAre("Chrome has 8 helper processes"))
            << name;
    }
    for (const char* name : {"/opt/chrome/helper", "/opt/chrom", "chrome/x", ""}) {
        EXPECT_THAT(titlesOf(cardsOf({.rows = processes(8, name, 8.0)})), ElementsAre(healthyTitle))
            << name;
    }
}

TEST(BuildRecommendations, EachCardRelatesToItsOwnTopRow) {
    const auto cards = cardsOf(
        {.rows = {process(1, "/opt/dockerd", 700.0), process(2, "/opt/docker-proxy", 900.0),
                  process(3, "/opt/firefox", 1200.0), process(4, "/opt/firefox", 1400.0),
                  process(5, "/opt/editor", 2100.0), process(6, "/opt/compiler", 10.0, 300.0)},
         .pressure = 90.0,
         .cpuPercent = 90.0});
    std::vector<std::optional<std::int64_t>> related;
    for (const Recommendation& card : cards) {
        related.push_back(card.relatedPID);
    }
    EXPECT_THAT(related, ElementsAre(5, 6, 5, 4, 2));
}

TEST(BuildRecommendations, TheFirstOfEqualRowsIsNamed) {
    const auto cards = cardsOf({.rows = {process(9, "/opt/firefox-a", 3000.0, 50.0),
                                         process(3, "/opt/firefox-b", 3000.0, 50.0),
                                         process(8, "/opt/docker-a", 3000.0, 50.0),
                                         process(2, "/opt/docker-b", 3000.0, 50.0)},
                                .pressure = 90.0,
                                .cpuPercent = 90.0});
    ASSERT_EQ(cards.size(), 5U);
    EXPECT_EQ(cards[0].relatedPID, 9);
    EXPECT_EQ(cards[1].relatedPID, 9);
    EXPECT_EQ(cards[2].title, "firefox-a is using 2.9 GB");
    EXPECT_EQ(cards[3].relatedPID, 9);
    EXPECT_EQ(cards[4].relatedPID, 8);
}

TEST(BuildRecommendations, WithoutAnyLoadTheFirstRowIsNamed) {
    const auto cards = cardsOf({.rows = {process(4, "/opt/a", 0.0), process(5, "/opt/b", 0.0)},
                                .pressure = 85.0,
                                .cpuPercent = 85.0});
    ASSERT_EQ(cards.size(), 2U);
    EXPECT_EQ(cards[0].relatedPID, 4);
    EXPECT_EQ(contentOf(cards[1]),
              (Card{"CPU load is very high", "a" + topUserDetail, Severity::urgent, 4}));
}

TEST(BuildRecommendations, UnusualNamesAreNotChanged) {
    for (const std::string& name :
         {std::string("\xFF\xFE"), std::string("größe \U0001F600"), std::string("[kworker/0:1]"),
          std::string("{} {0} %s"), std::string()}) {
        EXPECT_THAT(titlesOf(cardsOf({.rows = {process(1, name, 2048.0)}})),
                    ElementsAre(name + " is using 2.0 GB"));
    }
}

TEST(BuildRecommendations, NaNCountsAsZero) {
    EXPECT_THAT(titlesOf(cardsOf({.freeGB = nan, .pressure = nan, .cpuPercent = nan})),
                ElementsAre(healthyTitle));
    const auto cards = cardsOf(
        {.rows = {process(1, "/opt/docker", nan, nan), process(2, "/opt/docker", 2048.0, 5.0),
                  process(3, "/opt/firefox", nan, nan), process(4, "/opt/firefox", 2500.0, 4.0)},
         .cpuPercent = 90.0});
    EXPECT_THAT(titlesOf(cards),
                ElementsAre("CPU load is very high", "firefox is using 2.4 GB",
                            "Firefox has 2 helper processes", "Docker is holding 2.0 GB"));
    EXPECT_EQ(cards.front().relatedPID, 2);
    EXPECT_EQ(cards.back().relatedPID, 2);
}

TEST(BuildRecommendations, ATitleCanBeToldWithoutTheNameOfItsProcess) {
    for (const char* name : {"editor", "what is using 2 GB", "", "Docker"}) {
        const auto cards = cardsOf({.rows = {process(9, name, 2048.0)}});
        EXPECT_EQ(titleWithoutName(cards.front()), "A process is using 2.0 GB") << name;
    }
    // Every other title is one of few.
    const auto others =
        cardsOf({.rows = processes(12, "chrome", 100.0) + processes(2, "docker", 1600.0),
                 .pressure = 90.0,
                 .cpuPercent = 90.0});
    ASSERT_EQ(others.size(), 4U);
    for (const Recommendation& each : others) {
        EXPECT_EQ(titleWithoutName(each), each.title);
    }
}

TEST(BuildRecommendations, EveryBuildGivesNewIdentifiers) {
    const Machine machine{.pressure = 90.0, .cpuPercent = 90.0};
    const auto first = cardsOf(machine);
    const auto second = cardsOf(machine);
    ASSERT_EQ(first.size(), 2U);
    ASSERT_EQ(second.size(), 2U);
    EXPECT_NE(first[0].id, first[1].id);
    EXPECT_NE(first[0].id, second[0].id);
    EXPECT_NE(first[1].id, second[1].id);
}

TEST(BuildRecommendations, DecimalsAreFormattedByTheLocale) {
    class CommaLocale final : public Locale {
        std::weak_ordering compareIgnoringCase(std::string_view left,
                                               std::string_view right) const override {
            return left <=> right;
        }
        bool containsIgnoringCase(std::string_view, std::string_view) const override {
            return false;
        }
        std::string decimal(double value, int digits) const override {
            return std::to_string(std::lround(value * 10)) + "," + std::to_string(digits);
        }
        std::string dateAndTime(Date) const override { return {}; }
        std::string timeOfDay(Date) const override { return {}; }
        std::string hoursAndMinutes(Date) const override { return {}; }
        std::int64_t localDay(Date) const override { return 0; }
    };
    const auto cards =
        buildRecommendations({process(1, "/opt/docker", 2048.0)}, 1.5, 72.0, 0.0, CommaLocale());
    ASSERT_EQ(cards.size(), 3U);
    EXPECT_EQ(cards[0].detail,
              "You have 15,1 GB free or reclaimable. Keep an eye on the top memory apps.");
    EXPECT_EQ(cards[1].title, "docker is using 20,1 GB");
    EXPECT_EQ(cards[2].title, "Docker is holding 20,1 GB");
}

}  // namespace
}  // namespace tallowcrest
