#include "menus/slow_levels.h"

#include <host/text.h>

#include <Quartz/Quartz.h>

#include <string>

namespace {

NSString* shown(const char* text) { return [NSString stringWithUTF8String:text] ?: @""; }

// In seconds. A disk that works answers within the first, without a stand-in for its rows.
const double unnoticed = 0.02, until_loading = 0.1;
const double between_looks = 0.03;
// Looks, which are seconds only while this process runs: a machine that stands still is not the
// disk's fault.
const int until_given_up = 170;

// The folder that the submenu of a highlighted item lists, as far as the delegate tells: it answers
// as the item of a preview panel does. The submenus of alternates list no folder.
std::string folder_of(NSMenuItem* item) {
    id delegate = [[item submenu] delegate];
    if ([item isAlternate] || ![delegate respondsToSelector:@selector(previewItemURL)]) return {};
    NSURL* url = [delegate previewItemURL];
    const char* path = [url isFileURL] ? [[url path] fileSystemRepresentation] : nullptr;
    return path ?: "";
}

NSMenu* menu_of_one_row() {
    NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
    [menu setAutoenablesItems:NO];
    [[menu addItemWithTitle:shown(translated("Loading...")) action:nullptr
              keyEquivalent:@""] setEnabled:NO];
    return menu;
}

}  // namespace

SlowLevels::~SlowLevels() {
    [item_ release];
    [stand_in_ release];
}

bool SlowLevels::may_open(NSMenuItem* item) {
    if (item == item_) return is_allowed_;
    forget();
    const std::string path = folder_of(item);
    if (path.empty()) return true;
    question_ = files::FolderQuestion::ask(path);
    if (!question_ || question_->is_answered(unnoticed)) {
        question_.reset();
        return true;
    }
    item_ = [item retain];
    asked_ = seconds_now();
    looks_ = 0;
    timer_.start(between_looks);
    return false;
}

bool SlowLevels::is_awaited() const {
    return [item_ submenu] && [session_ highlightedItemOfMenu:[item_ menu]] == item_;
}

void SlowLevels::run_timer() {
    if (!timer_.is_due()) return;
    timer_.stop();
    if (!is_awaited()) return forget();
    if (question_->is_answered()) return open();
    show_stand_in();
    timer_.start(between_looks);
}

void SlowLevels::show_stand_in() {
    if (!stand_in_ && seconds_now() - asked_ >= until_loading) {
        stand_in_ = menu_of_one_row();
        [session_ openStandIn:stand_in_ forItem:item_];
    }
    if (++looks_ == until_given_up) {
        [(NSMenuItem*)[stand_in_ itemAtIndex:0] setTitle:shown(translated("Not responding"))];
    }
}

void SlowLevels::open() {
    is_allowed_ = true;
    if (stand_in_) [session_ closeLevelsBelowMenu:[item_ menu]];
    [session_ openSubmenuOfItem:item_];
    [stand_in_ release];
    stand_in_ = nil;
    forget();
}

void SlowLevels::forget() {
    timer_.stop();
    question_.reset();
    is_allowed_ = false;
    const bool is_shown = [[session_ levels] indexOfObjectIdenticalTo:stand_in_] != NSNotFound;
    if (stand_in_ && is_shown) [session_ closeLevelsBelowMenu:[item_ menu]];
    [stand_in_ release];
    stand_in_ = nil;
    [item_ release];
    item_ = nil;
}
