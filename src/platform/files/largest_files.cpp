#include "platform/files/largest_files.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

namespace tallowcrest {
namespace {

std::string_view nameOf(const FoundFile& file) {
    return std::string_view(file.path).substr(file.path.rfind('/') + 1);
}

}  // namespace

bool LargestFiles::comesFirst(const Kept& left, const Kept& right) {
    return left.file.bytes != right.file.bytes ? left.file.bytes > right.file.bytes
                                               : left.file.path < right.file.path;
}

LargestFiles::LargestFiles(std::int64_t minimumBytes, std::size_t count)
    : minimumBytes_(minimumBytes), count_(count) {}

std::int64_t LargestFiles::leastBytes() const {
    if (count_ == 0) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return heap_.size() < count_ ? minimumBytes_ : heap_.front().file.bytes;
}

void LargestFiles::add(FoundFile file, const FileIdentity& folder) {
    Kept added{std::move(file), folder};
    const auto isSame = [&](const Kept& each) {
        return each.file.identity == added.file.identity && each.folder == folder &&
               nameOf(each.file) == nameOf(added.file);
    };
    if (count_ == 0 || added.file.bytes < minimumBytes_ ||
        (heap_.size() == count_ && !comesFirst(added, heap_.front())) ||
        std::any_of(heap_.begin(), heap_.end(), isSame)) {
        return;
    }
    heap_.push_back(std::move(added));
    std::push_heap(heap_.begin(), heap_.end(), comesFirst);
    if (heap_.size() > count_) {
        std::pop_heap(heap_.begin(), heap_.end(), comesFirst);
        heap_.pop_back();
    }
}

std::vector<FoundFile> LargestFiles::sorted() const {
    std::vector<Kept> kept = heap_;
    std::sort(kept.begin(), kept.end(), comesFirst);
    std::vector<FoundFile> files;
    for (Kept& each : kept) {
        files.push_back(std::move(each.file));
    }
    return files;
}

}  // namespace tallowcrest
