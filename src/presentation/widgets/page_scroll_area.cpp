#include "presentation/widgets/page_scroll_area.h"

#include <QAccessibleWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

/// A type of its own, by which the accessibility factory recognises it.
class PageScrollArea final : public QScrollArea {
public:
    using QScrollArea::QScrollArea;
};

/// Qt's accessible interface of a scroll area does not check the index of a requested child. When a
/// page is hidden its scroll bar goes, and an assistive technology that is enumerating the children
/// at that moment would crash the program. The interface of a plain widget checks the index.
QAccessibleInterface* pageInterface(const QString&, QObject* object) {
    auto* area = dynamic_cast<PageScrollArea*>(object);
    return area != nullptr ? new QAccessibleWidget(area, QAccessible::Client) : nullptr;
}

void installPageInterface() {
    static const bool installed = [] {
        QAccessible::installFactory(pageInterface);
        return true;
    }();
    static_cast<void>(installed);
}

void scrollOn(QScrollArea& area, Qt::Key key, QAbstractSlider::SliderAction action) {
    // Works while the page is visible, wherever in its window the focus is.
    QObject::connect(new QShortcut(key, &area), &QShortcut::activated, &area,
                     [&area, action] { area.verticalScrollBar()->triggerAction(action); });
}

}  // namespace

QScrollArea* makePageScrollArea(QWidget* content, QWidget* parent) {
    installPageInterface();
    auto* area = new PageScrollArea(parent);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Always visible, so that the content keeps its width when a page outgrows the window.
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area->setWidget(content);
    // Transparent to the page's background.
    area->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    // Text and figures need no focus; the scroll keys work without it.
    area->setFocusPolicy(Qt::NoFocus);
    scrollOn(*area, Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd);
    scrollOn(*area, Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub);
    scrollOn(*area, Qt::Key_Home, QAbstractSlider::SliderToMinimum);
    scrollOn(*area, Qt::Key_End, QAbstractSlider::SliderToMaximum);
    return area;
}

QVBoxLayout* makePageColumn(QWidget& content) {
    auto* column = new QVBoxLayout(&content);
    // The scroll bar is part of the page's padding.
    column->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding - spacing::scrollBar,
                               spacing::pagePadding);
    column->setSpacing(spacing::gap);
    return column;
}

QScrollArea* scrollOnPage(QWidget* content, QWidget& page) {
    auto* layout = new QVBoxLayout(&page);
    layout->setContentsMargins(0, 0, 0, 0);
    QScrollArea* area = makePageScrollArea(content, &page);
    layout->addWidget(area);
    return area;
}

}  // namespace tallowcrest
