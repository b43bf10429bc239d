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

    /// `leftOut` says what to do to scan machines that are left out; hidden when empty. `noPeers`
    /// is shown where there are none.
    void show(const std::vector<TailDevice>& peers, const ScanTexts& scan, const QString& leftOut,
              const QString& noPeers);

signals:
    /// The owner asked for a scan, which the button offers only while none runs.
    void scanWanted();
    /// The owner asked to end the running scan.
    void cancelWanted();
    void tailscaleWanted();
    void automationSettingsWanted();

private:
    QWidget* makeActions();
    QWidget* makeLeftOut();
    void showScan(const ScanTexts& scan);

    QPushButton* scan_ = nullptr;
    QPushButton* cancel_ = nullptr;  ///< hidden while no scan runs
    ElidedLabel* progress_ = nullptr;
    QWidget* leftOutRow_ = nullptr;
    ElidedLabel* leftOut_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    PeerList* peers_ = nullptr;
    bool isScanning_ = false;  ///< as it is shown
};

}  // namespace tallowcrest
