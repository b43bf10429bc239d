#pragma once

#include <optional>

#include <QAccessible>
#include <QString>

namespace tallowcrest {

/// A widget that paints what others would show with several controls. Assistive technology gets its
/// content through this. Main thread.
class AccessibleFigure {
public:
    virtual ~AccessibleFigure() = default;

    virtual QAccessible::Role accessibleRole() const = 0;
    /// What the figure shows now, in words.
    virtual QString accessibleValue() const = 0;
    /// The same as a percentage, where one number is the whole content.
    virtual std::optional<double> accessiblePercent() const { return std::nullopt; }
    /// True when the figure says all that the widgets within it say, which are then left out.
    virtual bool saysAllWithin() const { return false; }
};

/// Makes Qt ask every `AccessibleFigure` for its role and value. Each figure calls this as it is
/// built; repeated calls do nothing.
void installAccessibleFigures();

}  // namespace tallowcrest
