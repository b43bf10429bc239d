#include "presentation/widgets/section_card.h"

#include <QVBoxLayout>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

SectionCard::SectionCard(const QString& icon, const QString& title, QWidget* parent)
    : Card(parent) {
    installAccessibleFigures();
    setAccessibleName(title);
    // The header includes the card's padding, so that all of it is clickable.
    layout()->setContentsMargins(0, 0, 0, 0);
    layout()->setSpacing(0);
    contentLayout()->setSpacing(0);
    header_ = new SectionHeader(icon, title, this);
    contentLayout()->addWidget(header_);
    below_ = new QVBoxLayout;
    below_->setSpacing(spacing::unit);
    contentLayout()->addLayout(below_, 1);
    body_ = new QWidget(this);
    bodyLayout_ = new QVBoxLayout(body_);
    bodyLayout_->setContentsMargins(0, 0, 0, 0);
    bodyLayout_->setSpacing(spacing::unit);
    below_->addWidget(body_, 1);
    fitMargins();
}

void SectionCard::setSectionCaption(const QString& text) {
    if (caption_ == nullptr && text.isEmpty()) {
        return;
    }
    caption()->setText(text);
    if (caption_->isHidden() != text.isEmpty()) {
        caption_->setVisible(!text.isEmpty());
        fitMargins();
    }
}

void SectionCard::reserveSectionCaption(const QString& pattern) {
    caption()->setReservedText(pattern);
}

ElidedLabel* SectionCard::caption() {
    if (caption_ == nullptr) {
        caption_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText));
        caption_->setLines(1, 2);
        below_->insertWidget(0, caption_);
        // Assistive technology reads the children in their order.
        caption_->stackUnder(body_);
        fitMargins();
    }
    return caption_;
}

void SectionCard::setCollapsed(bool collapsed) {
    if (collapsed == isCollapsed()) {
        return;
    }
    header_->setExpanded(!collapsed);
    body_->setVisible(!collapsed);
    fitMargins();
    update();
}

void SectionCard::fitMargins() {
    const bool isEmpty = isCollapsed() && (caption_ == nullptr || caption_->isHidden());
    const int side = spacing::cardPadding;
    below_->setContentsMargins(side, 0, side, isEmpty ? 0 : side);
}

}  // namespace tallowcrest
