#pragma once

#include <QString>

class QPushButton;
class QWidget;

namespace tallowcrest {

/// How far a scan is.
struct ScanTexts {
    QString progress;  ///< of the running scan; empty while none runs
    bool isCanceling = false;
};

/// A button that ends the running scan, hidden until one runs. Main thread.
QPushButton* makeCancelScanButton(const QString& identifier, QWidget* parent);

/// Shows the button while a scan runs, and enables it until that was canceled.
void showCancelScanButton(QPushButton& button, const ScanTexts& scan);

}  // namespace tallowcrest
