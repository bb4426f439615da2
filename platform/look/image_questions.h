// What menus ask of an item's image beside its size and pictures. Files' icons have answers of
// their own. Main thread.
#pragma once

#include <AppKit/AppKit.h>

@interface NSImage (MenuQuestions)
// Whether it is the icon of a file that file managers do not show: menus that show them all the
// same dim their rows. The first answer may ask the disk.
- (BOOL)isOfHiddenFile;
// Whether other pictures may arrive after those that are there at the first look: who shows it soon
// looks beforehand.
- (BOOL)mayChangeAfterFirstLook;
// What an item keeps that is given this image: itself, or one that nobody can tell from it.
- (NSImage*)imageForMenuItem;
@end
