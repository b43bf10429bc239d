#include "presentation/screens/optimization_suggestions/optimization_suggestions_lines.h"

#include <gmock/gmock.h>

#include "disk/personal_files.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/support/each_of.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

namespace lines = optimization_suggestions_lines;
using testing::ElementsAre;

class OptimizationSuggestionsLines : public testing::Test {
protected:
    OptimizationSuggestionsLines() {
        settings.warningThreshold = 82.0;
        settings.diskMinimumFreeGB = 20.0;
    }

    static SystemSnapshot sample(double cpu, double pressure, double freeGB) {
        SystemSnapshot snapshot;
        snapshot.cpuPercent = cpu;
        snapshot.memory.pressure = pressure;
        snapshot.disk = {.totalGB = 500.0, .freeGB = freeGB};
        return snapshot;
    }

    std::vector<std::string> details(const SystemSnapshot& snapshot) const {
        std::vector<std::string> found;
        for (const SummaryTexts& each : lines::metrics(snapshot, settings)) {
            found.push_back(each.detail.toStdString());
        }
        return found;
    }

    const ScopedLocale locale{"en_US"};
    Settings settings;
};

TEST_F(OptimizationSuggestionsLines, AFigureAtItsLimitIsOverIt) {
    EXPECT_THAT(details(sample(81.9, 81.9, 20.1)),
                ElementsAre("Below warning threshold.", "Memory pressure is manageable.",
                            "Above Disk Autopilot threshold."));
    EXPECT_THAT(details(sample(82.0, 82.0, 20.0)),
                ElementsAre("Review the top process.", "Memory pressure needs review.",
                            "Storage analysis recommended."));
}

TEST_F(OptimizationSuggestionsLines, TheFiguresAreThoseOfTheSample) {
    const auto metrics = lines::metrics(sample(37.4, 59.6, 120.34), settings);
    EXPECT_THAT(eachOf(metrics, &SummaryTexts::title),
                ElementsAre(u"CPU"_s, u"Memory"_s, u"Disk Free"_s));
    EXPECT_THAT(eachOf(metrics, &SummaryTexts::value),
                ElementsAre(u"37%"_s, u"60%"_s, u"120.3 GB"_s));
    SystemSnapshot unknown = sample(1.0, 1.0, 0.0);
    unknown.disk = {};
    EXPECT_EQ(lines::metrics(unknown, settings).at(2).detail,
              u"The size of the home volume could not be read."_s);
    for (const SummaryTexts& each : lines::metrics(std::nullopt, settings)) {
        EXPECT_EQ(each.detail, u"Sampling this Mac..."_s);
    }
}

TEST_F(OptimizationSuggestionsLines, DiskComesBeforeMemoryAndMemoryBeforeTheRest) {
    const auto step = [this](double cpu, double pressure, double freeGB) {
        return lines::nextStep(sample(cpu, pressure, freeGB), settings).words.toStdString();
    };
    const char* const disk =
        "Disk space is the most urgent constraint. Analyze large personal files, back up anything "
        "important, then move only reviewed items to Trash.";
    const char* const memory =
        "Memory pressure is the strongest signal. Review the top process before purging caches or "
        "quitting an app.";
    const char* const clear =
        "The Mac is within your thresholds. Run AI analysis for a second opinion or review storage "
        "proactively.";
    EXPECT_EQ(step(10.0, 95.0, 5.0), disk);
    EXPECT_EQ(step(10.0, 10.0, 20.0), disk);
    EXPECT_EQ(step(10.0, 82.0, 100.0), memory);
    EXPECT_EQ(step(10.0, 10.0, 100.0), clear);
    EXPECT_EQ(step(99.0, 10.0, 100.0), clear);
    EXPECT_EQ(lines::nextStep(std::nullopt, settings).words, u"Sampling this Mac..."_s);
    EXPECT_TRUE(lines::nextStep(sample(10.0, 95.0, 5.0), settings).isAboutDisk);
    EXPECT_FALSE(lines::nextStep(sample(10.0, 95.0, 100.0), settings).isAboutDisk);
}

TEST_F(OptimizationSuggestionsLines, TheTitleOfTheAnalysis) {
    EXPECT_EQ(lines::analysisTitle(false, false), u"Analyze On Device"_s);
    EXPECT_EQ(lines::analysisTitle(true, false), u"AI Analyze"_s);
    EXPECT_EQ(lines::analysisTitle(true, true), u"Analyzing"_s);
    EXPECT_EQ(lines::analysisTitle(false, true), u"Analyzing"_s);
}

TEST_F(OptimizationSuggestionsLines, AFileHasItsShareOfTheLargest) {
    EXPECT_TRUE(lines::personalFileLines({}).empty());
    const auto files = lines::personalFileLines(
        {{.title = "a\nb", .detail = "~/Downloads", .bytes = 400 * 1048576},
         {.title = std::string(5000, 'n') + ".iso", .bytes = 100 * 1048576}});
    EXPECT_THAT(eachOf(files, &lines::PersonalFileLine::percent), ElementsAre(100, 25));
    EXPECT_EQ(files[0].title, u"a\uFFFDb"_s);
    EXPECT_EQ(files[0].size, u"400 MB"_s);
    EXPECT_LT(files[1].title.size(), 300);
    EXPECT_TRUE(files[1].title.endsWith(u".iso"_s));
}

TEST_F(OptimizationSuggestionsLines, ABackupHasNoFiguresUntilItHasBegun) {
    EXPECT_EQ(lines::backupLine({.title = "film.mkv"}), u"Backing up film.mkv"_s);
    EXPECT_EQ(lines::backupLine({.title = "film.mkv", .copied = 0, .all = 1073741824}),
              u"Backing up film.mkv · 0 MB of 1.0 GB"_s);
    EXPECT_EQ(lines::backupLine({.title = "film.mkv", .isChecking = true}),
              u"Checking the copy of film.mkv"_s);
}

TEST_F(OptimizationSuggestionsLines, TheTitleOfTheStorageAnalysis) {
    EXPECT_EQ(lines::storageAnalysisTitle(false), u"Analyze Storage"_s);
    EXPECT_EQ(lines::storageAnalysisTitle(true), u"Analyzing"_s);
}

}  // namespace
}  // namespace tallowcrest
