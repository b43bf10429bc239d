#include "presentation/shell/confirmation_dialog.h"

#include <algorithm>
#include <utility>

#include <QAccessible>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/confirmation_desk.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/selectable_text.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/confirmation_lines.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr int dialogWidth = 464;
constexpr int widestConfirmButton = 240;
constexpr int mostLargeLines = 3;
// Enough for the longest question and message around the longest name that a file can have.
constexpr int mostHeadingLines = 12;
constexpr int mostMessageLines = 12;
constexpr int mostProcessLines = 3;
constexpr std::size_t mostPaths = 5;
constexpr int mostNoteLines = 4;
constexpr int detailsHeight = 208;

/// The font of the title: the largest in which it fits on a few lines.
ElidedLabel::FontRole headingFont(const QString& title) {
    const QFont& large = CrestFonts::current().title;
    const int room = dialogWidth - 2 * spacing::pagePadding;
    return fittedLines(title, large, room, mostLargeLines + 1).size() <= mostLargeLines
               ? &CrestFonts::title
               : &CrestFonts::heading;
}

}  // namespace

ConfirmationDialog::ConfirmationDialog(ConfirmationDesk& desk, Details details, QWidget* parent)
    : WindowDialog(parent), desk_(desk), detailsOf_(std::move(details)) {
    setObjectName(u"confirmation"_s);
    setWindowTitle(u"Confirm Action"_s);
    setAccessibleName(windowTitle());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, spacing::pagePadding, spacing::pagePadding,
                               spacing::pagePadding);
    layout->setSpacing(0);

    heading_ = new ElidedLabel(onPage(&CrestFonts::title), this);
    heading_->setObjectName(u"confirmation.title"_s);
    heading_->setLines(1, mostHeadingLines);
    message_ = new ElidedLabel(onPage(&CrestFonts::body), this);
    message_->setObjectName(u"confirmation.message"_s);
    message_->setLines(1, mostMessageLines);
    layout->addWidget(heading_);
    layout->addSpacing(spacing::unit);
    layout->addWidget(message_);
    layout->addWidget(makeTargets());
    layout->addWidget(makeDetails());
    layout->addSpacing(spacing::pagePadding);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::unit);
    cancel_ = makeButton(u"Cancel"_s, QString(), u"confirmation.cancel"_s,
                         u"Closes this dialog and changes nothing"_s, this);
    confirm_ = new DangerButton(this);
    settling_.emplace(*confirm_);
    confirm_->setObjectName(u"confirmation.confirm"_s);
    confirm_->setMaximumWidth(widestConfirmButton);
    cancel_->setDefault(true);
    buttons->addStretch(1);
    buttons->addWidget(cancel_);
    buttons->addWidget(confirm_);
    layout->addLayout(buttons);

    connect(cancel_, &QPushButton::clicked, this, &ConfirmationDialog::reject);
    connect(confirm_, &QPushButton::clicked, this, &ConfirmationDialog::confirm);
}

QWidget* ConfirmationDialog::makeTargets() {
    auto* room = new QWidget(this);
    auto* above = new QVBoxLayout(room);
    above->setContentsMargins(0, spacing::gap, 0, 0);
    targetsCard_ = new Card(room);
    targetsCard_->setObjectName(u"confirmation.paths"_s);
    targetsCard_->layout()->setContentsMargins(spacing::cardPadding, spacing::unit,
                                               spacing::cardPadding, spacing::unit);
    targetsCard_->contentLayout()->setSpacing(spacing::unit / 2);
    const auto addLine = [this](const QString& identifier, const ThemeColor& color) {
        auto* line = new ElidedLabel(onCard(&CrestFonts::caption, color), targetsCard_);
        line->setObjectName(u"confirmation."_s + identifier);
        targetsCard_->contentLayout()->addWidget(line);
        return line;
    };
    processes_ = addLine(u"processes"_s, &CrestTheme::text);
    processes_->setLines(1, mostProcessLines);
    executables_ = addLine(u"executables"_s, &CrestTheme::text);
    for (std::size_t i = 0; i < mostPaths; ++i) {
        pathLines_.push_back(addLine(u"path.%1"_s.arg(i), &CrestTheme::secondaryText));
        // The start and the end of a path distinguish a program from its namesakes.
        pathLines_.back()->setElideMode(Qt::ElideMiddle);
    }
    morePaths_ = addLine(u"more-paths"_s, &CrestTheme::secondaryText);
    above->addWidget(targetsCard_);
    return room;
}

