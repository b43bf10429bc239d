#include "presentation/screens/shared/disk_autopilot_block.h"

#include <QElapsedTimer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include "disk/disk_autopilot.h"
#include "disk/storage_scan.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/level_bar.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::StartsWith;

class DiskAutopilotBlockTest : public OverviewBlockTest {
protected:
    DiskAutopilotFacts facts() const {
        return {.snapshot = snapshot,
                .settings = settings,
                .status = "Disk Autopilot is off.",
                .caches = "~/.cache",
                .trust = trust,
                .receipt = receipt ? &*receipt : nullptr,
                .autopilot = autopilot,
                .storage = storage};
    }
    void show() {
        block.show(facts());
        settle();
    }
    QPushButton& button(const char* name) { return *visible<QPushButton>(name); }

    Settings settings;
    DiskTrust trust;
    std::optional<ActivityEvent> receipt;
    DiskAutopilotState autopilot;
    StorageScanState storage;
    DiskAutopilotBlock& block = place(new DiskAutopilotBlock(
        u"overview"_s, true, remainderNote("Other / inaccessible data", "subvolumes")));
};

TEST_F(DiskAutopilotBlockTest, ShowsTheHomeVolumeAndItsStatus) {
    show();
    const auto* space = block.findChild<BarList*>();
    EXPECT_EQ(space->accessibleValue(), u"Sampling this Mac..."_s);
    sample().disk = {200.0, 50.0};
    show();
    EXPECT_EQ(space->rows(), (std::vector<BarRow>{{u"50.0 GB free"_s, u"75% used"_s, 0.75}}));
    EXPECT_EQ(textOf("overview.disk-autopilot-status"), u"Disk Autopilot is off."_s);
    sample().disk = {};
    show();
    EXPECT_EQ(space->accessibleValue(), u"The size of the home volume could not be read."_s);
}

TEST_F(DiskAutopilotBlockTest, LowSpaceIsShownByWordAndColor) {
    sample().disk = {200.0, 20.1};
    show();
    EXPECT_EQ(visible("overview.disk-autopilot-low"), nullptr);
    EXPECT_THAT(textOf("overview.disk-autopilot-rule").toStdString(),
                StartsWith("Only regular files older than 30 days inside ~/.cache are eligible."));
    const int height = heightOf(block);
    auto* space = block.findChild<BarList*>();
    const auto barColor = [space] {
        const QImage shot = space->grab().toImage();
        return shot.pixelColor(shot.width() / 2, shot.height() / 2);
    };
    EXPECT_EQ(barColor(), CrestTheme::current().secondaryText);
    snapshot->disk.freeGB = 20.0;
    show();
    EXPECT_EQ(textOf("overview.disk-autopilot-low"), u"Low"_s);
    EXPECT_EQ(barColor(), CrestTheme::current().caution);
    EXPECT_EQ(heightOf(block), height);
    EXPECT_EQ(block.header()->note(), QString());
    block.setCollapsed(true);
    show();
    EXPECT_EQ(block.header()->note(), u"Low"_s);
    snapshot->disk.freeGB = 100.0;
    show();
    EXPECT_EQ(block.header()->note(), QString());
}

TEST_F(DiskAutopilotBlockTest, EmitsStopAndResume) {
    const QSignalSpy stops(&block, &DiskAutopilotBlock::stopWanted);
    const QSignalSpy resumes(&block, &DiskAutopilotBlock::resumeWanted);
    show();
    EXPECT_EQ(visible("overview.resume-manual-mode"), nullptr);
    click("overview.emergency-stop");
    EXPECT_EQ(stops.count(), 1);
    settings.automationEmergencyStopEngaged = true;
    show();
    click("overview.resume-manual-mode");
    EXPECT_EQ(resumes.count(), 1);
    EXPECT_EQ(stops.count(), 1);
}

