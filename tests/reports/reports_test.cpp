#include "reports/reports.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/end_waits_for_write.h"
#include "tests/support/fake_report_folder.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

class ReportsTest : public ::testing::Test {
protected:
    void takeSample() { snapshot.emplace(); }

    Outcome exportReport() {
        Outcome outcome = reports.exportDiagnosticsReport(keepFinished());
        with.finishWork();
        return outcome;
    }

    std::function<void(const Outcome&)> keepFinished() {
        return [this](const Outcome& outcome) { finished.push_back(outcome); };
    }

    /// Expects `message` as the last action and as the only event.
    void expectRecorded(const std::string& message) const {
        EXPECT_EQ(log.lastAction(), message);
        ASSERT_THAT(log.activityLog(), SizeIs(1));
        EXPECT_EQ(log.activityLog().front().title, "Action");
        EXPECT_EQ(log.activityLog().front().detail, message);
    }

    TestServices with;
    ActivityLog& log = with.log;
    std::vector<Outcome> finished;  ///< of the exports, as they were told
    std::vector<std::string> copied;
    Pasteboard pasteboard{log, [this](const std::string& text) { copied.push_back(text); }};
    std::optional<SystemSnapshot> snapshot;
    std::map<std::string, AITrustRecord> trust;
    std::shared_ptr<FakeReportFolder> folder = std::make_shared<FakeReportFolder>();
    std::int64_t utcOffset = 0;
    Reports reports{with.services,
                    pasteboard,
                    [this]() -> std::optional<DiagnosticsFacts> {
                        if (!snapshot) {
                            return std::nullopt;
                        }
                        return DiagnosticsFacts{
                            *snapshot, with.settings.values(), {}, {}, false, "", {}, trust, {}};
                    },
                    {.folder = folder, .utcOffset = [this](Date) { return utcOffset; }}};
};

TEST_F(ReportsTest, BeforeTheFirstSampleOnlyAnExportIsRefusedWithAMessage) {
    EXPECT_EQ(reports.diagnosticsReport(false), std::nullopt);
    EXPECT_EQ(reports.copyDiagnosticsReport(), Outcome::ignored());
    EXPECT_THAT(copied, IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty());
    EXPECT_EQ(log.lastAction(), "Monitoring started.");
    EXPECT_EQ(exportReport(), Outcome::refused("No diagnostic sample is available yet."));
    expectRecorded("No diagnostic sample is available yet.");
    EXPECT_THAT(finished, IsEmpty()) << "nothing was begun";
    EXPECT_THAT(folder->written, IsEmpty());
}

TEST_F(ReportsTest, CopiesTheFullReport) {
    takeSample();
    EXPECT_EQ(reports.copyDiagnosticsReport(),
              Outcome::done("Copied a performance report to the clipboard."));
    ASSERT_THAT(copied, SizeIs(1));
    EXPECT_EQ(copied.front(), reports.diagnosticsReport(false));
    EXPECT_THAT(copied.front(), StartsWith("Tallowcrest report - "));
    expectRecorded("Copied a performance report to the clipboard.");
}

TEST_F(ReportsTest, ExportsAndShowsTheFile) {
    takeSample();
    const std::string name = exportFileName(with.clock.now(), 0);
    const auto text = reports.diagnosticsReport(false);
    EXPECT_EQ(exportReport(), Outcome::asked());
    ASSERT_THAT(folder->written, SizeIs(1));
    EXPECT_EQ(folder->written.begin()->first, name);
    EXPECT_EQ(folder->written.begin()->second, text);
    EXPECT_THAT(folder->revealed, ElementsAre(name));
    expectRecorded("Exported diagnostics to " + name + ".");
    EXPECT_THAT(finished, ElementsAre(Outcome::done("Exported diagnostics to " + name + ".")));
}

TEST_F(ReportsTest, AFailureIsRecordedWithTheSystemsMessage) {
    takeSample();
    folder->problem = "No space left on device";
    EXPECT_EQ(exportReport(), Outcome::asked());
    expectRecorded("Could not export diagnostics: No space left on device");
    EXPECT_THAT(folder->revealed, IsEmpty());
    EXPECT_THAT(
        finished,
        ElementsAre(Outcome::failed("Could not export diagnostics: No space left on device")));
}

