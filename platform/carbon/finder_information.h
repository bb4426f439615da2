// A file's Finder information: 32 bytes that file servers for Macs keep in an extended attribute.
#pragma once

#include <stdint.h>
#include <sys/types.h>

#include <string>

namespace files {

struct File;

// Big-endian, as stored: a FileInfo (or FolderInfo) and its extension. All zero when the file has
// no Finder information.
struct FinderInformation {
    uint8_t bytes[32];

    uint32_t type() const { return word32(0); }
    uint32_t creator() const { return word32(4); }
    uint16_t flags() const { return word16(8); }
    uint16_t word16(int offset) const {
        return static_cast<uint16_t>(bytes[offset] << 8 | bytes[offset + 1]);
    }
    uint32_t word32(int offset) const {
        return static_cast<uint32_t>(word16(offset)) << 16 | word16(offset + 2);
    }
};

// The file's Finder information. Each look reads it at most once.
const FinderInformation& finder_information(File& file);

// Reads the Finder information of the file at a path. False when it is unknown whether the file has
// any.
bool read_finder_information(const char* path, FinderInformation* information);

// Whether a file system has lately said that it keeps no attributes.
bool keeps_no_attributes(uint32_t device_major, uint32_t device_minor, int64_t now);

// Whether the Finder's flag or the `.hidden` list of its folder makes the file invisible.
bool is_invisible(File& file);

// Whether file managers do not show the file at this absolute path: its name begins with a dot, or
// is_invisible() applies. Asks the disk.
bool is_hidden(const std::string& path);

}  // namespace files
