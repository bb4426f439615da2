#include "service/freshness.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <errno.h>

#include <fstream>
#include <set>
#include <sstream>

#include "x11/question_connection.h"

namespace {

constexpr long longest_resources = 1 << 18;  // in units of four bytes

// The program and the libraries that are mapped so that they can be executed.
std::set<std::string> program_files() {
    std::set<std::string> files;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::istringstream words(line);
        std::string range, rights, offset, device, node, path;
        words >> range >> rights >> offset >> device >> node;
        std::getline(words >> std::ws, path);
        const bool is_code = rights.size() > 2 && rights[2] == 'x';
        if (is_code && !path.empty() && path[0] == '/') files.insert(path);
    }
    return files;
}

bool are_same(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino &&
           one.st_mtim.tv_sec == other.st_mtim.tv_sec &&
           one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

std::string root_resources(Display* display) {
    Atom type;
    int format;
    unsigned long length = 0, left;
    unsigned char* bytes = nullptr;
    XGetWindowProperty(display, DefaultRootWindow(display), XA_RESOURCE_MANAGER, 0,
                       longest_resources, False, XA_STRING, &type, &format, &length, &left, &bytes);
    const std::string text(bytes ? reinterpret_cast<const char*>(bytes) : "", bytes ? length : 0);
    if (bytes) XFree(bytes);
    return text;
}

// Text that changes when the toolkit would have to connect anew: it reads both only once.
std::string describe_display() {
    Display* const display = question_connection();
    if (!display) return "gone";
    ::Window root;
    int x, y;
    unsigned width = 0, height = 0, border, depth;
    XGetGeometry(display, DefaultRootWindow(display), &root, &x, &y, &width, &height, &border,
                 &depth);
    return std::to_string(width) + "x" + std::to_string(height) + "\n" + root_resources(display);
}

}  // namespace

Freshness::Freshness() : display_(describe_display()) {
    for (const std::string& path : program_files()) {
        struct stat status;
        if (stat(path.c_str(), &status) == 0) files_.emplace_back(path, status);
    }
}

std::string Freshness::change() const {
    for (const auto& [path, before] : files_) {
        struct stat now;
        if (stat(path.c_str(), &now) != 0) {
            // A disk that cannot answer now has not told of a change.
            if (errno == ENOENT || errno == ENOTDIR) return path + " is gone";
            continue;
        }
        if (!are_same(before, now)) return path + " was replaced";
    }
    return describe_display() == display_ ? "" : "the display has another size or other resources";
}
