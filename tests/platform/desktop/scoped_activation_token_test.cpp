#include "platform/desktop/scoped_activation_token.h"

#include <functional>

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

constexpr const char* variable = "XDG_ACTIVATION_TOKEN";

class ScopedActivationTokenTest : public testing::Test {
protected:
    ~ScopedActivationTokenTest() override { qunsetenv(variable); }

    static void post(const std::function<void()>& work) {
        QMetaObject::invokeMethod(QCoreApplication::instance(), work, Qt::QueuedConnection);
    }
};

TEST_F(ScopedActivationTokenTest, IsSetForPostedWorkAndThenRemoved) {
    QByteArray posted;
    {
        const ScopedActivationToken token("token");
        EXPECT_EQ(qgetenv(variable), "token");
        post([&posted] { posted = qgetenv(variable); });
    }
    EXPECT_EQ(qgetenv(variable), "token");
    QCoreApplication::processEvents();
    EXPECT_EQ(posted, "token");
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST_F(ScopedActivationTokenTest, ALaterTokenReplacesAnEarlierOne) {
    { const ScopedActivationToken first("first"); }
    QByteArray atEndOfFirst;
    post([&atEndOfFirst] { atEndOfFirst = qgetenv(variable); });
    { const ScopedActivationToken second("second"); }
    EXPECT_EQ(qgetenv(variable), "second");
    QCoreApplication::processEvents();
    EXPECT_EQ(atEndOfFirst, "second") << "the end of the first removes only the first";
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST_F(ScopedActivationTokenTest, AnEmptyTokenRemovesAnEarlierOne) {
    { const ScopedActivationToken earlier("token"); }
    const ScopedActivationToken none({});
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST_F(ScopedActivationTokenTest, KeepsTheTokenOfTheStart) {
    qputenv(variable, "start");
    { const ScopedActivationToken none({}); }
    QCoreApplication::processEvents();
    EXPECT_EQ(qgetenv(variable), "start");
}

}  // namespace
}  // namespace tallowcrest
