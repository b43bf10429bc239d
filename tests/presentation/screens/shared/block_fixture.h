#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QVBoxLayout>

#include "core/local_records.h"
#include "presentation/widgets/page_scroll_area.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/presentation/shown_texts.h"
#include "tests/presentation/widget_fixture.h"
#include "tests/presentation/widgets/paint_count.h"

namespace tallowcrest {

/// One card on a page of its own, which tests give plain values.
class OverviewBlockTest : public WidgetFixture {
protected:
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

    QWidget& root() override { return page; }

    /// A block within two layouts has its place one turn later.
    void settle() override {
        WidgetFixture::settle();
        QApplication::processEvents();
    }

    /// The height of the block after pending layouts.
    int heightOf(const QWidget& block) {
        settle();
        return block.height();
    }

    std::vector<std::string> texts(const QWidget& block) {
        settle();
        return shownTexts(block);
    }

    /// The next sample, 4 seconds later, with the figures of the last one.
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
