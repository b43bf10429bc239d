#pragma once

#include <QDialog>

namespace tallowcrest {

/// A dialog over the whole window that is open as long as its state asks for it. Main thread.
class WindowDialog : public QDialog {
    Q_OBJECT

public:
    explicit WindowDialog(QWidget* window);

    /// Opens, updates or closes the dialog according to its state.
    virtual void refresh() = 0;
};

}  // namespace tallowcrest
