// Draws the icon at one size, for the folders of the icon theme: write_icon SVG SIZE PNG
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <stdio.h>
#include <stdlib.h>

int main(int argc, char** argv) {
    const int size = argc == 4 ? atoi(argv[2]) : 0;
    if (size <= 0) {
        fputs("usage: write_icon SVG SIZE PNG\n", stderr);
        return 2;
    }
    GError* error = nullptr;
    GdkPixbuf* picture = gdk_pixbuf_new_from_file_at_size(argv[1], size, size, &error);
    if (picture && gdk_pixbuf_save(picture, argv[3], "png", &error, nullptr)) return 0;
    fprintf(stderr, "write_icon: %s\n", error->message);
    return 1;
}
