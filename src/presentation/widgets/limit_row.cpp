#include "presentation/widgets/limit_row.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

LimitRow::LimitRow(const QString& title, const QString& unit, const QString& identifier,
                   const SliderScale& scale, Words words, QWidget* parent)
    : QWidget(parent), words_(words) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* texts = new QHBoxLayout;
    texts->setSpacing(spacing::gap);
    auto* name = new ElidedLabel(title, onCard(&CrestFonts::body), this);
    value_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    value_->setObjectName(identifier + u".value"_s);
    value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value_->setReservedText(words_(scale.maximum));
    texts->addWidget(name, 1);
    texts->addWidget(value_);
    layout->addLayout(texts);
    slider_ = new StepSlider(scale, this);
    slider_->setObjectName(identifier);
    // A screen reader says only the figure when the slider moves.
    slider_->setAccessibleName(title + u", "_s + unit);
    slider_->setAccessibleDescription(
        u"From %1 to %2"_s.arg(words_(scale.minimum), words_(scale.maximum)));
    layout->addWidget(slider_);
    connect(slider_, &StepSlider::moved, this, &LimitRow::moved);
}

void LimitRow::show(double value) {
    const QString words = words_(value);
    slider_->show(value);
    slider_->setValueText(words);
    value_->setText(words);
}

}  // namespace tallowcrest
