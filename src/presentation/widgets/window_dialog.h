#pragma once

#include <QDialog>

namespace tallowcrest {

/// A dialog that hangs on the whole window and stands while the monitor's state asks for it.
/// Main thread.
class WindowDialog : public QDialog {
    Q_OBJECT

public:
    explicit WindowDialog(QWidget* window);

    /// Opens, changes or closes the dialog as the monitor's state asks for.
    virtual void refresh() = 0;
};

}  // namespace tallowcrest
