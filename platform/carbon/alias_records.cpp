#include "carbon/alias_records.h"

#include <Carbon/MacMemory.h>

#include <errno.h>
#include <limits.h>
#include <string.h>

#include "carbon/file_references.h"
#include "carbon/unreached_files.h"

namespace files {

namespace {

// The header before the path: the creator's own word, which nobody sets, and the size of the whole
// record.
struct Header {
    UInt8 user_type[4];
    UInt8 size[2];  // big-endian
};
static_assert(sizeof(Header) == sizeof(AliasRecord));

}  // namespace

std::vector<UInt8> alias_of_path(const std::string& path) {
    const size_t size = sizeof(Header) + path.size();
    const Header header = {{}, {static_cast<UInt8>(size >> 8), static_cast<UInt8>(size)}};
    std::vector<UInt8> bytes(size);
    memcpy(bytes.data(), &header, sizeof header);
    memcpy(bytes.data() + sizeof header, path.data(), path.size());
    return bytes;
}

std::string path_of_alias(const UInt8* bytes, size_t size) {
    Header header;
    if (size <= sizeof header || size >= sizeof header + PATH_MAX) return {};
    memcpy(&header, bytes, sizeof header);
    if (static_cast<size_t>(header.size[0] << 8 | header.size[1]) != size) return {};
    const std::string path(bytes + sizeof header, bytes + size);
    return path[0] == '/' && path.find('\0') == path.npos ? path : std::string();
}

}  // namespace files

OSErr FSNewAliasMinimal(const FSRef* target, AliasHandle* alias) {
    if (!alias) return paramErr;
    *alias = nullptr;
    OSErr error;
    const files::File* file = files::file_for(target, files::PATH, &error);
    if (!file) {
        const std::string* path = target ? files::kept_path(*target) : nullptr;
        if (path) files::note_unreached(*path, errno);
        return error;
    }
    const std::vector<UInt8> bytes = files::alias_of_path(file->path);
    Handle handle = NewHandleClear(static_cast<Size>(bytes.size()));
    if (!handle) return memFullErr;
    memcpy(*handle, bytes.data(), bytes.size());
    *alias = reinterpret_cast<AliasHandle>(handle);
    return noErr;
}

OSErr FSResolveAlias(const FSRef*, AliasHandle alias, FSRef* target, Boolean* wasChanged) {
    if (!alias || !target) return paramErr;
    if (wasChanged) *wasChanged = false;
    Handle handle = reinterpret_cast<Handle>(alias);
    const std::string path = files::path_of_alias(reinterpret_cast<const UInt8*>(*handle),
                                                  static_cast<size_t>(GetHandleSize(handle)));
    return path.empty() ? OSErr{paramErr} : files::make_reference_again(path, target);
}
