// The desktop's portal, which is asked where nothing else says anything about looks.
#include <gtest/gtest.h>
#include <stdlib.h>

#include "desktop/desktop_settings.h"
#include "hosts/bus_service.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

namespace {

constexpr const char* settings_interface =
    "<node><interface name='org.freedesktop.portal.Settings'>"
    "<method name='ReadAll'><arg type='as' direction='in'/>"
    "<arg type='a{sa{sv}}' direction='out'/></method></interface></node>";

struct SettingsPortal : testing::Test {
    SettingsPortal() {
        setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
        unsetenv("GTK_THEME");
        tell("1", "1");
    }
    void tell(const std::string& scheme, const std::string& contrast) {
        portal.set_answer("ReadAll", "({'org.freedesktop.appearance': {'color-scheme': <uint32 " +
                                         scheme + ">, 'contrast': <uint32 " + contrast + ">}},)");
    }

    test::TempFolder config;
    test::SessionBus bus;
    test::BusService portal{bus, "org.freedesktop.portal.Desktop",
                            "/org/freedesktop/portal/desktop", settings_interface};
};

// On a busy machine an answer may be too late, and the next look asks again.
TEST_F(SettingsPortal, TellsDarkAndContrastWithOneQuestion) {
    size_t looks = 0;
    ASSERT_TRUE(test::wait_for([&] {
        DesktopSettings settings;
        looks++;
        const bool is_dark = settings.prefers_dark();
        return settings.wants_high_contrast() && is_dark;
    }));
    ASSERT_EQ(portal.calls().size(), looks);
    EXPECT_NE(portal.calls()[0].find("'org.freedesktop.appearance'"), std::string::npos);
    tell("2", "0");
    DesktopSettings next;
    EXPECT_FALSE(next.prefers_dark()) << "2 is light";
    EXPECT_FALSE(next.wants_high_contrast());
}

TEST_F(SettingsPortal, IsNotAskedWhereAThemeIsNamed) {
    config.file("gtk-3.0/settings.ini", "[Settings]\ngtk-theme-name=Adwaita\n");
    DesktopSettings settings;
    EXPECT_FALSE(settings.prefers_dark());
    EXPECT_FALSE(settings.wants_high_contrast());
    EXPECT_TRUE(portal.calls().empty());
}

TEST_F(SettingsPortal, ThatAnswersSomethingElseIsPassedOver) {
    portal.set_answer("ReadAll", "({'org.freedesktop.appearance': {'color-scheme': <'dark'>}},)");
    EXPECT_FALSE(DesktopSettings().prefers_dark());
    portal.set_answer("ReadAll", "(@a{sa{sv}} {},)");
    EXPECT_FALSE(DesktopSettings().prefers_dark());
}

}  // namespace
