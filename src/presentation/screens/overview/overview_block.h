#pragma once

#include "core/routes.h"
#include "presentation/widgets/section_card.h"

namespace tallowcrest {

class SystemMonitor;

/// One part of the overview. It knows whether the owner has closed it, and while it is closed it
/// neither reads nor paints what it would show. Main thread.
class OverviewBlock : public SectionCard {
    Q_OBJECT

public:
    /// `identifier` is the card's own; the header, which closes and opens it, is "section." and the
    /// raw value of `section`.
    OverviewBlock(SystemMonitor& monitor, DashboardSection section, const QString& identifier,
                  const QString& icon, const QString& title, Frame frame = Frame::card);

    DashboardSection section() const { return section_; }

    /// Reads the monitor's state and shows it.
    void refresh();

protected:
    SystemMonitor& monitor() const { return monitor_; }

    /// What can be seen of a closed block too: the caption and the header's note.
    virtual void showHeader() {}
    virtual void showContent() = 0;

private:
    SystemMonitor& monitor_;
    DashboardSection section_;
};

}  // namespace tallowcrest
