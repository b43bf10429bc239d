#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// "High" from 85 on, "Elevated" from 70 on, otherwise "Normal". `value` is a percentage; a value
/// that is not finite counts as 0.
QString gaugeStateWord(double value);

/// The colour that goes with the state word of `value`: bad, caution or good.
ThemeColor gaugeStateColor(double value);

/// A ring filled to a percentage, with the figure in its middle and the background of a card. Main
/// thread.
class GaugeRing : public QWidget {
    Q_OBJECT

public:
    explicit GaugeRing(QWidget* parent = nullptr);

    /// `value` is a percentage and is clamped to 0 to 100; `figure` is its text. The arc moves
    /// together with the figure: the same text repaints nothing.
    void setValue(double value, const QString& figure);
    double value() const { return value_; }
    /// Empty without a value.
    const QString& figure() const { return figure_; }
    /// Shows an empty ring and a dash in place of the figure, as it does initially.
    void clearValue();
    bool hasValue() const { return !figure_.isEmpty(); }
    void setTint(const ThemeColor& tint);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QPixmap& emptyRing(const CrestTheme& theme);

    double value_ = 0;
    QString figure_;  ///< empty without a value
    ThemeColor tint_ = &CrestTheme::accent;
    // Background and empty ring, cached until the colours change: a wide arc is expensive.
    QPixmap emptyRing_;
    QColor emptyRingTrack_;
    QColor emptyRingGround_;
};

/// A percentage at a glance: ring and figure, title, state word and detail. Takes plain values.
/// Main thread.
class GaugeCard : public Card, public AccessibleFigure {
    Q_OBJECT

public:
    explicit GaugeCard(const QString& title, QWidget* parent = nullptr);

    /// `value` is a percentage and is clamped to 0 to 100; a value that is not finite counts as 0.
    /// It gives the state word and the colour. `figure` is its text, for example "42%".
    void setValue(double value, const QString& figure, const QString& detail);
    double value() const { return ring_->value(); }
    /// Shows no figure and no state, as it does initially, and `detail`.
    void clearValue(const QString& detail);
    void setTitle(const QString& title);

    QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }
    /// For example "42%, Normal, 42.3% normalized across cores".
    QString accessibleValue() const override;
    std::optional<double> accessiblePercent() const override {
        return ring_->hasValue() ? std::optional(value()) : std::nullopt;
    }

private:
    void showState(const QString& detail);

    GaugeRing* ring_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* state_ = nullptr;
    ElidedLabel* detail_ = nullptr;
};

}  // namespace tallowcrest
