#include "support/pasteboard_server.h"

#include <AppKit/AppKit.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "support/temp_folder.h"
#include "support/waiting.h"

namespace test {
namespace {

// The server of this test has the test's folder.
bool is_server(const std::filesystem::path& process) {
    const std::string own = "TMPDIR=" + std::string(getenv("TMPDIR")) + '\0';
    return read_file(process / "comm") == "gpbs\n" &&
           read_file(process / "environ").find(own) != std::string::npos;
}

// The toolkit raises an exception as long as it has not noticed that the last server has gone.
bool answers() {
    @try {
        [[NSPasteboard generalPasteboard] types];
        return true;
    } @catch (NSException*) {
        return false;
    }
}

}  // namespace

PasteboardServer::PasteboardServer() {
    wait_for(answers);
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        if (is_server(entry.path())) process_ = atoi(entry.path().filename().c_str());
    }
}

PasteboardServer::~PasteboardServer() {
    if (still_) kill(process_, SIGKILL);
}

void PasteboardServer::stand_still() { still_ = process_ && kill(process_, SIGSTOP) == 0; }

}  // namespace test
