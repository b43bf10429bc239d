#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QTest>
#include <QVBoxLayout>
#include <gmock/gmock.h>

#include "core/local_records.h"
#include "presentation/widgets/arrange_now.h"
#include "presentation/widgets/crest_style.h"
#include "presentation/widgets/page_scroll_area.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/presentation/shown_texts.h"
#include "tests/presentation/widgets/paint_count.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

/// A block of the overview on a page of its own, told plain values.
class OverviewBlockTest : public testing::Test {
protected:
    static void SetUpTestSuite() { QApplication::setStyle(new CrestStyle); }

    OverviewBlockTest() { page.resize(1000, 1200); }

    const ScopedLocale locale{"en_US"};

    /// Puts the block on the page.
    template <class Block>
    Block& place(Block* block) {
        auto* column = makePageColumn(page);
        column->addWidget(block);
        column->addStretch(1);
        showUnseen(page);
        return *block;
    }

    void settle() {
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        arrangeNow(page);
        QApplication::processEvents();
    }

    /// The height that the block takes once it is laid out.
    int heightOf(const QWidget& block) {
        settle();
        return block.height();
    }

    std::vector<std::string> texts(const QWidget& block) {
        settle();
        return shownTexts(block);
    }

    /// The visible widget of that identifier, or null.
    template <class Widget = QWidget>
    Widget* visible(const char* identifier) {
        auto* found = page.findChild<Widget*>(QString::fromLatin1(identifier));
        return found != nullptr && found->isVisible() ? found : nullptr;
    }

    QString textOf(const char* identifier) {
        const auto* label = visible<ElidedLabel>(identifier);
        return label == nullptr ? u"(not shown)"_s : label->text();
    }

    void click(const char* identifier) {
        auto* button = visible<QAbstractButton>(identifier);
        ASSERT_NE(button, nullptr) << identifier;
        QTest::mouseClick(button, Qt::LeftButton);
    }

    /// The sample that follows; the figures of the last one stay.
    SystemSnapshot& sample() {
        if (!snapshot) {
            snapshot.emplace();
        }
        snapshot->sampledAt.secondsSinceReference += 4.0;
        return *snapshot;
    }

    static AppImpact group(const std::string& name, double megabytes,
                           std::optional<std::int64_t> topPID = std::nullopt) {
        AppImpact impact;
        impact.name = name;
        impact.totalMemoryMB = megabytes;
        impact.topPID = topPID;
        return impact;
    }

    QWidget page;
    std::optional<SystemSnapshot> snapshot;
};

}  // namespace tallowcrest
