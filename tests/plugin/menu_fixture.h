// Shared by the tests of the plug-in's menus: a folder to select from, settings for one test, a
// host's menu, and menus as text.
#pragma once

#include <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "controller/DVDelvio.h"
#include "support/temp_folder.h"
#include "tree/dv_state.h"

namespace test {

using Titles = std::vector<std::string>;

// The items' titles in order; a separator is "-".
Titles titles_of(NSMenu* menu);
NSMenuItem* item_titled(NSMenu* menu, const char* title);
// The alternate of the item with this title; nil without one.
NSMenuItem* alternate_of(NSMenu* menu, const char* title);
NSArray* urls_of(const std::vector<std::string>& paths);
NSString* string_of(const std::string& text);
// Text as printf makes it.
std::string formatted(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Expects whole lines in the log in this order; other lines may come between them.
void expect_lines(const std::string& log, const std::vector<std::string>& lines);

// Bytes of a file that Quick Look has no picture of, so that the plug-in draws them itself.
inline const std::string plain_bytes("A\0\n", 3);

class MenuTest : public testing::Test {
  protected:
    MenuTest();
    ~MenuTest() override;

    // Sets a preference for this test; it takes effect with the next take-over.
    void set(const char* key, id value);
    void set(const char* key, int value) { set(key, [NSNumber numberWithInt:value]); }

    // Takes over the host's menu and gives it a selection. Returns the menu to show.
    NSMenu* take_over();
    NSMenu* select(const std::vector<std::string>& paths);
    // The submenu of an item, filled as when it opens; nil without one.
    NSMenu* open(NSMenuItem* item);
    NSMenu* open(NSMenu* menu, const char* title) { return open(item_titled(menu, title)); }
    void release();

    // The text that the action writes to standard output, with logging to it on or off.
    std::string log_of(const std::function<void()>& action, int level = 1);

    TempFolder folder_;
    DVDelvio* controller_;
    delvio_t* dv_;
    NSMenu* host_menu_;

  private:
    NSAutoreleasePool* pool_;
    std::vector<std::string> forced_;
};

}  // namespace test
