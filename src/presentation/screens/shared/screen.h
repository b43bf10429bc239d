#pragma once

#include <functional>
#include <vector>

#include <QString>
#include <QWidget>

#include "core/outcome.h"
#include "presentation/words/commands.h"

namespace tallowcrest {

class Observable;

/// A button that a screen has in the page header.
struct HeaderAction {
    Command command;
    QString identifier;
    std::function<void()> run;
    /// The title in the present state, such as while what it began is under way; empty for that of
    /// the command.
    std::function<QString()> progressTitle = {};
};

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

    /// The buttons that stand before "Refresh" in the page header while the screen is visible, from
    /// left to right.
    virtual std::vector<HeaderAction> headerActions() { return {}; }

    /// Scrolls to the row of the process under review, if the screen has one.
    virtual void showSelection() {}

    /// Gives the keyboard focus to the search field, if the screen has one.
    virtual void focusSearch() {}

signals:
    /// The owner selected a process in the page header, possibly the one already under review.
    void selectionMade();

protected:
    /// Emits `selectionMade` if the outcome is accepted; after a refusal the previous selection
    /// stays.
    void announceSelection(const Outcome& outcome) {
        if (outcome.isAccepted()) {
            emit selectionMade();
        }
    }
};

}  // namespace tallowcrest
