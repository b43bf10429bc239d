#include "presentation/screens/remote_macs/setup_checklist_card.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

SetupChecklistCard::SetupChecklistCard(QWidget* parent) : Card(parent) {
    setObjectName(u"remote.setup"_s);
    setHeader(u"checklist.checked"_s, u"Remote setup checklist"_s);
    auto* words = new ElidedLabel(
        u"On each Mac: keep Tailscale connected, enable System Settings > General > Sharing > "
        "Remote Login, and allow this Mac's SSH key for your user account."_s,
        onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    words->setObjectName(u"remote.setup.words"_s);
    words->setLines(1, 4);
    contentLayout()->addWidget(words);
    auto* buttons = new FlowRow(spacing::unit, this);
    auto* script = makeButton(commands::exportSetupScript.titled("Setup Script"),
                              u"remote.setup.script"_s, buttons);
    auto* settings =
        makeButton({"SSH Settings", "gearshape", "Opens the settings of the remote access"},
                   u"remote.setup.settings"_s, buttons);
    connect(script, &QPushButton::clicked, this, &SetupChecklistCard::setupScriptWanted);
    connect(settings, &QPushButton::clicked, this, &SetupChecklistCard::settingsWanted);
    buttons->addItem(script);
    buttons->addItem(settings);
    contentLayout()->addWidget(buttons);
}

}  // namespace tallowcrest
