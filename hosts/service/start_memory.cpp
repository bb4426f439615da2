#include "service/start_memory.h"

#include <stdint.h>
#include <sys/mman.h>

#include <fstream>
#include <ios>
#include <sstream>
#include <string>

namespace {

struct Mapping {
    uintptr_t begin = 0, end = 0;
    std::string rights;
    uint64_t inode = 0;

    bool is_unwritable_file() const { return inode != 0 && rights.find('w') == rights.npos; }
};

// The first line about a mapping in /proc/self/smaps, as in
// "7f01c0a00000-7f01c0a22000 r--p 00000000 fe:01 1835 /usr/lib/libc.so.6".
bool read_mapping(const std::string& line, Mapping* mapping) {
    std::istringstream words(line);
    Mapping found;
    char dash = 0;
    std::string offset, device;
    words >> std::hex >> found.begin >> dash >> found.end >> std::dec;
    words >> found.rights >> offset >> device >> found.inode;
    if (!words || dash != '-') return false;
    *mapping = found;
    return true;
}

}  // namespace

void give_back_start_memory() {
    std::ifstream lines("/proc/self/smaps");
    Mapping mapping;
    for (std::string line; std::getline(lines, line);) {
        if (read_mapping(line, &mapping) || !mapping.is_unwritable_file()) continue;
        // Pages that the dynamic linker has written are protected afterwards; they have no file.
        const std::string name = "Anonymous:";
        if (!line.starts_with(name)) continue;
        if (line.find_first_not_of(' ', name.size()) != line.find("0 kB")) continue;
        madvise(reinterpret_cast<void*>(mapping.begin), mapping.end - mapping.begin, MADV_DONTNEED);
    }
}
