// Bookmark data, which here is the bytes of a file's address.
#import <Foundation/Foundation.h>

#include <errno.h>
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

NSURL* url_of(const std::string& path, const std::string& address) {
    NSString* name = [NSString stringWithUTF8String:path.c_str()];
    if (name) return [NSURL fileURLWithPath:name];
    // The escapes can carry bytes that no string can.
    NSString* text = [NSString stringWithUTF8String:address.c_str()];
    return text ? [NSURL URLWithString:text] : nil;
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
    NSURL* url = nil;
    if (!path.empty() && stat(path.c_str(), &status) == 0) url = url_of(path, address);
    if (!url && error) *error = no_such_file();
    return url;
}

@end
