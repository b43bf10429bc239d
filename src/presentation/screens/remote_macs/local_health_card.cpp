#include "presentation/screens/remote_macs/local_health_card.h"

#include <algorithm>
#include <iterator>

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/remote_macs/remote_macs_commands.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

// At first.
constexpr qsizetype mostIssues = 6;
constexpr int mostLines = 3;
/// Fits into that many lines on a page of ordinary width.
constexpr qsizetype shortIssue = 256;

}  // namespace

LocalHealthCard::LocalHealthCard(QWidget* parent) : Card(parent) {
    setObjectName(u"remote.local-health"_s);
    setHeader(u"exclamationmark.triangle.fill"_s, u"Local Tailscale health needs attention"_s);
    auto* buttons = new FlowRow(spacing::unit, this);
    auto* open =
        makeButton(remote_macs_commands::openTailscale, u"remote.local-health.open"_s, buttons);
    auto* copy = makeButton({"Copy Health Test", "doc.on.doc",
                             "Puts the command that tests the tailnet on the clipboard"},
                            u"remote.local-health.copy-test"_s, buttons);
    connect(open, &QPushButton::clicked, this, &LocalHealthCard::tailscaleWanted);
    connect(copy, &QPushButton::clicked, this, &LocalHealthCard::healthTestWanted);
    all_ = makeButton(u"Show All"_s, QString(), u"remote.local-health.show-all"_s,
                      u"Shows every line as a whole, or only the first ones"_s, buttons);
    all_->setFlat(true);
    all_->hide();
    connect(all_, &QPushButton::clicked, this, [this] {
        showsAll_ = !showsAll_;
        showLines();
    });
    buttons->addItem(open);
    buttons->addItem(copy);
    buttons->addItem(all_);
    contentLayout()->addWidget(buttons);
}

void LocalHealthCard::show(const QStringList& issues) {
    if (issues != issues_) {
        issues_ = issues;
        showLines();
    }
}

void LocalHealthCard::showLines() {
    const qsizetype count = showsAll_ ? issues_.size() : std::min(issues_.size(), mostIssues);
    while (std::ssize(lines_) < count) {
        auto* line = new ElidedLabel(onCard(&CrestFonts::body), this);
        line->setObjectName(u"remote.local-health-%1"_s.arg(lines_.size() + 1));
        contentLayout()->insertWidget(static_cast<int>(lines_.size()), line);
        lines_.push_back(line);
    }
    for (qsizetype i = 0; i < std::ssize(lines_); ++i) {
        ElidedLabel& line = *lines_[static_cast<std::size_t>(i)];
        constexpr int unlimited = 1000;
        line.setLines(1, showsAll_ ? unlimited : mostLines);
        line.setText(i < count ? issues_[i] : QString());
        line.setVisible(i < count);
    }
    const bool hasMore =
        issues_.size() > mostIssues ||
        std::ranges::any_of(issues_, [](const QString& each) { return each.size() > shortIssue; });
    all_->setVisible(hasMore);
    all_->setText(showsAll_ ? u"Show Less"_s : u"Show All"_s);
    setSpokenName(*all_, all_->text());
}

}  // namespace tallowcrest
