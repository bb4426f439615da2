#include "plugin/menu_fixture.h"

#include <host/forced_preferences.h>
#include <stdarg.h>
#include <stdio.h>

#include "menus/DVDelvio+Population.h"
#include "menus/DVDelvio+Proxy.h"
#include "menus/DVDelvio+Selection.h"
#include "support/app.h"
#include "support/dv_log.h"
#include "tree/dv_prefs.h"

namespace test {

NSString* string_of(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

std::string formatted(const char* format, ...) {
    char text[4096];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

void expect_lines(const std::string& log, const std::vector<std::string>& lines) {
    size_t from = 0;
    for (const std::string& line : lines) {
        // A line begins the log or follows another.
        const size_t at = ("\n" + log).find("\n" + line + "\n", from);
        EXPECT_NE(at, std::string::npos) << "no line \"" << line << "\" at its place in\n" << log;
        if (at != std::string::npos) from = at + line.size() + 1;
    }
}

Titles titles_of(NSMenu* menu) {
    Titles titles;
    for (NSMenuItem* item in [menu itemArray]) {
        titles.push_back([item isSeparatorItem] ? "-" : [[item title] UTF8String]);
    }
    return titles;
}

NSMenuItem* item_titled(NSMenu* menu, const char* title) {
    for (NSMenuItem* item in [menu itemArray]) {
        if (![item isSeparatorItem] && [[item title] isEqualToString:string_of(title)]) return item;
    }
    return nil;
}

NSMenuItem* alternate_of(NSMenu* menu, const char* title) {
    const NSInteger next = [menu indexOfItem:item_titled(menu, title)] + 1;
    if (next == 0 || next >= [menu numberOfItems]) return nil;
    NSMenuItem* item = static_cast<NSMenuItem*>([menu itemAtIndex:next]);
    return [item isAlternate] ? item : nil;
}

NSArray* urls_of(const std::vector<std::string>& paths) {
    NSMutableArray* urls = [NSMutableArray array];
    for (const std::string& path : paths) {
        [urls addObject:[NSURL fileURLWithPath:string_of(path)]];
    }
    return urls;
}

MenuTest::MenuTest() {
    pool_ = [NSAutoreleasePool new];
    start_application();
    controller_ = [DVDelvio sharedDelvio];
    dv_ = [controller_ getDV];
    host_menu_ = [[NSMenu alloc] initWithTitle:@"host"];
}

MenuTest::~MenuTest() {
    while (dv_->count > 0) [controller_ removeMenuAndDelegate];
    [controller_ removeMenuAndDelegate];
    for (const std::string& key : forced_) {
        force_preference((CFStringRef)string_of(key), nullptr, CFSTR(DV_PREFS_DOMAIN));
    }
    dv_read_prefs(dv_, 0);
    dvFontSize = 0;
    [host_menu_ release];
    [pool_ release];
}

void MenuTest::set(const char* key, id value) {
    force_preference((CFStringRef)string_of(key), (CFPropertyListRef)value, CFSTR(DV_PREFS_DOMAIN));
    forced_.push_back(key);
}

NSMenu* MenuTest::take_over() {
    return [controller_ setCurrentMenu:host_menu_ withProxyDelegate:[host_menu_ delegate]];
}

NSMenu* MenuTest::select(const std::vector<std::string>& paths) {
    NSMenu* menu = take_over();
    [controller_ setSelectedFiles:urls_of(paths)];
    return menu;
}

NSMenu* MenuTest::open(NSMenuItem* item) {
    NSMenu* menu = [item submenu];
    [controller_ menuWillOpen:menu];
    return menu;
}

std::string MenuTest::log_of(const std::function<void()>& action, int level) {
    // The setting is changed too, because taking over a menu reads it again.
    set("logLevel", level);
    dvEnableDebugOutput = level;
    testing::internal::CaptureStdout();
    action();
    fflush(stdout);
    const std::string log = testing::internal::GetCapturedStdout();
    set("logLevel", 0);
    dvEnableDebugOutput = 0;
    return log;
}

void MenuTest::release() { [controller_ removeMenuAndDelegate]; }

}  // namespace test
