#include "tree/dv_prefs.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>

#include "support/dv_log.h"
#include "support/heap.h"
#include "support/turn.h"
#include "tree/dv_scan.h"
#include "tree/dv_state.h"

namespace {

// Runs the system's settings tool as a separate program; returns what it prints, without the last
// newline.
std::string defaults(const std::string& arguments) {
    const std::string command = "defaults " + arguments + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char chunk[256];
    while (size_t count = fread(chunk, 1, sizeof chunk, pipe)) output.append(chunk, count);
    pclose(pipe);
    while (!output.empty() && output.back() == '\n') output.pop_back();
    return output;
}

void write(const std::string& key, const std::string& value) {
    defaults("write " DV_PREFS_DOMAIN " " + key + " " + value);
}

std::string stored(const std::string& key) {
    const std::string line = defaults("read " DV_PREFS_DOMAIN " " + key);
    return line.substr(line.rfind(' ') + 1);
}

std::string text(CFTypeRef string) {
    char buffer[256] = "(null)";
    if (string) {
        CFStringGetCString(static_cast<CFStringRef>(string), buffer, sizeof buffer,
                           kCFStringEncodingUTF8);
    }
    return buffer;
}

class Preferences : public testing::Test {
  protected:
    Preferences() {
        defaults("delete " DV_PREFS_DOMAIN);
        CFPreferencesAppSynchronize(CFSTR(DV_PREFS_DOMAIN));
    }
    ~Preferences() override {
        if (state_.folders) CFRelease(state_.folders);
        if (state_.open_with_path) CFRelease(state_.open_with_path);
        dvEnableDebugOutput = 0;
        dv_set_sort_order(0);
    }

    const delvio_t& read(int write_back = 0) {
        dv_read_prefs(&state_, write_back);
        return state_;
    }

