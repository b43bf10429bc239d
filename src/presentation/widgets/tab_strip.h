#pragma once

#include <vector>

#include <QAbstractButton>
#include <QString>
#include <QStringList>
#include <QWidget>

#include "presentation/widgets/accessibility.h"

namespace tallowcrest {

/// What a strip chooses between: the pages of what is below it, or the values of a setting.
enum class StripKind { tabs, choices };

/// One tab of a strip. To assistive technology it is a tab, or a radio button. Main thread.
class StripTab final : public QAbstractButton, public AccessibleButton {
    Q_OBJECT

public:
    StripTab(const QString& title, const QString& identifier, const QString& description,
             StripKind kind, QWidget* parent);

    QAccessible::Role accessibleRole() const override {
        return kind_ == StripKind::tabs ? QAccessible::PageTab : QAccessible::RadioButton;
    }
    void addAccessibleState(QAccessible::State& state) const override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    /// An arrow key requests the tab at this distance.
    void neighborWanted(int places);

protected:
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    /// Empty: the selection follows the shown content, never a click directly.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    StripKind kind_;
    bool hasRing_ = false;
};

/// A framed row of tabs of which one is selected. The Tab key reaches the selected tab and the
/// arrow keys the others; focus given to the strip goes to the selected tab. Main thread.
class TabStrip final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit TabStrip(const QString& accessibleName, QWidget* parent = nullptr,
                      StripKind kind = StripKind::tabs);

    /// Returns the new tab's index. The accessible description is `description`, after "1 of 3".
    /// The first tab is selected.
    int addTab(const QString& title, const QString& identifier, const QString& description);

    int currentIndex() const { return current_; }
    /// Only shows the selection; the owner calls this in answer to `chosen`.
    void setCurrentIndex(int index);

    QAccessible::Role accessibleRole() const override {
        return kind_ == StripKind::tabs ? QAccessible::PageTabList : QAccessible::Grouping;
    }
    /// Empty: the tabs report which of them is selected.
    QString accessibleValue() const override { return {}; }

signals:
    /// The user chose another tab than the selected one. `reason` is for giving the focus to the
    /// strip that shows the selection.
    void chosen(int index, Qt::FocusReason reason);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void choose(int index, Qt::FocusReason reason);

    StripKind kind_;
    std::vector<StripTab*> tabs_;
    QStringList descriptions_;
    int current_ = 0;
};

}  // namespace tallowcrest
