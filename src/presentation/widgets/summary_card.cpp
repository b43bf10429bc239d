#include "presentation/widgets/summary_card.h"

#include <QVBoxLayout>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

SummaryCard::SummaryCard(const QString& title, QWidget* parent) : Card(parent) {
    installAccessibleFigures();
    title_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText));
    value_ = new ElidedLabel(onCard(&CrestFonts::title));
    detail_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText));
    value_->setUnitColor(&CrestTheme::secondaryText);
    contentLayout()->setSpacing(spacing::unit / 2);
    contentLayout()->addWidget(title_);
    contentLayout()->addWidget(value_);
    contentLayout()->addWidget(detail_);
    contentLayout()->addStretch(1);
    setDetailLines(2, 4);
    setTitle(title);
}

void SummaryCard::setTitle(const QString& title) {
    title_->setText(title);
    setSpokenName(*this, title);
}

void SummaryCard::setValue(const QString& value) {
    value_->setText(value);
    setSpokenDescription(*this, accessibleValue());
}

void SummaryCard::setDetail(const QString& detail) {
    detail_->setText(detail);
    setSpokenDescription(*this, accessibleValue());
}

void SummaryCard::centerLines() {
    contentLayout()->insertStretch(0, 1);
}

QString SummaryCard::accessibleValue() const {
    if (value_->text().isEmpty() || detail_->text().isEmpty()) {
        return value_->text() + detail_->text();
    }
    return value_->text() + u", "_s + detail_->text();
}

void SummaryCard::setDetailLines(int minimum, int maximum) {
    detail_->setLines(minimum, maximum);
}

MetricCard::MetricCard(const QString& title, QWidget* parent) : SummaryCard(title, parent) {
    setDetailLines(1, 3);
}

}  // namespace tallowcrest
