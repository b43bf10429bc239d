#pragma once

#include <vector>

#include <QAbstractListModel>

#include "core/remote_records.h"

namespace tallowcrest {

/// The peers of the tailnet, a row each, in the order given. A row is a place in the list,
/// whichever peer stands there, so that new peers do not scroll it. The texts of a row are made
/// when they are asked for: only the rows in view cost anything. Main thread.
class PeerListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        placeRole = Qt::UserRole,  ///< QString: system and address
        pathRole,                  ///< QString
        pathKindRole,              ///< remote_macs_lines::PeerPath, as int
    };

    using QAbstractListModel::QAbstractListModel;

    /// Reports only what differs from before.
    void setPeers(const std::vector<TailDevice>& peers);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<TailDevice> peers_;
};

}  // namespace tallowcrest
