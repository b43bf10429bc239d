#include "presentation/shell/operation_target_bar.h"

#include <utility>

#include <QBoxLayout>
#include <QPushButton>

#include "actions/actions.h"
#include "actions/review_target.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/capsule.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// In narrower windows the detail of a target is below its title.
constexpr int oneLineWidth = 720;

}  // namespace

OperationTargetBar::OperationTargetBar(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Card(parent), monitor_(monitor), state_(state) {
    installAccessibleFigures();
    setObjectName(u"target"_s);
    setAccessibleName(u"Operation Target"_s);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    // Less padding on the sides of the buttons, which have edges of their own.
    layout()->setContentsMargins(spacing::cardPadding, spacing::unit / 2, spacing::unit / 2,
                                 spacing::unit / 2);
    row_ = new QHBoxLayout;
    row_->setSpacing(spacing::unit);
    contentLayout()->addLayout(row_);
    makeTexts();
    makeButtons();
    setHasTarget(false);
}

void OperationTargetBar::makeTexts() {
    icon_ = new IconView(QString(), &CrestTheme::secondaryText, spacing::iconRegular, this);
    icon_->setObjectName(u"target.icon"_s);
    title_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    title_->setObjectName(u"target.title"_s);
    title_->setElideMode(Qt::ElideMiddle);
    detail_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    detail_->setObjectName(u"target.detail"_s);
    protected_ = new Capsule(this);
    protected_->setObjectName(u"target.protected"_s);
    protected_->setText(u"Protected"_s);
    // A rule may replace what a person chose, which must not go unnoticed.
    automatic_ = new Capsule(this);
    automatic_->setObjectName(u"target.automatic"_s);
    automatic_->setText(u"Auto-selected"_s);
    texts_ = new QBoxLayout(QBoxLayout::LeftToRight);
    texts_->addWidget(title_);
    texts_->addWidget(detail_, 1);
    row_->addWidget(icon_);
    row_->addLayout(texts_, 1);
    row_->addWidget(automatic_);
    row_->addWidget(protected_);
}

void OperationTargetBar::makeButtons() {
    choose_ = makeButton(u"Choose Process"_s, u"gauge.with.dots.needle.67percent"_s,
                         u"target.choose"_s, u"Goes to Processes"_s, this);
    review_ = makeButton(u"Review"_s, u"wand.and.stars"_s, u"target.review"_s,
                         u"Goes to Optimize"_s, this);
    clear_ = makeButton(u"Clear"_s, u"xmark.circle"_s, u"target.clear"_s,
                        u"Ends the review; nothing is quit"_s, this);
    for (QPushButton* button : {choose_, review_, clear_}) {
        row_->addWidget(button);
    }
    connect(choose_, &QPushButton::clicked, this,
            [this] { state_.navigation.setSelectedRoute(AppRoute::load); });
    connect(review_, &QPushButton::clicked, this,
            [this] { state_.navigation.setSelectedRoute(AppRoute::optimize); });
    connect(clear_, &QPushButton::clicked, this,
            [this] { monitor_.actions().review.clearOperationTarget(); });
}

std::vector<Observable*> OperationTargetBar::shows() const {
    return {&monitor_.sample().observable(), &monitor_.actions().review.observable(),
            &monitor_.settingsOwner().observable()};
}

void OperationTargetBar::refresh() {
    const ReviewTarget& review = monitor_.actions().review;
    const auto before = std::exchange(shownPID_, review.selectedPID());
    const bool hasTarget = shownPID_.has_value();
    if (hasTarget != before.has_value()) {
        setHasTarget(hasTarget);
    }
    if (!hasTarget) {
        return;
    }
    const SelectedTargetSummary summary = review.selectedTargetSummary();
    title_->setText(dashboard_text::text(summary.title));
    detail_->setText(dashboard_text::text(summary.detail));
    icon_->setIcon(summary.isProtected ? u"lock.fill"_s : u"scope"_s);
    protected_->setVisible(summary.isProtected);
    const bool isAutomatic = review.chosenBy() == ReviewTarget::ChosenBy::rule;
    automatic_->setVisible(isAutomatic);
    describe();
    if (shownPID_ != before && isAutomatic) {
        announce(*this, u"%1: %2"_s.arg(automatic_->accessibleName(), title_->text()));
    }
}

void OperationTargetBar::describe() {
    // When the focus enters the bar, screen readers read its labels out, but not those of one or
    // two words.
    setSpokenName(*title_,
                  withMarks(shownPID_ ? u"Under review: "_s + title_->text() : title_->text()));
    setSpokenName(*review_, review_->text() + u' ' + title_->text());
    setSpokenName(*clear_, clear_->text() + u' ' + title_->text());
}

void OperationTargetBar::setHasTarget(bool hasTarget) {
    const bool hadFocus = choose_->hasFocus() || review_->hasFocus() || clear_->hasFocus();
    choose_->setVisible(!hasTarget);
    review_->setVisible(hasTarget);
    clear_->setVisible(hasTarget);
    if (!hasTarget) {
        title_->setText(u"Operation Target"_s);
        detail_->setText(u"No operation target selected"_s);
        icon_->setIcon(u"scope"_s);
        protected_->hide();
        automatic_->hide();
        describe();
    }
    fold();
    if (hadFocus) {
        // The focus stays in the bar whose button was pressed.
        (hasTarget ? review_ : choose_)->setFocus();
    }
}

QString OperationTargetBar::withMarks(QString words) const {
    for (const Capsule* mark : {automatic_, protected_}) {
        if (!mark->isHidden()) {
            words += u", "_s + mark->accessibleName();
        }
    }
    return words;
}

QString OperationTargetBar::accessibleValue() const {
    return withMarks(title_->text() + u", "_s + detail_->text());
}

void OperationTargetBar::resizeEvent(QResizeEvent* event) {
    Card::resizeEvent(event);
    fold();
}

void OperationTargetBar::fold() {
    const bool isOneLine = !shownPID_.has_value() || width() >= oneLineWidth;
    if (isOneLine == (texts_->direction() == QBoxLayout::LeftToRight)) {
        return;
    }
    texts_->setDirection(isOneLine ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    texts_->setSpacing(isOneLine ? spacing::unit : 0);
    detail_->setFontRole(isOneLine ? &CrestFonts::body : &CrestFonts::caption);
}

}  // namespace tallowcrest
