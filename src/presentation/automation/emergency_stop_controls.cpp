#include "presentation/automation/emergency_stop_controls.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/controls.h"
#include "presentation/elided_label.h"
#include "presentation/icon.h"
#include "presentation/theme.h"

namespace tallowcrest {

EmergencyStopControls::EmergencyStopControls(SystemMonitor& monitor, const QString& identifier,
                                             QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::unit);
    const QString effect = QStringLiteral(
        "Immediately disables automatic cleanup, purge, remote scans, and AI "
        "autonomous execution.");
    stop_ = makeButton(QStringLiteral("Emergency Stop"), QStringLiteral("exclamationmark.octagon"),
                       identifier + QStringLiteral(".emergency-stop"), effect, this);
    stop_->setIcon(themedIcon(QStringLiteral("exclamationmark.octagon"), &CrestTheme::bad));
    resume_ = makeButton(
        QStringLiteral("Resume Manual Mode"), QString(),
        identifier + QStringLiteral(".resume-manual-mode"),
        QStringLiteral("Clears the stop; every automation stays off until you turn it on"), this);
    buttons->addWidget(stop_);
    buttons->addWidget(resume_);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    auto* words = new ElidedLabel(effect, &CrestFonts::caption, &CrestTheme::secondaryText, this);
    words->setLines(1, 3);
    words->setGround(&CrestTheme::cardBackground);
    layout->addWidget(words);

    connect(stop_, &QPushButton::clicked, this,
            [this] { monitor_.automation().engageEmergencyStop(); });
    connect(resume_, &QPushButton::clicked, this,
            [this] { monitor_.automation().resumeFromEmergencyStop(); });
    refresh();
}

void EmergencyStopControls::refresh() {
    const bool isEngaged = monitor_.automation().isStopEngaged();
    if (!isEngaged && resume_->hasFocus()) {
        // The keyboard stays in the row whose button it pressed.
        stop_->setFocus();
    }
    resume_->setVisible(isEngaged);
}

}  // namespace tallowcrest
