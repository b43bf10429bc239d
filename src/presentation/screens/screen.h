#pragma once

#include <vector>

#include <QWidget>

namespace tallowcrest {

class Observable;

/// The content of a route below the page header. Only the visible screen is refreshed, and it is
/// refreshed again whenever it becomes visible. Main thread.
class Screen : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Reads the monitor's state and shows it.
    virtual void refresh() = 0;
    /// The observables that the screen shows: while it is visible, only their changes refresh it.
    virtual std::vector<Observable*> shows() const = 0;

    /// Scrolls to the row of the process under review, if the screen has one.
    virtual void showSelection() {}

    /// Gives the keyboard focus to the search field, if the screen has one.
    virtual void focusSearch() {}
};

}  // namespace tallowcrest
