#include <QAccessible>

#include "actions/actions.h"
#include "presentation/widgets/danger_button.h"
#include "tests/presentation/shell/confirmation_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class ConfirmationContentTest : public ConfirmationFixture {
protected:
    QStringList shownPaths() {
        QStringList paths;
        for (const auto* line : dialog().findChildren<ElidedLabel*>()) {
            if (line->isVisible() && line->objectName().startsWith(u"confirmation.path."_s)) {
                paths.append(line->text());
            }
        }
        return paths;
    }
};

// Content ----------------------------------------------------------------------------------------

TEST_F(ConfirmationContentTest, IsOpenOnlyWhileARequestIsPending) {
    showWithSample();
    EXPECT_EQ(window().findChild<ConfirmationDialog*>(), nullptr);
    ask(probe());
    desk().cancelPending();
    settle();
    EXPECT_FALSE(isOpen());
}

TEST_F(ConfirmationContentTest, ShowsTheTextsOfTheRequest) {
    showWithSample();
    machine.monitor().actions().review.selectProcess(machine.metrics->processes[0]);
    machine.monitor().actions().local.requestQuitSelectedProcess();
    settle();
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(dialog().windowTitle(), u"Confirm Action"_s);
    EXPECT_EQ(dialog().accessibleName(), u"Confirm Action"_s);
    EXPECT_EQ(textOf("confirmation.title"), u"Quit photo-indexer?"_s);
    EXPECT_EQ(textOf("confirmation.message"),
              u"Tallowcrest will send TERM to PID 800. Unsaved work may be lost if "
              "the app cannot close cleanly."_s);
    EXPECT_EQ(cancel().text(), u"Cancel"_s);
    EXPECT_EQ(confirm().text(), u"Quit Process"_s);
    EXPECT_EQ(visible("confirmation.processes"), nullptr) << "the message names the process";
    EXPECT_EQ(textOf("confirmation.executables"), u"Executable"_s);
    EXPECT_EQ(shownPaths(), QStringList(u"/usr/bin/photo-indexer"_s));
    EXPECT_EQ(dialog().accessibleDescription(),
              u"Quit photo-indexer?\nExecutable\n/usr/bin/photo-indexer"_s)
        << "screen readers read the message by themselves";
}

TEST_F(ConfirmationContentTest, AQuestionAboutAGroupSaysWhichProcesses) {
    machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
    machine.addProcess(902, "/opt/chrome helper", 25.0, 250.0);
    showWithSample();
    machine.monitor().actions().review.setTarget(901, "Google Chrome");
    machine.monitor().actions().local.requestQuitSelectedApp();
    settle();
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(textOf("confirmation.message"),
              u"Tallowcrest will ask Google Chrome to quit gracefully, then may send TERM to "
              "visible helper processes if needed. Review unsaved work first."_s);
    EXPECT_EQ(textOf("confirmation.processes"), u"2 processes: 901, 902"_s);
    EXPECT_EQ(textOf("confirmation.executables"), u"Executables"_s);
    EXPECT_EQ(shownPaths().join(u'|'), u"/opt/chrome|/opt/chrome helper"_s);
    EXPECT_EQ(dialog().accessibleDescription(), u"Executables\n/opt/chrome\n/opt/chrome helper"_s);
}

TEST_F(ConfirmationContentTest, AGroupOfHundredsIsCounted) {
    showWithSample();
    ask(probe(), {"/opt/worker"}, std::vector<std::int64_t>(300, 4194304));
    const auto* line = visible<ElidedLabel>("confirmation.processes");
    EXPECT_TRUE(line->text().startsWith(u"300 processes: 4194304, "_s));
    EXPECT_TRUE(line->shownLines().last().endsWith(u" and 288 more"_s));
    EXPECT_LE(dialog().height(), 560);
    ask(probe("Other?"));
    EXPECT_EQ(visible("confirmation.processes"), nullptr);
}

TEST_F(ConfirmationContentTest, IsModalToItsWindowOnly) {
    showAndAsk();
    EXPECT_EQ(dialog().windowModality(), Qt::WindowModal);
    EXPECT_EQ(dialog().parentWidget(), &window());
    EXPECT_FALSE(dialog().windowFlags() & Qt::WindowMinimizeButtonHint);
}

TEST_F(ConfirmationContentTest, ControlsAreAccessible) {
    showAndAsk();
    for (QPushButton* button : {&cancel(), &confirm()}) {
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(button);
        ASSERT_NE(spoken, nullptr);
        EXPECT_EQ(spoken->text(QAccessible::Name), button->text());
        EXPECT_FALSE(spoken->text(QAccessible::Description).isEmpty());
    }
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&dialog());
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::Dialog);
}

