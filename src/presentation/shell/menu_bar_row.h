#pragma once

#include <QPushButton>

namespace tallowcrest {

/// One command of the menu bar panel: a row as wide as the panel with its icon in a column at the
/// left, as in a menu. Main thread.
class MenuBarRow final : public QPushButton {
    Q_OBJECT

public:
    static constexpr int rowHeight = 28;

    /// `icon` is the name of a line icon; an unknown one leaves its place empty.
    MenuBarRow(const QString& title, const QString& icon, const QString& identifier,
               QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// Marks a command that stops something.
    void setDanger(bool isDanger);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, rowHeight}; }

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
    bool isDanger_ = false;
};

}  // namespace tallowcrest
