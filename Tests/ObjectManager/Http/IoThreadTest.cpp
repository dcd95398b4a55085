#include <boost/asio/post.hpp>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "ObjectManager/Http/IoThread.h"
#include "Tests/Support/RecordingLogSink.h"

namespace {

using Http::IoThread;

TEST(IoThread, RunsATaskAndWaitsForIt) {
    IoThread ioThread;
    EXPECT_FALSE(ioThread.isRunning());
    ioThread.start();
    EXPECT_TRUE(ioThread.isRunning());
    std::thread::id thread;
    ioThread.call([&] { thread = std::this_thread::get_id(); });
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_NE(thread, std::thread::id());
}

TEST(IoThread, AnExceptionOfATaskPassesToTheCaller) {
    IoThread ioThread;
    ioThread.start();
    EXPECT_THROW(ioThread.call([] { throw std::runtime_error("reason"); }), std::runtime_error);
    bool ran = false;
    ioThread.call([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST(IoThread, AnExceptionOfAHandlerIsLoggedAndTheNextOneRuns) {
    const LogRecording log;
    IoThread ioThread;
    ioThread.start();
    boost::asio::post(ioThread.context(), [] { throw std::runtime_error("the\nreason"); });
    bool ran = false;
    ioThread.call([&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_EQ(log.lines(),
              std::vector<std::string>({"HttpFrontEnd|1|2|A connection failed: the\\x0areason"}));
}

TEST(IoThread, RunsNothingAfterItHasStopped) {
    bool ran = false;
    {
        IoThread ioThread;
        ioThread.start();
        ioThread.stop();
        EXPECT_FALSE(ioThread.isRunning());
        boost::asio::post(ioThread.context(), [&] { ran = true; });
        ioThread.stop();
    }
    EXPECT_FALSE(ran);
}

}  // namespace
