// Which keys are Shift, Control, Option and Command, and which are held now.
// Not a Mac interface. Option is either Alt key or AltGr, Command either Super key, unless
// GNUstep's defaults (GSFirstAlternateKey, GSFirstCommandKey, GSFirstControlKey and their seconds,
// by key-symbol name) name others. Setting: main thread; asking: any.
#pragma once

#include <AppKit/AppKit.h>

// Modifiers that count as held in this process besides the ones on the keyboard. 0 ends this.
void set_held_modifier_flags(NSUInteger flags);
NSUInteger held_modifier_flags(void);

// What +[NSEvent modifierFlags] answers: the keyboard's state at this moment, and the held ones.
NSUInteger current_modifier_flags(void);