TEST_F(ReportsTest, TheFileIsWrittenInTheBackground) {
    takeSample();
    const auto text = reports.diagnosticsReport(false);
    reports.exportDiagnosticsReport();
    EXPECT_THAT(folder->written, IsEmpty());
    ASSERT_EQ(with.workQueue.pendingCount(), 1U);
    EXPECT_EQ(with.workQueue.laneOf(0), Lane::reports);
    snapshot->cpuPercent = 99.0;
    with.workQueue.run();
    ASSERT_THAT(folder->written, SizeIs(1));
    EXPECT_EQ(folder->written.begin()->second, text) << "the state when the export was requested";
    EXPECT_THAT(folder->revealed, IsEmpty());
    with.mainQueue.drain();
    EXPECT_THAT(folder->revealed, SizeIs(1));
}

TEST_F(ReportsTest, NothingIsWrittenOnceTheProgramEnds) {
    takeSample();
    reports.exportDiagnosticsReport(keepFinished());
    with.jobs.stopAll();
    with.finishWork();
    EXPECT_THAT(folder->written, IsEmpty());
    EXPECT_THAT(finished, IsEmpty());
    EXPECT_THAT(log.activityLog(), IsEmpty());
}

TEST_F(ReportsTest, TheEndOfTheProgramWaitsForAnExportUnderWay) {
    takeSample();
    expectEndWaitsForWrite(with.jobs, with.workQueue, *folder,
                           [this] { reports.exportDiagnosticsReport(); });
    EXPECT_THAT(folder->written, SizeIs(1));
}

TEST_F(ReportsTest, NoReportIsWrittenOnceNoChangeMayBegin) {
    DiskChanges changes;
    const Stop stop({}, changes);
    const std::filesystem::path file = folder->place() / "report.txt";
    EXPECT_EQ(writeReport(*folder, file, "text", stop), Outcome::done());
    ASSERT_THAT(folder->written, SizeIs(1));
    changes.finish(std::chrono::milliseconds(0));
    folder->written.clear();
    EXPECT_EQ(writeReport(*folder, file, "text", stop), Outcome::failed("canceled"));
    EXPECT_THAT(folder->written, IsEmpty());
}

TEST_F(ReportsTest, ExportFileNameHasTheLocalTimeToTheSecond) {
    // 2026-11-20 23:45:12 UTC
    const Date date = Date::fromUnixSeconds(1795218312.9);
    EXPECT_EQ(exportFileName(date, 0), "Tallowcrest-Diagnostics-2026-11-20-234512.txt");
    EXPECT_EQ(exportFileName(date, 3600), "Tallowcrest-Diagnostics-2026-11-21-004512.txt");
    EXPECT_EQ(exportFileName(date, -12600), "Tallowcrest-Diagnostics-2026-11-20-201512.txt");
    EXPECT_EQ(exportFileName(Date::fromUnixSeconds(-0.5), 0),
              "Tallowcrest-Diagnostics-1969-12-31-235959.txt");
    EXPECT_EQ(exportFileName(Date{1e300}, 0), "Tallowcrest-Diagnostics.txt");
    takeSample();
    utcOffset = 3600;
    exportReport();
    ASSERT_THAT(folder->written, SizeIs(1));
    EXPECT_EQ(folder->written.begin()->first, exportFileName(with.clock.now(), 3600));
    EXPECT_NE(folder->written.begin()->first, exportFileName(with.clock.now(), 0));
}

TEST_F(ReportsTest, WithoutAClipboardCopyingFailsWithAMessage) {
    takeSample();
    Pasteboard none(log, {});
    EXPECT_EQ(none.copyToPasteboard("text", "Copied it."),
              Outcome::failed("There is no clipboard here."));
    EXPECT_EQ(log.lastAction(), "There is no clipboard here.");
}

}  // namespace
}  // namespace tallowcrest
