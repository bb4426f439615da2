// A display that lacks some extensions, or goes away: the test's own behind a filter. DISPLAY names
// it for as long as this lives.
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

    // Every connection through it breaks.
    void take_display_away();

  private:
    TempFolder folder_;
    std::string display_before_;
    pid_t process_ = 0;
};

}  // namespace test
