#pragma once

#include <QWidget>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// A thin bar that is filled to a percentage, on a card. It stands beside a text that says the
/// same, so assistive technology hears nothing of it. Main thread.
class LevelBar final : public QWidget {
    Q_OBJECT

public:
    explicit LevelBar(QWidget* parent = nullptr);

    /// From 0 to 100; what is beyond is limited.
    void setLevel(int percent, const ThemeColor& color);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int level_ = 0;
    ThemeColor color_ = &CrestTheme::accent;
};

}  // namespace tallowcrest
