#include "presentation/status_strip.h"

#include <QHBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/capsule.h"
#include "presentation/dashboard_text.h"
#include "presentation/elided_label.h"
#include "presentation/theme.h"
#include "presentation/timeline.h"

namespace tallowcrest {

StatusStrip::StatusStrip(SystemMonitor& monitor, QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::gap);
    layout->setSpacing(spacing::gap);
    session_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::secondaryText, this);
    session_->setObjectName(QStringLiteral("status.session"));
    session_->setGround(&CrestTheme::pageBackground);
    session_->setReservedText(dashboard_text::sessionNote(longestSessionSeconds));
    threshold_ = new Capsule(this);
    threshold_->setObjectName(QStringLiteral("status.threshold"));
    lastAction_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::text, this);
    lastAction_->setObjectName(QStringLiteral("status.last-action"));
    lastAction_->setGround(&CrestTheme::pageBackground);
    // Room for the longest message in a narrow window: its end may be what matters.
    lastAction_->setLines(2, 2);
    lastAction_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    layout->addWidget(session_);
    layout->addWidget(threshold_);
    layout->addWidget(lastAction_, 1);
}

void StatusStrip::refresh() {
    session_->setText(monitor_.sample().snapshot()
                          ? dashboard_text::sessionNote(sessionSeconds(monitor_.sample().history()))
                          : QStringLiteral("Sampling this Mac..."));
    threshold_->setText(dashboard_text::warnAt(monitor_.settings().warningThreshold));
    lastAction_->setText(dashboard_text::text(monitor_.log().lastAction()));
}

}  // namespace tallowcrest
