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

/// Sets the tool tip and the accessible description of a widget to the same words, in the same way.
void setExplanation(QWidget& widget, const QString& words);

/// `text` with commas in place of the dots between its parts, which would be read out.
QString spokenText(const QString& text);

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

/// A button that is something else than a push button or a check box, such as a tab. Main thread.
class AccessibleButton {
public:
    virtual ~AccessibleButton() = default;

    virtual QAccessible::Role accessibleRole() const = 0;
    /// Adds the states of this role to those of every widget.
    virtual void addAccessibleState(QAccessible::State& state) const = 0;
};

/// Makes each press and toggle by assistive technology a click on the button: the owner of a value
/// hears only clicks. Applies to all buttons but tool buttons, which may open a menu. The kinds of
/// buttons call this in their constructors; repeated calls do nothing.
void installAccessibleButtons();

}  // namespace tallowcrest
