// Questions that menus ask an item's image beside its size and pictures. Icons of files have their
// own answers. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface NSImage (MenuQuestions)
// Whether the image is the icon of a file that file managers do not show. Menus dim the rows of
// such files. The first answer may ask the disk.
- (BOOL)isOfHiddenFile;
// A small picture that says what else is known of the image's file, such as that it is a link; nil
// for none. Menus draw it over the image's lower right corner. The first answer may ask the disk.
- (NSImage*)emblem;
// The same for an image whose file was reached by a link.
- (NSImage*)emblemOfLinks;
// Whether more pictures may arrive after the first look. A menu that will soon show such an image
// looks at it beforehand.
- (BOOL)mayChangeAfterFirstLook;
// The image that an item keeps when it is given this one: this image, or one that nobody can tell
// from it.
- (NSImage*)imageForMenuItem;
@end
