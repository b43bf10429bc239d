#pragma once

#include <vector>

#include <QRect>
#include <QWidget>

namespace tallowcrest {

/// Widgets side by side, each in its own size, on as many lines as the width requires. Main
/// thread.
class FlowRow final : public QWidget {
    Q_OBJECT

public:
    /// `gap` lies between neighbours of one line, in device independent pixels.
    explicit FlowRow(int gap, QWidget* parent = nullptr);

    /// Takes ownership of `item` and appends it.
    void addItem(QWidget* item);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    /// The width of the widest item.
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// The items' geometries within `width`, in their order, centred vertically in their line.
    std::vector<QRect> places(int width) const;
    void arrange();

    int gap_;
    std::vector<QWidget*> items_;
};

}  // namespace tallowcrest
