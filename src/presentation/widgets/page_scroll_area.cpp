#include "presentation/widgets/page_scroll_area.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QAccessibleWidget>
#include <QEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

/// Qt's accessible interface of a scroll area does not check the index of a requested child. When a
/// page is hidden its scroll bar goes, and an assistive technology that is enumerating the children
/// at that moment would crash the program. The interface of a plain widget checks the index.
QAccessibleInterface* pageInterface(const QString&, QObject* object) {
    auto* area = dynamic_cast<PageScrollArea*>(object);
    return area != nullptr ? new QAccessibleWidget(area, QAccessible::Client) : nullptr;
}

constexpr std::array<std::pair<Qt::Key, QAbstractSlider::SliderAction>, 4> scrollKeys{
    {{Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd},
     {Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
     {Qt::Key_Home, QAbstractSlider::SliderToMinimum},
     {Qt::Key_End, QAbstractSlider::SliderToMaximum}}};

void scrollOn(QScrollArea& area, Qt::Key key, QAbstractSlider::SliderAction action) {
    // Works while the page is visible, wherever in its window the focus is.
    QObject::connect(new QShortcut(key, &area), &QShortcut::activated, &area,
                     [&area, action] { area.verticalScrollBar()->triggerAction(action); });
}

}  // namespace

bool isPageScrollKey(int key) {
    return std::ranges::any_of(scrollKeys, [key](const auto& each) { return each.first == key; });
}

PageScrollArea::PageScrollArea(QWidget* content, QWidget* parent) : QScrollArea(parent) {
    QAccessible::installFactory(pageInterface);  // which Qt keeps once
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Always visible, so that the content keeps its width when a page outgrows the window.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setWidget(content);
    // Transparent to the page's background.
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    // Text and figures need no focus; the scroll keys work without it.
    setFocusPolicy(Qt::NoFocus);
    for (const auto& [key, action] : scrollKeys) {
        scrollOn(*this, key, action);
    }
}

int PageScrollArea::placeInView(const QWidget& widget) const {
    return widget.mapTo(viewport(), QPoint()).y();
}

void PageScrollArea::keepInPlace(QWidget* widget) {
    kept_ = widget;
    keptPlace_ = widget != nullptr ? placeInView(*widget) : 0;
}

bool PageScrollArea::eventFilter(QObject* watched, QEvent* event) {
    const QScopedValueRollback arranging(isArranging_, true);
    // Qt gives the content its new size and the scroll bar its new range.
    const bool isFiltered = QScrollArea::eventFilter(watched, event);
    const bool isLaidOut = watched == widget() && (event->type() == QEvent::LayoutRequest ||
                                                   event->type() == QEvent::Resize);
    const QWidget* kept = kept_.data();
    if (isLaidOut && kept != nullptr && kept->isVisible()) {
        QScrollBar* bar = verticalScrollBar();
        bar->setValue(bar->value() + placeInView(*kept) - keptPlace_);
    }
    return isFiltered;
}

void PageScrollArea::scrollContentsBy(int dx, int dy) {
    QScrollArea::scrollContentsBy(dx, dy);
    if (!isArranging_) {
        kept_.clear();
        emit scrolled();
    }
}

QVBoxLayout* makePageColumn(QWidget& content) {
    auto* column = new QVBoxLayout(&content);
    // The scroll bar is part of the page's padding.
    column->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding - spacing::scrollBar,
                               spacing::pagePadding);
    column->setSpacing(spacing::gap);
    return column;
}

PageScrollArea* scrollOnPage(QWidget* content, QWidget& page) {
    auto* layout = new QVBoxLayout(&page);
    layout->setContentsMargins(0, 0, 0, 0);
    // The lines of text would become too long to read.
    content->setMaximumWidth(spacing::widestContent + 2 * spacing::pagePadding -
                             spacing::scrollBar);
    auto* area = new PageScrollArea(content, &page);
    layout->addWidget(area);
    return area;
}

}  // namespace tallowcrest
