#include <AppKit/AppKit.h>
#include <host/process.h>
#include <host/forced_preferences.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <map>
#include <string>

#include "loader/dv_load.h"
#include "support/app.h"
#include "tree/dv_prefs.h"

namespace {

struct ExchangedMethod {
    const char* class_name;
    const char* selector;
    bool is_class_method;
};

const ExchangedMethod exchanged[] = {
    {"NSMenu", "popUpContextMenu:withEvent:forView:", true},
    {"NSMenu", "popUpContextMenu:withEvent:forView:withFont:", true},
    {"NSMenu", "_popUpContextMenu:withEvent:forView:withFont:", false},
    {"NSMenu", "_setContextMenuPluginAEDesc:", false},
    {"NSPasteboard", "writeObjects:", false},
};

using Implementations = std::map<std::string, IMP>;

Implementations implementations() {
    Implementations found;
    for (const ExchangedMethod& row : exchanged) {
        Class owner = objc_getClass(row.class_name);
        SEL selector = sel_registerName(row.selector);
        Method method = row.is_class_method ? class_getClassMethod(owner, selector)
                                            : class_getInstanceMethod(owner, selector);
        found[row.selector] = method_getImplementation(method);
    }
    return found;
}

}  // namespace

TEST(Load, AHostWithoutAContextMenuClassGetsTheOtherExchangesOnce) {
    test::start_application();
    ASSERT_EQ(objc_getClass("TContextMenu"), nullptr);
    declare_process_signature('MACS');
    const Implementations before = implementations();
    force_preference(CFSTR("logLevel"), (CFPropertyListRef) @1, CFSTR(DV_PREFS_DOMAIN));
    testing::internal::CaptureStdout();
    EXPECT_EQ(dv_load_delvio(), 0);
    fflush(stdout);
    const std::string log = testing::internal::GetCapturedStdout();
    EXPECT_NE(log.find("\nDelvio: No TContextMenu class found?\n"), std::string::npos) << log;
    EXPECT_EQ(log.find("Successfully swizzled"), std::string::npos) << log;
    EXPECT_EQ(is_loaded, 1);
    const Implementations after = implementations();
    for (const ExchangedMethod& row : exchanged) {
        EXPECT_NE(after.at(row.selector), before.at(row.selector)) << row.selector;
    }
    // The controller has written its settings.
    CFPropertyListRef placement =
        CFPreferencesCopyAppValue(CFSTR("placement"), CFSTR(DV_PREFS_DOMAIN));
    ASSERT_NE(placement, nullptr);
    CFRelease(placement);

    EXPECT_EQ(dv_load_delvio(), 0);
    EXPECT_EQ(implementations(), after) << "a second exchange would swap them back";
}
