#pragma once

#include <QWidget>

namespace tallowcrest {

struct ActivityLine;
class ElidedLabel;
class IconView;

/// One entry of the activity log in one line: what happened and when. Main thread.
class ActivityRow final : public QWidget {
    Q_OBJECT

public:
    explicit ActivityRow(QWidget* parent = nullptr);

    void setLine(const ActivityLine& line);

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    ElidedLabel* time_ = nullptr;
};

}  // namespace tallowcrest
