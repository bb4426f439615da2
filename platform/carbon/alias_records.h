// What an alias record holds.
#pragma once

#include <Carbon/Files.h>

#include <string>
#include <vector>

namespace files {

std::vector<UInt8> alias_of_path(const std::string& path);
// Empty when the bytes are no alias record.
std::string path_of_alias(const UInt8* bytes, size_t size);

}  // namespace files
