// A file's Finder information and the `.hidden` list beside it. Both come with the files.
#include "carbon/finder_information.h"

#include <Carbon/Carbon.h>
#include <sys/xattr.h>

#include <filesystem>

#include "input.h"
#include "require.h"
#include "scratch.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    static unsigned turn = 0;
    // A folder of its own, since a folder's list is kept for a moment.
    const std::string folder = fuzz::scratch() + "/" + std::to_string(turn++ % 4096);
    std::filesystem::create_directories(folder);
    const std::string path = folder + "/name";
    fuzz::write_file(path, "");
    const std::string information = input.text(input.byte() % 64);
    fuzz::write_file(folder + "/.hidden", input.rest());
    setxattr(path.c_str(), "user.com.apple.FinderInfo", information.data(), information.size(), 0);
    files::FinderInformation read;
    if (files::read_finder_information(path.c_str(), &read) && information.size() == 32) {
        require(memcmp(read.bytes, information.data(), 32) == 0 || read.type() == 0, "as stored");
    }
    files::is_hidden(path);
    FSRef ref;
    FSCatalogInfo catalog;
    HFSUniStr255 name;
    if (FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &ref, nullptr) == noErr) {
        FSGetCatalogInfo(&ref, kFSCatInfoNodeFlags | kFSCatInfoFinderInfo, &catalog, &name, nullptr,
                         nullptr);
    }
    std::filesystem::remove_all(folder);
    return 0;
}
