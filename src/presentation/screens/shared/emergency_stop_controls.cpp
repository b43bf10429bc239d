#include "presentation/screens/shared/emergency_stop_controls.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

EmergencyStopControls::EmergencyStopControls(const QString& identifier, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::unit);
    stop_ = makeDangerButton(commands::emergencyStop, identifier + u".emergency-stop"_s, this);
    resume_ = makeButton(commands::resumeManualMode, identifier + u".resume-manual-mode"_s, this);
    buttons->addWidget(stop_);
    buttons->addWidget(resume_);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    auto* words = new ElidedLabel(QString::fromUtf8(commands::emergencyStop.description),
                                  onCard(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    words->setLines(1, 3);
    layout->addWidget(words);

    connect(stop_, &QPushButton::clicked, this, &EmergencyStopControls::stopWanted);
    connect(resume_, &QPushButton::clicked, this, &EmergencyStopControls::resumeWanted);
    setEngaged(false);
}

void EmergencyStopControls::setEngaged(bool isEngaged) {
    if (!isEngaged && resume_->hasFocus()) {
        // The focused button is about to be hidden. Keep the focus beside it.
        stop_->setFocus();
    }
    resume_->setVisible(isEngaged);
}

QWidget* EmergencyStopControls::lastControl() const {
    return resume_;
}

}  // namespace tallowcrest