QWidget* ConfirmationDialog::makeDetails() {
    auto* room = new QWidget(this);
    auto* layout = new QVBoxLayout(room);
    layout->setContentsMargins(0, spacing::gap, 0, 0);
    layout->setSpacing(spacing::unit);
    detailsToggle_ = makeButton(QString(), QString(), u"confirmation.details"_s, QString(), room);
    layout->addWidget(detailsToggle_, 0, Qt::AlignLeft);
    details_ = new SelectableText(u"confirmation.details.text"_s);
    detailsArea_ = new PageScrollArea(details_, room);
    detailsNote_ = new ElidedLabel(onPage(&CrestFonts::caption, &CrestTheme::secondaryText), room);
    detailsNote_->setObjectName(u"confirmation.details.note"_s);
    detailsNote_->setLines(1, mostNoteLines);
    layout->addWidget(detailsNote_);
    layout->addWidget(detailsArea_);
    connect(detailsToggle_, &QPushButton::clicked, this, [this] {
        showDetails(detailsArea_->isHidden());
        followState();
        fit();
    });
    return room;
}

void ConfirmationDialog::showDetails(bool areShown) {
    detailsArea_->setVisible(areShown);
    detailsNote_->setVisible(areShown && !detailsNote_->text().isEmpty());
    detailsToggle_->setText((areShown ? u"Hide "_s : u"Show "_s) + detailsName_);
    setSpokenName(*detailsToggle_, detailsToggle_->text());
}

void ConfirmationDialog::refresh() {
    const std::optional<ConfirmationRequest>& pending = desk_.pendingConfirmation();
    if (!pending) {
        if (shown_) {
            done(Rejected);
        }
        return;
    }
    if (!showsPending()) {
        present(*pending);
    } else {
        followState();
    }
}

void ConfirmationDialog::followState() {
    const std::optional<ConfirmationRequest>& pending = desk_.pendingConfirmation();
    if (!detailsFollowState_ || !pending || detailsArea_->isHidden()) {
        return;
    }
    const ConfirmationDetails details = detailsOf_(*pending);
    if (details.note != detailsNote_->text()) {
        detailsNote_->setText(details.note);
        fit();
    }
    if (!details_->isBeingRead()) {
        details_->showText(details.text);
    }
}

void ConfirmationDialog::present(const ConfirmationRequest& request) {
    shown_ = request.id;
    const QString title = dashboard_text::text(request.title);
    const QString message = dashboard_text::text(request.message);
    heading_->setFontRole(headingFont(title));
    heading_->setText(title);
    message_->setText(message);
    showTargets(desk_.targets());
    const ConfirmationDetails details = detailsOf_(request);
    detailsName_ = details.name;
    detailsFollowState_ = details.followState;
    detailsNote_->setText(details.note);
    details_->setShortName(details.name);
    details_->showText(details.text);
    setExplanation(*detailsToggle_, details.description);
    const int wanted = details_->heightForWidth(dialogWidth - 2 * spacing::pagePadding);
    detailsArea_->setFixedHeight(std::min(detailsHeight, wanted + spacing::unit));
    detailsToggle_->parentWidget()->setVisible(!details_->shownText().isEmpty());
    showDetails(details.areShown);
    setAccessibleDescription(confirmation_lines::unreadLines(shownTexts()).join(u'\n'));
    if (isVisible()) {
        // No window opens, which would be announced by itself.
        QAccessibleEvent changed(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&changed);
    }
    confirm_->setTitle(dashboard_text::text(request.confirmTitle));
    confirm_->setAccessibleDescription(title);
    fit();
    cancel_->setFocus();
    open();
    settling_->settle();
}

