#include "presentation/screens/remote_macs/remote_rows.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <QEvent>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "presentation/screens/remote_macs/remote_row.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// Nobody sees a new row below the pointer and presses on it sooner.
constexpr std::chrono::milliseconds reactionTime{300};

}  // namespace

RemoteRows::RemoteRows(const QString& title, Action action, const QString& identifier,
                       QWidget* parent)
    : QWidget(parent), action_(action), identifier_(identifier) {
    setObjectName(identifier + (action == Action::quit ? u".processes"_s : u".apps"_s));
    setAccessibleName(title);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    layout->addWidget(new ElidedLabel(title, onCard(&CrestFonts::heading), this));
    noRows_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    layout->addWidget(noRows_);
    column_ = new QVBoxLayout;
    column_->setSpacing(spacing::unit);
    layout->addLayout(column_);
    pause_ = new QTimer(this);
    pause_->setObjectName(u"pause"_s);
    pause_->setSingleShot(true);
    pause_->setInterval(reactionTime);
}

bool RemoteRows::show(const std::vector<remote_health_lines::Row>& rows, const QString& noRows) {
    std::vector<RemoteRow*> before = rows_;
    std::vector<RemoteRow*> after;
    for (const remote_health_lines::Row& row : rows) {
        const auto kept = std::ranges::find_if(
            before, [&](const RemoteRow* each) { return each->key() == row.key; });
        if (kept == before.end()) {
            after.push_back(makeRow(row));
        } else {
            after.push_back(*kept);
            before.erase(kept);
        }
        after.back()->show(row);
    }
    const auto hasFocus = [focus = window()->focusWidget()](const RemoteRow* row) {
        return row->isAncestorOf(focus);
    };
    if (std::ranges::any_of(before, hasFocus)) {
        // Qt would move it to the next control, which a key may be about to press.
        setFocus();
    }
    noRows_->setText(noRows);
    noRows_->setVisible(rows.empty());
    setVisible(!rows.empty() || !noRows.isEmpty());
    const bool isFirst = std::exchange(isFirst_, false);
    if (after == rows_) {
        return false;
    }
    if (!isFirst) {
        pause_->start();
    }
    for (RemoteRow* gone : before) {
        // Deleted later, because this may run in a click on one of its buttons.
        gone->hide();
        column_->removeWidget(gone);
        gone->deleteLater();
    }
    for (RemoteRow* row : after) {
        column_->removeWidget(row);
        column_->addWidget(row);
        // At once: the layout would show it a turn later, and be painted without it until then.
        row->setVisible(true);
        // Assistive technology reads the children in their order.
        row->raise();
    }
    rows_ = std::move(after);
    return true;
}

RemoteRow* RemoteRows::makeRow(const remote_health_lines::Row& row) {
    auto* made = new RemoteRow(action_, identifier_ + u'.' + row.identifier, row.key, this);
    connect(made, &RemoteRow::copyWanted, this, [this, made] { emit copyWanted(indexOf(*made)); });
    connect(made, &RemoteRow::actionWanted, this,
            [this, made] { emit actionWanted(indexOf(*made)); });
    for (QWidget* control : made->controls()) {
        control->installEventFilter(this);
    }
    return made;
}

bool RemoteRows::eventFilter(QObject* object, QEvent* event) {
    const bool isPress =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    return (isPress && pause_->isActive()) || QWidget::eventFilter(object, event);
}

std::size_t RemoteRows::indexOf(const RemoteRow& row) const {
    return static_cast<std::size_t>(std::ranges::find(rows_, &row) - rows_.begin());
}

std::vector<QWidget*> RemoteRows::controls() const {
    std::vector<QWidget*> controls;
    for (const RemoteRow* row : rows_) {
        for (QWidget* control : row->controls()) {
            controls.push_back(control);
        }
    }
    return controls;
}

}  // namespace tallowcrest
