#include "presentation/widgets/window_dialog.h"

namespace tallowcrest {

WindowDialog::WindowDialog(QWidget* window) : QDialog(window) {
    // Put away on its own, it would leave its window locked for no reason that can be seen.
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                   Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
}

}  // namespace tallowcrest
