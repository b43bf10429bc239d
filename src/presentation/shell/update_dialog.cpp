#include "presentation/shell/update_dialog.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "integration/pro_updater.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

UpdateDialog::UpdateDialog(ProUpdater& updater, QWidget* window)
    : WindowDialog(window), updater_(updater) {
    setObjectName(u"update"_s);
    setWindowTitle(u"Software Update"_s);
    setAccessibleName(windowTitle());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, spacing::pagePadding, spacing::pagePadding,
                               spacing::pagePadding);
    layout->setSpacing(0);
    constexpr int mostTitleLines = 4;
    constexpr int mostTextLines = 12;
    title_ = makeLabel(u"update.title"_s, onPage(&CrestFonts::heading), mostTitleLines, this);
    text_ = makeLabel(u"update.text"_s, onPage(&CrestFonts::body), mostTextLines, this);
    layout->addWidget(title_);
    layout->addSpacing(spacing::unit);
    layout->addWidget(text_);
    layout->addSpacing(spacing::pagePadding);
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit);
    row->addStretch(1);
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        buttons_.at(i) =
            makeButton(QString(), QString(), u"update.button.%1"_s.arg(i), QString(), this);
        connect(buttons_.at(i), &QPushButton::clicked, this, [this, i] { answer(i); });
        row->addWidget(buttons_.at(i));
        settling_.emplace_back(*buttons_.at(i));
    }
    makePrimary(*buttons_.front());
    buttons_.front()->setDefault(true);
    layout->addLayout(row);
}

void UpdateDialog::refresh() {
    const UpdateAlert* alert = updater_.alert();
    if (alert == nullptr) {
        shown_.reset();
        done(Rejected);
    } else if (shown_ != *alert || !isVisible()) {
        present(*alert);
    }
}

void UpdateDialog::present(const UpdateAlert& alert) {
    constexpr int width = 464;
    shown_ = alert;
    title_->setText(dashboard_text::text(alert.title));
    text_->setText(dashboard_text::lines(alert.text));
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        QPushButton& button = *buttons_.at(i);
        button.setVisible(i < alert.buttons.size());
        if (i < alert.buttons.size()) {
            button.setText(dashboard_text::text(alert.buttons[i]));
            setSpokenName(button, button.text());
            setSpokenDescription(button, title_->text());
            // One that still settles from the alert before could not take the focus.
            button.setEnabled(true);
        }
    }
    setAccessibleDescription(title_->text() + u'\n' + text_->text());
    setFixedSize(width, layout()->totalHeightForWidth(width));
    buttons_.at(alert.dismissal)->setFocus();
    if (isVisible()) {
        // No window opens, which would be announced by itself.
        QAccessibleEvent changed(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&changed);
    }
    open();
    for (std::size_t i = 0; i < settling_.size(); ++i) {
        i == alert.dismissal ? settling_[i].settleInNewPlace() : settling_[i].settle();
    }
}

void UpdateDialog::answer(std::size_t button) {
    // The updater may already have another alert, which is not shown yet.
    if (updater_.alert() == nullptr || shown_ != *updater_.alert()) {
        refresh();
        return;
    }
    shown_.reset();
    done(Accepted);
    updater_.answer(button);
}

void UpdateDialog::reject() {
    answer(shown_ ? shown_->dismissal : 0);
}

}  // namespace tallowcrest
