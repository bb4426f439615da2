// The application object for tests that show windows or menus. Needs a display (DISPLAY in
// delvio_test). Main thread.
#pragma once

namespace test {

// Makes the application object, once: no user bundles are loaded, launching is finished.
void start_application();

}  // namespace test