TEST_F(DiskAutopilotBlockTest, SaysHowFarTheTrustIs) {
    sample();
    trust = {2, 64};
    show();
    EXPECT_EQ(textOf("overview.disk-autopilot-trust"),
              u"Learning 2 of 3 runs · 64% of 75% trust"_s);
    trust = {3, 78};
    show();
    EXPECT_EQ(textOf("overview.disk-autopilot-trust"), u"Autonomy unlocked"_s);
}

TEST_F(DiskAutopilotBlockTest, EmitsWhatItsButtonsAskFor) {
    const QSignalSpy reviews(&block, &DiskAutopilotBlock::cleanupReviewWanted);
    const QSignalSpy scans(&block, &DiskAutopilotBlock::offendersWanted);
    const QSignalSpy stops(&block, &DiskAutopilotBlock::cleanupStopWanted);
    const QSignalSpy scanStops(&block, &DiskAutopilotBlock::storageScanStopWanted);
    sample();
    show();
    EXPECT_EQ(visible("overview.cleanup-progress"), nullptr);
    EXPECT_EQ(visible("overview.scan-progress"), nullptr);
    click("overview.review-disk-cleanup");
    click("overview.find-offenders");
    EXPECT_EQ(reviews.count(), 1);
    EXPECT_EQ(scans.count(), 1);
    autopilot.cleanup = CleanupProgress{12, 40, 11, 80 * 1048576};
    storage.diskStorageScanInProgress = true;
    storage.progress = {3, 19};
    show();
    EXPECT_EQ(textOf("overview.cleanup-progress"), u"Moving to Trash · 12 of 40 files · 80 MB"_s);
    EXPECT_EQ(textOf("overview.scan-progress"), u"Measuring · 3 of 19 areas"_s);
    EXPECT_TRUE(button("overview.review-disk-cleanup").isEnabled()) << "also during a run";
    EXPECT_FALSE(button("overview.find-offenders").isEnabled());
    click("overview.cleanup-progress-stop");
    click("overview.scan-progress-stop");
    EXPECT_EQ(stops.count(), 1);
    EXPECT_EQ(scanStops.count(), 1);
    autopilot.isCleanupStopping = true;
    show();
    EXPECT_EQ(textOf("overview.cleanup-progress"), u"Stopping…"_s);
    EXPECT_FALSE(button("overview.cleanup-progress-stop").isEnabled());
    EXPECT_TRUE(button("overview.scan-progress-stop").isEnabled());
    autopilot = {};
    storage.diskStorageScanInProgress = false;
    show();
    EXPECT_EQ(visible("overview.cleanup-progress"), nullptr);
    EXPECT_TRUE(button("overview.find-offenders").isEnabled());
}

TEST_F(DiskAutopilotBlockTest, ABurstOfProgressChangesItsLineOnlyAtTimesAndEndsWithTheLatest) {
    sample();
    autopilot.cleanup = CleanupProgress{0, 1000, 0, 0};
    show();
    settle();
    auto* line = visible<ElidedLabel>("overview.cleanup-progress");
    PaintCount others(*visible("overview.disk-autopilot-rule"));
    int changes = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    for (std::size_t done = 1; done <= 1000; ++done) {
        const QString before = line->text();
        autopilot.cleanup->done = done;
        block.show(facts());
        changes += line->text() != before ? 1 : 0;
    }
    EXPECT_LE(changes, 1 + elapsed.elapsed() / 100);
    EXPECT_TRUE(QTest::qWaitFor([line] { return line->text().contains(u"1,000 of 1,000"_s); }));
    EXPECT_EQ(others.take(), 0);
}

