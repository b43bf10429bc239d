#pragma once

#include <vector>

#include <QWidget>

namespace tallowcrest {

class Observable;

/// What a route shows below the page header. Only the screen that can be seen is asked to refresh,
/// and it is asked again when it comes into view. Main thread.
class Screen : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Reads the monitor's state and shows it.
    virtual void refresh() = 0;
    /// What the screen shows: while it is seen, a change of any of these refreshes it, and nothing
    /// else does.
    virtual std::vector<Observable*> shows() const = 0;

    /// Brings what is under review into view, where the screen lists it.
    virtual void showSelection() {}

    /// Puts the keyboard into the screen's search field, where there is one.
    virtual void focusSearch() {}
};

}  // namespace tallowcrest
