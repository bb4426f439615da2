// The controller and the control-free popup just after creation, also under bad conditions.
#include <AppKit/AppKit.h>
#include <host/process.h>
#include <host/forced_preferences.h>
#include <CoreGraphics/CGWindowLevel.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>
#include <pthread.h>
#include <string.h>

#include <string>
#include <vector>

#include "controller/DVDelvio.h"
#include "input/DVControlFreePopup.h"
#include "input/DVDelvio+Dragging.h"
#include "input/DVDragView.h"
#include "plugin/replaced_method.h"
#include "preview/DVPreviewWindowController.h"
#include "support/app.h"
#include "support/dv_log.h"
#include "support/ht.h"
#include "tree/dv_prefs.h"
#include "tree/dv_state.h"

namespace {

// The arguments with which the taps were created.
struct Tap {
    int location, placement, options;
    CGEventMask events;
    CGEventTapCallBack callback;
    void* user;
};
std::vector<Tap> taps;
std::vector<std::string> common_modes;
bool taps_fail = false, sources_fail = false;

template <typename Function>
Function* platforms(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// Replaces the platform's function.
extern "C" {

CFMachPortRef CGEventTapCreateForPSN(void* process, CGEventTapPlacement placement,
                                     CGEventTapOptions options, CGEventMask events,
                                     CGEventTapCallBack callback, void* user) {
    taps.push_back(
        {-1, static_cast<int>(placement), static_cast<int>(options), events, callback, user});
    if (taps_fail) return nullptr;
    static auto* next = platforms<decltype(CGEventTapCreateForPSN)>("CGEventTapCreateForPSN");
    return next(process, placement, options, events, callback, user);
}

CFMachPortRef CGEventTapCreate(CGEventTapLocation location, CGEventTapPlacement placement,
                               CGEventTapOptions options, CGEventMask events,
                               CGEventTapCallBack callback, void* user) {
    taps.push_back({static_cast<int>(location), static_cast<int>(placement),
                    static_cast<int>(options), events, callback, user});
    if (taps_fail) return nullptr;
    static auto* next = platforms<decltype(CGEventTapCreate)>("CGEventTapCreate");
    return next(location, placement, options, events, callback, user);
}

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef allocator, CFMachPortRef port,
                                                 CFIndex order) {
    if (sources_fail) return nullptr;
    static auto* next =
        platforms<decltype(CFMachPortCreateRunLoopSource)>("CFMachPortCreateRunLoopSource");
    return next(allocator, port, order);
}

void CFRunLoopAddCommonMode(CFRunLoopRef loop, CFStringRef mode) {
    common_modes.push_back([(NSString*)mode UTF8String]);
    static auto* next = platforms<decltype(CFRunLoopAddCommonMode)>("CFRunLoopAddCommonMode");
    next(loop, mode);
}

}  // extern "C"

namespace {

BOOL on_all_spaces = NO;

void note_spaces(id, SEL, BOOL flag) { on_all_spaces = flag; }

std::string output_of(void (*action)()) {
    testing::internal::CaptureStdout();
    action();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

class Record : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        test::start_application();
        declare_process_signature('MACS');
        first_font_size_ = dvFontSize;
        force_preference(CFSTR("font_size"), (CFPropertyListRef) @11, CFSTR(DV_PREFS_DOMAIN));
        const test::ReplacedMethod spaces([NSWindow class], @selector(setCanBeVisibleOnAllSpaces:),
                                          note_spaces);
        controller_ = [DVDelvio sharedDelvio];
        tap_ = taps.back();
        dv_ = [controller_ getDV];
    }
    ~Record() override {
        taps_fail = sources_fail = false;
        dvEnableDebugOutput = 0;
    }
    template <typename type>
    static type variable(const char* name) {
        type value;
        const Ivar field = class_getInstanceVariable([DVDelvio class], name);
        EXPECT_NE(field, nullptr) << name;
        memcpy(&value, reinterpret_cast<char*>(controller_) + ivar_getOffset(field), sizeof value);
        return value;
    }

    static uint32_t first_font_size_;
    static DVDelvio* controller_;
    static delvio_t* dv_;
    static Tap tap_;
};

uint32_t Record::first_font_size_;
DVDelvio* Record::controller_;
delvio_t* Record::dv_;
Tap Record::tap_;

}  // namespace

TEST_F(Record, TheFontSizeIsThirteenUntilTheSettingIsRead) {
    EXPECT_EQ(first_font_size_, 13u);
    EXPECT_EQ(dvFontSize, 11u);
    EXPECT_EQ(dv_->font_size, 11u);
}

TEST_F(Record, ItIsZeroButForWhatItsMakingSets) {
    EXPECT_EQ(dv_->started, 1u);
    EXPECT_EQ(dv_->count, 0);
    EXPECT_EQ(dv_->carried_int, 0);
    EXPECT_EQ(dv_->root, nullptr);
    EXPECT_EQ(dv_->forest, nullptr);
    EXPECT_EQ(dv_->preview_context, nullptr);
    EXPECT_EQ(dv_->popup_wake, 0u);
    EXPECT_EQ(dv_->file_op_in_progress, 0);
    EXPECT_EQ(dv_->multiple_selection, 0);
    for (int i = 0; i < 10240; i++) ASSERT_EQ(dv_->path_buffer[i], 0) << i;
    EXPECT_EQ(dv_->hash_table->bucket_count, 97u);
    EXPECT_EQ(dv_->hash_table->user_flags, 0u);
    EXPECT_EQ(dv_->hash_table->elem_count, 0u);
}

