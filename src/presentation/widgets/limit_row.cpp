#include "presentation/widgets/limit_row.h"

#include <utility>

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/spoken.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

LimitRow::LimitRow(const QString& title, const QString& identifier, const SliderScale& scale,
                   Binding binding, QWidget* parent)
    : QWidget(parent), binding_(std::move(binding)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* words = new QHBoxLayout;
    words->setSpacing(spacing::gap);
    auto* name = new ElidedLabel(title, onCard(&CrestFonts::body), this);
    value_ = new ElidedLabel(onCard(&CrestFonts::heading), this);
    value_->setObjectName(identifier + u".value"_s);
    value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value_->setReservedText(binding_.words(scale.maximum));
    words->addWidget(name, 1);
    words->addWidget(value_);
    layout->addLayout(words);
    slider_ = new StepSlider(scale, this);
    slider_->setObjectName(identifier);
    slider_->setAccessibleName(title);
    layout->addWidget(slider_);
    connect(slider_, &StepSlider::moved, this, &LimitRow::take);
    refresh();
}

void LimitRow::take(double value) {
    binding_.write(value);
    refresh();
}

void LimitRow::refresh() {
    const double value = binding_.read();
    const QString words = binding_.words(value);
    slider_->show(value);
    slider_->setValueText(words);
    setSpokenDescription(*slider_, words);
    value_->setText(words);
}

}  // namespace tallowcrest
