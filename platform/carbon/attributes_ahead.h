// The Finder information of a folder's entries, read by threads of its own while the entries are
// sorted. The threads ask by names relative to the folder and in the folder's own order: the kernel
// answers that faster than whole paths in the order of names.
#pragma once

#include <dirent.h>
#include <stddef.h>
#include <stdint.h>

#include <string>
#include <thread>
#include <vector>

#include "carbon/finder_information.h"

namespace files {

class Attributes {
  public:
    enum State { UNKNOWN, NONE, SOME };

    State state(size_t index) const {
        if (index >= read_.size() || read_[index] < 0) return UNKNOWN;
        return read_[index] == 0 ? NONE : SOME;
    }
    // Only for an entry whose state is SOME.
    const FinderInformation& information(size_t index) const {
        return found_[static_cast<size_t>(read_[index] - 1)];
    }

    // Room for so many entries.
    void reserve(size_t count) { read_.reserve(count); }
    void add_unknown() { read_.push_back(-1); }
    void add(const FinderInformation& information);
    // Adds those of the entries from `begin` on; entries before it that were not read are unknown.
    void append(size_t begin, const Attributes& others);

  private:
    std::vector<int32_t> read_;  // -1: unknown, 0: none, otherwise one more than a place in found_
    std::vector<FinderInformation> found_;
};

class AttributesAhead {
  public:
    // Starts to read, unless the folder is small. The entries must stay until finish().
    AttributesAhead(const char* folder, const dirent* const* entries, size_t count);
    ~AttributesAhead();
    AttributesAhead(const AttributesAhead&) = delete;
    AttributesAhead& operator=(const AttributesAhead&) = delete;

    // The attributes of each entry, in the order in which the entries were given.
    Attributes finish();

  private:
    // What one thread reads.
    struct Part {
        size_t begin;  // among the entries
        Attributes attributes;
        std::thread thread;
    };

    void read(Part* part, const std::vector<const dirent*>& entries) const;

    const std::string folder_;
    std::vector<Part> parts_;
};

}  // namespace files
