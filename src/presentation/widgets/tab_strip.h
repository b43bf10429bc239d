#pragma once

#include <vector>

#include <QAbstractButton>
#include <QString>
#include <QWidget>

#include "presentation/widgets/accessible_figure.h"

namespace tallowcrest {

/// One tab of a strip. To assistive technology it is a tab. Main thread.
class StripTab final : public QAbstractButton {
    Q_OBJECT

public:
    StripTab(const QString& title, const QString& identifier, const QString& description,
             QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    /// An arrow key asks for the tab so many places further on.
    void neighborWanted(int places);

protected:
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    /// Which tab is selected follows from what shows, never from a click.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;

private:
    bool hasRing_ = false;
};

/// A row of tabs of which one is selected, framed as one choice. Of that choice, Tab reaches what
/// is selected and the arrow keys the rest; the keyboard that is given to the strip goes to the
/// selected tab. Main thread.
class TabStrip final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    explicit TabStrip(const QString& accessibleName, QWidget* parent = nullptr);

    /// The new tab's index. `description` says what it is about. The first one is selected at once.
    int addTab(const QString& title, const QString& identifier, const QString& description);

    int currentIndex() const { return current_; }
    /// Only shows the choice; whoever owns the strip answers `chosen` with this.
    void setCurrentIndex(int index);

    const std::vector<StripTab*>& tabs() const { return tabs_; }

    QAccessible::Role accessibleRole() const override { return QAccessible::PageTabList; }
    /// Its tabs say which of them is selected.
    QString accessibleValue() const override { return {}; }

signals:
    /// The owner wants another tab than the selected one. `reason` is for giving the keyboard to
    /// the strip that shows the choice.
    void chosen(int index, Qt::FocusReason reason);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void choose(int index, Qt::FocusReason reason);

    std::vector<StripTab*> tabs_;
    int current_ = 0;
};

}  // namespace tallowcrest
