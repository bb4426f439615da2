#include "desktop/desktop_settings.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>

#include "desktop/settings_database.h"
#include "support/temp_folder.h"

// Included last, because its macros break other headers.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace {

using files::text_in_settings_database;

const char color_scheme[] = "/org/gnome/desktop/interface/color-scheme";

std::string bytes_of(uint32_t number, size_t size = 4) {
    std::string bytes(size, '\0');
    memcpy(bytes.data(), &number, size);
    return bytes;
}

// A database of keys, each below the previous one. The first key is complete, the others are only
// the part that follows it. The last one has a value.
struct Key {
    std::string name;
    uint32_t parent;
    std::string value;      // empty: a folder of keys
    std::string type = {};  // empty: a text
};
std::string database(const std::vector<Key>& keys) {
    const uint32_t items_at = 24 + 8 + 4, data_at = items_at + 24 * keys.size();
    std::string items, data;
    for (const Key& key : keys) {
        const uint32_t name_at = data_at + data.size();
        data += key.name;
        while ((data_at + data.size()) % 8) data += '\0';
        const uint32_t value_at = data_at + data.size();
        // A text in a box for any type: the text, its terminator, a mark, its type.
        if (!key.type.empty()) {
            data += key.value + '\0' + key.type;
        } else if (!key.value.empty()) {
            data += key.value + std::string("\0\0s", 3);
        }
        items += bytes_of(0) + bytes_of(key.parent) + bytes_of(name_at) +
                 bytes_of(key.name.size(), 2) + (key.value.empty() ? "L" : "v") +
                 std::string(1, '\0') + bytes_of(value_at) + bytes_of(data_at + data.size());
    }
    return "GVariant" + bytes_of(0) + bytes_of(0) + bytes_of(24) + bytes_of(data_at) + bytes_of(0) +
           bytes_of(1) + bytes_of(0) + items + data;
}

std::string database_with(const std::string& last_key, const std::string& value) {
    return database({{"/", UINT32_MAX, ""},
                     {"org/gnome/desktop/", 0, ""},
                     {"interface/", 1, ""},
                     {"other/", 1, ""},
                     {"color-scheme", 3, "prefer-dark"},
                     {last_key, 2, value}});
}