TEST_F(Record, ItsMakingWritesTheSettingsBack) {
    CFPropertyListRef size =
        CFPreferencesCopyAppValue(CFSTR("preview_size"), CFSTR(DV_PREFS_DOMAIN));
    ASSERT_NE(size, nullptr);
    EXPECT_EQ([(id)size intValue], 256);
    CFRelease(size);
}

TEST_F(Record, TheControllerHoldsNoMenu) {
    for (const char* name : {"_proxyMenu", "_finderMenu", "_pboard", "defaults", "previousDelegate",
                             "_currentlyHighlightedItem", "dragMouseEvent", "hoverPreviewTimer"}) {
        EXPECT_EQ(variable<void*>(name), nullptr) << name;
    }
    EXPECT_EQ(variable<signed char>("previewActive"), 0);
    EXPECT_EQ(variable<signed char>("isInvoked"), 0);
    EXPECT_EQ(variable<int32_t>("rootMenuSelectionCount"), 0);
    EXPECT_EQ(variable<double>("lastMouseMovement"), 0);
    EXPECT_EQ([variable<NSMutableArray*>("rootItems") count], 0u);
    EXPECT_TRUE([variable<id>("rootItems") isKindOfClass:[NSMutableArray class]]);
    EXPECT_TRUE(
        [variable<id>("previewWindowController") isKindOfClass:[DVPreviewWindowController class]]);
}

TEST_F(Record, TheLockIsFreeAndNotRecursive) {
    const Ivar field = class_getInstanceVariable([DVDelvio class], "treeLock");
    auto* lock = reinterpret_cast<pthread_mutex_t*>(reinterpret_cast<char*>(controller_) +
                                                    ivar_getOffset(field));
    ASSERT_EQ(pthread_mutex_trylock(lock), 0);
    EXPECT_NE(pthread_mutex_trylock(lock), 0);
    pthread_mutex_unlock(lock);
}

TEST_F(Record, TheDragWindowStandsReadyOnAllSpaces) {
    NSWindow* window = variable<NSWindow*>("dragWindow");
    EXPECT_TRUE(NSEqualRects([window contentRectForFrameRect:[window frame]],
                             NSMakeRect(100, 100, 64, 64)));
    EXPECT_TRUE(on_all_spaces);
    EXPECT_EQ([window level], CGWindowLevelForKey(kCGStatusWindowLevelKey));
    EXPECT_EQ([window backingType], 0u);
    EXPECT_EQ([window alphaValue], 0.5f);
    DVDragView* view = variable<DVDragView*>("dragView");
    EXPECT_EQ([view superview], [window contentView]);
    EXPECT_TRUE(NSEqualRects([view frame], NSMakeRect(0, 0, 64, 64)));
    EXPECT_EQ([view theDragTarget], nullptr);
}

TEST_F(Record, TimersOfTheCommonModesFireWhileMenusTrack) {
    EXPECT_EQ(common_modes.front(), [NSEventTrackingRunLoopMode UTF8String]);
}

TEST_F(Record, TheDragTapIsAnActiveOneOfThisProcess) {
    EXPECT_EQ(tap_.location, -1);
    EXPECT_EQ(tap_.placement, 0);
    EXPECT_EQ(tap_.options, 0);
    EXPECT_EQ(tap_.events, 38u);
    EXPECT_EQ(tap_.callback, dvDragInterceptionCallback);
    EXPECT_EQ(tap_.user, controller_);
    EXPECT_NE(variable<void*>("dragInterceptionTap"), nullptr);
    EXPECT_NE(variable<void*>("dragInterceptionRLSource"), nullptr);
}

TEST_F(Record, AControllerWithoutATapIsMadeAllTheSame) {
    dvEnableDebugOutput = 1;
    taps_fail = true;
    EXPECT_EQ(output_of([] { [controller_ createEventTapForDragInterception]; }),
              "Delvio: Failed to create event tap; command-drags will not work.\n");
    EXPECT_EQ(output_of([] {
                  [controller_ enableEventTap:nil];
                  [controller_ disableEventTap:nil];
              }),
              "Delvio: Enabling event tap\nDelvio: Event tap status: 0\n"
              "Delvio: Disabling event tap\nDelvio: Event tap status: 0\n");
    taps_fail = false;
    sources_fail = true;
    EXPECT_EQ(output_of([] { [controller_ createEventTapForDragInterception]; }),
              "Delvio: Failed to create runloop source for drag event tap\n");
    sources_fail = false;
    const std::string log = output_of([] { [controller_ createEventTapForDragInterception]; });
    char line[100];
    snprintf(line, sizeof line, "Delvio: Tap: %p Source: %p\n",
             variable<void*>("dragInterceptionTap"), variable<void*>("dragInterceptionRLSource"));
    EXPECT_EQ(log, line);
}

TEST_F(Record, TheControlFreePopupListensToPressesAndReleases) {
    dvEnableDebugOutput = 1;
    EXPECT_EQ(output_of([] { [DVControlFreePopup sharedControlFreePopup]; }),
              "Delvio: Created runloop source and mach port ref\n");
    const Tap& tap = taps.back();
    EXPECT_EQ(tap.location, 1);
    EXPECT_EQ(tap.placement, 1);
    EXPECT_EQ(tap.options, 1);
    EXPECT_EQ(tap.events, 6u);
    EXPECT_EQ(tap.callback, dvCFPEventTapCallback);
    EXPECT_EQ(tap.user, [DVControlFreePopup sharedControlFreePopup]);
}

TEST_F(Record, AControlFreePopupWithoutATapIsMadeAllTheSame) {
    dvEnableDebugOutput = 1;
    taps_fail = true;
    // Its thread keeps it.
    EXPECT_EQ(output_of([] { EXPECT_NE([[DVControlFreePopup alloc] init], nil); }),
              "Delvio: Error creating mach port ref\n");
}
