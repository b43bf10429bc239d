#include "platform/desktop/lent_activation_token.h"

#include <functional>

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

constexpr const char* variable = "XDG_ACTIVATION_TOKEN";

class LentActivationTokenTest : public testing::Test {
protected:
    ~LentActivationTokenTest() override { qunsetenv(variable); }

    static void post(const std::function<void()>& work) {
        QMetaObject::invokeMethod(QCoreApplication::instance(), work, Qt::QueuedConnection);
    }
};

TEST_F(LentActivationTokenTest, StandsThereForWhatIsPostedMeanwhileAndNoLonger) {
    QByteArray posted;
    {
        const LentActivationToken lent("leave");
        EXPECT_EQ(qgetenv(variable), "leave");
        post([&posted] { posted = qgetenv(variable); });
    }
    EXPECT_EQ(qgetenv(variable), "leave");
    QCoreApplication::processEvents();
    EXPECT_EQ(posted, "leave");
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST_F(LentActivationTokenTest, ALaterOneOfTheSameTurnTakesThePlace) {
    { const LentActivationToken first("first"); }
    QByteArray atFirstsEnd;
    post([&atFirstsEnd] { atFirstsEnd = qgetenv(variable); });
    { const LentActivationToken second("second"); }
    EXPECT_EQ(qgetenv(variable), "second");
    QCoreApplication::processEvents();
    EXPECT_EQ(atFirstsEnd, "second") << "the end of the first takes only the first back";
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST_F(LentActivationTokenTest, WithoutLeaveAnEarlierOnesIsNotUsed) {
    { const LentActivationToken earlier("leave"); }
    const LentActivationToken none({});
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST_F(LentActivationTokenTest, WhatTheDesktopGaveAtTheStartIsNotTakenAway) {
    qputenv(variable, "of the start");
    { const LentActivationToken none({}); }
    QCoreApplication::processEvents();
    EXPECT_EQ(qgetenv(variable), "of the start");
}

}  // namespace
}  // namespace tallowcrest
