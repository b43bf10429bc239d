#include <unistd.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <QFile>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>

#include "platform/desktop/environment_of_others.h"
#include "platform/desktop_services.h"

namespace tallowcrest::desktop {
namespace {

/// A run of the program that opens files for any desktop, which tells by its status whether one
/// was.
class ProgramOpening final : public FileOpening {
public:
    ProgramOpening(const std::string& path, std::function<void(bool)> told,
                   std::chrono::milliseconds patience)
        : told_(std::move(told)) {
        // It outlives this object, because its end would end the program that runs in it.
        auto* process = new QProcess;
        QObject::connect(process, &QProcess::finished, &receiver_,
                         [this](int status, QProcess::ExitStatus end) {
                             tell(end == QProcess::NormalExit && status == 0);
                         });
        QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
        QObject::connect(process, &QProcess::errorOccurred, &receiver_,
                         [this](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart) {
                                 tell(false);
                             }
                         });
        QObject::connect(process, &QProcess::errorOccurred, process,
                         [process](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart) {
                                 process->deleteLater();
                             }
                         });
        QTimer::singleShot(patience, &receiver_, [this] { tell(true); });
        process->setProcessChannelMode(QProcess::ForwardedChannels);
        process->setStandardInputFile(QProcess::nullDevice());
        process->setProcessEnvironment(environmentOfOthers());
        // What shows the file does not end with this program's terminal.
        process->setChildProcessModifier([] { ::setsid(); });
        process->start(QStringLiteral("xdg-open"), {QFile::decodeName(path.c_str())});
    }

private:
    void tell(bool isOpened) {
        if (const auto told = std::exchange(told_, nullptr)) {
            told(isOpened);
        }
    }

    std::function<void(bool)> told_;  ///< empty once it was called
    QObject receiver_;
};

}  // namespace

std::unique_ptr<FileOpening> openFile(const std::string& path, std::function<void(bool)> told,
                                      std::chrono::milliseconds patience) {
    return std::make_unique<ProgramOpening>(path, std::move(told), patience);
}

}  // namespace tallowcrest::desktop
