#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QPointer>
#include <QString>
#include <QStringList>

#include "platform/desktop_services.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::desktop {
namespace {

using Answered = std::function<void(std::optional<std::string>)>;

QString textOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The bytes of the path as on disk.
std::optional<std::string> chosenFolder(const QFileDialog& dialog, int result) {
    const QStringList chosen = dialog.selectedFiles();
    if (result != QDialog::Accepted || chosen.isEmpty()) {
        return std::nullopt;
    }
    return QFile::encodeName(chosen.first()).toStdString();
}

/// A dialog that is open. Its answer comes through the event loop, and the question may be
/// destroyed by it.
class DialogQuestion final : public FolderQuestion {
public:
    DialogQuestion(std::string_view title, std::string_view button, Answered answered)
        : dialog_(new QFileDialog(QApplication::activeWindow(), textOf(title))),
          answered_(std::make_shared<Answered>(std::move(answered))) {
        dialog_->setObjectName(u"disk.folderChooser"_s);
        dialog_->setFileMode(QFileDialog::Directory);
        dialog_->setOption(QFileDialog::ShowDirsOnly);
        dialog_->setLabelText(QFileDialog::Accept, textOf(button));
        QObject::connect(
            dialog_, &QDialog::finished, dialog_,
            [dialog = dialog_, question = std::weak_ptr(answered_)](int result) {
                if (const auto open = question.lock()) {
                    (*open)(chosenFolder(*dialog, result));
                }
            },
            Qt::QueuedConnection);
        dialog_->open();
    }
    DialogQuestion(const DialogQuestion&) = delete;
    DialogQuestion& operator=(const DialogQuestion&) = delete;
    ~DialogQuestion() override {
        if (dialog_ != nullptr) {
            dialog_->hide();
            dialog_->deleteLater();
        }
    }

private:
    QPointer<QFileDialog> dialog_;  ///< null once the window that it belongs to is gone
    std::shared_ptr<Answered> answered_;
};

}  // namespace

std::unique_ptr<FolderQuestion> chooseFolder(std::string_view title, std::string_view button,
                                             Answered answered) {
    return std::make_unique<DialogQuestion>(title, button, std::move(answered));
}

}  // namespace tallowcrest::desktop
