#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

#include "presentation/widgets/accessible_figure.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// "High" at or over 85, "Elevated" at or over 70, otherwise "Normal". `value` is a percentage;
/// what is not finite counts as 0.
QString gaugeStateWord(double value);

/// The colour that goes with the state word of `value`: bad, caution or good.
ThemeColor gaugeStateColor(double value);

/// A ring that is filled to a percentage, with the figure in its middle, on the ground of a card.
/// Main thread.
class GaugeRing : public QWidget {
    Q_OBJECT

public:
    explicit GaugeRing(QWidget* parent = nullptr);

    /// `value` is a percentage and is clamped to 0 to 100. Repaints only what can be seen to
    /// change.
    void setValue(double value);
    double value() const { return value_; }
    /// Without a value the ring is empty and a dash stands for the figure. So it is at first.
    void clearValue();
    bool hasValue() const { return hasValue_; }
    void setTint(const ThemeColor& tint);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QPixmap& emptyRing(const CrestTheme& theme);

    double value_ = 0;
    bool hasValue_ = false;
    ThemeColor tint_ = &CrestTheme::accent;
    // The ground and the ring at 0 percent, drawn anew only for other colours: a wide arc is dear.
    QPixmap emptyRing_;
    QColor emptyRingTrack_;
    QColor emptyRingGround_;
};

/// A percentage at a glance: ring and figure, title, state word and detail. Takes plain values.
/// Main thread.
class GaugeCard : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    explicit GaugeCard(const QString& title, const ThemeColor& tint = &CrestTheme::accent,
                       QWidget* parent = nullptr);

    /// `value` is a percentage and is clamped to 0 to 100; what is not finite counts as 0.
    void setValue(double value);
    double value() const { return ring_->value(); }
    /// Says that there is nothing to say yet: no figure, no state. So it is at first.
    void clearValue();
    void setTitle(const QString& title);
    void setDetail(const QString& detail);
    /// Independent of the state word, which has its own colour.
    void setTint(const ThemeColor& tint);

    QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }
    /// For example "42%, Normal, 42.3% normalized across cores".
    QString accessibleValue() const override;
    std::optional<double> accessiblePercent() const override {
        return ring_->hasValue() ? std::optional(value()) : std::nullopt;
    }

private:
    void showState();

    GaugeRing* ring_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* state_ = nullptr;
    ElidedLabel* detail_ = nullptr;
};

}  // namespace tallowcrest
