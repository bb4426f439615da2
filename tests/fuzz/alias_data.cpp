// Alias records, which come with drags and events.
#include <Carbon/Carbon.h>

#include "carbon/alias_records.h"
#include "input.h"
#include "require.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<UInt8> bytes(data, data + size);
    const std::string path = files::path_of_alias(bytes.data(), bytes.size());
    if (!path.empty()) {
        require(path[0] == '/' && path.find('\0') == path.npos, "a path that can be asked for");
        require(files::path_of_alias(files::alias_of_path(path).data(), size) == path,
                "a round trip");
    }
    Handle handle = NewHandleClear(static_cast<Size>(size));
    if (!handle) return 0;
    if (size > 0) memcpy(*handle, data, size);
    FSRef target;
    Boolean changed;
    const OSErr error =
        FSResolveAlias(nullptr, reinterpret_cast<AliasHandle>(handle), &target, &changed);
    require(error == noErr || path.empty() || error != paramErr,
            "a record that is one is looked up");
    DisposeHandle(handle);
    return 0;
}
