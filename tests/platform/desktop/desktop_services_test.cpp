#include "platform/desktop_services.h"

#include <string>
#include <vector>

#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <gtest/gtest.h>

#include "tests/support/eventually.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

class OpenFirstApplication : public testing::Test {
protected:
    /// A program that writes its name to a file.
    std::string program(const std::string& name, mode_t mode = 0700) const {
        return folder.file(name, "#!/bin/sh\necho " + name + " $# >> " + folder.path("started"),
                           mode);
    }

    bool becomesStarted(const std::string& text) const {
        return eventually([&] { return folder.read("started") == text; });
    }

    TemporaryFolder folder;
};

TEST_F(OpenFirstApplication, StartsOnlyTheFirstThatIsInstalled) {
    const std::string first = program("first");
    const std::string second = program("second");
    const std::string missing = folder.path("missing");
    EXPECT_TRUE(desktop::openFirstApplication({missing, first, second}, {missing, first, second}));
    EXPECT_TRUE(becomesStarted("first 0\n"));
}

TEST_F(OpenFirstApplication, DoesNotPassOnTheActivationToken) {
    const std::string printer =
        folder.file("printer",
                    "#!/bin/sh\necho \"${XDG_ACTIVATION_TOKEN-none} ${DESKTOP_STARTUP_ID-none} "
                    "$KEPT\" > " +
                        folder.path("started"),
                    0700);
    const std::vector<const char*> variables{"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID", "KEPT"};
    for (const char* variable : variables) {
        ASSERT_TRUE(qputenv(variable, QByteArray("given")));
    }
    EXPECT_TRUE(desktop::openFirstApplication({printer}, {printer}));
    EXPECT_TRUE(becomesStarted("none none given\n"));
    for (const char* variable : variables) {
        qunsetenv(variable);
    }
}

TEST_F(OpenFirstApplication, SkipsProgramsThatAreNotAllowed) {
    const std::string first = program("first");
    const std::string second = program("second");
    EXPECT_TRUE(desktop::openFirstApplication({first, second}, {second}));
    EXPECT_TRUE(becomesStarted("second 0\n"));
    EXPECT_FALSE(desktop::openFirstApplication({first}, {second}));
}

TEST_F(OpenFirstApplication, SkipsFilesThatAreNotExecutable) {
    const std::string text = program("text", 0600);
    EXPECT_FALSE(desktop::openFirstApplication({text}, {text}));
    EXPECT_FALSE(desktop::openFirstApplication({}, {text}));
}

TEST(Clipboard, ReplacesItsContentByAPlainText) {
    QGuiApplication::clipboard()->setImage(QImage(4, 4, QImage::Format_RGB32));
    desktop::storeOnClipboard("Tallowcrest report\n\t<b>Zürich</b> 日本");
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    ASSERT_NE(held, nullptr);
    EXPECT_EQ(held->text().toStdString(), "Tallowcrest report\n\t<b>Zürich</b> 日本");
    EXPECT_FALSE(held->hasImage());
    EXPECT_FALSE(held->hasHtml());
}

TEST(Clipboard, HoldsALongText) {
    const std::string text(1 << 20, 'x');
    desktop::storeOnClipboard(text);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), text);
}

}  // namespace
}  // namespace tallowcrest
