#include "disk/trash.h"

namespace tallowcrest {
namespace {

class UnpreparedMove final : public PreparedMove {
public:
    UnpreparedMove(Trash& trash, const TrashRequest& request) : trash_(trash), request_(request) {}

    TrashOutcome complete(std::optional<std::int64_t> maximumBytes) override {
        request_.maximumBytes = maximumBytes;
        return trash_.moveToTrash(request_);
    }

private:
    Trash& trash_;
    TrashRequest request_;
};

}  // namespace

std::unique_ptr<PreparedMove> Trash::prepareMove(const TrashRequest& request) {
    return std::make_unique<UnpreparedMove>(*this, request);
}

void Trash::removeUnusedDescriptions(const std::string& /*inside*/,
                                     const std::function<bool()>& /*isStopped*/) {}

}  // namespace tallowcrest
