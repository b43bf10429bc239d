#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/trash/proof_world.h"
#include "tests/platform/trash/trash_proof.h"

namespace tallowcrest::trash_proof {

/// Attacks near the file that is being moved, until it is told to stop. Undoes its attacks where it
/// can. It replaces no file: what is lost was not lost by it.
class HostileThread {
public:
    HostileThread(const World& world, const std::atomic<int>& current, unsigned seed)
        : world_(world), current_(current), seed_(seed), random_(seed), thread_([this] {
              run();
          }) {}

    /// Ends it and adds the number of its attacks.
    void stop(ProofReport& report);

    /// After `stop`: the contents of the files of its own.
    const std::vector<std::string>& written() const { return written_; }
    /// And the names in the Trash of files whose descriptions it has moved.
    const std::set<std::string>& touchedDescriptions() const { return touchedDescriptions_; }

private:
    void run();
    int below(int limit);
    /// About as long as one move takes, at most.
    void wait();
    void swapForAWhile(const std::filesystem::path& one, const std::filesystem::path& other);
    void renameForAWhile(const std::filesystem::path& from, const std::filesystem::path& to);
    static std::string descriptionName(int file);
    /// Until then the one has the name of the other, and both are there.
    void swapDescriptionsForAWhile(int file, int other);
    void takeDescriptionForAWhile(int file);
    void mountForAWhile(const std::filesystem::path& source, const std::filesystem::path& place);
    /// A file can be renamed while a mount is put over it, which then covers it in the Trash.
    void unmountAll() const;
    void takeName(int file);
    void attack();

    const World& world_;
    const std::atomic<int>& current_;
    const unsigned seed_;
    std::mt19937 random_;
    std::int64_t attacks_ = 0;
    std::vector<std::string> written_;
    std::set<std::string> touchedDescriptions_;
    std::atomic<bool> stops_ = false;
    std::thread thread_;  // the last member: it uses the others
};

}  // namespace tallowcrest::trash_proof
