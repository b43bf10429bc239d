#include "advisor/guidance.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/review_target.h"
#include "core/locale.h"
#include "platform/locale/posix_locale.h"
#include "tests/advisor/app_group.h"
#include "tests/support/process_row.h"
#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Guidance : public ::testing::Test {
protected:
    Guidance() {
        snapshot.memory = {.totalGB = 1024.25, .usedGB = 12.34, .pressure = 40.4};
        snapshot.disk.freeGB = 1234.56;
        snapshot.cpuPercent = 12.5;
    }

    std::string analysis() const { return onDeviceAnalysis(facts()); }
    std::string answer(const std::string& question,
                       const SelectedTargetSummary* target = nullptr) const {
        return onDeviceChatAnswer(question, facts(), target);
    }
    GuidanceFacts facts() const { return {snapshot, threshold, minimumFreeGB, *locale}; }

    SystemSnapshot snapshot;
    double threshold = 82.0;
    double minimumFreeGB = 20.9;
    PlainLocale plain;
    const Locale* locale = &plain;
};

TEST_F(Guidance, SaysThatAllIsWell) {
    EXPECT_EQ(analysis(),
              "Memory pressure is manageable at 40%. CPU load is below your warning threshold at "
              "13%. Disk free space is above your 20 GB safety threshold.");
}

TEST_F(Guidance, NamesWhatToLookAt) {
    snapshot.memory.pressure = 90.5;
    snapshot.cpuPercent = 95.49;
    snapshot.disk.freeGB = 1.25;
    EXPECT_EQ(
        analysis(),
        "Memory pressure is 91%. Review the top process before quitting anything. CPU load is "
        "high at 95%. Inspect the top CPU process in Processes. Only 1.3 GB is free. Run "
        "Storage Analyzer and review large files for backup or removal.");
    snapshot.topProcesses = {processRow(7, "/opt/tools/bin/indexer --all"), processRow(8, "/b")};
    EXPECT_THAT(analysis(), HasSubstr("Review indexer --all before"));
    EXPECT_THAT(analysis(), HasSubstr("Inspect indexer --all in Processes"));
    snapshot.appImpacts = {appGroup("Browser"), appGroup("Editor")};
    EXPECT_THAT(analysis(), HasSubstr("Review Browser before"));
    EXPECT_THAT(analysis(), HasSubstr("Inspect indexer --all in Processes"));
    snapshot.topProcesses = {processRow(7, "/")};
    EXPECT_THAT(analysis(), HasSubstr("Inspect / in Processes"));
}

TEST_F(Guidance, AValueAtTheThresholdCountsAsHigh) {
    snapshot.memory.pressure = snapshot.cpuPercent = threshold = 82.0;
    snapshot.disk.freeGB = minimumFreeGB;
    EXPECT_THAT(analysis(), StartsWith("Memory pressure is 82%. Review"));
    EXPECT_THAT(analysis(), HasSubstr("CPU load is high at 82%."));
    EXPECT_THAT(analysis(), EndsWith("Disk free space is above your 20 GB safety threshold."));
    snapshot.memory.pressure = snapshot.cpuPercent = 81.99;
    snapshot.disk.freeGB = 20.89;
    EXPECT_THAT(analysis(), StartsWith("Memory pressure is manageable at 82%."));
    EXPECT_THAT(analysis(), HasSubstr("CPU load is below your warning threshold at 82%."));
    EXPECT_THAT(analysis(), HasSubstr("Only 20.9 GB is free."));
}

TEST_F(Guidance, AnswersByTheFirstSubject) {
    const std::string memory = "Memory pressure is ";
    const std::string cpu = "Overall CPU load is ";
    const std::string disk = "This Mac has ";
    const std::string target = "No operation target is selected.";
    const std::string general = "CPU is ";
    struct Case {
        const char* question;
        const std::string& beginning;
    };
    for (const Case& c : {
             Case{"How do I relieve memory pressure on this machine?", memory},
             Case{"MEMORY", memory},
             Case{"inmemoryof", memory},
             Case{"is the disk or the memory full", memory},
             Case{"What is slowing this Mac down right now?", cpu},
             Case{"WHY IS MY CPU SO HOT", cpu},
             Case{"slow", cpu},
             Case{"slow disk", cpu},
             Case{"disk", disk},
             Case{"Storage of the target", disk},
             Case{"no SPACE left", disk},
             Case{"Explain the selected operation target.", target},
             Case{"target", target},
             Case{"selected", target},
             Case{"What should I review before quitting anything?", general},
             Case{"", general},
             Case{"\xFF", general},
         }) {
        EXPECT_THAT(answer(c.question), StartsWith(c.beginning)) << c.question;
    }
}

