#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace tallowcrest {

/// A function without arguments that may own what cannot be copied. Run at most once. An empty task
/// must not be run.
class Task {
public:
    Task() = default;

    template <class Function>
    requires(!std::is_same_v<std::remove_cvref_t<Function>, Task>)
        Task(Function&& function)  // NOLINT(google-explicit-constructor): as for std::function
        : body_(
              std::make_unique<Holder<std::decay_t<Function>>>(std::forward<Function>(function))) {}

    void operator()() { body_->run(); }
    explicit operator bool() const { return body_ != nullptr; }

private:
    struct Body {
        virtual ~Body() = default;
        virtual void run() = 0;
    };
    template <class Function>
    struct Holder final : Body {
        explicit Holder(Function kept) : function(std::move(kept)) {}
        void run() override { function(); }
        Function function;
    };

    std::unique_ptr<Body> body_;
};

}  // namespace tallowcrest
