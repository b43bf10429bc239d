#include "presentation/shell/page_header.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QResizeEvent>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// The name of a button's icon, for when there is space for it again.
constexpr const char* iconProperty = "tallowcrest.icon";

}  // namespace

PageHeader::PageHeader(QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, spacing::gap, spacing::pagePadding,
                               spacing::unit);
    layout->setSpacing(2);

    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit);
    title_ = new ElidedLabel({&CrestFonts::title, &CrestTheme::text}, this);
    title_->setObjectName(u"page.title"_s);
    subtitle_ = new ElidedLabel({&CrestFonts::body, &CrestTheme::secondaryText}, this);
    subtitle_->setObjectName(u"page.subtitle"_s);
    row->addWidget(title_, 1);

    actions_ = new QHBoxLayout;
    actions_->setSpacing(spacing::unit);
    row->addLayout(actions_);
    refresh_ = makeButton(u"Refresh"_s, u"arrow.clockwise"_s, u"page.refresh"_s,
                          u"Takes a new sample now"_s, this);
    refresh_->setProperty(iconProperty, u"arrow.clockwise"_s);
    connect(refresh_, &QPushButton::clicked, this, &PageHeader::refreshWanted);
    row->addWidget(refresh_);
    layout->addLayout(row);
    // The full width of the page, so that no route's subtitle needs a second line.
    layout->addWidget(subtitle_);
}

void PageHeader::setRoute(AppRoute route, const std::vector<HeaderAction>& actions) {
    title_->setText(dashboard_text::text(title(route)));
    subtitle_->setText(dashboard_text::text(subtitle(route)));
    while (const QLayoutItem* item = actions_->takeAt(0)) {
        // Deleted later, because this may run in the click of that very button.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const HeaderAction& action : actions) {
        addAction(action);
    }
    orderActions();
    measure();
}

std::vector<QPushButton*> PageHeader::buttons() const {
    std::vector<QPushButton*> all{refresh_};
    for (int i = 0; i < actions_->count(); ++i) {
        all.push_back(qobject_cast<QPushButton*>(actions_->itemAt(i)->widget()));
    }
    return all;
}

void PageHeader::measure() {
    showIcons(true);
    wholeWidth_ = 2 * spacing::pagePadding + title_->sizeHint().width();
    for (const QPushButton* button : buttons()) {
        wholeWidth_ += spacing::unit + button->sizeHint().width();
    }
    fold();
}

void PageHeader::fold() {
    const bool hasRoom = wholeWidth_ <= width();
    if (hasRoom != hasIcons_) {
        showIcons(hasRoom);
    }
}

void PageHeader::showIcons(bool areShown) {
    hasIcons_ = areShown;
    for (QPushButton* button : buttons()) {
        button->setIcon(areShown ? themedIcon(button->property(iconProperty).toString()) : QIcon());
    }
}

void PageHeader::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        measure();
    }
}

void PageHeader::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fold();
}

void PageHeader::orderActions() {
    // The visual order; otherwise new widgets would come after the whole page.
    QWidget* before = refresh_;
    for (int i = 0; i < actions_->count(); ++i) {
        QWidget* action = actions_->itemAt(i)->widget();
        setTabOrder(before, action);
        before = action;
    }
    setTabOrder(before, refresh_);
    // Assistive technology reads the children in their order.
    refresh_->raise();
}

void PageHeader::addAction(const HeaderAction& action) {
    QPushButton* button = makeButton(action.command, action.identifier, this);
    button->setProperty(iconProperty, QString::fromUtf8(action.command.icon));
    connect(button, &QPushButton::clicked, this, action.run);
    actions_->addWidget(button);
}

}  // namespace tallowcrest
