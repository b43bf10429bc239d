#pragma once

#include <QWidget>

class QLineEdit;
class QPushButton;
class QTimer;

namespace tallowcrest {

/// The controls in the header of the process list: two buttons and the filter field. In a narrow
/// window the buttons lose their icons, then their words. Main thread.
class ProcessTools final : public QWidget {
    Q_OBJECT

public:
    explicit ProcessTools(QWidget* parent = nullptr);

    /// Shows as much of the buttons as fits into that width. False if even the icons do not.
    bool fold(int room);

    QString filter() const;
    void setFilter(const QString& filter);
    /// Gives the keyboard focus to the filter field, with its text selected.
    void focusFilter();

signals:
    void selectTopRowWanted();
    void activityMonitorWanted();
    void filterTyped(const QString& filter);
    /// The owner has stopped typing in the filter for a moment.
    void typingPaused();
    /// The owner wants to go on from the filter to the rows.
    void rowsWanted();

private:
    QLineEdit* makeFilter();
    void showButtons(bool hasIcons, bool hasWords);

    QPushButton* selectTopRow_ = nullptr;
    QPushButton* activityMonitor_ = nullptr;
    QLineEdit* filter_ = nullptr;
    QTimer* pause_ = nullptr;
};

}  // namespace tallowcrest
