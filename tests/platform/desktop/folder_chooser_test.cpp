#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QApplication>
#include <QFileDialog>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/desktop_services.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FolderChooserTest : public ::testing::Test {
protected:
    void SetUp() override { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    void ask() {
        question = desktop::chooseFolder("Choose a Backup Folder", "Back Up Here",
                                         [this](std::optional<std::string> folder) {
                                             question.reset();
                                             answers.push_back(folder.value_or("none"));
                                         });
    }

    /// The dialog that is open; null when there is none.
    static QFileDialog* dialog() {
        for (QWidget* const widget : QApplication::topLevelWidgets()) {
            if (auto* const found = qobject_cast<QFileDialog*>(widget);
                found != nullptr && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }

    static void turn() {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::unique_ptr<FolderQuestion> question;
    std::vector<std::string> answers;
};

TEST_F(FolderChooserTest, AsksForOneFolderInTheWordsGiven) {
    ask();
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(dialog()->windowTitle(), u"Choose a Backup Folder"_s);
    EXPECT_EQ(dialog()->labelText(QFileDialog::Accept), u"Back Up Here"_s);
    EXPECT_EQ(dialog()->fileMode(), QFileDialog::Directory);
    EXPECT_TRUE(dialog()->testOption(QFileDialog::ShowDirsOnly));
    EXPECT_THAT(answers, IsEmpty());
}

TEST_F(FolderChooserTest, TheChosenFolderIsTheAnswerOnALaterTurn) {
    const TemporaryFolder folder;
    ask();
    ASSERT_NE(dialog(), nullptr);
    dialog()->setDirectory(QString::fromStdString(folder.path().parent_path()));
    dialog()->selectFile(QString::fromStdString(folder.path()));
    QMetaObject::invokeMethod(dialog(), "accept");
    EXPECT_THAT(answers, IsEmpty());
    turn();
    EXPECT_THAT(answers, ElementsAre(folder.path().string()));
    EXPECT_EQ(dialog(), nullptr);
}

TEST_F(FolderChooserTest, ACancelledQuestionHasNoFolder) {
    ask();
    ASSERT_NE(dialog(), nullptr);
    dialog()->reject();
    turn();
    turn();
    EXPECT_THAT(answers, ElementsAre("none"));
}

TEST_F(FolderChooserTest, AQuestionThatIsDestroyedClosesWithoutAnAnswer) {
    ask();
    question.reset();
    EXPECT_EQ(dialog(), nullptr);
    turn();
    ask();
    ASSERT_NE(dialog(), nullptr);
    dialog()->reject();
    question.reset();
    turn();
    EXPECT_THAT(answers, IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