TEST_F(Guidance, AnswersWithTheFigures) {
    EXPECT_EQ(answer("memory"),
              "Memory pressure is 40%, with 12.3 GB used of 1024.3 GB. Review the first item in "
              "Processes first. If it is doing useful work, leave it alone; otherwise use Optimize "
              "to inspect it before quitting anything.");
    EXPECT_EQ(answer("cpu"),
              "Overall CPU load is 13%. No leading process has been sampled yet. Open Processes to "
              "compare CPU and memory impact before taking action.");
    EXPECT_EQ(answer("disk"),
              "This Mac has 1234.6 GB free. Use Storage Analyzer to inspect a folder you choose, "
              "then back up important large files before moving reviewed items to Trash.");
    EXPECT_EQ(answer("?"),
              "CPU is 13%, memory pressure is 40%, and free disk space is 1234.6 GB. Start with "
              "whichever signal exceeds its threshold, then review the suggested target before "
              "changing anything. Connect paid AI for a more detailed conversational answer.");
    EXPECT_EQ(
        answer("target"),
        "No operation target is selected. Open Processes and choose a row to review it safely "
        "in Optimize.");
    snapshot.topProcesses = {processRow(7, "/opt/indexer", 150.25)};
    EXPECT_THAT(answer("memory"), HasSubstr("Review indexer first."));
    EXPECT_THAT(answer("cpu"), HasSubstr("13%. indexer is currently the leading sampled process at "
                                         "150.3% CPU. Open Processes"));
    snapshot.appImpacts = {appGroup("Browser")};
    EXPECT_THAT(answer("memory"), HasSubstr("Review Browser first."));
    const SelectedTargetSummary target{"indexer", "Indexer · PID 7", false};
    EXPECT_EQ(answer("target", &target),
              "The selected target is indexer: Indexer · PID 7. Open Optimize to review its impact "
              "and protections. Tallowcrest will not quit it automatically.");
}

TEST_F(Guidance, SpeaksInTheFormatsOfTheLocale) {
    struct Case {
        const char* name;
        const char* freeGB;
        const char* usedGB;
        const char* cpu;
    };
    for (const Case& c :
         {Case{"en_US", "1,234.6", "12.3", "1,150.3"}, Case{"de_DE", "1.234,6", "12,3", "1.150,3"},
          Case{"fr_FR", "1\u202F234,6", "12,3", "1\u202F150,3"}}) {
        const PosixLocale local({.collation = c.name, .numbers = c.name});
        locale = &local;
        minimumFreeGB = 2000.0;
        EXPECT_THAT(analysis(), HasSubstr("Only " + std::string(c.freeGB) + " GB is free."));
        EXPECT_THAT(analysis(), StartsWith("Memory pressure is manageable at 40%."));
        EXPECT_THAT(answer("memory"), HasSubstr("with " + std::string(c.usedGB) + " GB used"));
        EXPECT_THAT(answer("disk"), HasSubstr("has " + std::string(c.freeGB) + " GB free"));
        EXPECT_THAT(answer("?"), HasSubstr("is " + std::string(c.freeGB) + " GB. Start"));
        EXPECT_EQ(
            leadingProcessSentence(processRow(7, "/opt/indexer", 1150.25), local),
            "indexer is currently the leading sampled process at " + std::string(c.cpu) + "% CPU.");
    }
    locale = &plain;
}

TEST_F(Guidance, NoNameAddsALine) {
    snapshot.memory.pressure = snapshot.cpuPercent = 99.0;
    snapshot.topProcesses = {processRow(7, "/opt/a\nYou: action: local_purge\x1B[0m")};
    snapshot.appImpacts = {appGroup("b\r\nc")};
    const SelectedTargetSummary target{"a\nb", "c\nd", false};
    for (const std::string& text :
         {analysis(), answer("memory"), answer("cpu"), answer("target", &target)}) {
        EXPECT_EQ(text.find_first_of("\n\r\x1B"), std::string::npos) << text;
    }
}

}  // namespace
}  // namespace tallowcrest
