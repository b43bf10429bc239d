#include "presentation/shell/setup_wizard.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/state/status_line.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/setup_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int wizardWidth = 560;
constexpr int leastHeight = 432;
constexpr int mostHeight = 560;

std::vector<SetupLine> linesOf(SystemMonitor& monitor) {
    return setupLines(monitor.integration().install.shownTarget(), monitor.settings().sshUsername);
}

}  // namespace

SetupWizard::SetupWizard(SystemMonitor& monitor, WindowState& state, QWidget* window)
    : Sheet(window), monitor_(monitor), state_(state) {
    setObjectName(u"setup"_s);
    setWindowTitle(u"Set Up Tallowcrest"_s);
    setAccessibleName(windowTitle());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, spacing::pagePadding, 0, spacing::gap);
    layout->setSpacing(spacing::gap);
    auto* head = new QVBoxLayout;
    head->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, 0);
    head->setSpacing(2);
    auto* title = new ElidedLabel(windowTitle(), onPage(&CrestFonts::title), this);
    title->setObjectName(u"setup.title"_s);
    auto* line =
        new ElidedLabel(u"A quick pass through the settings that make this useful every day."_s,
                        onPage(&CrestFonts::body, &CrestTheme::secondaryText), this);
    line->setLines(1, 2);
    head->addWidget(title);
    head->addWidget(line);
    layout->addLayout(head);
    layout->addWidget(new PageScrollArea(makeRows(), this), 1);
    layout->addWidget(makeFoot());
}

void SetupWizard::start() {
    // Over a small window "Done" would otherwise lie below the screen.
    resize(wizardWidth, std::clamp(parentWidget()->height() - 2 * spacing::pagePadding, leastHeight,
                                   mostHeight));
    setMinimumSize(wizardWidth, leastHeight);
}

QWidget* SetupWizard::makeRows() {
    auto* rows = new QWidget;
    auto* layout = new QVBoxLayout(rows);
    // The scroll bar takes its width from the padding.
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding - spacing::scrollBar,
                               0);
    auto* card = new Card(rows);
    card->contentLayout()->setSpacing(spacing::gap);
    for (const SetupLine& line : linesOf(monitor_)) {
        auto* row = new QVBoxLayout;
        row->setSpacing(2);
        row->addWidget(new ElidedLabel(line.title, onCard(&CrestFonts::heading), card));
        texts_.push_back(
            new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), card));
        texts_.back()->setLines(1, 3);
        row->addWidget(texts_.back());
        card->contentLayout()->addLayout(row);
    }
    layout->addWidget(card);
    layout->addStretch(1);
    return rows;
}

QWidget* SetupWizard::makeFoot() {
    auto* foot = new QWidget(this);
    auto* layout = new QHBoxLayout(foot);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, 0);
    layout->setSpacing(spacing::unit);
    // Repeated here because the wizard covers the status line of the window.
    lastAction_ = new ElidedLabel(onPage(&CrestFonts::caption), foot);
    lastAction_->setObjectName(u"setup.last-action"_s);
    lastAction_->setLines(2, 2);
    lastAction_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    login_ = makeButton(commands::enableLaunchAtLogin.titled("Launch at Login"),
                        u"setup.launch-at-login"_s, foot);
    done_ = makeButton(u"Done"_s, QString(), u"setup.done"_s, u"Completes the setup"_s, foot);
    makePrimary(*done_);
    done_->setDefault(true);
    connect(login_, &QPushButton::clicked, this,
            [this] { monitor_.integration().login.enableLaunchAtLogin(); });
    connect(done_, &QPushButton::clicked, this, [this] {
        state_.completeFirstRun();
        accept();
    });
    layout->addWidget(lastAction_, 1);
    layout->addWidget(login_);
    layout->addWidget(done_);
    return foot;
}

std::vector<Observable*> SetupWizard::shows(SystemMonitor& monitor, WindowState& state) {
    return {&state.navigation.observable(), &monitor.settingsOwner().observable(),
            &monitor.log().observable(), &monitor.integration().login.observable(),
            &monitor.integration().updates.observable()};
}

void SetupWizard::showState() {
    const std::vector<SetupLine> lines = linesOf(monitor_);
    for (std::size_t i = 0; i < texts_.size(); ++i) {
        texts_[i]->setText(lines[i].text);
    }
    lastAction_->setText(statusLine(monitor_));
    setButtonEnabled(*login_, !monitor_.integration().login.state().isChanging);
}

QWidget* SetupWizard::firstControl() {
    return done_;
}

}  // namespace tallowcrest
