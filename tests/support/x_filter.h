// The test's own display behind a filter, which hides some extensions or makes the display go away.
// DISPLAY names it while the object lives.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace test {

class XFilter {
  public:
    explicit XFilter(const std::vector<std::string>& hidden_extensions = {});
    ~XFilter();
    XFilter(const XFilter&) = delete;
    XFilter& operator=(const XFilter&) = delete;

    // Breaks every connection through the filter.
    void take_display_away();

  private:
    TempFolder folder_;
    std::string display_before_;
    pid_t process_ = 0;
};

}  // namespace test
