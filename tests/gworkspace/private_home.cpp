// Preloaded into GWorkspace and the programs that it starts. GNUstep takes the home folder from the
// password database, which names the real one.
#include <dlfcn.h>
#include <pwd.h>
#include <stdlib.h>

namespace {

template <typename Function>
Function* next(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

passwd* with_home(passwd* entry) {
    if (char* home = getenv("HOME"); entry && home) entry->pw_dir = home;
    return entry;
}

}  // namespace

extern "C" {

passwd* getpwuid(uid_t user) { return with_home(next(getpwuid, "getpwuid")(user)); }

passwd* getpwnam(const char* name) { return with_home(next(getpwnam, "getpwnam")(name)); }

int getpwuid_r(uid_t user, passwd* entry, char* buffer, size_t size, passwd** result) {
    const int error = next(getpwuid_r, "getpwuid_r")(user, entry, buffer, size, result);
    if (!error) with_home(*result);
    return error;
}

int getpwnam_r(const char* name, passwd* entry, char* buffer, size_t size, passwd** result) {
    const int error = next(getpwnam_r, "getpwnam_r")(name, entry, buffer, size, result);
    if (!error) with_home(*result);
    return error;
}
}
