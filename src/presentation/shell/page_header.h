#pragma once

#include <functional>
#include <vector>

#include <QString>
#include <QWidget>

#include "core/routes.h"

class QHBoxLayout;
class QPushButton;
class QVBoxLayout;

namespace tallowcrest {

class ElidedLabel;
struct HeaderAction;

/// The top of every route: its title, its subtitle, its actions, and "Refresh". The subtitle is
/// beside the title in a wide window and below it otherwise. In a narrow window the actions lose
/// their icons and keep their words. Main thread.
class PageHeader final : public QWidget {
    Q_OBJECT

public:
    explicit PageHeader(QWidget* parent = nullptr);

    /// Shows the title of a route and the actions of its screen.
    void setRoute(AppRoute route, const std::vector<HeaderAction>& actions);
    /// Shows which actions are under way.
    void refresh();
    /// In a low window the header leaves more room for the page.
    void setLow(bool isLow);

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

signals:
    /// The owner pressed "Refresh".
    void refreshWanted();

private:
    /// An action whose title tells whether it is under way.
    struct Progress {
        QPushButton* button;
        QString title;
        std::function<QString()> progressTitle;
    };

    void addAction(const HeaderAction& action);
    void orderActions();
    std::vector<QPushButton*> buttons() const;
    /// Measures the width that icons and words need together.
    void measure();
    void fold();
    void showIcons(bool areShown);
    void placeSubtitle();

    ElidedLabel* title_ = nullptr;
    ElidedLabel* subtitle_ = nullptr;
    QHBoxLayout* row_ = nullptr;
    QVBoxLayout* beside_ = nullptr;  ///< room for the subtitle beside the title
    QVBoxLayout* below_ = nullptr;   ///< and below it
    QHBoxLayout* actions_ = nullptr;
    QPushButton* refresh_ = nullptr;
    std::vector<Progress> progress_;
    int wholeWidth_ = 0;
    bool hasIcons_ = true;
    bool isWide_ = false;
    bool isLow_ = false;
};

}  // namespace tallowcrest
