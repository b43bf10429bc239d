#include "presentation/widgets/page_scroll_area.h"

#include <QAccessibleWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

#include "presentation/widgets/theme.h"

namespace tallowcrest {
namespace {

/// Told apart from other scroll areas by its type alone.
class PageScrollArea final : public QScrollArea {
public:
    using QScrollArea::QScrollArea;
};

/// Qt's own description of a scroll area is asked for children by their number and trusts it. When
/// the page gives way to another one its scroll bar goes, and an assistive technology that is just
/// counting through the children would end the program. A plain widget's description looks first.
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
    // In effect as long as the page shows, wherever in the window the keyboard is.
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
    // Its room is always kept, so that nothing moves when a page grows beyond the window.
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area->setWidget(content);
    // The page's own background shows through.
    area->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    // An area of text and figures is nothing to step into; its keys work without that.
    area->setFocusPolicy(Qt::NoFocus);
    scrollOn(*area, Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd);
    scrollOn(*area, Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub);
    scrollOn(*area, Qt::Key_Home, QAbstractSlider::SliderToMinimum);
    scrollOn(*area, Qt::Key_End, QAbstractSlider::SliderToMaximum);
    return area;
}

QVBoxLayout* makePageColumn(QWidget& content) {
    auto* column = new QVBoxLayout(&content);
    // The scroll bar stands within the page's own padding.
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
