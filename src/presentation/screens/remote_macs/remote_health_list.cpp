#include "presentation/screens/remote_macs/remote_health_list.h"

#include <algorithm>
#include <utility>

#include <QVBoxLayout>

#include "presentation/screens/remote_macs/remote_health_block.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

RemoteHealthList::RemoteHealthList(QWidget* parent) : QWidget(parent) {
    setObjectName(u"remote.health"_s);
    column_ = new QVBoxLayout(this);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(spacing::unit);
    column_->addWidget(new ElidedLabel(u"Remote Health"_s, onPage(&CrestFonts::heading), this));
    hide();
}

void RemoteHealthList::show(const std::vector<RemoteHealthFacts>& facts) {
    std::vector<RemoteHealthBlock*> before = blocks_;
    std::vector<RemoteHealthBlock*> after;
    for (const RemoteHealthFacts& each : facts) {
        const auto kept = std::ranges::find_if(before, [&each](const RemoteHealthBlock* block) {
            return block->machine().id == each.machine.id;
        });
        if (kept == before.end()) {
            after.push_back(makeBlock());
        } else {
            after.push_back(*kept);
            before.erase(kept);
        }
        after.back()->show(each);
    }
    for (RemoteHealthBlock* gone : before) {
        column_->removeWidget(gone);
        gone->hide();
        gone->deleteLater();
    }
    if (after != blocks_) {
        blocks_ = std::move(after);
        arrange();
    }
    setVisible(!blocks_.empty());
}

void RemoteHealthList::arrange() {
    QWidget* before = this;
    for (RemoteHealthBlock* block : blocks_) {
        column_->removeWidget(block);
        column_->addWidget(block);
        block->setVisible(true);
        // Assistive technology reads the children in their order.
        block->raise();
        before = block->chainTabs(before);
    }
}

RemoteHealthBlock* RemoteHealthList::makeBlock() {
    auto* block = new RemoteHealthBlock(u"remote.machine-%1"_s.arg(++blocksMade_), this);
    connect(block, &RemoteHealthBlock::profileChanged, this, &RemoteHealthList::profileChanged);
    connect(block, &RemoteHealthBlock::operationWanted, this, &RemoteHealthList::operationWanted);
    connect(block, &RemoteHealthBlock::processCopyWanted, this,
            &RemoteHealthList::processCopyWanted);
    connect(block, &RemoteHealthBlock::processQuitWanted, this,
            &RemoteHealthList::processQuitWanted);
    connect(block, &RemoteHealthBlock::appCopyWanted, this, &RemoteHealthList::appCopyWanted);
    connect(block, &RemoteHealthBlock::neverQuitWanted, this, &RemoteHealthList::neverQuitWanted);
    connect(block, &RemoteHealthBlock::expandedChanged, this,
            [this, block] { emit blockResized(block); });
    return block;
}

std::vector<QWidget*> RemoteHealthList::blocks() const {
    return {blocks_.begin(), blocks_.end()};
}

QWidget* RemoteHealthList::block(const std::string& id) const {
    const auto found = std::ranges::find_if(
        blocks_, [&id](const RemoteHealthBlock* each) { return each->machine().id == id; });
    return found == blocks_.end() ? nullptr : *found;
}

}  // namespace tallowcrest
