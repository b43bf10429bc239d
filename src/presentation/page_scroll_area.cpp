#include "presentation/page_scroll_area.h"

#include <QScrollArea>

namespace tallowcrest {

QScrollArea* makePageScrollArea(QWidget* content, QWidget* parent) {
    auto* area = new QScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Its room is always kept, so that nothing moves when a page grows beyond the window.
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area->setWidget(content);
    // The page's own background shows through.
    area->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    return area;
}

}  // namespace tallowcrest
