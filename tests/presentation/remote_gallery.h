#pragma once

#include <memory>

#include <QSize>
#include <QString>
#include <QWidget>

namespace tallowcrest {

/// The real window on Remote Macs, over a fake machine whose tailnet is in `state`: "unscanned",
/// "alone" (without peers, with problems of its client), "scanned", "scanning" or "fleet" (40
/// machines, 2,000 peers). Null for an unknown state. A height of 0 shows all of the page.
std::unique_ptr<QWidget> remoteGallery(const QString& state, const QSize& size);

/// Prints the processor time of refreshing and of painting the whole page with 40 machines and
/// 2,000 peers.
void measureRemotePage();

}  // namespace tallowcrest