    delvio_t state_ = {};
};

TEST_F(Preferences, WithNoneEveryValueIsItsDefault) {
    dvEnableDebugOutput = 1;
    const delvio_t& state = read();
    EXPECT_EQ(dvEnableDebugOutput, 0);
    EXPECT_EQ(state.finderInSeparateSubmenu, 0);
    EXPECT_EQ(state.hideMoveCopyAlias, 0);
    EXPECT_EQ(state.showLabels, 1);
    EXPECT_EQ(state.showRecentItems, 1);
    EXPECT_EQ(state.hoverPreviews, 1);
    EXPECT_EQ(state.hoverPreviewsInterval, 1000);
    EXPECT_EQ(state.runningAppsInOpenWithMenu, 1);
    EXPECT_EQ(state.rootMenuCollapseThreshold, 10);
    EXPECT_EQ(state.autoOpenWithMenu, 1);
    EXPECT_EQ(state.delvio_is_on, 1);
    EXPECT_EQ(state.sort_order, 0u);
    EXPECT_EQ(state.show_hidden_files, 0u);
    EXPECT_EQ(state.show_package_contents, 0u);
    EXPECT_EQ(state.use_icons, 1u);
    EXPECT_EQ(state.placement, 2u);
    EXPECT_EQ(state.font_size, 0u);
    EXPECT_EQ(state.disable_menu_fade, 0);
    EXPECT_EQ(state.custom_folder_order, 1);
    EXPECT_EQ(state.only_folders_in_main_menu, 0);
    EXPECT_EQ(state.intra_sort_order, 0u);
    EXPECT_EQ(state.control_free_delay_usec, 500000u);
    EXPECT_EQ(state.control_free_enabled, 0u);
    EXPECT_EQ(state.use_generic_icons, 0u);
    EXPECT_EQ(state.preview_size, 256u);
    EXPECT_EQ(state.open_after_file_op, 0u);
    EXPECT_EQ(state.open_with_path, nullptr);
    EXPECT_EQ(state.folders, nullptr);
}

TEST_F(Preferences, TheFirstStartWritesTheFourteenKeysAndNoOther) {
    testing::internal::CaptureStderr();
    read(1);
    // GNUstep prints a message when it breaks a lock after waiting 20 seconds for it.
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const struct {
        const char* key;
        const char* value;
    } written[] = {
        {"autoOpenWithMenu", "1"},
        {"sort_order", "0"},
        {"show_hidden_files", "0"},
        {"show_package_contents", "0"},
        {"use_icons", "1"},
        {"placement", "2"},
        {"font_size", "0"},
        {"disable_menu_fade", "0"},
        {"custom_folder_order", "1"},
        {"only_folders_in_main_menu", "0"},
        {"control_free_delay_usec", "500000"},
        {"control_free_enabled", "0"},
        {"use_generic_icons", "0"},
        {"preview_size", "256"},
    };
    for (const auto& w : written) EXPECT_EQ(stored(w.key), w.value) << w.key;
    const std::string all = defaults("read " DV_PREFS_DOMAIN);
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n') + 1, 14) << all;
}

TEST_F(Preferences, ReadingAloneWritesNothing) {
    read(0);
    EXPECT_EQ(defaults("read " DV_PREFS_DOMAIN), "");
}

TEST_F(Preferences, WritingBackKeepsWhatIsInEffect) {
    write("sort_order", "1");
    write("preview_size", "512");
    read(1);
    EXPECT_EQ(stored("sort_order"), "1");
    EXPECT_EQ(stored("preview_size"), "512");
}

TEST_F(Preferences, AnotherProgramsChangeIsSeenAtTheNextRead) {
    EXPECT_EQ(read(1).sort_order, 0u);
    write("sort_order", "1");
    EXPECT_EQ(read().sort_order, 1u);
    EXPECT_EQ(dv_get_flags(&state_), DV_SCAN_MIXED);
    defaults("delete " DV_PREFS_DOMAIN " sort_order");
    EXPECT_EQ(read().sort_order, 0u);
}

TEST_F(Preferences, EveryKeyReachesItsField) {
    const struct {
        const char* key;
        int32_t* field;
    } fields[] = {
        {"finderInSeparateSubmenu", &state_.finderInSeparateSubmenu},
        {"hideMoveCopyAlias", &state_.hideMoveCopyAlias},
        {"showLabels", &state_.showLabels},
        {"showRecentItems", &state_.showRecentItems},
        {"hoverPreviews", &state_.hoverPreviews},
        {"hoverPreviewsInterval", &state_.hoverPreviewsInterval},
        {"runningAppsInOpenWithMenu", &state_.runningAppsInOpenWithMenu},
        {"rootMenuCollapseThreshold", &state_.rootMenuCollapseThreshold},
        {"autoOpenWithMenu", &state_.autoOpenWithMenu},
        {"delvio_is_on", &state_.delvio_is_on},
        {"disable_menu_fade", &state_.disable_menu_fade},
        {"custom_folder_order", &state_.custom_folder_order},
        {"only_folders_in_main_menu", &state_.only_folders_in_main_menu},
    };
    const struct {
        const char* key;
        uint32_t* field;
    } unsigned_fields[] = {
        {"sort_order", &state_.sort_order},
        {"show_hidden_files", &state_.show_hidden_files},
        {"show_package_contents", &state_.show_package_contents},
        {"use_icons", &state_.use_icons},
        {"placement", &state_.placement},
        {"font_size", &state_.font_size},
        {"control_free_delay_usec", &state_.control_free_delay_usec},
        {"control_free_enabled", &state_.control_free_enabled},
        {"use_generic_icons", &state_.use_generic_icons},
        {"preview_size", &state_.preview_size},
        {"open_after_file_op", &state_.open_after_file_op},
    };
    int value = 1000;
    for (const auto& f : fields) write(f.key, std::to_string(++value));
    for (const auto& f : unsigned_fields) write(f.key, std::to_string(++value));
    read();
    value = 1000;
    for (const auto& f : fields) EXPECT_EQ(*f.field, ++value) << f.key;
    for (const auto& f : unsigned_fields) EXPECT_EQ(*f.field, uint32_t(++value)) << f.key;
}

TEST_F(Preferences, TheCollapseThresholdIsBoundedBelow) {
    const struct {
        const char* value;
        int32_t used;
    } cases[] = {{"0", 1}, {"1", 1}, {"-5", 1}, {"2", 2}, {"37", 37}};
    for (const auto& c : cases) {
        write("rootMenuCollapseThreshold", c.value);
        EXPECT_EQ(read().rootMenuCollapseThreshold, c.used) << c.value;
    }
    defaults("delete " DV_PREFS_DOMAIN " rootMenuCollapseThreshold");
    EXPECT_EQ(read().rootMenuCollapseThreshold, 10);
}

TEST_F(Preferences, TheKindOrderIsBoundedAndApplied) {
    for (uint32_t row = 0; row < DV_SORT_ORDER_COUNT; row++) {
        write("intra_sort_order", std::to_string(row));
        EXPECT_EQ(read().intra_sort_order, row);
        EXPECT_EQ(sort_order, sort_orders[row]);
    }
    for (const char* value : {"4", "-1"}) {
        dv_set_sort_order(2);
        write("intra_sort_order", value);
        EXPECT_EQ(read().intra_sort_order, 0u) << value;
        EXPECT_EQ(sort_order, sort_orders[0]) << value;
    }
}

TEST_F(Preferences, TheLogLevelFollowsItsKey) {
    write("logLevel", "1");
    read();
    EXPECT_EQ(dvEnableDebugOutput, 1);
}

TEST_F(Preferences, ALogLevelThatIsNoNumberGivesZero) {
    dvEnableDebugOutput = 1;
    write("logLevel", "verbose");
    read();
    EXPECT_EQ(dvEnableDebugOutput, 0);
}

TEST_F(Preferences, OpenWithPathIsKeptOnlyWhenItIsAString) {
    write("open_with_path", "/opt/programs");
    EXPECT_EQ(text(read().open_with_path), "/opt/programs");
    write("open_with_path", "'(a, b)'");
    EXPECT_EQ(read().open_with_path, nullptr);
}

TEST_F(Preferences, FoldersAreKeptAsTheyAre) {
    write("folders", "'(\"/a\", \"-\", \"/b\")'");
    const delvio_t& state = read();
    ASSERT_NE(state.folders, nullptr);
    ASSERT_EQ(CFGetTypeID(state.folders), CFArrayGetTypeID());
    ASSERT_EQ(CFArrayGetCount(state.folders), 3);
    EXPECT_EQ(text(CFArrayGetValueAtIndex(state.folders, 1)), "-");
    write("folders", "plain");
    ASSERT_NE(read().folders, nullptr);
    EXPECT_EQ(CFGetTypeID(state_.folders), CFStringGetTypeID());
    defaults("delete " DV_PREFS_DOMAIN " folders");
    EXPECT_EQ(read().folders, nullptr);
}

TEST_F(Preferences, WhatWasReadBeforeIsLetGo) {
    write("folders", "'(\"/a\", \"/b\")'");
    write("open_with_path", "/some/where/else/that/has/a/name");
    const auto round = [&] { test::in_one_turn([&] { read(1); }); };
    for (int i = 0; i < 20; i++) round();
    const size_t before = test::memory_in_use();
    for (int i = 0; i < 200; i++) round();
    EXPECT_LT(test::memory_in_use(), before + 8000);
    EXPECT_EQ(text(read().open_with_path), "/some/where/else/that/has/a/name");
}

TEST_F(Preferences, ANullStateIsIgnored) {
    dvEnableDebugOutput = 1;
    dv_read_prefs(nullptr, 1);
    EXPECT_EQ(dvEnableDebugOutput, 1);
    EXPECT_EQ(defaults("read " DV_PREFS_DOMAIN), "");
}

TEST_F(Preferences, OneValueIsReadAndWrittenByItself) {
    int32_t value = 7;
    dv_read_pref(CFSTR(DV_PREFS_DOMAIN), CFSTR("placement"), &value, -3);
    EXPECT_EQ(value, -3);
    dv_write_pref(CFSTR(DV_PREFS_DOMAIN), CFSTR("placement"), -12);
    dv_read_pref(CFSTR(DV_PREFS_DOMAIN), CFSTR("placement"), &value, 5);
    EXPECT_EQ(value, -12);
}

}  // namespace
