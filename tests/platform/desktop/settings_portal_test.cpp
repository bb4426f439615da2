// The desktop's portal, which is asked where nothing else says anything about looks.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <optional>

#include "desktop/desktop_settings.h"
#include "hosts/bus_service.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

namespace {

constexpr const char* settings_interface =
    "<node><interface name='org.freedesktop.portal.Settings'>"
    "<method name='ReadAll'><arg type='as' direction='in'/>"
    "<arg type='a{sa{sv}}' direction='out'/></method>"
    "<signal name='SettingChanged'><arg type='s'/><arg type='s'/><arg type='v'/></signal>"
    "</interface></node>";

struct SettingsPortal : testing::Test {
    SettingsPortal() {
        setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
        unsetenv("GTK_THEME");
        tell("1", "1");
    }
    void tell(const std::string& scheme, const std::string& contrast) {
        portal->set_answer("ReadAll", "({'org.freedesktop.appearance': {'color-scheme': <uint32 " +
                                          scheme + ">, 'contrast': <uint32 " + contrast + ">}},)");
    }

    // On a busy machine an answer may be too late, and the next look asks again.
    static bool looks(bool dark, bool contrast) {
        return test::wait_for([&] {
            DesktopSettings settings;
            return settings.prefers_dark() == dark && settings.wants_high_contrast() == contrast;
        });
    }
    // From then on the portal is watched.
    static void look_twice() {
        ASSERT_TRUE(looks(true, true));
        ASSERT_TRUE(looks(true, true));
    }

    test::TempFolder config;
    test::SessionBus bus;
    std::optional<test::BusService> portal{std::in_place, bus, "org.freedesktop.portal.Desktop",
                                           "/org/freedesktop/portal/desktop", settings_interface};
};

TEST_F(SettingsPortal, TellsDarkAndContrastWithOneQuestion) {
    size_t looks = 0;
    ASSERT_TRUE(test::wait_for([&] {
        DesktopSettings settings;
        looks++;
        const bool is_dark = settings.prefers_dark();
        return settings.wants_high_contrast() && is_dark;
    }));
    ASSERT_EQ(portal->calls().size(), looks);
    EXPECT_NE(portal->calls()[0].find("'org.freedesktop.appearance'"), std::string::npos);
}

TEST_F(SettingsPortal, IsAskedAgainOnlyAfterItHasToldOfAChange) {
    look_twice();
    // The watch has its answer once further looks ask nothing.
    size_t before = 0;
    ASSERT_TRUE(test::wait_for([&] {
        before = portal->calls().size();
        return looks(true, true) && portal->calls().size() == before;
    }));
    for (int i = 0; i < 20; i++) EXPECT_TRUE(DesktopSettings().prefers_dark());
    EXPECT_EQ(portal->calls().size(), before);

    tell("2", "0");  // 2 is light
    EXPECT_TRUE(DesktopSettings().prefers_dark()) << "nothing has told of a change";
    portal->emit("SettingChanged", "('org.freedesktop.appearance', 'color-scheme', <uint32 2>)");
    EXPECT_TRUE(looks(false, false));
}

TEST_F(SettingsPortal, IsAskedAgainWhenAnotherOneHasCome) {
    look_twice();
    test::BusService next(bus, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                          settings_interface);
    next.set_answer("ReadAll", "(@a{sa{sv}} {},)");
    EXPECT_TRUE(DesktopSettings().prefers_dark()) << "the next one waits until the first has gone";
    portal.reset();
    EXPECT_TRUE(looks(false, false));
}

TEST_F(SettingsPortal, IsNotAskedWhereAThemeIsNamed) {
    config.file("gtk-3.0/settings.ini", "[Settings]\ngtk-theme-name=Adwaita\n");
    DesktopSettings settings;
    EXPECT_FALSE(settings.prefers_dark());
    EXPECT_FALSE(settings.wants_high_contrast());
    EXPECT_TRUE(portal->calls().empty());
}

TEST_F(SettingsPortal, ThatAnswersSomethingElseIsPassedOver) {
    portal->set_answer("ReadAll", "({'org.freedesktop.appearance': {'color-scheme': <'dark'>}},)");
    EXPECT_FALSE(DesktopSettings().prefers_dark());
    portal->set_answer("ReadAll", "(@a{sa{sv}} {},)");
    EXPECT_FALSE(DesktopSettings().prefers_dark());
}

}  // namespace
