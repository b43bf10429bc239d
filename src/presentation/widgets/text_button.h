#pragma once

#include <QAbstractButton>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// A flat button that is only a text in the size of a caption, on a card. Below the pointer it is
/// underlined. Main thread.
class TextButton final : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int buttonHeight = 3 * spacing::unit;

    TextButton(const QString& identifier, const ThemeColor& color, QWidget* parent = nullptr);

    void setColor(const ThemeColor& color);
    /// Where a text narrower than the button stands.
    void setAlignment(Qt::Alignment alignment);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void enterEvent(QEnterEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    ThemeColor color_;
    Qt::Alignment alignment_ = Qt::AlignLeft;
};

}  // namespace tallowcrest
