#pragma once

#include "presentation/screens/shared/overview_block.h"
#include "presentation/state/automation_facts.h"

class QPushButton;

namespace tallowcrest {

class BarList;
class CleanupReceipt;
class EmergencyStopControls;
class IconView;
class ProgressRow;
class StorageAreasList;
struct DiskStorageOffender;

/// How full the home volume is, the status, the trust and the rule of Disk Autopilot, what it does
/// at the moment, the latest receipt, the measured areas of the disk, and the emergency stop. Main
/// thread.
class DiskAutopilotBlock final : public OverviewBlock {
    Q_OBJECT

public:
    /// The object names of the block and its parts begin with `page`. Areas have no "Reveal" unless
    /// `canReveal`. `remainderNote` says what the remainder of a storage scan stands for.
    DiskAutopilotBlock(const QString& page, bool canReveal, const QString& remainderNote);

    /// While collapsed, the header has the note "Low" when space is low.
    void show(const DiskAutopilotFacts& facts);

signals:
    /// The owner pressed the emergency stop.
    void stopWanted();
    /// The owner pressed "Resume Manual Mode".
    void resumeWanted();
    // The owner pressed the button of that name.
    void cleanupReviewWanted();
    void cleanupSearchStopWanted();
    void cleanupStopWanted();
    void undoStopWanted();
    void undoWanted();
    void offendersWanted();
    void storageScanStopWanted();
    /// The owner pressed "Reveal" of this area.
    void revealWanted(const tallowcrest::DiskStorageOffender& area);

private:
    void makeActions(const QString& page);
    void showProgress(const DiskAutopilotFacts& facts);

    BarList* space_ = nullptr;
    IconView* lowIcon_ = nullptr;
    ElidedLabel* lowWord_ = nullptr;
    ElidedLabel* status_ = nullptr;
    ElidedLabel* trust_ = nullptr;
    ElidedLabel* rule_ = nullptr;
    QPushButton* find_ = nullptr;
    ProgressRow* cleanupSearch_ = nullptr;
    ProgressRow* cleanup_ = nullptr;
    CleanupReceipt* receipt_ = nullptr;
    ProgressRow* storageScan_ = nullptr;
    StorageAreasList* areas_ = nullptr;
    EmergencyStopControls* stop_ = nullptr;
};

}  // namespace tallowcrest
