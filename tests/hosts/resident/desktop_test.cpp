// The desktop's settings, which the running host follows from menu to menu. Xfce's own settings
// daemon shares them.
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include "hosts/bus_service.h"
#include "hosts/resident/scene.h"

// Included last, because its macros break other headers.
#include <X11/Xlib.h>

namespace {

// xfsettingsd, which ends with this object.
class SettingsDaemon {
  public:
    SettingsDaemon() : process_(fork()) {
        if (process_ != 0) return;
        const int nothing = open("/dev/null", O_RDWR);
        dup2(nothing, STDOUT_FILENO);
        dup2(nothing, STDERR_FILENO);
        execlp("xfsettingsd", "xfsettingsd", "--no-daemon", "--replace",
               static_cast<char*>(nullptr));
        _exit(127);
    }
    ~SettingsDaemon() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    SettingsDaemon(const SettingsDaemon&) = delete;
    SettingsDaemon& operator=(const SettingsDaemon&) = delete;

  private:
    pid_t process_;
};

struct ResidentDesktop : test::ResidentScene {
    ~ResidentDesktop() override { XCloseDisplay(display); }

    static bool runs(const std::string& words) { return system(words.c_str()) == 0; }

    static void set(const std::string& setting, const std::string& type, const std::string& value) {
        EXPECT_TRUE(runs("xfconf-query -c xsettings -p " + setting + " -n -t " + type + " -s '" +
                         value + "'"));
    }

    // Whether the daemon shares this text with all programs by now.
    bool shares(const std::string& text) const {
        const Atom selection = XInternAtom(display, "_XSETTINGS_S0", False);
        const Atom property = XInternAtom(display, "_XSETTINGS_SETTINGS", False);
        const Window owner = XGetSelectionOwner(display, selection);
        if (!owner) return false;
        Atom type;
        int format;
        unsigned long size = 0, left;
        unsigned char* bytes = nullptr;
        XGetWindowProperty(display, owner, property, 0, 1 << 16, False, AnyPropertyType, &type,
                           &format, &size, &left, &bytes);
        const std::string all(reinterpret_cast<const char*>(bytes), bytes ? size : 0);
        if (bytes) XFree(bytes);
        return all.find(text) != std::string::npos;
    }
    bool wait_until_shared(const std::string& text) const {
        return test::wait_for([&] { return shares(text); });
    }

    // Shows a menu until it is as wanted.
    test::ShownArea expect_menu(
        const std::function<bool(const test::ShownArea& menu, unsigned long color)>& is_wanted) {
        test::RunningCommand command = call_at(100, 100);
        test::ShownArea menu;
        EXPECT_TRUE(test::wait_for([&] {
            menu = screen.open_menu();
            return menu.width > 0 &&
                   is_wanted(menu, input.pixel(menu.x + menu.width / 2, menu.y + 25));
        })) << menu.width
            << " x " << menu.height;
        input.key("Escape");
        EXPECT_EQ(command.finish().status, 0);
        EXPECT_TRUE(screen.wait_until_closed());
        return menu;
    }

    test::SessionBus bus{true};
    Display* const display = XOpenDisplay(nullptr);
};

TEST_F(ResidentDesktop, AChangedFontThemeAndContrastCountAtTheNextMenuOfTheSameHost) {
    set("/Gtk/FontName", "string", "DejaVu Sans 10");
    set("/Net/ThemeName", "string", "Adwaita");
    const SettingsDaemon daemon;
    // The daemon changes the server's resources when it starts, which a host does not outlive.
    ASSERT_TRUE(test::wait_for([] { return runs("xrdb -query | grep -q Xcursor.theme_core"); }));
    ASSERT_TRUE(wait_until_shared("DejaVu Sans 10"));
    const unsigned long light = 0xfcfcfd, dark = 0x28292d, white = 0xffffff;
    const auto usual =
        expect_menu([&](const auto&, unsigned long color) { return color == light; });
    const pid_t process = host();
    set("/Gtk/FontName", "string", "DejaVu Sans 20");
    ASSERT_TRUE(wait_until_shared("DejaVu Sans 20"));
    expect_menu([&](const auto& menu, unsigned long) {
        return menu.height > usual.height * 3 / 2 && menu.width > usual.width;
    });
    set("/Net/ThemeName", "string", "Adwaita-dark");
    ASSERT_TRUE(wait_until_shared("Adwaita-dark"));
    expect_menu([&](const auto&, unsigned long color) { return color == dark; });
    set("/Net/ThemeName", "string", "HighContrast");
    ASSERT_TRUE(wait_until_shared("HighContrast"));
    expect_menu([&](const auto&, unsigned long color) { return color == white; });
    EXPECT_EQ(host(), process);
}

}  // namespace
