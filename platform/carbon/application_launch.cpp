// LSOpenFromRefSpec: opening documents with a chosen application.
#include <host/text.h>
#include <host/glib_owners.h>
#include <host/opening_files.h>
#include <Carbon/LaunchServices.h>

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "carbon/entries_of_files.h"
#include "carbon/file_references.h"
#include "desktop/bundle_names.h"
#include "desktop/open_failures.h"
#include "desktop/open_file.h"
#include "desktop/program_launch.h"

namespace {

using Documents = std::vector<std::string>;

OwnDocumentOpener open_own_document;

std::string path_of(const FSRef& ref) {
    OSErr error;
    const files::File* file = files::file_for(&ref, files::PATH, &error);
    return file ? file->path : std::string();
}

// How opening went and, if it failed, why.
struct Result {
    OSStatus status = noErr;
    std::string reason;
};

OSStatus status_of(Start start) {
    switch (start) {
        case Start::done:
            return noErr;
        case Start::not_installed:
        case Start::no_program:
            return kLSNoExecutableErr;
        case Start::not_permitted:
            return kLSNoLaunchPermissionErr;
        case Start::failed:
            return kLSUnknownErr;
    }
    return kLSUnknownErr;
}

Result result_of(Start start, const std::string& problem) {
    return {status_of(start),
            start == Start::done ? "" : translated("it does not start: %s", {problem})};
}

Result not_installed() { return {kLSNoExecutableErr, translated("its program is not installed")}; }
Result no_application() { return {kLSNotAnApplicationErr, translated("it is not a program")}; }
Result not_there() {
    return {kLSApplicationNotFoundErr, translated("the program is no longer there")};
}

Result open_with_entry(const std::string& path, const Documents& documents) {
    if (!files::desktop_entry_at(path).may_start) return no_application();
    std::string problem;
    const Start start = start_entry_file(path, documents, &problem);
    return start == Start::not_installed ? not_installed() : result_of(start, problem);
}

// The arguments with which GNUstep's programs take documents: one document by an option that
// wrappers of other programs know too, several as the first arguments.
Documents bundle_arguments(const Documents& documents) {
    if (documents.size() == 1) return {"-GSFilePath", documents.front()};
    return documents;
}

bool is_running_program(const std::string& program) {
    const files::TextOwner own(realpath("/proc/self/exe", nullptr));
    return own && program == own.get();
}

Result open_with_bundle(const std::string& path, const Documents& documents) {
    const std::string program = files::bundle_program(path.c_str());
    if (program.empty()) return not_installed();
    if (open_own_document && !documents.empty() && is_running_program(program)) {
        for (const std::string& document : documents) open_own_document(document.c_str());
        return {};
    }
    std::string problem;
    const Start start = start_program(program, bundle_arguments(documents), &problem);
    return result_of(start, problem);
}

Result open_with_program(const std::string& path, const Documents& documents) {
    if (access(path.c_str(), X_OK) != 0) return no_application();
    std::string problem;
    const Start start = start_program(path, documents, &problem);
    return result_of(start, problem);
}

Result open_with_application(const std::string& path, const Documents& documents) {
    const files::TextOwner target(realpath(path.c_str(), nullptr));
    struct stat status;
    if (!target || stat(target.get(), &status) != 0) {
        return not_there();
    }
    const std::string file = target.get();
    if (S_ISDIR(status.st_mode)) {
        return file.ends_with(".app") ? open_with_bundle(file, documents) : no_application();
    }
    if (!S_ISREG(status.st_mode)) return no_application();
    if (file.ends_with(".desktop")) return open_with_entry(file, documents);
    return open_with_program(path, documents);
}

OSStatus open_with_default_programs(const Documents& documents) {
    OSStatus status = noErr;
    for (const std::string& document : documents) {
        std::string reason;
        if (open_with_default_program(document, &reason)) continue;
        files::tell_open_failure(document, "", reason);
        status = kLSApplicationNotFoundErr;
    }
    return status;
}

// The documents that are still there and are files. The user is told about the others.
Documents documents_of(const LSLaunchFSRefSpec& spec, const std::string& application) {
    Documents documents;
    for (UInt32 i = 0; i < spec.numDocs; i++) {
        std::string path = path_of(spec.itemRefs[i]);
        const std::string reason =
            path.empty() ? translated("it is no longer there") : files::why_not_openable(path);
        if (reason.empty()) {
            documents.push_back(std::move(path));
        } else {
            files::tell_open_failure(path, application, reason);
        }
    }
    return documents;
}

}  // namespace

void set_own_document_opener(OwnDocumentOpener opener) { open_own_document = opener; }

// The application's name as the user knows it.
static std::string name_of(const FSRef& application) {
    CFStringRef name = nullptr;
    if (LSCopyDisplayNameForRef(&application, &name) != noErr) return "";
    char text[1024] = "";
    CFStringGetCString(name, text, sizeof text, kCFStringEncodingUTF8);
    CFRelease(name);
    return text;
}

OSStatus LSOpenFromRefSpec(const LSLaunchFSRefSpec* spec, FSRef* outLaunchedRef) {
    if (!spec || (spec->numDocs > 0 && !spec->itemRefs)) return paramErr;
    if (!spec->appRef && spec->numDocs == 0) return paramErr;
    files::count_opening();
    const std::string application = spec->appRef ? path_of(*spec->appRef) : std::string();
    const std::string name = spec->appRef ? name_of(*spec->appRef) : std::string();
    const Documents documents = documents_of(*spec, name);
    if (spec->numDocs > 0 && documents.empty()) return fnfErr;
    if (!spec->appRef) return open_with_default_programs(documents);

    Result result = not_there();
    if (!application.empty()) result = open_with_application(application, documents);
    if (result.status == noErr && outLaunchedRef) *outLaunchedRef = *spec->appRef;
    if (result.status != noErr) {
        files::tell_open_failure(documents.empty() ? "" : documents.front(), name, result.reason);
    }
    return result.status;
}
