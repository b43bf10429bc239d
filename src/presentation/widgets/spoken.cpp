#include "presentation/widgets/spoken.h"

#include <QWidget>

namespace tallowcrest {

void setSpokenName(QWidget& widget, const QString& name) {
    if (name != widget.accessibleName()) {
        widget.setAccessibleName(name);
    }
}

void setSpokenDescription(QWidget& widget, const QString& description) {
    if (description != widget.accessibleDescription()) {
        widget.setAccessibleDescription(description);
    }
}

}  // namespace tallowcrest
