#pragma once

#include <QCheckBox>

namespace tallowcrest {

/// A small switch without a label. It does not toggle itself: the owner of the value handles a
/// click and sets the state. To assistive technology it is a check box. Main thread.
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
