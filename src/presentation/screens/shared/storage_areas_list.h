#pragma once

#include <vector>

#include <QWidget>

#include "disk/disk_records.h"
#include "presentation/words/disk_lines.h"

class QVBoxLayout;

namespace tallowcrest {

class ElidedLabel;
class LevelBar;
class TextButton;

/// One area: its name, its size as a bar and a figure, and, where there is a file manager, a button
/// that reveals it. Main thread.
class StorageAreaRow final : public QWidget {
    Q_OBJECT

public:
    StorageAreaRow(const QString& identifier, bool canReveal, QWidget* parent);

    void setLine(const StorageLine& line);
    /// Null without one.
    QWidget* lastControl() const;

signals:
    /// The owner pressed "Reveal".
    void revealWanted();

private:
    ElidedLabel* name_ = nullptr;
    ElidedLabel* size_ = nullptr;
    ElidedLabel* explanation_ = nullptr;
    LevelBar* bar_ = nullptr;
    TextButton* reveal_ = nullptr;  ///< null without a file manager
};

/// "Largest Measured Storage Areas". Its rows are made when there are areas to show, and stay as
/// they are until there are others. For use on a card. Main thread.
class StorageAreasList final : public QWidget {
    Q_OBJECT

public:
    /// `note` says what the remainder stands for.
    StorageAreasList(const QString& identifier, bool canReveal, const QString& note,
                     QWidget* parent = nullptr);

    /// The Tab key reaches the first row from `control`.
    void setPrevious(QWidget* control) { previous_ = control; }
    void show(const std::vector<DiskStorageOffender>& areas);

signals:
    /// The owner pressed "Reveal" of this area.
    void revealWanted(const tallowcrest::DiskStorageOffender& area);

private:
    void addRow();

    QString identifier_;
    bool canReveal_;
    QWidget* previous_ = nullptr;
    QVBoxLayout* list_ = nullptr;
    std::vector<StorageAreaRow*> rows_;
    std::vector<DiskStorageOffender> shown_;
};

}  // namespace tallowcrest
