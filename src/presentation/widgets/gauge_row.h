#pragma once

#include <vector>

#include <QWidget>

class QGridLayout;

namespace tallowcrest {

/// Cards of equal width side by side. If they do not fit, the last one gets a row of its own below
/// the others. Main thread.
class GaugeRow final : public QWidget {
    Q_OBJECT

public:
    explicit GaugeRow(QWidget* parent = nullptr);

    /// The cards in their order; the last one is never narrower than `lastCardWidth` beside the
    /// others. Called once.
    void setCards(const std::vector<QWidget*>& cards, int lastCardWidth);

    /// The width of the narrower arrangement, whichever is in use.
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange(bool isWrapped);

    QGridLayout* grid_ = nullptr;
    std::vector<QWidget*> cards_;
    int lastCardWidth_ = 0;
    bool isWrapped_ = false;
};

}  // namespace tallowcrest
