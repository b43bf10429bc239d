#pragma once

#include <QWidget>
#include <vector>

#include "core/observable.h"
#include "presentation/menu_bar_entries.h"

namespace tallowcrest {

class ElidedLabel;

/// The compact panel of the status item: the latest figures and its commands. Main thread.
class MenuBarPanel final : public QWidget {
    Q_OBJECT

public:
    MenuBarPanel(SystemMonitor& monitor, std::vector<MenuBarEntry> entries);

    /// Shows the panel on the screen of `anchor`, as near to it as fits; or hides it when it shows.
    void toggleAt(const QPoint& anchor);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void refresh();

    SystemMonitor& monitor_;
    ElidedLabel* load_ = nullptr;
    ElidedLabel* topGroup_ = nullptr;
    ElidedLabel* latestHeading_ = nullptr;
    ElidedLabel* latest_ = nullptr;
    Subscription subscription_;
};

}  // namespace tallowcrest
