// Titles and paragraphs as laid-out text. Main thread.
#pragma once

#include <host/glib_owners.h>
#include <pango/pangocairo.h>

#include <string>
#include <vector>

#include "look/menu_look.h"

@class NSMenuItem, NSString;

typedef files::ObjectOwner<PangoLayout> TextLayout;

// A title as UTF-8 on one line. A visible sign replaces each character that would break the line,
// hide or reorder the text. A title of many thousands of characters is cut in its middle.
std::string visible_title(NSString* title);

// The text without case and accents, to compare it with typed text.
std::string folded(const std::string& text);

// A text on one line in the interface font, shown as it is.
TextLayout line_text(const MenuLook& look, const std::string& text);

// The item's title; with `plain`, without the colours of its attributes.
TextLayout item_text(const MenuLook& look, NSMenuItem* item, bool plain);

// Text in the interface font, `size` in points, in lines of `width` pixels; 0 does not break it.
// Control characters but newlines are shown as signs.
TextLayout paragraph(const MenuLook& look, const std::string& text, double size, bool bold,
                     int width);

// Facts on one line, from the side where lines begin, whatever direction each of them runs in.
TextLayout facts_text(const MenuLook& look, const std::vector<std::string>& facts, double size);

// A line that the user writes, with every byte at its place.
TextLayout typed_text(const MenuLook& look, const std::string& text, double size);

// Where each character of an ASCII text on one line ends, in pixels.
std::vector<double> ends_of_characters(const MenuLook& look, const std::string& text);

// Pixels that the text takes.
int text_width(const TextLayout& text);
int text_height(const TextLayout& text);
// Where the text begins within its layout. Above 0 for a shortened text from right to left.
int text_left(const TextLayout& text);

// Puts the lines of a paragraph at its right edge, in whatever direction they run.
void align_right(const TextLayout& text);

// Narrows the text to `width` pixels by leaving out its middle.
void fit_text(const TextLayout& text, int width);
