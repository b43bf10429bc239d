#include "presentation/widgets/card.h"

#include <algorithm>
#include <utility>

#include <QHBoxLayout>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

Card::Card(QWidget* parent) : QWidget(parent) {
    outer_ = new QVBoxLayout(this);
    outer_->setContentsMargins(spacing::cardPadding, spacing::cardPadding, spacing::cardPadding,
                               spacing::cardPadding);
    outer_->setSpacing(spacing::unit);
    content_ = new QVBoxLayout;
    content_->setSpacing(spacing::unit);
    outer_->addLayout(content_, 1);
}

QHBoxLayout* Card::headerLayout() {
    if (header_ == nullptr) {
        header_ = new QHBoxLayout;
        header_->setSpacing(spacing::unit);
        icon_ = new IconView(QString(), &CrestTheme::secondaryText);
        heading_ = new ElidedLabel({&CrestFonts::heading});
        header_->addWidget(icon_);
        header_->addWidget(heading_, 1);
        outer_->insertLayout(0, header_);
    }
    return header_;
}

void Card::setHeader(const QString& icon, const QString& heading) {
    headerLayout();
    icon_->setIcon(icon);
    icon_->setVisible(!icon.isEmpty());
    heading_->setText(heading);
    setSpokenName(*this, heading);
}

void Card::setCaption(const QString& text) {
    if (caption_ == nullptr && text.isEmpty()) {
        return;
    }
    caption()->setText(text);
    caption()->setVisible(!text.isEmpty());
}

void Card::setFrameless() {
    isFrameless_ = true;
    outer_->setContentsMargins(0, 0, 0, 0);
    setMinimumWidth(std::max(0, minimumWidth() - 2 * spacing::cardPadding));
}

void Card::reserveCaption(const QString& pattern) {
    caption()->setReservedText(pattern);
}

ElidedLabel* Card::caption() {
    if (caption_ == nullptr) {
        caption_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText));
        caption_->setLines(1, 2);
        outer_->insertWidget(header_ == nullptr ? 0 : 1, caption_);
    }
    return caption_;
}

void Card::paintEvent(QPaintEvent* event) {
    if (isFrameless_) {
        return;
    }
    const CrestTheme& theme = CrestTheme::current();
    QPainter painter(this);
    // Most paint events only clear the background of one changed figure. Away from the border a
    // plain fill does that at a fraction of the rounded outline's cost.
    const int corner = spacing::cardRadius;
    if (rect().adjusted(corner, 1, -corner, -1).contains(event->rect()) ||
        rect().adjusted(1, corner, -1, -corner).contains(event->rect())) {
        painter.fillRect(event->rect(), theme.cardBackground);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    // Two filled shapes: to stroke an outline costs ten times as much.
    painter.setPen(Qt::NoPen);
    for (const auto& [color, inset] : {std::pair(theme.hairline, 0), {theme.cardBackground, 1}}) {
        painter.setBrush(color);
        const double radius = spacing::cardRadius + 0.5 - inset;
        painter.drawRoundedRect(rect().adjusted(inset, inset, -inset, -inset), radius, radius);
    }
}

}  // namespace tallowcrest
