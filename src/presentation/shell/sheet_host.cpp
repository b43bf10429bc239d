#include "presentation/shell/sheet_host.h"

#include <algorithm>
#include <ranges>
#include <utility>

#include <QKeyEvent>

namespace tallowcrest {

Sheet::Sheet(QWidget* window) : WindowDialog(window) {}

void Sheet::refresh() {
    if (isVisible()) {
        showState();
        return;
    }
    start();
    showState();
    firstControl()->setFocus();
    open();
}

void Sheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        // It ended an entry, or the focused control has no use for it. A button with the focus
        // takes the key itself, so Return still closes the sheet on its closing button.
        return;
    }
    WindowDialog::keyPressEvent(event);
}

SheetHost::SheetHost(QWidget& window, QAction& action, MainQueue& mainQueue)
    : QObject(&window), window_(window), action_(action), mainQueue_(mainQueue) {}

void SheetHost::add(Entry entry) {
    Kept& kept = sheets_.emplace_back();
    kept.entry = std::move(entry);
    kept.changes.emplace(mainQueue_, [this, &kept] { update(kept); });
    kept.changes->observe(kept.entry.shows);
}

void SheetHost::refresh() {
    for (Kept& each : sheets_) {
        update(each);
    }
}

bool SheetHost::canBeSeen() const {
    return window_.isVisible() && !window_.isMinimized();
}

void SheetHost::update(Kept& kept) {
    if (!canBeSeen()) {
        return;
    }
    if (kept.isOpen() && !kept.entry.isWanted()) {
        kept.dialog->done(QDialog::Rejected);
    }
    if (kept.isOpen()) {
        kept.dialog->refresh();
        emit refreshed(kept.dialog);
    }
    if (std::ranges::any_of(sheets_, [](const Kept& each) { return each.entry.isWanted(); })) {
        // Queued, because the window itself may be about to appear.
        QMetaObject::invokeMethod(this, &SheetHost::openTopmost, Qt::QueuedConnection);
    }
}

void SheetHost::openTopmost() {
    if (!canBeSeen()) {
        return;
    }
    for (Kept& each : std::views::reverse(sheets_)) {
        if (each.entry.isWanted()) {
            open(each);
            return;
        }
    }
}

void SheetHost::open(Kept& kept) {
    if (kept.dialog == nullptr) {
        kept.dialog = kept.entry.make(&window_);
        kept.dialog->addAction(&action_);
        if (kept.entry.dismissed) {
            connect(kept.dialog, &QDialog::finished, this, kept.entry.dismissed);
        }
    }
    if (!kept.dialog->isVisible()) {
        kept.dialog->refresh();
    }
}

void SheetHost::comeForward() {
    for (Kept& each : sheets_) {
        if (each.isOpen()) {
            each.dialog->raise();
            each.dialog->activateWindow();
        }
    }
}

void SheetHost::closeAll() {
    for (Kept& each : sheets_) {
        if (each.isOpen()) {
            each.dialog->reject();
        }
    }
}

}  // namespace tallowcrest
