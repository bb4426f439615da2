// Core Graphics as the Mac has it, as far as the plug-in uses it.
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGEvent.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGRemoteOperation.h>
#include <CoreGraphics/CGWindowLevel.h>
