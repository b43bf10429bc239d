#include "presentation/widgets/arrange_now.h"

#include <QCoreApplication>
#include <QWidget>

namespace tallowcrest {

void arrangeNow(QWidget& widget) {
    // Children first: only when a child is laid out does its parent learn of its new size.
    const QObjectList children = widget.children();
    for (QObject* child : children) {
        auto* inner = qobject_cast<QWidget*>(child);
        if (inner != nullptr && !inner->isHidden() && !inner->isWindow()) {
            arrangeNow(*inner);
        }
    }
    QCoreApplication::sendPostedEvents(&widget, QEvent::LayoutRequest);
}

}  // namespace tallowcrest