QStringList ConfirmationDialog::shownTexts() const {
    QStringList texts{heading_->text(), message_->text()};
    for (const ElidedLabel* line : targetsCard_->findChildren<ElidedLabel*>()) {
        if (!line->isHidden()) {
            texts.append(line->text());
        }
    }
    return texts;
}

bool ConfirmationDialog::event(QEvent* event) {
    // The click that activates a window must not answer the question in it.
    if (event->type() == QEvent::WindowActivate && shown_) {
        settling_->settle();
    }
    return WindowDialog::event(event);
}

void ConfirmationDialog::showTargets(const ConfirmationTargets& targets) {
    const QString processes = confirmation_lines::processes(targets.pids);
    processes_->setText(processes);
    processes_->setVisible(!processes.isEmpty());
    const QString all = confirmation_lines::processes(targets.pids, targets.pids.size());
    const QString unshown = all == processes ? QString() : all;
    processes_->setToolTip(toolTipText(unshown, 40));
    processes_->setAccessibleDescription(unshown);
    QStringList texts;
    for (const std::string& path : targets.paths) {
        texts.append(dashboard_text::text(path));
    }
    const auto count = static_cast<std::size_t>(texts.size());
    executables_->setText(confirmation_lines::executables(count));
    executables_->setVisible(count > 0);
    for (std::size_t i = 0; i < pathLines_.size(); ++i) {
        pathLines_[i]->setText(i < count ? texts.at(static_cast<qsizetype>(i)) : QString());
        pathLines_[i]->setVisible(i < count);
    }
    const std::size_t rest = count - std::min(count, mostPaths);
    const QString others = texts.mid(static_cast<qsizetype>(mostPaths)).join(u'\n');
    morePaths_->setText(rest > 0
                            ? u"and %1 more"_s.arg(dashboard_text::count(static_cast<qint64>(rest)))
                            : QString());
    morePaths_->setToolTip(toolTipText(others));
    morePaths_->setAccessibleDescription(others);
    morePaths_->setVisible(rest > 0);
    targetsCard_->setAccessibleName(executables_->text());
    targetsCard_->parentWidget()->setVisible(count > 0 || !processes.isEmpty());
}

void ConfirmationDialog::fit() {
    // A layout keeps the sizes of its items until it is told that they changed.
    targetsCard_->contentLayout()->invalidate();
    targetsCard_->updateGeometry();
    targetsCard_->parentWidget()->updateGeometry();
    detailsToggle_->parentWidget()->layout()->invalidate();
    detailsToggle_->parentWidget()->updateGeometry();
    setFixedSize(dialogWidth, layout()->totalHeightForWidth(dialogWidth));
}

bool ConfirmationDialog::showsPending() const {
    const std::optional<ConfirmationRequest>& pending = desk_.pendingConfirmation();
    return shown_ && pending && pending->id == *shown_;
}

void ConfirmationDialog::confirm() {
    // The desk may already hold another question, which is not shown yet.
    if (!showsPending()) {
        refresh();
        return;
    }
    done(Accepted);
    desk_.confirmPending();
}

void ConfirmationDialog::reject() {
    if (!showsPending()) {
        if (parentWidget()->isVisible()) {
            refresh();
        } else {
            // The other question is shown when the window is.
            done(Rejected);
        }
        return;
    }
    done(Rejected);
    desk_.cancelPending();
}

void ConfirmationDialog::done(int result) {
    shown_.reset();
    settling_->stop();
    WindowDialog::done(result);
}

}  // namespace tallowcrest
