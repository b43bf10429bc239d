#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/activity_event.h"
#include "core/uuid.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card.h"

class QPushButton;
class QVBoxLayout;

namespace tallowcrest {

struct ActivityLine;
class IconView;

/// One entry of the activity log: title and time, and below them the detail in up to
/// `mostDetailLines` lines. Assistive technology reads it as one text. Main thread.
class ActivityEntry final : public QWidget, public AccessibleFigure {
    Q_OBJECT

public:
    static constexpr int mostDetailLines = 8;

    explicit ActivityEntry(QWidget* parent = nullptr);

    void setLine(const ActivityLine& line);

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }
    QString accessibleValue() const override;
    bool saysAllWithin() const override { return true; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* time_ = nullptr;
    ElidedLabel* detail_ = nullptr;
};

/// The whole activity log, newest first, and the button that empties it. An entry keeps its widget
/// as long as it is in the log; new entries are inserted above. Main thread.
class ActivityLogCard final : public Card {
    Q_OBJECT

public:
    explicit ActivityLogCard(QWidget* parent = nullptr);

    /// `events` come newest first. Times of another day than `now` have their date.
    void show(const std::vector<ActivityEvent>& events, Date now);

    /// Newest first.
    const std::vector<ActivityEntry*>& entries() const { return entries_; }

signals:
    /// The owner pressed "Clear".
    void clearWanted();

private:
    /// Makes `entries_` correspond to the identifiers, reusing the entries that stay.
    void matchEntries(const std::vector<UUID>& identifiers);

    QPushButton* clear_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    QWidget* list_ = nullptr;
    QVBoxLayout* rows_ = nullptr;
    std::vector<ActivityEntry*> entries_;
    std::vector<UUID> shown_;               ///< those of `entries_`
    std::optional<std::int64_t> shownDay_;  ///< whose times are shown without a date
};

}  // namespace tallowcrest
