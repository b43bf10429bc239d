#include "app/desktop_integration.h"

#include <filesystem>
#include <system_error>

#include <QByteArray>
#include <QtGlobal>

#include "app/http_module.h"
#include "app/update_build.h"
#include "platform/desktop_services.h"
#include "platform/files/image_folder_posix.h"
#include "platform/files/installation_files_posix.h"
#include "platform/host.h"
#include "presentation/widgets/icon.h"

namespace tallowcrest {
namespace {

/// Relative when the environment names no absolute one; nothing is then downloaded. Reads the
/// environment, so it is for the main thread, before others run.
std::filesystem::path temporaryFolder() {
    std::error_code error;
    return std::filesystem::temp_directory_path(error);
}

}  // namespace

InstallPorts desktopInstallPorts() {
    return {.files = std::make_shared<PosixInstallationFiles>(),
            .install = host::installPlan(),
            .login = host::loginPlan(),
            .icon = [] { return applicationIconDocument().toStdString(); }};
}

UpdatePorts desktopUpdatePorts() {
    return {.transport = std::make_shared<UpdateModule>(),
            .images = std::make_shared<PosixImageFolder>(temporaryFolder()),
            .build = updateBuild(),
            .openFile =
                [](const std::string& path, std::function<void(bool)> told) {
                    return desktop::openFile(path, std::move(told));
                },
            .openAddress = desktop::openAddress,
            .isUnderTest = qEnvironmentVariableIsSet("XCTestConfigurationFilePath")};
}

}  // namespace tallowcrest
