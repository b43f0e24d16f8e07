#include "foundation/ReadAhead.h"

#include <QThread>
#include <atomic>
#include <chrono>

namespace {

/// Files whose size tells how often the world has changed.
class World {
public:
    ReadAhead::Fetch fetch() {
        return [this](const QString& path) {
            ++fetches;
            if (std::this_thread::get_id() == m_asker)
                ++ownFetches;
            FileStatus status;
            status.kind = FileStatus::File;
            status.size = version;
            ReadAhead::Fetched fetched;
            fetched.status = status;
            if (!path.endsWith("large")) {
                fetched.contents.emplace();
                fetched.contents->result = FileBytes::Ok;
                fetched.contents->size = static_cast<size_t>(path.size());
            }
            return fetched;
        };
    }

    std::atomic<int> version = 1;
    std::atomic<int> fetches = 0;
    int ownFetches = 0; ///< by whoever asks

private:
    const std::thread::id m_asker = std::this_thread::get_id();
};

QStringList names(int count) {
    QStringList list;
    for (int i = 0; i < count; ++i)
        list.append("o/" + QString::number(i));
    return list;
}

/// Waits until as many files were fetched.
void awaitFetches(const World& world, int count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (world.fetches < count && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
}

bool isOneCore() { return QThread::idealThreadCount() < 2; }

} // namespace

TEST(ReadAheadTest, ExpectedFilesAreThereWhenTheyAreAskedFor) {
    if (isOneCore())
        GTEST_SKIP() << "nothing is fetched ahead on one core";
    World world;
    ReadAhead ahead(world.fetch());
    QStringList expected = names(500);
    expected[1] = "/elsewhere/1";
    expected[2] = "large";
    ahead.expect("/p", expected);
    awaitFetches(world, 60);

    EXPECT_FALSE(ahead.status("/p/another"));
    ASSERT_TRUE(ahead.status("/p/o/0"));
    const auto first = ahead.read("/p/o/0");
    ASSERT_TRUE(first);
    EXPECT_EQ(first->size, 6U);
    EXPECT_FALSE(ahead.status("/p/o/0") || ahead.read("/p/o/0")) << "each is told once";
    EXPECT_TRUE(ahead.status("/elsewhere/1"));
    EXPECT_TRUE(ahead.status("/p/large"));
    EXPECT_FALSE(ahead.read("/p/large"));
    EXPECT_TRUE(ahead.read("/p/o/5")) << "some may be left out";
    EXPECT_EQ(world.ownFetches, 0);
    EXPECT_FALSE(ahead.status("/p/o/3")) << "what was left out is past";
    EXPECT_FALSE(ahead.status("/p/o/100")) << "too far ahead";
    EXPECT_LE(world.fetches, 256) << "no more are fetched ahead than the window takes";
}

TEST(ReadAheadTest, NothingOlderThanTheLastChangeIsToldBehindIt) {
    if (isOneCore())
        GTEST_SKIP() << "nothing is fetched ahead on one core";
    World world;
    ReadAhead ahead(world.fetch());
    const QStringList expected = names(2000);
    ahead.expect("/p", expected);
    for (int i = 0; i < 1500; ++i) {
        world.version = i + 2;
        ahead.forget();
        for (const QString& name : {expected[i], expected[i + 1]}) {
            const auto status = ahead.status("/p/" + name);
            ASSERT_TRUE(!status || status->size == i + 2) << i;
        }
    }
    EXPECT_LT(world.fetches, 256 + 1500 * 5) << "changes one after another are no time to fetch far ahead";
    const int before = world.ownFetches;
    for (int i = 1501; i < 2000; ++i) {
        ASSERT_TRUE(ahead.status("/p/" + expected[i]));
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    EXPECT_LT(world.ownFetches - before, 499) << "behind the last change it comes up to speed again";
}

TEST(ReadAheadTest, BothFetchWhatIsAskedForInARow) {
    if (isOneCore())
        GTEST_SKIP() << "nothing is fetched ahead on one core";
    World world;
    ReadAhead ahead(world.fetch());
    ahead.expect("/p", names(20'000));
    for (const QString& name : names(20'000)) {
        ASSERT_TRUE(ahead.status("/p/" + name)) << qPrintable(name);
        ASSERT_TRUE(ahead.read("/p/" + name)) << qPrintable(name);
    }
    EXPECT_EQ(world.fetches, 20'000) << "no file is fetched by both";
}

TEST(ReadAheadTest, FewFilesAreNotWorthAThread) {
    World world;
    ReadAhead ahead(world.fetch());
    ahead.expect("/p", names(10));
    for (const QString& name : names(10))
        EXPECT_TRUE(ahead.status("/p/" + name) && ahead.read("/p/" + name));
    EXPECT_EQ(world.fetches, 10);
    EXPECT_EQ(world.ownFetches, 10);
}

TEST(ReadAheadTest, ItEndsInTheMiddleOfAFetch) {
    std::atomic<bool> started = false;
    ReadAhead ahead([&](const QString&) {
        started = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return ReadAhead::Fetched();
    });
    ahead.expect("/p", names(1000));
    while (!isOneCore() && !started)
        std::this_thread::yield();
}
