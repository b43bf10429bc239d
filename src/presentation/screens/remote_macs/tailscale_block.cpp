#include "presentation/screens/remote_macs/tailscale_block.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/remote_macs/peer_list.h"
#include "presentation/screens/remote_macs/remote_macs_commands.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString peerCount(std::size_t peers) {
    return dashboard_text::count(static_cast<std::int64_t>(peers)) +
           (peers == 1 ? u" peer"_s : u" peers"_s);
}

}  // namespace

TailscaleBlock::TailscaleBlock()
    : OverviewBlock(DashboardSection::tailscale, u"remote.tailscale"_s,
                    u"antenna.radiowaves.left.and.right"_s,
                    dashboard_text::text(title(DashboardSection::tailscale))) {
    bodyLayout()->addWidget(makeActions());
    bodyLayout()->addWidget(makeLeftOut());
    empty_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), body());
    empty_->setObjectName(u"remote.tailscale.empty"_s);
    empty_->setLines(1, 4);
    bodyLayout()->addWidget(empty_);
    peers_ = new PeerList(body());
    peers_->hide();
    bodyLayout()->addWidget(peers_);
    auto* note = new ElidedLabel(
        u"Remote process control should be enabled per Mac via SSH or a small helper agent; "
        "this panel is the discovery layer."_s,
        onCard(&CrestFonts::caption, &CrestTheme::secondaryText), body());
    note->setObjectName(u"remote.tailscale.note"_s);
    note->setLines(1, 4);
    bodyLayout()->addWidget(note);
}

QWidget* TailscaleBlock::makeActions() {
    auto* actions = new QWidget(body());
    auto* row = new QHBoxLayout(actions);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    scan_ = makeButton(remote_macs_commands::scan, u"remote.tailscale.scan"_s, actions);
    makePrimary(*scan_);
    connect(scan_, &QPushButton::clicked, this, &TailscaleBlock::scanWanted);
    auto* open =
        makeButton(remote_macs_commands::openTailscale, u"remote.tailscale.open"_s, actions);
    connect(open, &QPushButton::clicked, this, &TailscaleBlock::tailscaleWanted);
    progress_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), actions);
    progress_->setObjectName(u"remote.tailscale.progress"_s);
    progress_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    cancel_ = makeCancelScanButton(u"remote.tailscale.cancel"_s, actions);
    connect(cancel_, &QPushButton::clicked, this, &TailscaleBlock::cancelWanted);
    row->addWidget(scan_);
    row->addWidget(open);
    row->addWidget(cancel_);
    row->addWidget(progress_, 1);
    return actions;
}

QWidget* TailscaleBlock::makeLeftOut() {
    leftOutRow_ = new QWidget(body());
    auto* row = new QHBoxLayout(leftOutRow_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    leftOut_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::text), leftOutRow_);
    leftOut_->setObjectName(u"remote.tailscale.left-out"_s);
    leftOut_->setLines(1, 3);
    row->addWidget(leftOut_, 1, Qt::AlignVCenter);
    auto* settings = makeButton(
        {"Automation Settings", "gearshape", "Opens the settings of what is scanned by itself"},
        u"remote.tailscale.automation-settings"_s, leftOutRow_);
    connect(settings, &QPushButton::clicked, this, &TailscaleBlock::automationSettingsWanted);
    row->addWidget(settings);
    leftOutRow_->hide();
    return leftOutRow_;
}

void TailscaleBlock::show(const std::vector<TailDevice>& peers, const ScanTexts& scan,
                          const QString& leftOut, const QString& noPeers) {
    header()->setNote(isCollapsed() ? peerCount(peers.size()) : QString());
    if (isCollapsed()) {
        return;
    }
    showScan(scan);
    leftOut_->setText(leftOut);
    leftOutRow_->setVisible(!leftOut.isEmpty());
    peers_->setPeers(peers);
    peers_->setVisible(!peers.empty());
    empty_->setText(noPeers);
    empty_->setVisible(peers.empty());
}

void TailscaleBlock::showScan(const ScanTexts& scan) {
    progress_->setText(scan.progress);
    showCancelScanButton(*cancel_, scan);
    const bool isScanning = !scan.progress.isEmpty();
    if (isScanning == isScanning_) {
        return;
    }
    isScanning_ = isScanning;
    // The button beside it stays in place although this word is shorter.
    scan_->setMinimumWidth(isScanning ? scan_->width() : 0);
    scan_->setText(isScanning ? u"Scanning"_s
                              : QString::fromUtf8(remote_macs_commands::scan.title));
    scan_->setAccessibleName(scan_->text());
    setButtonEnabled(*scan_, !isScanning);
}

}  // namespace tallowcrest
