// A menu of the toolkit that most programs of the desktop use: 25 rows.
#include <gtk/gtk.h>

#include <string>

namespace {

constexpr int rows = 25;
constexpr GdkRectangle place = {100, 100, 1, 1};

}  // namespace

int main(int count, char** arguments) {
    gtk_init(&count, &arguments);
    GtkMenu* menu = GTK_MENU(gtk_menu_new());
    for (int row = 0; row < rows; row++) {
        const std::string title = "Menu row " + std::to_string(row);
        gtk_menu_shell_append(GTK_MENU_SHELL(menu), gtk_menu_item_new_with_label(title.c_str()));
    }
    gtk_widget_show_all(GTK_WIDGET(menu));
    gtk_menu_popup_at_rect(menu, gdk_get_default_root_window(), &place, GDK_GRAVITY_NORTH_WEST,
                           GDK_GRAVITY_NORTH_WEST, nullptr);
    gtk_main();
}
