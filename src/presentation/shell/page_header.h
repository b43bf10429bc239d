#pragma once

#include <vector>

#include <QWidget>

#include "core/routes.h"

class QHBoxLayout;
class QPushButton;

namespace tallowcrest {

class ElidedLabel;
struct HeaderAction;

/// The top of every route: its title, its subtitle, its actions, and "Refresh". In a narrow window
/// the actions lose their icons and keep their words. Main thread.
class PageHeader final : public QWidget {
    Q_OBJECT

public:
    explicit PageHeader(QWidget* parent = nullptr);

    /// Shows the title of a route and the actions of its screen.
    void setRoute(AppRoute route, const std::vector<HeaderAction>& actions);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

signals:
    /// The owner pressed "Refresh".
    void refreshWanted();

private:
    void addAction(const HeaderAction& action);
    void orderActions();
    std::vector<QPushButton*> buttons() const;
    /// Measures the width that icons and words need together.
    void measure();
    void fold();
    void showIcons(bool areShown);

    ElidedLabel* title_ = nullptr;
    ElidedLabel* subtitle_ = nullptr;
    QHBoxLayout* actions_ = nullptr;
    QPushButton* refresh_ = nullptr;
    int wholeWidth_ = 0;
    bool hasIcons_ = true;
};

}  // namespace tallowcrest
