#pragma once

#include <optional>

#include <QAccessible>
#include <QString>

class QWidget;

namespace tallowcrest {

/// Set the accessible name or description of a widget, only if it differs from the present one: Qt
/// announces every set text, and many are refreshed with each sample. Main thread.
void setSpokenName(QWidget& widget, const QString& name);
void setSpokenDescription(QWidget& widget, const QString& description);

/// A widget that paints its content itself instead of composing it of controls, and describes it to
/// assistive technology through this interface. Main thread.
class AccessibleFigure {
public:
    virtual ~AccessibleFigure() = default;

    virtual QAccessible::Role accessibleRole() const = 0;
    /// What the widget shows now, in words.
    virtual QString accessibleValue() const = 0;
    /// The same as a percentage; absent unless the content is one percentage.
    virtual std::optional<double> accessiblePercent() const { return std::nullopt; }
    /// True to hide the widget's children from assistive technology, because the value repeats
    /// them.
    virtual bool saysAllWithin() const { return false; }
};

/// Makes Qt ask every `AccessibleFigure` for its role and value. Each one calls this in its
/// constructor; repeated calls do nothing.
void installAccessibleFigures();

}  // namespace tallowcrest
