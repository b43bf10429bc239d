#include "presentation/screens/shared/disk_autopilot_block.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "disk/disk_autopilot.h"
#include "disk/storage_scan.h"
#include "presentation/screens/shared/cleanup_receipt.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/emergency_stop_controls.h"
#include "presentation/screens/shared/progress_row.h"
#include "presentation/screens/shared/storage_areas_list.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/disk_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

DiskAutopilotBlock::DiskAutopilotBlock(const QString& page, bool canReveal,
                                       const QString& remainderNote)
    : OverviewBlock(DashboardSection::autoRules, page + u".disk-autopilot"_s, u"internaldrive"_s,
                    u"Disk Autopilot"_s) {
    space_ = new BarList(u"Home volume"_s, 1, u"000% used"_s, body());
    bodyLayout()->addWidget(space_);
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit);
    lowIcon_ = new IconView(u"exclamationmark.triangle"_s, &CrestTheme::caution, spacing::iconSmall,
                            body());
    lowWord_ =
        new ElidedLabel(u"Low"_s, onCard(&CrestFonts::heading, &CrestTheme::caution), body());
    lowWord_->setObjectName(objectName() + u"-low"_s);
    const auto addLabel = [this](const char* part, const LabelStyle& style, int lines) {
        return makeLabel(objectName() + QString::fromLatin1(part), style, lines, body());
    };
    status_ = addLabel("-status", onCard(&CrestFonts::body, &CrestTheme::secondaryText), 3);
    // Reserves the height of the low-space icon and word, so that they move nothing below.
    row->addStrut(std::max(spacing::iconSmall, lowWord_->sizeHint().height()));
    row->addWidget(lowIcon_, 0, Qt::AlignTop);
    row->addWidget(lowWord_, 0, Qt::AlignTop);
    row->addWidget(status_, 1);
    bodyLayout()->addLayout(row);
    trust_ = addLabel("-trust", onCard(&CrestFonts::caption), 2);
    rule_ = addLabel("-rule", onCard(&CrestFonts::caption, &CrestTheme::secondaryText), 4);
    bodyLayout()->addWidget(trust_);
    bodyLayout()->addWidget(rule_);
    makeActions(page);
    stop_ = new EmergencyStopControls(page, body());
    connect(stop_, &EmergencyStopControls::stopWanted, this, &DiskAutopilotBlock::stopWanted);
    connect(stop_, &EmergencyStopControls::resumeWanted, this, &DiskAutopilotBlock::resumeWanted);
    bodyLayout()->addWidget(stop_);
    areas_ = new StorageAreasList(page + u".storage-area"_s, canReveal, remainderNote, body());
    areas_->setPrevious(stop_->lastControl());
    connect(areas_, &StorageAreasList::revealWanted, this, &DiskAutopilotBlock::revealWanted);
    bodyLayout()->addWidget(areas_);
}

void DiskAutopilotBlock::makeActions(const QString& page) {
    auto* actions = new QHBoxLayout;
    actions->setSpacing(spacing::unit);
    auto* review =
        makeButton(commands::reviewDiskCleanup, page + u".review-disk-cleanup"_s, body());
    find_ = makeButton(u"Find Offenders"_s, QString(), page + u".find-offenders"_s,
                       u"Measures the large areas of the disk; changes nothing"_s, body());
    actions->addWidget(review);
    actions->addWidget(find_);
    actions->addStretch(1);
    bodyLayout()->addLayout(actions);
    cleanupSearch_ =
        new ProgressRow(page + u".cleanup-search-progress"_s, u"the search for old cache files"_s,
                        {u"Stop"_s, u"Ends the search; nothing was changed by it"_s}, body());
    cleanup_ = new ProgressRow(page + u".cleanup-progress"_s, u"the cleanup"_s, body());
    storageScan_ = new ProgressRow(page + u".scan-progress"_s, u"the storage scan"_s, body());
    bodyLayout()->addWidget(cleanupSearch_);
    bodyLayout()->addWidget(cleanup_);
    bodyLayout()->addWidget(storageScan_);
    receipt_ = new CleanupReceipt(objectName() + u"-receipt"_s, body());
    bodyLayout()->addWidget(receipt_);
    connect(review, &QPushButton::clicked, this, &DiskAutopilotBlock::cleanupReviewWanted);
    connect(find_, &QPushButton::clicked, this, &DiskAutopilotBlock::offendersWanted);
    connect(cleanupSearch_, &ProgressRow::stopWanted, this,
            &DiskAutopilotBlock::cleanupSearchStopWanted);
    connect(cleanup_, &ProgressRow::stopWanted, this, &DiskAutopilotBlock::cleanupStopWanted);
    connect(storageScan_, &ProgressRow::stopWanted, this,
            &DiskAutopilotBlock::storageScanStopWanted);
    connect(receipt_, &CleanupReceipt::undoWanted, this, &DiskAutopilotBlock::undoWanted);
    connect(receipt_, &CleanupReceipt::stopWanted, this, &DiskAutopilotBlock::undoStopWanted);
}

void DiskAutopilotBlock::show(const DiskAutopilotFacts& facts) {
    const auto& [snapshot, settings, status, caches, trust, receipt, autopilot, storage] = facts;
    const bool isLow = snapshot && isSpaceLow(snapshot->disk, settings);
    // A collapsed section still shows what needs attention.
    header()->setNote(isCollapsed() && isLow ? u"Low"_s : QString(), &CrestTheme::caution);
    if (isCollapsed()) {
        return;
    }
    const auto space = snapshot ? diskSpaceTexts(snapshot->disk) : std::nullopt;
    space_->setEmptyText(snapshot ? u"The size of the home volume could not be read."_s
                                  : u"Sampling this Mac..."_s);
    space_->setRows(space ? std::vector<BarRow>{{space->free, space->used, space->fraction}}
                          : std::vector<BarRow>{});
    space_->setTint(isLow ? &CrestTheme::caution : &CrestTheme::secondaryText);
    lowIcon_->setVisible(isLow);
    lowWord_->setVisible(isLow);
    status_->setText(dashboard_text::text(status));
    stop_->setEngaged(settings.automationEmergencyStopEngaged);
    trust_->setText(diskTrustLine(trust));
    rule_->setText(diskRule(settings, caches));
    showProgress(facts);
    receipt_->show(receipt, autopilot, snapshot ? snapshot->sampledAt : Date{});
    areas_->show(storage.diskStorageOffenders);
}

void DiskAutopilotBlock::showProgress(const DiskAutopilotFacts& facts) {
    const DiskAutopilotState& autopilot = facts.autopilot;
    cleanupSearch_->show(
        autopilot.scan ? searchLine(u"Looking for old cache files"_s, *autopilot.scan) : QString(),
        autopilot.isScanStopping);
    cleanup_->show(autopilot.cleanup ? cleanupLine(*autopilot.cleanup) : QString(),
                   autopilot.isCleanupStopping);
    const StorageScanState& storage = facts.storage;
    storageScan_->show(
        storage.diskStorageScanInProgress ? storageScanLine(storage.progress) : QString(),
        storage.isStopping);
    setButtonEnabled(*find_, !storage.diskStorageScanInProgress);
}

}  // namespace tallowcrest
