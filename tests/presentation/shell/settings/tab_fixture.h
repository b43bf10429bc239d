#pragma once

#include "presentation/widgets/card.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/presentation/widget_fixture.h"

namespace tallowcrest {

/// A tab without its sheet, which tests give plain values.
template <class Tab>
class TabFixture : public WidgetFixture {
protected:
    template <class... Arguments>
    explicit TabFixture(Arguments... arguments) : tab(arguments...) {
        tab.resize(592, 640);
        tab.setVisible(true);
        tab.activateWindow();
    }
    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(&tab)); }

    QWidget& root() override { return tab; }

    QStringList headings() {
        QStringList found;
        for (const Card* card : tab.template findChildren<Card*>()) {
            found.append(card->accessibleName());
        }
        return found;
    }

    const ScopedLocale locale{"en_US"};
    Tab tab;
};

}  // namespace tallowcrest
