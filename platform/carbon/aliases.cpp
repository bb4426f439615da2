#include <Carbon/Files.h>

#include <errno.h>
#include <sys/stat.h>

#include "carbon/file_references.h"
#include "carbon/link_targets.h"
#include "corefoundation/silent_disks.h"

namespace {

using files::File;

// Whether the end of the chain at `path` exists, and what it is.
bool end_of_chain(const std::string& path, mode_t* mode) {
    struct stat status;
    if (files::is_silent_target(path)) return *mode = S_IFDIR, true;
    if (stat(path.c_str(), &status) != 0) return false;
    *mode = status.st_mode;
    return true;
}

// Makes a reference to the target. The look that makes it still answers all questions.
OSErr refer_to(const std::string& target, FSRef* ref, mode_t* mode) {
    if (target.empty()) return files::error_from_errno(errno);
    const unsigned all = files::ITEM_INFO | files::DISPLAY_NAME | files::CATALOG_INFO | files::PATH;
    FSRef result;
    const OSErr error = files::make_reference(target.c_str(), target.size(), all, &result, mode);
    if (error != noErr) return error;
    if (S_ISLNK(*mode) && !end_of_chain(target, mode)) return files::error_from_errno(errno);
    *ref = result;
    return noErr;
}

}  // namespace

OSErr FSResolveAliasFileWithMountFlags(FSRef* ref, Boolean resolveChains, Boolean* targetIsFolder,
                                       Boolean* wasAliased, unsigned long) {
    if (!targetIsFolder || !wasAliased) return paramErr;
    OSErr error;
    const File* file = files::file_for(ref, files::ALIAS, &error);
    if (!file) return error;

    *wasAliased = S_ISLNK(file->mode);
    *targetIsFolder = S_ISDIR(file->mode);
    if (!*wasAliased) return noErr;

    mode_t mode = 0;
    error = refer_to(resolveChains ? files::real_path(file->path) : files::link_target(*file), ref,
                     &mode);
    *targetIsFolder = error == noErr && S_ISDIR(mode);
    return error;
}
