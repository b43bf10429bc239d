#include "presentation/screens/remote_macs/peer_list_model.h"

#include <algorithm>

#include "presentation/screens/remote_macs/remote_macs_lines.h"
#include "presentation/widgets/accessibility.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

void PeerListModel::setPeers(const std::vector<TailDevice>& peers) {
    const int before = rowCount();
    const int after = static_cast<int>(peers.size());
    const int common = std::min(before, after);
    // Rows come and go at the end first, while those above them are what they were.
    if (after < before) {
        beginRemoveRows({}, after, before - 1);
        peers_.resize(peers.size());
        endRemoveRows();
    } else if (after > before) {
        beginInsertRows({}, before, after - 1);
        peers_.insert(peers_.end(), peers.begin() + before, peers.end());
        endInsertRows();
    }
    const int firstChanged =
        static_cast<int>(std::ranges::mismatch(peers_, peers).in1 - peers_.begin());
    if (firstChanged < common) {
        peers_ = peers;
        emit dataChanged(index(firstChanged), index(common - 1));
    }
}

int PeerListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(peers_.size());
}

QVariant PeerListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const auto line = [&] {
        return remote_macs_lines::peerLine(peers_[static_cast<std::size_t>(index.row())]);
    };
    switch (role) {
        case Qt::DisplayRole:
            return line().name;
        case placeRole:
            return line().place;
        case pathRole:
            return line().pathText;
        case pathKindRole:
            return static_cast<int>(line().path);
        case Qt::AccessibleTextRole: {
            const auto shown = line();
            return spokenText(shown.name + u" · "_s + shown.place + u" · "_s + shown.pathText);
        }
        default:
            return {};
    }
}

}  // namespace tallowcrest
