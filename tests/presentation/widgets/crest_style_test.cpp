#include "presentation/widgets/crest_style.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(FocusRing, DependsOnTheFocusReason) {
    struct Case {
        Qt::FocusReason reason;
        bool withoutOne;  ///< the result if there was no ring before
        bool withOne;     ///< the result if there was one
    };
    for (const Case& each :
         {Case{Qt::MouseFocusReason, false, false}, Case{Qt::TabFocusReason, true, true},
          Case{Qt::BacktabFocusReason, true, true}, Case{Qt::ActiveWindowFocusReason, false, true},
          Case{Qt::PopupFocusReason, false, true}, Case{Qt::ShortcutFocusReason, true, true},
          Case{Qt::MenuBarFocusReason, true, true}, Case{Qt::OtherFocusReason, true, true}}) {
        EXPECT_EQ(showsFocusRing(each.reason, false), each.withoutOne) << each.reason;
        EXPECT_EQ(showsFocusRing(each.reason, true), each.withOne) << each.reason;
    }
}

}  // namespace
}  // namespace tallowcrest