// Shares settings as the desktop's session does with all programs.
class Session {
  public:
    Session() : display_(XOpenDisplay(nullptr)) {
        window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
        XSetSelectionOwner(display_, atom("_XSETTINGS_S0"), window_, CurrentTime);
        XSync(display_, False);
    }
    ~Session() { XCloseDisplay(display_); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void share(const std::vector<std::pair<std::string, std::string>>& texts,
               const std::vector<std::pair<std::string, uint32_t>>& numbers = {}) {
        // A colour comes first; the reader skips it.
        std::string bytes = std::string(8, '\0') + bytes_of(texts.size() + numbers.size() + 1) +
                            header(2, "Some/Color") + std::string(8, 'c');
        for (const auto& [name, number] : numbers) bytes += header(0, name) + bytes_of(number);
        for (const auto& [name, text] : texts) {
            bytes += header(1, name) + bytes_of(text.size()) + filled(text);
        }
        put(bytes);
    }
    void put(const std::string& bytes) {
        XChangeProperty(display_, window_, atom("_XSETTINGS_SETTINGS"), atom("_XSETTINGS_SETTINGS"),
                        8, PropModeReplace, reinterpret_cast<const unsigned char*>(bytes.data()),
                        static_cast<int>(bytes.size()));
        XSync(display_, False);
    }

  private:
    Atom atom(const char* name) const { return XInternAtom(display_, name, False); }
    static std::string filled(std::string text) {
        text.resize((text.size() + 3) / 4 * 4);
        return text;
    }
    static std::string header(char type, const std::string& name) {
        return std::string(1, type) + '\0' + bytes_of(name.size(), 2) + filled(name) + bytes_of(0);
    }
    Display* display_;
    Window window_;
};

class DesktopLooks : public testing::Test {
  protected:
    DesktopLooks() {
        setenv("XDG_CONFIG_HOME", config.path().c_str(), 1);
        unsetenv("GTK_THEME");
    }
    test::TempFolder config;
};

TEST_F(DesktopLooks, ADesktopThatSaysNothingHasNone) {
    EXPECT_FALSE(DesktopSettings().prefers_dark());
    EXPECT_EQ(DesktopSettings().font_family(), "system-ui, sans-serif");
    EXPECT_EQ(DesktopSettings().icon_theme(), "");
}

TEST_F(DesktopLooks, WhatTheSessionSharesCountsMoreThanFiles) {
    config.file("gtk-3.0/settings.ini",
                "[Settings]\ngtk-icon-theme-name=File\n"
                "gtk-theme-name=Adwaita-dark\ngtk-font-name=Lato 9\n");
    EXPECT_EQ(DesktopSettings().icon_theme(), "File");
    EXPECT_EQ(DesktopSettings().font_family(), "Lato");
    EXPECT_TRUE(DesktopSettings().prefers_dark());
    Session session;
    session.share({{"Net/ThemeName", "Adwaita"},
                   {"Net/IconThemeName", "Shared"},
                   {"Gtk/FontName", "Cantarell 11"}});
    EXPECT_EQ(DesktopSettings().icon_theme(), "Shared");
    EXPECT_EQ(DesktopSettings().font_family(), "Cantarell");
    EXPECT_FALSE(DesktopSettings().prefers_dark());
    session.share({{"Net/ThemeName", "Yaru-dark"}});
    EXPECT_TRUE(DesktopSettings().prefers_dark()) << "a change is seen";
    EXPECT_EQ(DesktopSettings().icon_theme(), "File");
}

TEST_F(DesktopLooks, WhatASessionSharesDamagedIsPassedOver) {
    Session session;
    const std::string start = std::string(8, '\0') + bytes_of(UINT32_MAX);
    for (const std::string& bytes :
         {std::string(), std::string("x"), start, start + std::string("\1\0\xff\xff", 4) + "name",
          start + std::string("\1\0\4\0name", 8) + bytes_of(0) + bytes_of(UINT32_MAX)}) {
        session.put(bytes);
        EXPECT_EQ(DesktopSettings().icon_theme(), "");
    }
}

TEST_F(DesktopLooks, KdesFileIsUnderstoodWithItsMarksAndInnerGroups) {
    config.file("kdeglobals",
                "[$Version]\nupdate_info=a.upd:b\n[Colors:View][Inactive]\nx=1\n"
                "[KFileDialog Settings]\nRecent URLs[$e]=$HOME\n"
                "[General]\nColorScheme=BreezeDark\nfont=Noto Sans,10,-1,5,50\n"
                "[Icons]\nTheme=breeze\n");
    EXPECT_TRUE(DesktopSettings().prefers_dark());
    EXPECT_EQ(DesktopSettings().font_family(), "Noto Sans");
    EXPECT_EQ(DesktopSettings().icon_theme(), "breeze");
}

TEST_F(DesktopLooks, TheDatabaseTellsWhetherAllIsToBeDark) {
    config.file("dconf/user", database_with("color-scheme", "default"));
    EXPECT_FALSE(DesktopSettings().prefers_dark())
        << "that it is dark stands there for something else";
    config.file("dconf/user", database_with("color-scheme", "prefer-dark"));
    EXPECT_TRUE(DesktopSettings().prefers_dark());
    config.file("dconf/user", database_with("icon-theme", "Papirus"));
    EXPECT_FALSE(DesktopSettings().prefers_dark());
    EXPECT_EQ(DesktopSettings().icon_theme(), "Papirus");
}

TEST_F(DesktopLooks, NumbersOfTheSessionAreUnderstood) {
    Session session;
    session.share(
        {{"Gtk/FontName", "Cantarell Bold 12"}},
        {{"Gtk/EnableAnimations", 0}, {"Net/DoubleClickTime", 700}, {"Net/DndDragThreshold", 9}});
    EXPECT_DOUBLE_EQ(DesktopSettings().font_size(), 16) << "12 points at 96 dots an inch";
    EXPECT_FALSE(DesktopSettings().animates());
    EXPECT_DOUBLE_EQ(DesktopSettings().double_click_interval(), 0.7);
    EXPECT_EQ(DesktopSettings().drag_distance(), 9);
    session.share({}, {{"Gtk/EnableAnimations", 1}});
    EXPECT_TRUE(DesktopSettings().animates());
    EXPECT_EQ(DesktopSettings().font_size(), 0);
    EXPECT_EQ(DesktopSettings().drag_distance(), 0);
}

TEST_F(DesktopLooks, TheScaleOfTheSessionCountsBeforeTheServersResources) {
    unsetenv("GDK_SCALE");
    const char* const resources = "Xft.dpi:\t120\n";
    Session session;
    session.share({}, {{"Gdk/WindowScalingFactor", 1}});
    EXPECT_EQ(DesktopSettings().scale(resources), 1.25);
    session.share({}, {{"Gdk/WindowScalingFactor", 2}});
    EXPECT_EQ(DesktopSettings().scale(resources), 2);
    session.share({}, {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", 3 * 96 * 1024}});
    EXPECT_EQ(DesktopSettings().scale(resources), 3);
    setenv("GDK_SCALE", "2", 1);
    EXPECT_EQ(DesktopSettings().scale(resources), 2);
    unsetenv("GDK_SCALE");
    session.share({});
    config.file("kdeglobals", "[KScreen]\nScaleFactor=1.5\n");
    EXPECT_EQ(DesktopSettings().scale(nullptr), 1.5);
}

TEST_F(DesktopLooks, FilesOfGtkAndKdeTellTheSame) {
    config.file("gtk-3.0/settings.ini",
                "[Settings]\ngtk-enable-animations=0\ngtk-double-click-time=500\n"
                "gtk-dnd-drag-threshold=7\ngtk-theme-name=HighContrastInverse\n");
    EXPECT_FALSE(DesktopSettings().animates());
    EXPECT_DOUBLE_EQ(DesktopSettings().double_click_interval(), 0.5);
    EXPECT_EQ(DesktopSettings().drag_distance(), 7);
    EXPECT_TRUE(DesktopSettings().wants_high_contrast());
    EXPECT_TRUE(DesktopSettings().prefers_dark());
    config.file("gtk-3.0/settings.ini", "");
    config.file("kdeglobals",
                "[General]\nAccentColor=61,174,233\nfont=Noto Sans,15,-1,5,50\n"
                "[KDE]\nAnimationDurationFactor=0\nDoubleClickInterval=400\nStartDragDist=12\n");
    EXPECT_FALSE(DesktopSettings().animates());
    EXPECT_DOUBLE_EQ(DesktopSettings().double_click_interval(), 0.4);
    EXPECT_EQ(DesktopSettings().drag_distance(), 12);
    EXPECT_DOUBLE_EQ(DesktopSettings().font_size(), 20);
    EXPECT_FALSE(DesktopSettings().wants_high_contrast());
    const auto accent = DesktopSettings().accent();
    ASSERT_TRUE(accent);
    EXPECT_NEAR(accent->red, 0.239, 0.001);
    EXPECT_NEAR(accent->blue, 0.914, 0.001);
}

TEST_F(DesktopLooks, TheDatabaseTellsAccentContrastAndNumbers) {
    const auto of = [](const std::string& folder, const std::string& key, const std::string& value,
                       const std::string& type) {
        return database({{"/", UINT32_MAX, ""},
                         {"org/gnome/desktop/", 0, ""},
                         {folder, 1, ""},
                         {key, 2, value, type}});
    };
    config.file("dconf/user", of("interface/", "accent-color", std::string("teal\0", 5), "s"));
    const auto accent = DesktopSettings().accent();
    ASSERT_TRUE(accent);
    EXPECT_NEAR(accent->red, 0.129, 0.001);
    config.file("dconf/user", of("interface/", "accent-color", std::string("ink\0", 4), "s"));
    EXPECT_FALSE(DesktopSettings().accent());
    const std::string yes("\1", 1), no("\0", 1);
    config.file("dconf/user", of("a11y/interface/", "high-contrast", yes, "b"));
    EXPECT_TRUE(DesktopSettings().wants_high_contrast());
    config.file("dconf/user", of("interface/", "enable-animations", no, "b"));
    EXPECT_FALSE(DesktopSettings().animates());
    EXPECT_FALSE(DesktopSettings().wants_high_contrast());
    config.file("dconf/user", of("peripherals/mouse/", "double-click", bytes_of(900), "i"));
    EXPECT_DOUBLE_EQ(DesktopSettings().double_click_interval(), 0.9);
    config.file("dconf/user", of("peripherals/mouse/", "drag-threshold", bytes_of(6), "i"));
    EXPECT_EQ(DesktopSettings().drag_distance(), 6);
}

TEST_F(DesktopLooks, NumbersThatAreNoneCountAsNotSet) {
    Session session;
    session.share({{"Gtk/FontName", "Sans 0"}, {"Net/DoubleClickTime", "nan"}},
                  {{"Net/DndDragThreshold", static_cast<uint32_t>(-4)}, {"Xft/DPI", 0x7fffffff}});
    EXPECT_EQ(DesktopSettings().font_size(), 0);
    EXPECT_EQ(DesktopSettings().double_click_interval(), 0);
    EXPECT_EQ(DesktopSettings().drag_distance(), 0);
    EXPECT_EQ(DesktopSettings().scale(nullptr), 4);
}

TEST_F(DesktopLooks, ADamagedDatabaseHasNoTexts) {
    const std::string whole = database_with("color-scheme", "prefer-dark");
    const std::string path = config.file("dconf/user", whole);
    ASSERT_EQ(text_in_settings_database(path, color_scheme), "prefer-dark");
    for (size_t size = 0; size < whole.size(); size++) {
        config.file("dconf/user", whole.substr(0, size));
        EXPECT_EQ(text_in_settings_database(path, color_scheme), "") << size;
    }
    // With any value of any byte, nothing is read beyond the end.
    for (size_t at = 0; at < whole.size(); at++) {
        for (const char byte : {'\0', '\1', '\x7f', '\xff'}) {
            std::string damaged = whole;
            damaged[at] = byte;
            config.file("dconf/user", damaged);
            text_in_settings_database(path, color_scheme);
        }
    }
    const std::string circle = database({{"a", 0, "x"}});
    EXPECT_EQ(text_in_settings_database(config.file("circle", circle), "aaaa"), "");
    EXPECT_EQ(text_in_settings_database(config.file("huge", whole + std::string(4 << 20, '\0')),
                                        color_scheme),
              "");
    EXPECT_EQ(text_in_settings_database(config.path("missing"), color_scheme), "");
}

}  // namespace
