#include "presentation/widgets/flow_row.h"

#include <algorithm>

#include <QEvent>

#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

QSize wantedSize(const QWidget& item) {
    return item.sizeHint().expandedTo(item.minimumSize());
}

}  // namespace

FlowRow::FlowRow(int gap, QWidget* parent) : QWidget(parent), gap_(gap) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void FlowRow::addItem(QWidget* item) {
    item->setParent(this);
    item->show();
    items_.push_back(item);
    updateGeometry();
}

std::vector<QRect> FlowRow::places(int width) const {
    std::vector<QRect> found;
    std::size_t lineStart = 0;
    int lineHeight = 0;
    QPoint next;
    const auto endLine = [&] {
        for (std::size_t i = lineStart; i < found.size(); ++i) {
            found[i].translate(0, (lineHeight - found[i].height()) / 2);
        }
        next = {0, next.y() + lineHeight + spacing::unit};
        lineStart = found.size();
        lineHeight = 0;
    };
    for (const QWidget* item : items_) {
        const QSize size = wantedSize(*item);
        if (next.x() > 0 && next.x() + size.width() > width) {
            endLine();
        }
        found.emplace_back(next, size);
        next.rx() += size.width() + gap_;
        lineHeight = std::max(lineHeight, size.height());
    }
    endLine();
    return found;
}

int FlowRow::heightForWidth(int width) const {
    int height = 0;
    for (const QRect& place : places(width)) {
        height = std::max(height, place.bottom() + 1);
    }
    return height;
}

QSize FlowRow::sizeHint() const {
    QSize size(0, 0);
    for (const QWidget* item : items_) {
        const QSize wanted = wantedSize(*item);
        const int gap = size.width() > 0 ? gap_ : 0;
        size = {size.width() + gap + wanted.width(), std::max(size.height(), wanted.height())};
    }
    return size;
}

QSize FlowRow::minimumSizeHint() const {
    QSize size(0, 0);
    for (const QWidget* item : items_) {
        size = size.expandedTo(wantedSize(*item));
    }
    return size;
}

bool FlowRow::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        arrange();
    }
    return QWidget::event(event);
}

void FlowRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

void FlowRow::arrange() {
    const std::vector<QRect> found = places(width());
    for (std::size_t i = 0; i < items_.size(); ++i) {
        items_[i]->setGeometry(found[i]);
    }
}

}  // namespace tallowcrest
