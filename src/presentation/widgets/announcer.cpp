#include "presentation/widgets/announcer.h"

#include <QAccessible>
#include <QWidget>

#include "presentation/widgets/accessibility.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// For each window. Far more than are announced before a screen reader has asked for the first.
constexpr qsizetype keptAnnouncers = 16;

/// One text for a screen reader, never visible. It says the name of a notification that appears,
/// but asks for it only later. So the name never changes.
class Announcer final : public QWidget, public AccessibleFigure {
public:
    explicit Announcer(QWidget* window) : QWidget(window) {
        installAccessibleFigures();
        setObjectName(identifier());
        if (!window->isVisible()) {
            // Or it would be shown together with the window. In a visible one it is hidden anyway,
            // and this would lay the window out again.
            hide();
        }
    }

    static QString identifier() { return u"announcer"_s; }

    QAccessible::Role accessibleRole() const override { return QAccessible::Notification; }
    /// Empty: the name says it.
    QString accessibleValue() const override { return {}; }
};

}  // namespace

// Qt has an event for announcements since version 6.8, which is newer than the oldest one that this
// program is built with. It belongs here.
void announce(QWidget& widget, const QString& text) {
    if (text.isEmpty()) {
        return;
    }
    QWidget* window = widget.window();
    const auto earlier =
        window->findChildren<QWidget*>(Announcer::identifier(), Qt::FindDirectChildrenOnly);
    if (earlier.size() >= keptAnnouncers) {
        delete earlier.first();
    }
    auto* announcer = new Announcer(window);
    setSpokenName(*announcer, text);
    QAccessibleEvent appeared(announcer, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&appeared);
}

}  // namespace tallowcrest
