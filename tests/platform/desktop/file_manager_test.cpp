#include "platform/desktop/file_manager.h"

#include <QGuiApplication>
#include <QObject>
#include <QSignalSpy>
#include <gmock/gmock.h>

#include "tests/platform/desktop/private_bus.h"
#include "tests/platform/desktop/scripted_file_manager.h"
#include "tests/platform/desktop/turn_until.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class FileManagerTest : public testing::Test {
protected:
    ~FileManagerTest() override {
        QDBusConnection::disconnectFromBus(here_);
        QDBusConnection::disconnectFromBus(there_);
    }

    void show(const std::filesystem::path& file) {
        showInFileManager(file, QDBusConnection(here_),
                          [this](const QUrl& folder) { opened.append(folder.toLocalFile()); });
    }

    void startFileManager() {
        QDBusConnection there(there_);
        ASSERT_TRUE(there.registerObject(u"/org/freedesktop/FileManager1"_s, &manager,
                                         QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(there.registerService(u"org.freedesktop.FileManager1"_s));
    }

    PrivateBus bus;
    ScriptedFileManager manager;
    QStringList opened;

private:
    QString here_ = bus.connect();
    QString there_ = bus.connect();
};

TEST_F(FileManagerTest, IsAskedToShowTheURLOfTheFile) {
    startFileManager();
    show("/home/owner/My Reports/50% #1 für Zoë.txt");
    ASSERT_TRUE(turnUntil([this] { return !manager.shown.isEmpty(); }));
    EXPECT_EQ(manager.shown,
              QStringList(u"file:///home/owner/My%20Reports/50%25%20%231%20f%C3%BCr%20Zo%C3%AB"
                          ".txt"_s));
    // The second call is answered after the first one.
    show("/tmp/a.txt");
    ASSERT_TRUE(turnUntil([this] { return manager.shown.size() == 2; }));
    EXPECT_TRUE(opened.isEmpty());
}

TEST_F(FileManagerTest, OpensTheFolderIfTheFileManagerRefuses) {
    startFileManager();
    manager.refuses = true;
    show("/home/owner/My Reports/a.txt");
    ASSERT_TRUE(turnUntil([this] { return !opened.isEmpty(); }));
    EXPECT_EQ(opened, QStringList(u"/home/owner/My Reports"_s));
}

TEST_F(FileManagerTest, OpensTheFolderWithoutAFileManager) {
    show("/home/owner/reports/a.txt");
    ASSERT_TRUE(turnUntil([this] { return !opened.isEmpty(); }));
    EXPECT_EQ(opened, QStringList(u"/home/owner/reports"_s));
}

TEST_F(FileManagerTest, OpensTheFolderAfterTheBusHasEnded) {
    bus.daemon().end();
    show("/home/owner/reports/a.txt");
    ASSERT_TRUE(turnUntil([this] { return !opened.isEmpty(); }));
    EXPECT_EQ(opened, QStringList(u"/home/owner/reports"_s));
}

TEST(FileManagerOnAnUnconnectedBus, OpensTheFolder) {
    QStringList opened;
    const QString name = u"no-bus"_s;
    showInFileManager("/home/owner/reports/a.txt",
                      QDBusConnection::connectToBus(u"unix:path=/nonexistent"_s, name),
                      [&opened](const QUrl& folder) { opened.append(folder.toLocalFile()); });
    QDBusConnection::disconnectFromBus(name);
    EXPECT_EQ(opened, QStringList(u"/home/owner/reports"_s));
}

}  // namespace
}  // namespace tallowcrest
