// The plug-in and the hosts each have their own table of the settings. Both must have the same
// domain and defaults.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>

#include <fstream>
#include <iterator>
#include <set>

#include "finderkit/settings_file.h"
#include "settings/settings_table.h"
#include "support/dv_log.h"
#include "tree/dv_prefs.h"
#include "tree/dv_state.h"

namespace {

// The plug-in's values for its settings as they are stored now.
class Reading {
  public:
    Reading() {
        dvEnableDebugOutput = -1;
        dv_read_prefs(&state_, 0);
        level_ = dvEnableDebugOutput;
        dvEnableDebugOutput = 0;
    }
    bool operator==(const Reading& other) const {
        return level_ == other.level_ && memcmp(&state_, &other.state_, sizeof state_) == 0;
    }

  private:
    // Starts from zeroes, because the padding is compared too.
    struct Zeroed {
        Zeroed(delvio_t* state) { memset(static_cast<void*>(state), 0, sizeof *state); }
    };
    delvio_t state_;
    Zeroed zeroed_{&state_};
    int level_ = 0;
};

Reading reading_with(const Setting& setting, int32_t value) {
    const CFStringRef domain = CFSTR(DV_PREFS_DOMAIN);
    const CFStringRef key =
        CFStringCreateWithCString(kCFAllocatorDefault, setting.key, kCFStringEncodingUTF8);
    dv_write_pref(domain, key, value);
    const Reading reading;
    CFPreferencesSetAppValue(key, nullptr, domain);
    CFPreferencesAppSynchronize(domain);
    CFRelease(key);
    return reading;
}

// Settings that only the hosts read.
const std::set<std::string> of_hosts = {"operations_by_file_manager", "notices", "sort_by_language",
                                        "preview_beside_menu", "preview_details"};

}  // namespace

TEST(Settings, HaveOneDomainWhichIsThePlugInsIdentifier) {
    EXPECT_STREQ(settings_domain, DV_PREFS_DOMAIN);
    std::ifstream file(PLUG_IN_INFORMATION);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string key = "<key>CFBundleIdentifier</key>";
    ASSERT_NE(text.find(key), std::string::npos);
    const size_t begin = text.find("<string>", text.find(key)) + strlen("<string>");
    EXPECT_EQ(text.substr(begin, text.find("</string>", begin) - begin), settings_domain);
}

TEST(Settings, HaveTheDefaultsOfThePlugIn) {
    const Reading unset;
    for (const Setting& setting : settings_table()) {
        if (!is_numeric(setting)) continue;
        EXPECT_TRUE(reading_with(setting, setting.standard) == unset)
            << setting.key << ": the plug-in's default is not " << setting.standard;
    }
}

TEST(Settings, AreReadByThePlugInButForTheHostsOwn) {
    const Reading unset;
    for (const Setting& setting : settings_table()) {
        if (!is_numeric(setting)) continue;
        const int32_t other =
            setting.standard < setting.most ? setting.standard + 1 : setting.standard - 1;
        EXPECT_EQ(reading_with(setting, other) == unset, of_hosts.contains(setting.key))
            << setting.key;
    }
}
