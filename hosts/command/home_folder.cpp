#include "command/home_folder.h"

#include <host/text.h>

#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

bool ensure_home_folder(std::string* problem) {
    const char* home = getenv("HOME");
    if (home && home[0] == '/') return true;
    const struct passwd* user = getpwuid(geteuid());
    if (user && user->pw_dir && user->pw_dir[0] == '/') {
        return setenv("HOME", user->pw_dir, 1) == 0;
    }
    *problem = translated(
        "there is no home folder: HOME is not set to one, and the system knows none for this "
        "user; set HOME");
    return false;
}
