#pragma once

#include <array>
#include <optional>

#include <QWidget>

#include "presentation/words/process_order.h"

namespace tallowcrest {

class ElidedLabel;
class ProcessTableView;
class TextButton;

/// The titles above the columns of a process table, as buttons that order it. They replace the
/// header of Qt's table, whose sections neither the keyboard nor assistive technology can press.
/// While another order holds, a button leads back to that by impact.
/// Main thread.
class OrderHeader final : public QWidget {
    Q_OBJECT

public:
    /// `table` must outlive the header.
    OrderHeader(ProcessTableView& table, QWidget* parent = nullptr);

    /// Only shows the order; absent is that by impact.
    void setOrder(const std::optional<ProcessOrder>& order);

signals:
    void clicked(ProcessColumn column);
    void impactOrderWanted();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void makeImpactOrder();
    void placeTitles();

    ProcessTableView& table_;
    std::array<TextButton*, 4> buttons_{};
    TextButton* impactOrder_ = nullptr;
    ElidedLabel* action_ = nullptr;
};

}  // namespace tallowcrest
