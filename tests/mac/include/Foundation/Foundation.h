// Foundation as the Mac has it, as far as the plug-in uses it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/NSCollections.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSObjCRuntime.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRunning.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>
