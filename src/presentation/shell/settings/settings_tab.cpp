#include "presentation/shell/settings/settings_tab.h"

#include <QVBoxLayout>

#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

SettingsTab::SettingsTab(QWidget* parent) : QWidget(parent) {
    auto* content = new QWidget;
    cards_ = new QVBoxLayout(content);
    // The scroll bar takes its width from the padding of the sheet.
    cards_->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding - spacing::scrollBar,
                               0);
    cards_->setSpacing(spacing::gap);
    cards_->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new PageScrollArea(content, this));
}

void SettingsTab::addCard(QWidget* card) {
    cards_->insertWidget(cards_->count() - 1, card);
}

}  // namespace tallowcrest
