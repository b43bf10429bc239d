#pragma once

#include <vector>

#include <QWidget>

class QBoxLayout;
class QVBoxLayout;

namespace tallowcrest {

/// Two stacks of widgets, beside each other where there is room for both and else one below the
/// other. Main thread.
class TwoColumns final : public QWidget {
    Q_OBJECT

public:
    /// From this width on the stacks stand beside each other.
    static constexpr int wide = 1000;

    explicit TwoColumns(QWidget* parent = nullptr);

    /// The stacks from top to bottom. The last widget of each takes the room that the other stack
    /// needs more, so that both end at one height. Called once.
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
