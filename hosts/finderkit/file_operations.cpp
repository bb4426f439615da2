#include "finderkit/file_operations.h"

#include <host/glib_owners.h>
#include <glib.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <utility>

#include "file_steps/path_text.h"

namespace {

using operations::Kind;
using operations::Request;

FileOperationService& service() {
    static auto& service = *new FileOperationService;
    return service;
}

const struct Operation {
    AEEventID event_id;
    Kind kind;
    AEKeyword items;
    bool has_destination;
} known_operations[] = {
    {kAEMove, Kind::Move, keyDirectObject, true},
    {kAEClone, Kind::Copy, keyDirectObject, true},
    {kAECreateElement, Kind::Alias, keyAETo, true},
    {kAEDelete, Kind::Trash, keyDirectObject, false},
};

FourCharCode code_of(const AppleEvent* event, AEKeyword attribute) {
    FourCharCode code = 0;
    AEGetAttributePtr(event, attribute, typeType, nullptr, &code, sizeof code, nullptr);
    return code;
}

const Operation* operation_of(const AppleEvent* event) {
    if (code_of(event, keyEventClassAttr) != kAECoreSuite) return nullptr;
    const FourCharCode event_id = code_of(event, keyEventIDAttr);
    for (const Operation& known : known_operations) {
        if (known.event_id == event_id) return &known;
    }
    return nullptr;
}

// The path of a file on this machine; empty for any other URL. A folder's URL may end in a slash,
// which the path in a request does not.
std::string path_of_url(const std::string& url) {
    char* host = nullptr;
    const std::string path = files::taken_text(g_filename_from_uri(url.c_str(), &host, nullptr));
    const std::string machine = files::taken_text(host);
    if (!machine.empty() && machine != "localhost") return {};
    return operations::without_slash(path);
}

// Uses the URL, because a deleted file still has one.
OSErr read_path(const AEDesc& desc, std::string* path) {
    AEDesc url;
    const OSErr error = AECoerceDesc(&desc, typeFileURL, &url);
    if (error != noErr) return error;
    std::string text(static_cast<size_t>(AEGetDescDataSize(&url)), '\0');
    AEGetDescData(&url, text.data(), static_cast<Size>(text.size()));
    AEDisposeDesc(&url);
    *path = path_of_url(text);
    return path->empty() ? static_cast<OSErr>(errAECoercionFail) : static_cast<OSErr>(noErr);
}

OSErr read_items(const AppleEvent* event, AEKeyword keyword, std::vector<std::string>* paths) {
    AEDescList items;
    OSErr error = AEGetParamDesc(event, keyword, typeAEList, &items);
    if (error != noErr) return error;
    long count = 0;
    AECountItems(&items, &count);
    for (long index = 1; index <= count && error == noErr; index++) {
        AEDesc item;
        AEGetNthDesc(&items, index, typeWildCard, nullptr, &item);
        paths->emplace_back();
        error = read_path(item, &paths->back());
        AEDisposeDesc(&item);
    }
    AEDisposeDesc(&items);
    return error;
}

// Replaces a link to a folder by that folder.
void follow_link(std::string* path) {
    struct stat status;
    if (lstat(path->c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return;
    char* target = realpath(path->c_str(), nullptr);
    if (target) *path = target;
    free(target);
}

OSErr read_destination(const AppleEvent* event, std::string* path) {
    AEDesc desc;
    OSErr error = AEGetParamDesc(event, keyAEInsertHere, typeWildCard, &desc);
    if (error != noErr) return error;
    error = read_path(desc, path);
    AEDisposeDesc(&desc);
    if (error == noErr) follow_link(path);
    return error;
}

bool makes_aliases(const AppleEvent* event) {
    DescType kind = 0;
    AEGetParamPtr(event, keyAEObjectClass, typeType, nullptr, &kind, sizeof kind, nullptr);
    return kind == typeAlias;
}

bool is_told_to_replace(const AppleEvent* event) {
    Boolean replace = false;
    AEGetParamPtr(event, keyAEReplacing, typeBoolean, nullptr, &replace, sizeof replace, nullptr);
    return replace;
}

}  // namespace

void set_file_operation_service(const FileOperationService& wanted) { service() = wanted; }

OSErr read_file_operation(const AppleEvent* event, Request* request) {
    const Operation* operation = operation_of(event);
    if (!operation) return errAEEventNotHandled;
    if (operation->kind == Kind::Alias && !makes_aliases(event)) return errAEEventNotHandled;
    *request = {};
    request->kind = operation->kind;
    request->replace = is_told_to_replace(event);
    const OSErr error = read_items(event, operation->items, &request->sources);
    if (error != noErr || !operation->has_destination) return error;
    return read_destination(event, &request->destination);
}

OSErr answer_file_operation(const AppleEvent* event, AppleEvent*, void*) {
    if (!service().carrier) return errAEEventNotHandled;
    Request request;
    const OSErr error = read_file_operation(event, &request);
    // An empty list does nothing.
    if (error != noErr || request.sources.empty()) return error;
    const auto observer = service().observer(request);
    service().carrier->carry_out(std::move(request), observer);
    return noErr;
}
