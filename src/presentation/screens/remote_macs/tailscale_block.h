#pragma once

#include <vector>

#include "core/remote_records.h"
#include "presentation/screens/remote_macs/cancel_scan_button.h"
#include "presentation/screens/shared/overview_block.h"

class QPushButton;

namespace tallowcrest {

class PeerList;

/// The peers of the tailnet, and the scan of those that can be sampled. Main thread.
class TailscaleBlock final : public OverviewBlock {
    Q_OBJECT

public:
    TailscaleBlock();

    void show(const std::vector<TailDevice>& peers, const ScanTexts& scan);

signals:
    /// The owner asked for a scan, which the button offers only while none runs.
    void scanWanted();
    /// The owner asked to end the running scan.
    void cancelWanted();
    void tailscaleWanted();

private:
    QWidget* makeActions();
    void showScan(const ScanTexts& scan);

    QPushButton* scan_ = nullptr;
    QPushButton* cancel_ = nullptr;  ///< hidden while no scan runs
    ElidedLabel* progress_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    PeerList* peers_ = nullptr;
    bool isScanning_ = false;  ///< as it is shown
};

}  // namespace tallowcrest
