#include "platform/http/curl_exchange.h"

#include <condition_variable>
#include <system_error>
#include <utility>

#include "platform/base/core_dumps.h"
#include "platform/http/curl_transfer.h"

namespace tallowcrest {

/// Where the thread of an exchange leaves the reply, whether anybody still waits for it or not.
struct CurlExchange::Box {
    std::mutex lock;
    std::condition_variable_any arrived;
    bool isAwaited = true;
    bool isOver = false;
    std::optional<HttpReply> reply;
};

CurlExchange::CurlExchange() : CurlExchange(Options()) {}

CurlExchange::CurlExchange(Options options) : options_(std::move(options)) {}

CurlExchange::~CurlExchange() {
    for (Running& exchange : running_) {
        exchange.thread.request_stop();
    }
}

std::optional<HttpReply> CurlExchange::post(const HttpRequest& request,
                                            const std::stop_token& stop) {
    forbidCoreDumps();
    const auto box = std::make_shared<Box>();
    auto work = [box, transfer =
                          CurlTransfer{.url = request.url,
                                       .bearerToken = SecretText(request.bearerToken.view()),
                                       .body = request.body,
                                       .timeout = request.timeout,
                                       .longestReply = options_.longestReply,
                                       .certificateAuthorities = options_.certificateAuthorities}](
                    const std::stop_token& abandoned) mutable {
        HttpReply reply = performTransfer(std::exchange(transfer, {}), abandoned);
        const std::lock_guard guard(box->lock);
        if (box->isAwaited) {
            box->reply = std::move(reply);
        }
        box->isOver = true;
        box->arrived.notify_all();
    };
    std::stop_source abandon;
    try {
        Running exchange{box, std::jthread(std::move(work))};
        abandon = exchange.thread.get_stop_source();
        const std::lock_guard guard(lock_);
        running_.push_back(std::move(exchange));
    } catch (const std::system_error& error) {
        return HttpReply{.transportError = error.code().message()};
    }
    std::optional<HttpReply> reply;
    {
        std::unique_lock guard(box->lock);
        box->arrived.wait_for(guard, stop, request.wait, [&box] { return box->isOver; });
        if (stop.stop_requested()) {
            abandon.request_stop();
        }
        box->isAwaited = false;
        reply = std::exchange(box->reply, std::nullopt);
    }
    removeEnded();
    return reply;
}

void CurlExchange::removeEnded() {
    std::list<Running> ended;
    const std::lock_guard guard(lock_);
    for (auto next = running_.begin(); next != running_.end();) {
        const auto exchange = next++;
        const std::lock_guard boxGuard(exchange->box->lock);
        if (exchange->box->isOver) {
            ended.splice(ended.end(), running_, exchange);
        }
    }
}

}  // namespace tallowcrest
