#pragma once

#include <QPushButton>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// The button that carries a change out. It is pressed by a click or by Space alone: Return, which
/// a person may have meant for something else, never presses it, wherever the keyboard is.
/// Main thread.
class DangerButton final : public QPushButton {
    Q_OBJECT

public:
    struct Colors {
        QColor ground;
        QColor ink;  ///< of text and outline; its contrast with the ground is at least 4.5
    };

    explicit DangerButton(QWidget* parent = nullptr);

    /// Plain text, whatever it holds; also the accessible name.
    void setTitle(const QString& title);

    static Colors colors(const CrestTheme& theme, bool isHovered, bool isPressed);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
};

}  // namespace tallowcrest
