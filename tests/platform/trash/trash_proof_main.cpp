// Moves files to the Trash while a hostile thread changes what is being moved, for as many rounds
// as wanted, and tells what came of it.

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "tests/platform/trash/own_mounts.h"
#include "tests/platform/trash/trash_proof.h"
#include "tests/support/temporary_folder.h"

int main(int argc, char** argv) {
    using namespace tallowcrest;
    const std::int64_t rounds = argc > 1 ? std::strtoll(argv[1], nullptr, 10) : 0;
    if (argc > 3 || rounds <= 0) {
        std::cerr << "usage: trash_proof ROUNDS [memory|disk]\n";
        return 2;
    }
    try {
        const TemporaryFolder folder;
        const bool hasMounts = enterOwnMounts();
        if (!hasMounts) {
            std::cout << "without mounts, which this account may not have\n";
        } else if (argc < 3 || std::string(argv[2]) == "memory") {
            mountMemory(folder.path());
        }
        const ProofReport report = proveTrash(folder.path(), rounds);
        std::cout << report.moved << " files moved, " << report.left << " left, " << report.putBack
                  << " put back, " << report.stranded
                  << " others that could not be put back and can be restored, " << report.attacks
                  << " attacks, " << report.descriptionsMoved << " descriptions moved, "
                  << report.faults.size() << " faults\n";
        for (const std::string& fault : report.faults) {
            std::cout << fault << '\n';
        }
        return report.faults.empty() ? 0 : 1;
    } catch (const std::exception& problem) {
        std::cerr << problem.what() << '\n';
        return 1;
    }
}
