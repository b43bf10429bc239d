#include "tests/presentation/shell/announcements.h"

#include <QAccessible>
#include <QApplication>

using namespace Qt::StringLiterals;

namespace {

tallowcrest::Announcements* listener = nullptr;

}  // namespace

// Qt sends no accessibility events while no assistive technology is active, and on the offscreen
// platform there is none; even an installed update handler is not called. So these definitions
// replace Qt's own: in an ELF program, those in the executable take precedence over those in a
// library.
bool QAccessible::isActive() {
    return listener != nullptr;
}

void QAccessible::updateAccessibility(QAccessibleEvent* event) {
    if (listener != nullptr) {
        listener->hear(*event);
    }
}

namespace tallowcrest {

Announcements::Announcements() {
    for (QWidget* widget : QApplication::allWidgets()) {
        known_[widget] = {widget, wordsOf(*widget)};
    }
    listener = this;
}

Announcements::~Announcements() {
    listener = nullptr;
}

Announcements::Words Announcements::wordsOf(const QWidget& widget) {
    return {widget.accessibleName(), widget.accessibleDescription()};
}

std::vector<std::string> Announcements::said() const {
    std::vector<std::string> names;
    for (const auto& object : said_) {
        if (object != nullptr) {
            names.push_back(QAccessible::queryAccessibleInterface(object)
                                ->text(QAccessible::Name)
                                .toStdString());
        }
    }
    return names;
}

void Announcements::hear(QAccessibleEvent& event) {
    QAccessibleInterface* source = event.accessibleInterface();
    if (source != nullptr && event.type() == QAccessible::ObjectShow &&
        source->role() == QAccessible::Notification) {
        said_.emplace_back(event.object());
    }
    if (source != nullptr && event.type() == QAccessible::Focus) {
        focused_.push_back(source->text(QAccessible::Name).toStdString());
    }
    auto* widget = qobject_cast<QWidget*>(event.object());
    if (widget == nullptr || (event.type() != QAccessible::NameChanged &&
                              event.type() != QAccessible::DescriptionChanged)) {
        return;
    }
    ++count_;
    const Words now = wordsOf(*widget);
    Known& known = known_[widget];
    if (known.widget != nullptr && known.words == now) {
        const bool isName = event.type() == QAccessible::NameChanged;
        repeated_.push_back(
            (widget->objectName() + u": "_s + (isName ? now.first : now.second)).toStdString());
    }
    known = {widget, now};
}

}  // namespace tallowcrest