TEST_F(DiskAutopilotBlockTest, EachStopSaysWhatItLeavesAndEndsItsOwnWork) {
    const QSignalSpy searchStops(&block, &DiskAutopilotBlock::cleanupSearchStopWanted);
    const QSignalSpy cleanupStops(&block, &DiskAutopilotBlock::cleanupStopWanted);
    const QSignalSpy undoStops(&block, &DiskAutopilotBlock::undoStopWanted);
    sample();
    autopilot.scan.emplace();
    autopilot.cleanup = CleanupProgress{1, 5, 1, 10};
    show();
    const QPushButton& search = button("overview.cleanup-search-progress-stop");
    EXPECT_EQ(search.toolTip(), u"Ends the search; nothing was changed by it"_s);
    EXPECT_EQ(search.accessibleDescription(), search.toolTip());
    const QPushButton& cleanup = button("overview.cleanup-progress-stop");
    EXPECT_EQ(cleanup.toolTip(), u"Keeps what is done so far"_s);
    EXPECT_EQ(cleanup.accessibleDescription(), cleanup.toolTip());
    click("overview.cleanup-search-progress-stop");
    EXPECT_EQ(searchStops.count(), 1);
    EXPECT_EQ(cleanupStops.count(), 0);
    autopilot.isScanStopping = true;
    show();
    EXPECT_FALSE(search.isEnabled());
    EXPECT_TRUE(cleanup.isEnabled());
    autopilot.cleanup.reset();
    autopilot.undo = CleanupProgress{1, 5, 1, 10};
    show();
    EXPECT_EQ(visible("overview.cleanup-progress"), nullptr);
    click("overview.disk-autopilot-receipt-progress-stop");
    EXPECT_EQ(undoStops.count(), 1);
    EXPECT_EQ(searchStops.count() + cleanupStops.count(), 1);
}

TEST_F(DiskAutopilotBlockTest, WhatEndsKeepsItsPlaceForAMoment) {
    sample();
    autopilot.scan.emplace();
    storage.diskStorageScanInProgress = true;
    show();
    const auto placeOf = [this](const char* name) {
        return button(name).mapTo(&block, QPoint(0, 0));
    };
    const QPoint search = placeOf("overview.cleanup-search-progress-stop");
    const QPoint measuring = placeOf("overview.scan-progress-stop");
    const QPoint areas = visible("overview.storage-area-heading")->mapTo(&block, QPoint(0, 0));
    auto* timer = visible("overview.cleanup-search-progress-stop")
                      ->parent()
                      ->findChild<QTimer*>(u"placeKept"_s);
    ASSERT_NE(timer, nullptr);
    timer->setInterval(std::chrono::hours(1));
    autopilot.scan.reset();
    show();
    EXPECT_EQ(visible("overview.cleanup-search-progress-stop"), nullptr);
    EXPECT_EQ(placeOf("overview.scan-progress-stop"), measuring);
    EXPECT_EQ(visible("overview.storage-area-heading")->mapTo(&block, QPoint(0, 0)), areas);
    timer->setInterval(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return placeOf("overview.scan-progress-stop") == search; }));
    autopilot.scan.emplace();
    show();
    EXPECT_EQ(placeOf("overview.scan-progress-stop"), measuring);
}

TEST_F(DiskAutopilotBlockTest, UndoStandsBelowTheLatestReceipt) {
    const QSignalSpy undos(&block, &DiskAutopilotBlock::undoWanted);
    sample();
    show();
    EXPECT_EQ(visible("overview.disk-autopilot-receipt"), nullptr);
    receipt = ActivityEvent{.id = {},
                            .date = snapshot->sampledAt,
                            .title = "Disk Cleanup Receipt",
                            .detail = "Result: moved\n<b>31</b> files."};
    show();
    EXPECT_EQ(textOf("overview.disk-autopilot-receipt-title"), u"Disk Cleanup Receipt"_s);
    EXPECT_EQ(textOf("overview.disk-autopilot-receipt-detail"),
              u"Result: moved\uFFFD<b>31</b> files."_s);
    EXPECT_FALSE(button("overview.disk-autopilot-receipt-undo").isEnabled());
    EXPECT_EQ(button("overview.disk-autopilot-receipt-undo").accessibleDescription(),
              textOf("overview.disk-autopilot-receipt-undo-words"));
    autopilot.undoableFiles = 31;
    show();
    EXPECT_EQ(textOf("overview.disk-autopilot-receipt-undo-words"),
              u"31 files of the latest cleanup can be put back while they are in Trash. Their "
              "space is free once the Trash is emptied."_s);
    click("overview.disk-autopilot-receipt-undo");
    EXPECT_EQ(undos.count(), 1);
    autopilot.undoableFiles = 0;
    autopilot.undo = CleanupProgress{12, 31, 11, 80 * 1048576};
    show();
    EXPECT_FALSE(button("overview.disk-autopilot-receipt-undo").isEnabled());
    EXPECT_EQ(textOf("overview.disk-autopilot-receipt-progress"),
              u"Putting back · 12 of 31 files · 80 MB"_s);
    receipt.reset();
    autopilot = {};
    autopilot.undoableFiles = 1;
    show();
    EXPECT_EQ(visible("overview.disk-autopilot-receipt-title"), nullptr) << "the log was cleared";
    EXPECT_TRUE(button("overview.disk-autopilot-receipt-undo").isEnabled());
}

