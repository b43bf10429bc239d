#include "platform/http/curl_exchange.h"

#include <condition_variable>
#include <list>
#include <mutex>
#include <new>
#include <system_error>
#include <utility>

#include "platform/base/core_dumps.h"
#include "platform/http/curl_library.h"
#include "platform/http/curl_transfer.h"

namespace tallowcrest {

/// Where the thread of an exchange leaves the reply, whether anybody still waits for it or not.
struct CurlExchange::Box {
    std::mutex lock;
    std::condition_variable_any arrived;
    bool isOver = false;
    std::optional<HttpReply> reply;
};

/// The exchanges that nobody waits for any more.
struct CurlExchange::Abandoned {
    std::mutex lock;
    std::condition_variable ended;
    std::list<std::stop_source> exchanges;
};

CurlExchange::CurlExchange(Options options)
    : options_(std::move(options)), abandoned_(std::make_shared<Abandoned>()) {
    prepareCurl();  // a failure is told by each exchange
}

CurlExchange::~CurlExchange() {
    std::unique_lock guard(abandoned_->lock);
    for (std::stop_source& exchange : abandoned_->exchanges) {
        exchange.request_stop();
    }
    abandoned_->ended.wait(guard, [this] { return abandoned_->exchanges.empty(); });
}

std::optional<HttpReply> CurlExchange::post(const HttpRequest& request,
                                            const std::stop_token& stop) {
    forbidCoreDumps();
    try {
        return postOnThread(request, stop);
    } catch (const std::system_error& error) {  // there is no thread
        return HttpReply{.transportError = error.code().message()};
    } catch (const std::bad_alloc&) {
        return outOfMemory();
    }
}

std::optional<HttpReply> CurlExchange::postOnThread(const HttpRequest& request,
                                                    const std::stop_token& stop) {
    const auto box = std::make_shared<Box>();
    auto work = [box, transfer =
                          CurlTransfer{.url = request.url,
                                       .bearerToken = SecretText(request.bearerToken.view()),
                                       .body = request.body,
                                       .timeout = request.timeout,
                                       .longestReply = options_.longestReply,
                                       .certificateAuthorities = options_.certificateAuthorities,
                                       .proxies = options_.proxies != nullptr ? options_.proxies()
                                                                              : ProxyVariables()}](
                    const std::stop_token& abandoned) mutable {
        HttpReply reply = performTransfer(std::exchange(transfer, {}), abandoned);
        const std::lock_guard guard(box->lock);
        box->reply = std::move(reply);
        box->isOver = true;
        box->arrived.notify_all();
    };
    std::jthread exchange(std::move(work));
    std::unique_lock guard(box->lock);
    box->arrived.wait_for(guard, stop, request.wait, [&box] { return box->isOver; });
    if (box->isOver) {
        // The thread has nothing more to do, so its end takes no time.
        return std::move(box->reply);
    }
    guard.unlock();
    if (stop.stop_requested()) {
        exchange.request_stop();
    }
    abandon(std::move(exchange));
    return std::nullopt;
}

void CurlExchange::abandon(std::jthread exchange) {
    const auto remove = [abandoned = abandoned_](auto place) {
        const std::lock_guard guard(abandoned->lock);
        abandoned->exchanges.erase(place);
        abandoned->ended.notify_all();
    };
    std::unique_lock guard(abandoned_->lock);
    const auto place =
        abandoned_->exchanges.insert(abandoned_->exchanges.end(), exchange.get_stop_source());
    guard.unlock();
    try {
        // A thread that has used TLS is joined, and not detached: what it does at its very end must
        // not come after the end of the program.
        std::thread([exchange = std::move(exchange), remove, place]() mutable {
            exchange.join();
            remove(place);
        }).detach();
    } catch (const std::exception&) {
        remove(place);  // the exchange was stopped and has ended with the thread that was not made
    }
}

}  // namespace tallowcrest