TEST_F(ConfirmationContentTest, ShowsAtMostFiveExecutables) {
    showAndAsk();
    EXPECT_EQ(visible("confirmation.paths"), nullptr);
    const int without = dialog().height();

    ask(probe("One?"), {"/opt/one"});
    EXPECT_EQ(shownPaths(), QStringList(u"/opt/one"_s));
    EXPECT_EQ(visible("confirmation.paths")->accessibleName(), u"Executable"_s);
    EXPECT_EQ(visible("confirmation.more-paths"), nullptr);
    EXPECT_GT(dialog().height(), without);

    ask(probe("Five?"), {"/a", "/b", "/c", "/d", "/e"});
    EXPECT_EQ(shownPaths().join(u' '), u"/a /b /c /d /e"_s);
    EXPECT_EQ(visible("confirmation.more-paths"), nullptr);

    ask(probe("Seven?"), {"/a", "/b", "/c", "/d", "/e", "/f<i>", "/g"});
    EXPECT_EQ(shownPaths().join(u' '), u"/a /b /c /d /e"_s);
    EXPECT_EQ(textOf("confirmation.more-paths"), u"and 2 more"_s);
    EXPECT_EQ(visible("confirmation.paths")->accessibleName(), u"Executables"_s);
    EXPECT_EQ(visible("confirmation.more-paths")->accessibleDescription(), u"/f<i>\n/g"_s);
    EXPECT_TRUE(visible("confirmation.more-paths")->toolTip().contains(u"/f&lt;i&gt;"_s));

    ask(probe("None?"));
    EXPECT_EQ(visible("confirmation.paths"), nullptr);
    EXPECT_EQ(dialog().height(), without);
}

TEST_F(ConfirmationContentTest, HeightFollowsTheContent) {
    showWithSample();
    const std::vector<std::vector<std::string>> targets{
        {}, {"/a"}, {"/a", "/b", "/c", "/d", "/e"}, {"/a", "/b", "/c", "/d", "/e", "/f"}};
    std::vector<int> heights;
    for (const auto& paths : targets) {
        ask(probe(), paths);
        heights.push_back(dialog().height());
        EXPECT_TRUE(heights.size() < 2 || heights.back() > heights[heights.size() - 2]);
        desk().cancelPending();
        settle();
    }
    for (const std::size_t i : {3U, 0U, 2U, 1U, 3U, 2U, 0U}) {
        ask(probe(), targets[i]);
        EXPECT_EQ(dialog().height(), heights[i]);
        settle();
        for (const auto* line : dialog().findChildren<ElidedLabel*>()) {
            if (line->isVisible()) {
                EXPECT_EQ(line->height(), line->heightForWidth(line->width()));
            }
        }
    }
}

TEST_F(ConfirmationContentTest, ALongPathIsElidedInTheMiddle) {
    showWithSample();
    ask(probe(), {"/opt/" + std::string(300, 'x') + "/end"});
    const auto* line = visible<ElidedLabel>("confirmation.path.0");
    ASSERT_EQ(line->shownLines().size(), 1);
    EXPECT_TRUE(line->shownLines().first().startsWith(u"/opt/"_s));
    EXPECT_TRUE(line->shownLines().first().endsWith(u"/end"_s));
}

TEST_F(ConfirmationContentTest, HostileTextsAreShownLiterallyAndKeepTheLayout) {
    showWithSample();
    ask(probe());
    const int usualWidth = dialog().width();
    for (const std::string& name :
         {std::string("<b>bold</b><img src='/etc/passwd'>"), std::string(10000, 'W'),
          std::string("&Go & && On"), std::string(400, '\n') + "x", std::string("\xff\xfe\x80"),
          std::string()}) {
        ConfirmationRequest request = probe("Quit " + name + "?");
        request.message = "Tallowcrest will ask " + name + " to quit.";
        request.confirmTitle = "Quit " + name;
        ask(request, {name, "/usr/bin/" + name});
        EXPECT_EQ(dialog().width(), usualWidth);
        EXPECT_LE(dialog().height(), 560);
        EXPECT_TRUE(dialog().rect().contains(confirm().geometry()));
        EXPECT_TRUE(dialog().rect().contains(cancel().geometry()));
        EXPECT_FALSE(cancel().geometry().intersects(confirm().geometry()));
        EXPECT_FALSE(textOf("confirmation.title").contains(u'\n'));
        EXPECT_TRUE(textOf("confirmation.message").endsWith(u" to quit."_s));
        for (const auto* label : dialog().findChildren<ElidedLabel*>()) {
            EXPECT_TRUE(!label->isVisible() ||
                        label->parentWidget()->rect().contains(label->geometry()));
        }
    }
    ConfirmationRequest request = probe("<b>&Quit</b>?");
    request.confirmTitle = "<i>&Go</i>";
    ask(request);
    EXPECT_EQ(textOf("confirmation.title"), u"<b>&Quit</b>?"_s);
    EXPECT_EQ(confirm().accessibleName(), u"<i>&Go</i>"_s);
    EXPECT_TRUE(confirm().shortcut().isEmpty());
}

