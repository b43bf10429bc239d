#pragma once

#include <QCheckBox>

namespace tallowcrest {

/// A small switch without words of its own, which stand beside it. It shows what it is told and
/// changes nothing by itself: whoever owns the value answers a click. To assistive technology it is
/// a check box. Main thread.
class ToggleSwitch final : public QCheckBox {
    Q_OBJECT

public:
    explicit ToggleSwitch(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void focusInEvent(QFocusEvent* event) override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void keyPressEvent(QKeyEvent* event) override;
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    bool hasRing_ = false;
};

}  // namespace tallowcrest
