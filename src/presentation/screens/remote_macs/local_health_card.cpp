#include "presentation/screens/remote_macs/local_health_card.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/remote_macs/remote_macs_commands.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

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
    buttons->addItem(open);
    buttons->addItem(copy);
    contentLayout()->addWidget(buttons);
}

void LocalHealthCard::show(const QStringList& issues) {
    while (std::ssize(lines_) < issues.size()) {
        auto* line = new ElidedLabel(onCard(&CrestFonts::body), this);
        line->setObjectName(u"remote.local-health-%1"_s.arg(lines_.size() + 1));
        line->setLines(1, 3);
        contentLayout()->insertWidget(static_cast<int>(lines_.size()), line);
        lines_.push_back(line);
    }
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        lines_[i]->setText(issues.value(static_cast<qsizetype>(i)));
        lines_[i]->setVisible(std::ssize(issues) > static_cast<qsizetype>(i));
    }
}

}  // namespace tallowcrest
