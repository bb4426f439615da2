#include "popup/settings_program.h"

#include <host/text.h>
#include <sys/wait.h>
#include <unistd.h>

#include "command/private_display.h"

std::string open_settings() {
    if (has_private_display()) return translated("there is no display for the settings window");
    const pid_t child = fork();
    if (child < 0) return translated("cannot start the settings window");
    if (child == 0) {
        setsid();
        // Nobody has to wait for the second child.
        if (fork() != 0) _exit(0);
        execl("/proc/self/exe", "delvio", "settings", static_cast<char*>(nullptr));
        _exit(127);
    }
    waitpid(child, nullptr, 0);
    return {};
}
