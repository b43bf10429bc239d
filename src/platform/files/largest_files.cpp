#include "platform/files/largest_files.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tallowcrest {
namespace {

bool comesFirst(const FoundFile& left, const FoundFile& right) {
    return left.bytes != right.bytes ? left.bytes > right.bytes : left.path < right.path;
}

}  // namespace

LargestFiles::LargestFiles(std::int64_t minimumBytes, std::size_t count)
    : minimumBytes_(minimumBytes), count_(count) {}

std::int64_t LargestFiles::leastBytes() const {
    if (count_ == 0) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return heap_.size() < count_ ? minimumBytes_ : heap_.front().bytes;
}

void LargestFiles::add(FoundFile file) {
    if (count_ == 0 || file.bytes < minimumBytes_ ||
        (heap_.size() == count_ && !comesFirst(file, heap_.front()))) {
        return;
    }
    heap_.push_back(std::move(file));
    std::push_heap(heap_.begin(), heap_.end(), comesFirst);
    if (heap_.size() > count_) {
        std::pop_heap(heap_.begin(), heap_.end(), comesFirst);
        heap_.pop_back();
    }
}

std::vector<FoundFile> LargestFiles::sorted() const {
    std::vector<FoundFile> files = heap_;
    std::sort(files.begin(), files.end(), comesFirst);
    return files;
}

}  // namespace tallowcrest
