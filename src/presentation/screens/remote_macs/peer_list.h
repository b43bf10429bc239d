#pragma once

#include <vector>

#include <QListView>

#include "core/remote_records.h"

namespace tallowcrest {

class PeerListModel;

/// The peers of the tailnet, of which it shows a few at a time and scrolls to the others. For use
/// on a card. Main thread.
class PeerList final : public QListView {
    Q_OBJECT

public:
    static constexpr int rowHeight = 44;
    static constexpr int mostRowsInView = 8;

    explicit PeerList(QWidget* parent = nullptr);

    void setPeers(const std::vector<TailDevice>& peers);

protected:
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void applyTheme();

    PeerListModel* model_ = nullptr;
};

}  // namespace tallowcrest