TEST_F(DiskAutopilotBlockTest, RanksTheMeasuredAreas) {
    qRegisterMetaType<DiskStorageOffender>("tallowcrest::DiskStorageOffender");
    sample();
    show();
    EXPECT_EQ(textOf("overview.storage-area-heading"), u"Largest Measured Storage Areas"_s);
    EXPECT_THAT(textOf("overview.storage-area-hint").toStdString(),
                StartsWith("Choose Find Offenders to rank large user storage areas."));
    EXPECT_EQ(visible("overview.storage-area-1"), nullptr);
    const std::int64_t gigabyte = 1073741824;
    storage.diskStorageOffenders = {
        {"Other / inaccessible data", "/", 40 * gigabyte, "Used space elsewhere."},
        {"Bad\nname <b>", "/home/owner/Videos", 10 * gigabyte}};
    show();
    EXPECT_EQ(textOf("overview.storage-area-1.name"), u"Other / inaccessible data"_s);
    EXPECT_EQ(textOf("overview.storage-area-1.size"), u"40.0 GB"_s);
    EXPECT_EQ(textOf("overview.storage-area-1.path"), u"Used space elsewhere."_s);
    EXPECT_EQ(textOf("overview.storage-area-2.name"), u"Bad\uFFFDname <b>"_s);
    EXPECT_EQ(textOf("overview.storage-area-2.path"), u"/home/owner/Videos"_s);
    EXPECT_EQ(textOf("overview.storage-area-note"),
              u"“Other / inaccessible data” includes unreadable folders, subvolumes, snapshots, "
              "purgeable space, and categories not measured separately. Grant Full Disk Access to "
              "Tallowcrest for a more complete breakdown."_s);
    const QSignalSpy reveals(&block, &DiskAutopilotBlock::revealWanted);
    click("overview.storage-area-2.reveal");
    ASSERT_EQ(reveals.count(), 1);
    EXPECT_EQ(reveals.at(0).at(0).value<DiskStorageOffender>(), storage.diskStorageOffenders[1]);
    const QWidget* row = visible("overview.storage-area-1");
    PaintCount rowPaints(*visible("overview.storage-area-1.name"));
    sample();
    show();
    EXPECT_EQ(visible("overview.storage-area-1"), row);
    EXPECT_EQ(rowPaints.take(), 0);
    storage.diskStorageOffenders.resize(1);
    show();
    EXPECT_EQ(visible("overview.storage-area-2"), nullptr);
}

TEST_F(DiskAutopilotBlockTest, TheTabKeyReachesTheRowsBehindTheButtonsAbove) {
    sample();
    auto* after = new QPushButton(u"After"_s, &page);
    after->show();
    storage.diskStorageOffenders = {{"Trash", "/a", 2}, {"Mail", "/b", 1}};
    show();
    QStringList order;
    const QWidget* control = visible("overview.emergency-stop");
    while (order.size() < 2) {
        control = control->nextInFocusChain();
        if (control->isVisible() && control->focusPolicy() != Qt::NoFocus) {
            order.append(control->objectName());
        }
    }
    EXPECT_EQ(order.join(u' '), u"overview.storage-area-1.reveal overview.storage-area-2.reveal"_s);
}

}  // namespace
}  // namespace tallowcrest
