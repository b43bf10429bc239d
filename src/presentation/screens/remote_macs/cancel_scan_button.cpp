#include "presentation/screens/remote_macs/cancel_scan_button.h"

#include <QPushButton>

#include "presentation/widgets/button.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

QPushButton* makeCancelScanButton(const QString& identifier, QWidget* parent) {
    QPushButton* button = makeButton(
        u"Cancel"_s, QString(), identifier,
        u"Ends the scan. Machines that it has not reached keep their records."_s, parent);
    button->setAccessibleName(u"Cancel the scan"_s);
    button->setFlat(true);
    button->hide();
    return button;
}

void showCancelScanButton(QPushButton& button, const ScanTexts& scan) {
    const bool isScanning = !scan.progress.isEmpty();
    // Before it is hidden: a hidden button would pass the focus on.
    setButtonEnabled(button, isScanning && !scan.isCanceling);
    button.setVisible(isScanning);
}

}  // namespace tallowcrest
