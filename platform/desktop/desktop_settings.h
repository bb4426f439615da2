// What the user's desktop says about looks and the mouse: the one place that asks for it. No daemon
// is needed or started. Main thread.
//
// When several sources have an answer, the first one counts, as for GTK's programs: what the
// session shares on the display (XSETTINGS), the files of GTK 3 and 4 (settings.ini), KDE's file
// (kdeglobals), and the database of GNOME's kind of desktops. Light or dark and high contrast are
// also asked of the desktop's portal, if it runs, where all of these are silent.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

struct PortalSettings;

// The settings of one moment. Each object reads each source at most once, when it is first asked
// for something there.
class DesktopSettings {
  public:
    DesktopSettings();
    ~DesktopSettings();
    DesktopSettings(const DesktopSettings&) = delete;
    DesktopSettings& operator=(const DesktopSettings&) = delete;

    // Whether the desktop asks for dark windows. $GTK_THEME alone decides where it is set;
    // otherwise the theme's name does, or a setting that programs or the whole desktop are to be
    // dark.
    bool prefers_dark();
    // Whether everything is to stand out: a theme of high contrast, or GNOME's setting.
    bool wants_high_contrast();
    // The family of the interface font; a font alias if the desktop names none.
    std::string font_family();
    // The size of the interface font in pixels at the scale 1; 0 if the desktop names none.
    double font_size();
    // Empty if the desktop names none.
    std::string icon_theme();
    // The colour of what is selected: red, green and blue, from 0 to 1.
    struct Accent {
        double red, green, blue;
    };
    std::optional<Accent> accent();
    // Whether things may fade and slide.
    bool animates();
    // How far the pointer moves before a press becomes a drag, in pixels at the scale 1, and the
    // longest time between two clicks that count as one, in seconds; 0 if the desktop says nothing.
    double drag_distance();
    double double_click_interval();
    // The scale, 1 to 4 in steps of a quarter. `server_resources` is the resource string of the X
    // server; null means none. $GDK_SCALE alone decides where it is set.
    double scale(const char* server_resources);

  private:
    struct Places;
    struct Sources;
    std::string shared(const char* name);
    std::string in_gtk_file(int number, const char* key);
    std::string in_gtk_files(const char* key);
    std::string in_kde_file(const char* group, const char* key);
    std::string in_database(const char* key);
    const PortalSettings& portal();
    bool names_theme();
    std::string first_answer(const Places& places);
    double first_number(const Places& places);
    std::string font();

    std::unique_ptr<Sources> sources_;
};
