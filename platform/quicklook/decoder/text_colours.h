// The colours of source code, line by line. One thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quicklook/decoder/sheet.h"

namespace thumbnails {

class TextColours {
  public:
    // The language follows from the file's name, else from how its text begins. A text in no known
    // language has no colours.
    TextColours(const std::string& name, const std::string& text);
    ~TextColours();
    TextColours(const TextColours&) = delete;
    TextColours& operator=(const TextColours&) = delete;

    // The parts of the next line. A language whose rules take too long has no further colours.
    std::vector<Stroke> next(const std::string& line);

  private:
    struct Language;
    std::unique_ptr<Language> language_;
};

}  // namespace thumbnails
