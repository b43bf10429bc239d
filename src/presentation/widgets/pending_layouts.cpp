#include "presentation/widgets/pending_layouts.h"

#include <QCoreApplication>
#include <QEvent>

namespace tallowcrest {

void arrangePendingLayouts() {
    constexpr int deepestNesting = 10;
    for (int round = 0; round < deepestNesting; ++round) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
}

}  // namespace tallowcrest
