#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <utility>

namespace tallowcrest {

/// Counts the changes to the disk that must not be left half done when the program ends.
/// Any thread.
class DiskChanges {
public:
    /// One change under way; it is over when this is destroyed.
    class Change {
    public:
        Change(Change&& other) noexcept : owner_(std::exchange(other.owner_, nullptr)) {}
        Change& operator=(Change&&) = delete;
        ~Change();

    private:
        friend class DiskChanges;
        explicit Change(DiskChanges& owner) : owner_(&owner) {}
        DiskChanges* owner_;
    };

    /// Absent once `finish` was called: the change must then not begin.
    [[nodiscard]] std::optional<Change> begin();

    /// Lets no further change begin and blocks until those under way are over.
    void finish();

private:
    std::mutex lock_;
    std::condition_variable changeEnded_;
    std::size_t underWay_ = 0;
    bool isFinishing_ = false;
};

}  // namespace tallowcrest
