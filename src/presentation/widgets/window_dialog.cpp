#include "presentation/widgets/window_dialog.h"

namespace tallowcrest {

WindowDialog::WindowDialog(QWidget* window) : QDialog(window) {
    // Minimised on its own, it would leave its window locked for no visible reason.
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
}

}  // namespace tallowcrest
