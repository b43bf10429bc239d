#include "platform/files/packages.h"

#include <string>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(Packages, AreKnownByTheirExtensions) {
    for (const char* name :
         {"Editor.app", "EDITOR.APP", "a.b.app", "Pictures.photoslibrary", "Film.fcpbundle",
          "Tool.AppDir", "Project.xcodeproj", "Letter.pages", "Talk.key", "Budget.numbers",
          "aplibrary.aplibrary", "\xff\xfe.bundle"}) {
        EXPECT_TRUE(isPackageName(name)) << name;
    }
    for (const char* name : {"", "app", ".app", "Editor.app ", "Editor.apps", "Editor.ap",
                             "Editor.app.old", "Editor.", "user.service", "src", "a.\xc3\xa4pp"}) {
        EXPECT_FALSE(isPackageName(name)) << name;
    }
    EXPECT_FALSE(isPackageName(std::string("a.app\0", 6)));
}

}  // namespace
}  // namespace tallowcrest
