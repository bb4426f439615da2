// AppKit as the Mac has it, as far as the plug-in uses it.
#pragma once

#include <AppKit/NSDrawing.h>
#include <AppKit/NSEvent.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSPasteboard.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <AppKit/NSWorkspace.h>
#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>
