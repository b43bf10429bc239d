#include "presentation/shell/page_header.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPushButton>
#include <QResizeEvent>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/screens/shared/screen.h"
#include "presentation/widgets/accessibility.h"
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

/// From this width on every route's title, subtitle and actions fit beside each other.
constexpr int wideWidth = 980;

}  // namespace

PageHeader::PageHeader(QWidget* parent) : QWidget(parent) {
    below_ = new QVBoxLayout(this);
    row_ = new QHBoxLayout;
    row_->setSpacing(spacing::unit);
    title_ = new ElidedLabel({&CrestFonts::title, &CrestTheme::text}, this);
    title_->setObjectName(u"page.title"_s);
    subtitle_ = new ElidedLabel({&CrestFonts::body, &CrestTheme::secondaryText}, this);
    subtitle_->setObjectName(u"page.subtitle"_s);
    row_->addWidget(title_);
    beside_ = new QVBoxLayout;
    row_->addLayout(beside_);

    actions_ = new QHBoxLayout;
    actions_->setSpacing(spacing::unit);
    row_->addLayout(actions_);
    refresh_ = makeButton(u"Refresh"_s, u"arrow.clockwise"_s, u"page.refresh"_s,
                          u"Takes a new sample now"_s, this);
    refresh_->setProperty(iconProperty, u"arrow.clockwise"_s);
    refresh_->setFlat(true);
    connect(refresh_, &QPushButton::clicked, this, &PageHeader::refreshWanted);
    row_->addWidget(refresh_);
    below_->addLayout(row_);
    placeSubtitle();
}

void PageHeader::setRoute(AppRoute route, const std::vector<HeaderAction>& actions) {
    title_->setText(dashboard_text::text(title(route)));
    subtitle_->setText(dashboard_text::text(subtitle(route)));
    progress_.clear();
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
    refresh();
}

void PageHeader::refresh() {
    for (const auto& [button, title, progressTitle] : progress_) {
        const QString now = progressTitle();
        button->setText(now.isEmpty() ? title : now);
        setSpokenName(*button, button->text());
    }
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
    if (isWide_) {
        wholeWidth_ += 2 * spacing::unit + subtitle_->sizeHint().width();
    }
    for (const QPushButton* button : buttons()) {
        wholeWidth_ += spacing::unit + button->sizeHint().width();
    }
    fold();
}

void PageHeader::placeSubtitle() {
    // The words of the last button, which has no frame, end where the page does.
    constexpr int buttonPadding = 12;
    below_->setContentsMargins(spacing::pagePadding, isLow_ ? spacing::unit : spacing::gap,
                               spacing::pagePadding - buttonPadding,
                               isWide_ ? spacing::unit / 2 : spacing::unit);
    below_->setSpacing(isLow_ ? 0 : 2);
    row_->setStretchFactor(title_, isWide_ ? 0 : 1);
    row_->setStretchFactor(beside_, isWide_ ? 1 : 0);
    if (isWide_) {
        // Both are centred in the row; the smaller text is moved down to the title's baseline.
        const auto baseline = [](const QFont& font) {
            const QFontMetrics metrics(font);
            return metrics.ascent() - metrics.lineSpacing() / 2;
        };
        const CrestFonts& fonts = CrestFonts::current();
        beside_->setContentsMargins(spacing::unit,
                                    2 * (baseline(fonts.title) - baseline(fonts.body)), 0, 0);
        beside_->addWidget(subtitle_);
    } else {
        beside_->setContentsMargins(0, 0, 0, 0);
        // The full width of the page, so that no route's subtitle needs a second line.
        below_->addWidget(subtitle_);
    }
    subtitle_->setFontRole(isLow_ && !isWide_ ? &CrestFonts::caption : &CrestFonts::body);
}

void PageHeader::setLow(bool isLow) {
    if (isLow != isLow_) {
        isLow_ = isLow;
        placeSubtitle();
    }
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
        placeSubtitle();
        measure();
    }
}

void PageHeader::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isWide = width() >= wideWidth;
    if (isWide != isWide_) {
        isWide_ = isWide;
        placeSubtitle();
        measure();
    } else {
        fold();
    }
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
    // Quiet, because the page itself may have a named button of the same command.
    button->setFlat(true);
    connect(button, &QPushButton::clicked, this, action.run);
    actions_->addWidget(button);
    if (action.progressTitle) {
        progress_.push_back({button, button->text(), action.progressTitle});
    }
}

}  // namespace tallowcrest
