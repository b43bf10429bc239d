#include "presentation/widgets/painted_figure.h"

#include <QEvent>

namespace tallowcrest {

PaintedFigure::PaintedFigure(QWidget* parent) : QWidget(parent) {
    installAccessibleFigures();
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PaintedFigure::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        measure();
        arrange();
        updateGeometry();
        update();
    }
    QWidget::changeEvent(event);
}

void PaintedFigure::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

}  // namespace tallowcrest
