#pragma once

#include <QPushButton>

#include "presentation/widgets/theme.h"

namespace tallowcrest {

/// The button that carries out a change. Only a click or Space presses it: Return, which may have
/// been meant for something else, never does, even with the focus on it. Main thread.
class DangerButton final : public QPushButton {
    Q_OBJECT

public:
    struct Colors {
        QColor ground;
        QColor ink;  ///< of text and outline; its contrast with the ground is at least 4.5
    };

    explicit DangerButton(QWidget* parent = nullptr);

    /// Plain text: an ampersand is shown as it is. Also sets the accessible name.
    void setTitle(const QString& title);

    static Colors colors(const CrestTheme& theme, bool isHovered, bool isPressed);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
};

}  // namespace tallowcrest