TEST_F(ConfirmationContentTest, ControlAndDirectionCharactersAreReplaced) {
    showWithSample();
    ask(probe("Quit a\u202Eb\u2066c\n\td?"));
    EXPECT_EQ(textOf("confirmation.title"), u"Quit a\uFFFDb\uFFFDc\uFFFD\uFFFDd?"_s);
}

TEST_F(ConfirmationContentTest, TheWholeMessageIsShownWithTheLongestFileName) {
    showWithSample();
    ConfirmationRequest request = probe();
    request.message = "Tallowcrest will ask " + std::string(255, 'W') +
                      " to quit gracefully, then may send TERM to visible helper processes if "
                      "needed. Review unsaved work first.";
    ask(request);
    EXPECT_TRUE(visible<ElidedLabel>("confirmation.message")
                    ->shownLines()
                    .last()
                    .endsWith(u"work first."_s));
}

TEST_F(ConfirmationContentTest, TheWholeTitleIsShownWithTheLongestFileName) {
    showWithSample();
    const auto shownTitle = [this](const std::string& name) {
        ask(probe("Quit " + name + "?"));
        const auto* title = visible<ElidedLabel>("confirmation.title");
        EXPECT_EQ(title->height(), title->heightForWidth(title->width()));
        EXPECT_TRUE(dialog().rect().contains(title->geometry()));
        EXPECT_FALSE(title->shownLines().join(QString()).contains(u'…'));
        return title->shownLines();
    };
    const int lineHeight = QFontMetrics(CrestFonts::current().title).lineSpacing();
    const QStringList longest = shownTitle(std::string(255, 'W'));
    EXPECT_GT(longest.size(), 3);
    EXPECT_TRUE(longest.last().endsWith(u'?'));
    EXPECT_LT(visible("confirmation.title")->height(), longest.size() * lineHeight);
    EXPECT_EQ(shownTitle("editor"), QStringList(u"Quit editor?"_s));
    EXPECT_EQ(visible("confirmation.title")->height(), lineHeight) << "large again";
    const QStringList some = shownTitle(std::string(30, 'W'));
    EXPECT_GT(some.size(), 1);
    EXPECT_EQ(visible("confirmation.title")->height(), some.size() * lineHeight);
}

// Look -------------------------------------------------------------------------------------------

TEST_F(ConfirmationContentTest, FollowsAChangeOfAppearance) {
    const QPalette before = QApplication::palette();
    showAndAsk();
    for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
        QApplication::setPalette(paletteFor(appearance));
        settle();
        const QImage image = dialog().grab().toImage();
        EXPECT_EQ(image.pixelColor(2, 2), CrestTheme::current().pageBackground);
        EXPECT_EQ(image.pixelColor(confirm().geometry().center().x(), confirm().y()),
                  DangerButton::colors(CrestTheme::current(), false, false).ink);
    }
    QApplication::setPalette(before);
}

TEST(DangerButton, IsReadableInEachStateOnEachPalette) {
    for (const QPalette& palette :
         {paletteFor(Appearance::light), paletteFor(Appearance::dark),
          QPalette(QColor(0xef, 0xef, 0xef)), QPalette(QColor(0x31, 0x36, 0x3b))}) {
        const CrestTheme theme = CrestTheme::of(palette);
        for (const bool isHovered : {false, true}) {
            for (const bool isPressed : {false, true}) {
                const auto colors = DangerButton::colors(theme, isHovered, isPressed);
                EXPECT_GE(contrastRatio(colors.ink, colors.ground), 4.5);
            }
        }
        EXPECT_NE(DangerButton::colors(theme, true, false).ground,
                  DangerButton::colors(theme, false, false).ground);
        EXPECT_NE(DangerButton::colors(theme, true, true).ground,
                  DangerButton::colors(theme, true, false).ground);
    }
}

TEST(DangerButton, RespectsItsMaximumWidth) {
    DangerButton button;
    button.setMaximumWidth(240);
    button.setTitle(QString(10000, u'W'));
    button.adjustSize();
    EXPECT_LE(button.width(), 240);
    EXPECT_EQ(button.accessibleName().size(), 10000);
}

}  // namespace
}  // namespace tallowcrest
