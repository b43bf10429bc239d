#pragma once

#include <vector>

#include "core/remote_records.h"
#include "presentation/screens/shared/overview_block.h"

class QPushButton;

namespace tallowcrest {

class PeerList;

/// The peers of the tailnet, and the scan of those that can be sampled. Main thread.
class TailscaleBlock final : public OverviewBlock {
    Q_OBJECT

public:
    TailscaleBlock();

    /// `progress` is the text of the running scan; empty while none runs.
    void show(const std::vector<TailDevice>& peers, const QString& progress);

signals:
    /// The owner asked for a scan, which the button offers only while none runs.
    void scanWanted();
    void tailscaleWanted();

private:
    QWidget* makeActions();
    void showProgress(const QString& progress);

    QPushButton* scan_ = nullptr;
    ElidedLabel* progress_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    PeerList* peers_ = nullptr;
    bool isScanning_ = false;  ///< as it is shown
};

}  // namespace tallowcrest
