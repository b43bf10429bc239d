#pragma once

#include <QAbstractButton>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/theme.h"

class QPainter;

namespace tallowcrest {

/// A row that collapses and expands what is below it, with a chevron for the state. The whole row
/// is one button; Return and Space toggle the state, the right arrow expands and the left one
/// collapses. To assistive technology it is a button that is expanded or collapsed. Main thread.
class CollapseButton : public QAbstractButton, public AccessibleButton {
    Q_OBJECT

public:
    explicit CollapseButton(bool isExpanded, QWidget* parent = nullptr);

    /// Only shows the state; the owner calls this in answer to `collapseWanted`.
    void setExpanded(bool expanded);
    bool isExpanded() const { return isExpanded_; }

    QAccessible::Role accessibleRole() const override { return QAccessible::Button; }
    void addAccessibleState(QAccessible::State& state) const override;

signals:
    void collapseWanted(bool collapsed);

protected:
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

    /// Sets the accessible description for the present state.
    virtual void describe() = 0;

    /// Paints what shows the pointer and the focus.
    void paintGround(QPainter& painter) const;
    /// The width of the chevron and the gap behind it.
    static constexpr int chevronRoom = spacing::iconSmall + spacing::unit;
    /// Paints the chevron at `left`, vertically centred on `middle`.
    void paintChevron(QPainter& painter, int left, int middle) const;

private:
    bool isExpanded_;
    bool hasRing_ = false;
};

}  // namespace tallowcrest
