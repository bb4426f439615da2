// Questions that menus ask an item's image beside its size and pictures. Icons of files have their
// own answers. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface NSImage (MenuQuestions)
// Whether the image is the icon of a file that file managers do not show. Menus dim the rows of
// such files. The first answer may ask the disk.
- (BOOL)isOfHiddenFile;
// Whether more pictures may arrive after the first look. A menu that will soon show such an image
// looks at it beforehand.
- (BOOL)mayChangeAfterFirstLook;
// The image that an item keeps when it is given this one: this image, or one that nobody can tell
// from it.
- (NSImage*)imageForMenuItem;
@end
