#include "remote/remote.h"

#include "core/services.h"

namespace tallowcrest {

Remote::Remote(const Services& services, Pasteboard& pasteboard, const RemotePorts& ports)
    : tools(ports.allowed, ports.launcher, services.jobs, services.log),
      tailnet(services, {tools, services.locale, ports.daemon, ports.tailscaleCLI}, pasteboard),
      scan(services, tailnet, tools),
      profiles(services),
      actions({services, scan, profiles, tools, pasteboard, ports.actions}) {}

}  // namespace tallowcrest
