// LSOpenFromRefSpec: opening documents with a chosen application.
#include <Carbon/LaunchServices.h>

#include <gio/gdesktopappinfo.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "carbon/bundle_names.h"
#include "carbon/desktop_entries.h"
#include "carbon/file_references.h"
#include "carbon/glib_owners.h"
#include "carbon/open_file.h"
#include "carbon/program_launch.h"

namespace {

using Documents = std::vector<std::string>;

std::string path_of(const FSRef& ref) {
    OSErr error;
    const files::File* file = files::file_for(&ref, files::PATH, &error);
    return file ? file->path : std::string();
}

OSStatus status_of(Start start) {
    switch (start) {
        case Start::done:
            return noErr;
        case Start::no_program:
            return kLSNoExecutableErr;
        case Start::not_permitted:
            return kLSNoLaunchPermissionErr;
        case Start::failed:
            return kLSUnknownErr;
    }
    return kLSUnknownErr;
}

// What its program needs, or the entry itself, may be broken: GIO gives no entry then.
OSStatus open_with_entry(const std::string& path, const Documents& documents) {
    if (!files::desktop_entry_at(path).may_start) return kLSNotAnApplicationErr;
    const files::ObjectOwner<GDesktopAppInfo> entry(
        g_desktop_app_info_new_from_filename(path.c_str()));
    return entry ? status_of(start_entry(entry.get(), documents)) : kLSNoExecutableErr;
}

// As GNUstep's programs take documents: one by an option that wrappers of other programs know too,
// several as the first arguments.
Documents bundle_arguments(const Documents& documents) {
    if (documents.size() == 1) return {"-GSFilePath", documents.front()};
    return documents;
}

OSStatus open_with_bundle(const std::string& path, const Documents& documents) {
    const std::string program = files::bundle_program(path.c_str());
    if (program.empty()) return kLSNoExecutableErr;
    return status_of(start_program(program, bundle_arguments(documents)));
}

OSStatus open_with_program(const std::string& path, const Documents& documents) {
    if (access(path.c_str(), X_OK) != 0) return kLSNotAnApplicationErr;
    return status_of(start_program(path, documents));
}

OSStatus open_with_application(const std::string& path, const Documents& documents) {
    const files::TextOwner target(realpath(path.c_str(), nullptr));
    struct stat status;
    if (!target || stat(target.get(), &status) != 0) return kLSApplicationNotFoundErr;
    const std::string file = target.get();
    if (S_ISDIR(status.st_mode)) {
        return file.ends_with(".app") ? open_with_bundle(file, documents) : kLSNotAnApplicationErr;
    }
    if (!S_ISREG(status.st_mode)) return kLSNotAnApplicationErr;
    if (file.ends_with(".desktop")) return open_with_entry(file, documents);
    return open_with_program(path, documents);
}

OSStatus open_with_default_programs(const Documents& documents) {
    bool opened = true;
    for (const std::string& document : documents) {
        opened = open_with_default_program(document) && opened;
    }
    if (!opened) return kLSApplicationNotFoundErr;
    return noErr;
}

// Those that are still there.
Documents documents_of(const LSLaunchFSRefSpec& spec) {
    Documents documents;
    for (UInt32 i = 0; i < spec.numDocs; i++) {
        std::string path = path_of(spec.itemRefs[i]);
        if (!path.empty()) documents.push_back(std::move(path));
    }
    return documents;
}

}  // namespace

OSStatus LSOpenFromRefSpec(const LSLaunchFSRefSpec* spec, FSRef* outLaunchedRef) {
    if (!spec || (spec->numDocs > 0 && !spec->itemRefs)) return paramErr;
    if (!spec->appRef && spec->numDocs == 0) return paramErr;
    const Documents documents = documents_of(*spec);
    if (spec->numDocs > 0 && documents.empty()) return fnfErr;
    if (!spec->appRef) return open_with_default_programs(documents);

    const std::string application = path_of(*spec->appRef);
    if (application.empty()) return kLSApplicationNotFoundErr;
    const OSStatus status = open_with_application(application, documents);
    if (status == noErr && outLaunchedRef) *outLaunchedRef = *spec->appRef;
    return status;
}
