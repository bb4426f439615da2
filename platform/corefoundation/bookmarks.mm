// Bookmark data, which here is the bytes of a file's address.
#import <Foundation/Foundation.h>

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include <string>

namespace {

int hex_digit(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// False for a broken escape, and for an escape of a byte that no name can hold; an escaped slash is
// no step into a folder.
bool unescape(const std::string& text, std::string* bytes) {
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] != '%') {
            *bytes += text[i];
            continue;
        }
        if (i + 2 >= text.size()) return false;
        const int high = hex_digit(text[i + 1]), low = hex_digit(text[i + 2]);
        if (high < 0 || low < 0) return false;
        const char byte = static_cast<char>(high << 4 | low);
        if (byte == '\0' || byte == '/') return false;
        *bytes += byte;
        i += 2;
    }
    return bytes->find('\0') == bytes->npos;
}

// The path that an address of this machine names; empty for any other.
std::string path_in(const std::string& address) {
    std::string path;
    for (const char* start : {"file:///", "file://localhost/", "file:/"}) {
        if (!address.starts_with(start)) continue;
        const size_t root = strlen(start) - 1;
        // Two slashes begin the name of a machine.
        if (address.compare(root, 2, "//") == 0) return {};
        return unescape(address.substr(root), &path) ? path : std::string();
    }
    return {};
}

// Only bytes that stand for themselves in each part of an address (RFC 3986, 2.3) stay: a "?" of a
// name must not begin a query.
std::string escaped(const std::string& path) {
    std::string text;
    for (const char byte : path) {
        const bool stands_for_itself = (byte >= 'a' && byte <= 'z') ||
                                       (byte >= 'A' && byte <= 'Z') ||
                                       (byte >= '0' && byte <= '9') || strchr("/-._~", byte);
        char escape[4];
        snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned char>(byte));
        text += stands_for_itself ? std::string(1, byte) : escape;
    }
    return text;
}

NSURL* url_of(const std::string& path) {
    NSString* name = [NSString stringWithUTF8String:path.c_str()];
    if (name) return [NSURL fileURLWithPath:name];
    // The escapes can carry bytes that no string can.
    return [NSURL URLWithString:[@"file://" stringByAppendingFormat:@"%s", escaped(path).c_str()]];
}

NSError* no_such_file() {
    const NSInteger file_read_no_such_file = 260;
    return [NSError errorWithDomain:NSCocoaErrorDomain code:file_read_no_such_file userInfo:nil];
}

}  // namespace

@implementation NSURL (Bookmarks)

+ (instancetype)URLByResolvingBookmarkData:(NSData*)data
                                   options:(NSURLBookmarkResolutionOptions)options
                             relativeToURL:(NSURL*)relative
                       bookmarkDataIsStale:(BOOL*)isStale
                                     error:(NSError**)error {
    (void)options;
    (void)relative;
    if (isStale) *isStale = NO;
    const std::string address(static_cast<const char*>([data bytes]), [data length]);
    const std::string path = path_in(address);
    struct stat status;
    const bool is_there = !path.empty() && stat(path.c_str(), &status) == 0;
    NSURL* const url = is_there ? url_of(path) : nil;
    if (!url && error) *error = no_such_file();
    return url;
}

@end
