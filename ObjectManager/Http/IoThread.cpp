#include "ObjectManager/Http/IoThread.h"

#include <boost/asio/post.hpp>
#include <exception>
#include <future>
#include <new>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Http/Options.h"

namespace Http {

void logFailure(const std::exception& exception) noexcept {
    try {
        Base::log(kLogComponent, TeskTraceLog::SeverityError,
                  "A connection failed: " + Base::logText(Base::reasonOf(exception)));
    } catch (const std::bad_alloc&) {
        // The line is lost; the other connections go on.
    }
}

void IoThread::start() {
    thread_ = std::thread([this] { run(); });
}

void IoThread::call(const std::function<void()>& task) {
    std::packaged_task<void()> waited(task);
    boost::asio::post(context_, [&waited] { waited(); });
    waited.get_future().get();
}

void IoThread::stop() {
    context_.stop();
    if (thread_.joinable())
        thread_.join();
}

void IoThread::run() noexcept {
    while (!context_.stopped()) {
        try {
            context_.run();
        } catch (const std::exception& exception) {
            logFailure(exception);
        }
    }
}

}  // namespace Http
