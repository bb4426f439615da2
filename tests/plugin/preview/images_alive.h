// Replaces Core Graphics' functions for images.
#pragma once

namespace test {

// The images that the plug-in has made and not released.
int images_alive();

}  // namespace test
