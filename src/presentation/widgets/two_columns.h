#pragma once

#include <vector>

#include <QWidget>

class QBoxLayout;
class QVBoxLayout;

namespace tallowcrest {

/// Two stacks of widgets, side by side if both fit, otherwise one below the other. Main thread.
class TwoColumns final : public QWidget {
    Q_OBJECT

public:
    /// The width from which on the stacks are side by side.
    static constexpr int wide = 1000;

    explicit TwoColumns(QWidget* parent = nullptr);

    /// The stacks from top to bottom. Every widget has the height that it needs. Call once.
    void setColumns(const std::vector<QWidget*>& left, const std::vector<QWidget*>& right);

    /// The width of the narrower arrangement, whichever is in use.
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QBoxLayout* columns_ = nullptr;
    QVBoxLayout* left_ = nullptr;
    QVBoxLayout* right_ = nullptr;
};

}  // namespace tallowcrest
