#include "presentation/screens/shared/disk_autopilot.h"

#include "actions/automation.h"
#include "disk/disk.h"
#include "presentation/screens/shared/disk_autopilot_block.h"
#include "presentation/state/window_state.h"
#include "presentation/words/disk_lines.h"

namespace tallowcrest {

DiskAutopilotBlock* makeDiskAutopilot(const QString& page, Automation& automation, Disk& disk,
                                      DashboardSections& sections) {
    auto* block =
        new DiskAutopilotBlock(page, disk.storage.canReveal(),
                               remainderNote(disk.storage.remainderName(), disk.storage.volumes()));
    QObject::connect(
        block, &DiskAutopilotBlock::collapseWanted, block,
        [block, &sections](bool collapsed) { sections.setCollapsed(block->section(), collapsed); });
    QObject::connect(block, &DiskAutopilotBlock::stopWanted, block,
                     [&automation] { automation.engageEmergencyStop(); });
    QObject::connect(block, &DiskAutopilotBlock::resumeWanted, block,
                     [&automation] { automation.resumeFromEmergencyStop(); });
    QObject::connect(block, &DiskAutopilotBlock::cleanupReviewWanted, block,
                     [&disk] { disk.autopilot.reviewDiskCleanup(); });
    QObject::connect(block, &DiskAutopilotBlock::cleanupSearchStopWanted, block,
                     [&disk] { disk.autopilot.stopScan(); });
    QObject::connect(block, &DiskAutopilotBlock::cleanupStopWanted, block,
                     [&disk] { disk.autopilot.stopCleanup(); });
    QObject::connect(block, &DiskAutopilotBlock::undoStopWanted, block,
                     [&disk] { disk.autopilot.stopUndo(); });
    QObject::connect(block, &DiskAutopilotBlock::undoWanted, block,
                     [&disk] { disk.autopilot.undoLatestCleanup(); });
    QObject::connect(block, &DiskAutopilotBlock::offendersWanted, block,
                     [&disk] { disk.storage.scanStorageAreas(); });
    QObject::connect(block, &DiskAutopilotBlock::storageScanStopWanted, block,
                     [&disk] { disk.storage.stop(); });
    QObject::connect(
        block, &DiskAutopilotBlock::revealWanted, block,
        [&disk](const DiskStorageOffender& area) { disk.storage.revealStorageOffender(area); });
    return block;
}

void showDiskAutopilot(DiskAutopilotBlock& block, const DashboardSections& sections,
                       const DiskAutopilotFacts& facts) {
    block.setCollapsed(sections.isCollapsed(block.section()));
    block.show(facts);
}

}  // namespace tallowcrest
