#include "sampling/process_details.h"

#include <algorithm>
#include <utility>

#include "core/observable.h"
#include "sampling/command_line.h"
#include "sampling/telling_argument.h"

namespace tallowcrest {
namespace {

ProcessDetail detailOf(ProcessFacts facts, std::string command) {
    ProcessSample row;
    row.command = std::move(command);
    return {.owner = std::move(facts.owner),
            .shortName = std::move(facts.shortName),
            .argument = tellingArgument(row.displayName(), facts.arguments),
            .commandLine = commandLineText(facts.arguments)};
}

}  // namespace

ProcessDetails::ProcessDetails(Jobs& jobs, std::shared_ptr<ProcessDetailsReader> reader)
    : reader_(std::move(reader)),
      observable_(std::make_unique<Observable>(jobs.mainQueue())),
      jobs_(jobs) {}

ProcessDetails::~ProcessDetails() = default;

const ProcessDetail* ProcessDetails::find(const ProcessSample& row) const {
    const auto found = known_.find(row.pid);
    return found != known_.end() && found->second.identity.isOf(row) && found->second.detail
               ? &*found->second.detail
               : nullptr;
}

void ProcessDetails::want(const std::vector<const ProcessSample*>& rows) {
    if (reader_ == nullptr) {
        return;
    }
    if (known_.size() > rows.size() + mostKept) {
        known_.clear();
    }
    waiting_.clear();
    for (const ProcessSample* row : rows) {
        const auto found = known_.find(row->pid);
        if (found == known_.end() || !found->second.identity.isOf(*row)) {
            waiting_.push_back({row->pid, row->startTime, row->command});
        }
    }
    std::reverse(waiting_.begin(), waiting_.end());
    beginJobs();
}

void ProcessDetails::beginJobs() {
    while (jobsUnderWay_ < mostJobs && !waiting_.empty()) {
        std::vector<Known> rows;
        // More at a time of very many, because each job that ends may filter the whole list again.
        const std::size_t most = std::max(rowsPerJob, waiting_.size() / 16);
        while (rows.size() < most && !waiting_.empty()) {
            Known begun{std::move(waiting_.back()), std::nullopt};
            waiting_.pop_back();
            known_.insert_or_assign(begun.identity.pid, begun);
            rows.push_back(std::move(begun));
        }
        ++jobsUnderWay_;
        jobs_.run(
            Lane::details,
            [reader = reader_, rows = std::move(rows)](const Stop& stop) mutable {
                return read(*reader, std::move(rows), stop);
            },
            [this](std::vector<Known> results) {
                --jobsUnderWay_;
                keep(std::move(results));
                beginJobs();
            });
    }
}

// In the background.
std::vector<ProcessDetails::Known> ProcessDetails::read(ProcessDetailsReader& reader,
                                                        std::vector<Known> rows, const Stop& stop) {
    for (Known& row : rows) {
        if (stop.isRequested()) {
            break;
        }
        auto facts = reader.readFacts(row.identity.pid, row.identity.startTime);
        if (facts) {
            row.detail = detailOf(*std::move(facts), row.identity.command);
        }
    }
    return rows;
}

void ProcessDetails::keep(std::vector<Known> rows) {
    bool isNews = false;
    for (Known& row : rows) {
        const auto found = known_.find(row.identity.pid);
        // By now the pid may be another process's, which is being read as well.
        if (found == known_.end() || !(found->second.identity == row.identity)) {
            continue;
        }
        if (row.detail) {
            found->second.detail = std::move(row.detail);
            isNews = true;
        } else {
            // The next call that asks for it tries again.
            known_.erase(found);
        }
    }
    if (isNews) {
        ++revision_;
        observable_->changed();
    }
}

}  // namespace tallowcrest
