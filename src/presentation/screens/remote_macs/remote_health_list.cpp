#include "presentation/screens/remote_macs/remote_health_list.h"

#include <algorithm>
#include <iterator>
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

void RemoteHealthList::show(std::vector<RemoteHealthFacts> facts) {
    std::vector<Entry> shown;
    shown.reserve(facts.size());
    for (RemoteHealthFacts& each : facts) {
        RemoteHealthBlock* block = takeBlock(each.machine.id);
        shown.push_back({block, std::move(each)});
    }
    for (const Entry& gone : std::exchange(entries_, std::move(shown))) {
        column_->removeWidget(gone.block);
        gone.block->hide();
        gone.block->deleteLater();
    }
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        RemoteHealthBlock* block = entries_[i].block;
        block->show(entries_[i].facts);
        // Below the heading.
        const int place = static_cast<int>(i) + 1;
        if (column_->indexOf(block) != place) {
            column_->removeWidget(block);
            column_->insertWidget(place, block);
        }
        block->setVisible(true);
    }
    setVisible(!entries_.empty());
}

RemoteHealthBlock* RemoteHealthList::takeBlock(const std::string& id) {
    const auto found = std::ranges::find_if(
        entries_, [&id](const Entry& each) { return each.facts.machine.id == id; });
    if (found == entries_.end()) {
        return makeBlock();
    }
    RemoteHealthBlock* block = found->block;
    entries_.erase(found);
    return block;
}

RemoteHealthBlock* RemoteHealthList::makeBlock() {
    auto* block = new RemoteHealthBlock(u"remote.machine-%1"_s.arg(++blocksMade_), this);
    connect(block, &RemoteHealthBlock::profileChanged, this,
            [this, block](const auto& change) { emit profileChanged(machineOf(block), change); });
    connect(block, &RemoteHealthBlock::operationWanted, this,
            [this, block](auto operation) { emit operationWanted(machineOf(block), operation); });
    connect(block, &RemoteHealthBlock::processCopyWanted, this, [this, block](const auto& process) {
        emit processCopyWanted(machineOf(block), process);
    });
    connect(block, &RemoteHealthBlock::processQuitWanted, this, [this, block](const auto& process) {
        emit processQuitWanted(machineOf(block), process);
    });
    connect(block, &RemoteHealthBlock::appCopyWanted, this,
            [this, block](const auto& app) { emit appCopyWanted(machineOf(block), app); });
    connect(block, &RemoteHealthBlock::neverQuitWanted, this, &RemoteHealthList::neverQuitWanted);
    connect(block, &RemoteHealthBlock::expandedChanged, this,
            [this, block] { emit blockResized(block); });
    return block;
}

RemoteHealth RemoteHealthList::machineOf(const RemoteHealthBlock* block) const {
    return std::ranges::find(entries_, block, &Entry::block)->facts.machine;
}

std::vector<QWidget*> RemoteHealthList::blocks() const {
    std::vector<QWidget*> found;
    std::ranges::transform(entries_, std::back_inserter(found), &Entry::block);
    return found;
}

QWidget* RemoteHealthList::block(const std::string& id) const {
    const auto found = std::ranges::find_if(
        entries_, [&id](const Entry& each) { return each.facts.machine.id == id; });
    return found == entries_.end() ? nullptr : found->block;
}

}  // namespace tallowcrest
