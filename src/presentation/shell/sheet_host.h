#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include <QObject>

#include "core/observable.h"
#include "presentation/widgets/window_dialog.h"

class QAction;

namespace tallowcrest {

/// A dialog over the window in which a person works for a while. It stays open until it is closed
/// or its state no longer asks for it; a `SheetHost` sees to that. Main thread.
class Sheet : public WindowDialog {
    Q_OBJECT

public:
    explicit Sheet(QWidget* window);

    /// Opens a sheet that is closed, and brings an open one up to date.
    void refresh() final;

protected:
    /// The sheet is about to open: what was left behind the last time is forgotten.
    virtual void start() {}
    virtual void showState() = 0;
    /// What has the keyboard when the sheet opens.
    virtual QWidget* firstControl() = 0;

    void keyPressEvent(QKeyEvent* event) override;
};

/// The dialogs over a window: opens those that the state asks for, keeps open ones up to date and
/// closes them. Only one of them opens at a time, and none below another. While the window cannot
/// be seen, nothing is done. Main thread.
class SheetHost final : public QObject {
    Q_OBJECT

public:
    struct Entry {
        /// What `isWanted` and the dialog read: a change of any of these brings the dialog in line
        /// with the state, and nothing else does.
        std::vector<Observable*> shows;
        /// Whether the state asks for the dialog.
        std::function<bool()> isWanted;
        /// Tells the state that the dialog was closed. Empty for a dialog that does so itself.
        std::function<void()> dismissed;
        /// Called when the dialog is first wanted.
        std::function<WindowDialog*(QWidget* window)> make;
    };

    /// The keys of `action` work in every dialog. The references must outlive the host.
    SheetHost(QWidget& window, QAction& action, MainQueue& mainQueue);

    /// A dialog opens above those that were added before it. While it is wanted, those do not open,
    /// because they would lock it.
    void add(Entry entry);

    /// Brings all dialogs in line with the state, because the window can be seen again. They open
    /// on a later turn of the event loop.
    void refresh();
    /// Raises the open dialogs; the topmost gets the keyboard.
    void comeForward();
    /// Rejects the open dialogs, because the window is closing.
    void closeAll();

signals:
    /// An open dialog has been brought up to date. For tests that count the work of a change.
    void refreshed(QObject* dialog);

private:
    struct Kept {
        Entry entry;
        WindowDialog* dialog = nullptr;  ///< null until it is first wanted
        std::optional<ObserverGroup> changes = {};

        bool isOpen() const { return dialog != nullptr && dialog->isVisible(); }
    };

    bool canBeSeen() const;
    void update(Kept& kept);
    void openTopmost();
    void open(Kept& kept);

    QWidget& window_;
    QAction& action_;
    MainQueue& mainQueue_;
    std::deque<Kept> sheets_;  ///< the topmost last
};

}  // namespace tallowcrest
