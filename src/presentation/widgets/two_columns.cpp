#include "presentation/widgets/two_columns.h"

#include <algorithm>

#include <QVBoxLayout>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

TwoColumns::TwoColumns(QWidget* parent)
    : QWidget(parent), columns_(new QBoxLayout(QBoxLayout::TopToBottom, this)) {
    columns_->setContentsMargins(0, 0, 0, 0);
    columns_->setSpacing(spacing::gap);
    for (QVBoxLayout** column : {&left_, &right_}) {
        *column = new QVBoxLayout;
        (*column)->setSpacing(spacing::gap);
        columns_->addLayout(*column, 1);
    }
}

void TwoColumns::setColumns(const std::vector<QWidget*>& left, const std::vector<QWidget*>& right) {
    const auto fill = [](QVBoxLayout* column, const std::vector<QWidget*>& widgets) {
        for (QWidget* widget : widgets) {
            column->addWidget(widget);
        }
        column->addStretch(1);
    };
    fill(left_, left);
    fill(right_, right);
}

QSize TwoColumns::minimumSizeHint() const {
    return {std::max(left_->minimumSize().width(), right_->minimumSize().width()),
            columns_->minimumSize().height()};
}

void TwoColumns::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const auto direction = width() >= wide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    if (columns_->direction() != direction) {
        columns_->setDirection(direction);
        updateGeometry();
    }
}

}  // namespace tallowcrest
