#pragma once

#include <QWidget>

#include "presentation/widgets/accessibility.h"

namespace tallowcrest {

/// A chart on a card that also paints its background, so that new data repaint nothing below it.
/// Main thread.
class PaintedFigure : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit PaintedFigure(QWidget* parent = nullptr);

    QAccessible::Role accessibleRole() const override { return QAccessible::Chart; }

protected:
    /// Measures what depends on the fonts. Called when the fonts change; the subclass calls it
    /// first in its constructor.
    virtual void measure() = 0;
    /// Lays out what depends on the size and on those measures.
    virtual void arrange() = 0;
    /// Passes `accessibleValue()` on to assistive technology.
    void describe() { setSpokenDescription(*this, accessibleValue()); }

    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
};

}  // namespace tallowcrest
