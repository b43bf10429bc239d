#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/remote_records.h"
#include "presentation/screens/remote_macs/remote_health_lines.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/screens/shared/summary_cards.h"
#include "presentation/state/window_state.h"

namespace tallowcrest {

class AttentionCard;
class LocalHealthCard;
class PageScrollArea;
class RemoteDetailCard;
class RemoteHealthList;
class RemoteTimelineCard;
class RepeatingTimer;
class SetupChecklistCard;
class SystemMonitor;
class TailscaleBlock;
struct WindowState;

/// The other machines of the tailnet: which of them need attention, what the last scan found, and
/// what can be done for them. A sample changes nothing here, so it does not refresh the page. While
/// the page shows, the ages of the figures are kept up to date. Main thread.
class RemoteMacsPage final : public Screen {
    Q_OBJECT

public:
    explicit RemoteMacsPage(SystemMonitor& monitor, WindowState& state, QWidget* parent = nullptr);
    ~RemoteMacsPage() override;

    void refresh() override;
    std::vector<Observable*> shows() const override;
    std::vector<HeaderAction> headerActions() override;

protected:
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void layOutParts();
    void connectParts();
    void connectMachines();
    void carryOut(RemoteOperation operation, const RemoteHealth& machine);
    void inspect(const RemoteHealth& machine);
    void refreshSummary();
    void refreshTimeline();
    /// The machines of the last scan, in their order.
    std::vector<RemoteHealthFacts> facts() const;
    /// The profile of the machine that the running scan is at.
    RemoteProfile scannedProfile() const;
    /// Starts a scan, or shows how far the running one is.
    void scan();
    /// Scrolls a part of the page to the top of the view.
    void scrollTo(QWidget& part);
    /// The same, and moves the keyboard focus to a control of that part.
    void bringIntoView(QWidget& part, QWidget& control);
    /// What stays where it is in the view when parts above it change their height. Null at the top
    /// of the page.
    QWidget* partToKeep() const;

    SystemMonitor& monitor_;
    WindowState& state_;
    PageScrollArea* area_ = nullptr;
    AttentionCard* attention_ = nullptr;
    std::optional<SummaryCards> summary_;
    RemoteTimelineCard* timeline_ = nullptr;
    RemoteDetailCard* detail_ = nullptr;
    TailscaleBlock* tailscale_ = nullptr;
    LocalHealthCard* localHealth_ = nullptr;
    SetupChecklistCard* setup_ = nullptr;
    RemoteHealthList* machines_ = nullptr;
    std::vector<RemoteHealthFacts> facts_;  ///< as they are shown
    std::vector<QWidget*> parts_;           ///< those above the machines, from top to bottom
    std::unique_ptr<RepeatingTimer> ageTimer_;
};

}  // namespace tallowcrest
