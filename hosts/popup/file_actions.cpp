#include "popup/file_actions.h"

#include <host/text.h>
#include <host/glib_owners.h>
#include <host/session_bus.h>
#include <gio/gio.h>

#include <filesystem>

#include "command/private_display.h"
#include "file_steps/visible_text.h"
#include "finderkit/open_problems.h"
#include "finderkit/session_bus.h"
#include "offers/notice.h"
#include "operations/engine.h"
#include "popup/asked_operations.h"
#include "popup/clipboard.h"

using operations::in_quotes;

namespace {

constexpr int milliseconds_to_show = 15000;

std::string uri_of(const std::string& path) {
    return files::taken_text(g_filename_to_uri(path.c_str(), nullptr, nullptr));
}

// The listener reports a failure.
std::string open_one(const std::string& path) {
    open_picked_file(path);
    return {};
}

// Acts on every file. Returns the first failure, but still tries the other files.
template <typename Action>
std::string for_each(const std::vector<std::string>& files, Action action) {
    std::string problem;
    for (const std::string& file : files) {
        const std::string one = action(file);
        if (problem.empty()) problem = one;
    }
    return problem;
}

// Writes a path in the shells' form $'...' if its characters would break a line, or act on the
// terminal into which the path is pasted.
std::string safe_to_paste(const std::string& path) {
    if (operations::visible_text(path) == path) return path;
    std::string quoted = "$'";
    for (const char byte : path) {
        const auto value = static_cast<unsigned char>(byte);
        char escape[8] = {byte};
        if (byte == '\'' || byte == '\\') snprintf(escape, sizeof escape, "\\%c", byte);
        if (value < 0x20 || value >= 0x7f) snprintf(escape, sizeof escape, "\\x%02x", value);
        quoted += escape;
    }
    return quoted + "'";
}

bool ask_file_manager(const std::vector<std::string>& files) {
    const ::files::ObjectOwner<GDBusConnection> bus = connect_to_session_bus();
    if (!bus) return false;
    GVariantBuilder uris;
    g_variant_builder_init(&uris, G_VARIANT_TYPE("as"));
    for (const std::string& file : files) g_variant_builder_add(&uris, "s", uri_of(file).c_str());
    const ::files::VariantOwner answer(g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
        "org.freedesktop.FileManager1", "ShowItems", g_variant_new("(ass)", &uris, ""), nullptr,
        G_DBUS_CALL_FLAGS_NONE, milliseconds_to_show, nullptr, nullptr));
    return answer != nullptr;
}

// Shows nothing: moving to the trash is one rename for each file.
class Unwatched : public operations::Observer {
    void ended(const operations::Report&) override {}
};

}  // namespace

std::string open_files(const std::vector<std::string>& files) { return for_each(files, open_one); }

std::string show_in_file_manager(const std::vector<std::string>& files) {
    if (ask_file_manager(files)) return {};
    const std::string folder = std::filesystem::path(files.front()).parent_path().string();
    return open_one(folder.empty() ? "/" : folder);
}

std::string copy_paths(const std::vector<std::string>& files) {
    if (has_private_display())
        return translated("there is no display whose clipboard could hold the path");
    std::string text;
    for (const std::string& file : files) {
        text += (text.empty() ? "" : "\n") + safe_to_paste(file);
    }
    return keep_on_clipboard(text);
}

std::string move_to_trash(const std::vector<std::string>& files) {
    Unwatched observer;
    const operations::Request request = {operations::Kind::Trash, files, "", false};
    const operations::Report report = operations::perform_request(request, observer);
    for (const operations::Outcome& outcome : report.outcomes) {
        if (outcome.state == operations::State::Done) continue;
        return translated("%s; %s was left where it is",
                          {outcome.reason, in_quotes(outcome.source)});
    }
    if (is_user_asked()) offer_undo(request, report);
    return {};
}

void flush_bus() { files::flush_session_bus(); }
