#include <AppKit/AppKit.h>
#include <host/process.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include "loader/dv_load.h"
#include "support/app.h"
#include "tree/dv_prefs.h"

namespace {

IMP class_popup() {
    Method method = class_getClassMethod([NSMenu class], @selector(popUpContextMenu:
                                                                          withEvent:forView:));
    return method_getImplementation(method);
}

}  // namespace

TEST(Load, NothingIsInstalledInAProcessThatIsNotTheFinder) {
    test::start_application();
    declare_process_signature('ttxt');
    const IMP before = class_popup();
    EXPECT_EQ(dv_load_delvio(), 0);
    EXPECT_EQ(is_loaded, 0);
    EXPECT_EQ(class_popup(), before);
    // A controller would have written its settings.
    CFPreferencesAppSynchronize(CFSTR(DV_PREFS_DOMAIN));
    EXPECT_EQ(CFPreferencesCopyAppValue(CFSTR("placement"), CFSTR(DV_PREFS_DOMAIN)), nullptr);

    declare_process_signature('MACS');
    EXPECT_EQ(dv_load_delvio(), 0);
    EXPECT_EQ(is_loaded, 1);
    EXPECT_NE(class_popup(), before);
    CFPropertyListRef placement =
        CFPreferencesCopyAppValue(CFSTR("placement"), CFSTR(DV_PREFS_DOMAIN));
    EXPECT_NE(placement, nullptr);
    CFRelease(placement);
}
