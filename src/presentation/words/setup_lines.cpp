#include "presentation/words/setup_lines.h"

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

std::vector<SetupLine> setupLines(const std::string& installTarget,
                                  const std::string& sshUsername) {
    const QString copying =
        installTarget.empty()
            ? QString()
            : u"copy Tallowcrest to %1 and "_s.arg(dashboard_text::text(installTarget));
    return {
        {u"Install"_s, u"Use the header Install menu to %1enable launch at login."_s.arg(copying)},
        {u"SSH User"_s,
         u"Set the remote Mac short name. Current value: "_s + dashboard_text::text(sshUsername)},
        {u"Tailscale"_s, u"Scan remote Macs after Tailscale is healthy and SSH is connected."_s},
        {u"Never Quit"_s,
         u"Protect app groups like Docker, audio tools, or browsers before using quit actions."_s},
        {u"Auto Rules"_s,
         u"Auto-select is safe. Auto-purge and auto-scan are optional and off by default."_s},
        {u"Diagnostics"_s, u"Use Export to save reports in outputs/reports."_s},
    };
}

}  // namespace tallowcrest
