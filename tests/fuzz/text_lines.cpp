// The layout of a text preview.
#include "preview/dv_text_lines.h"

#include <vector>

#include "input.h"
#include "require.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const uint32_t side = input.number<uint32_t>();
    const std::string content = input.text(DV_PREVIEW_TEXT_CAPACITY);
    std::vector<char> text(DV_PREVIEW_TEXT_CAPACITY, '\0');
    std::copy(content.begin(), content.end(), text.begin());
    dv_text_layout_t layout =
        dv_begin_text_layout(text.data(), static_cast<int32_t>(content.size()), side);
    dv_text_line_t line;
    for (uint32_t lines = 0; dv_next_text_line(&layout, &line); lines++) {
        require(lines <= side / 12, "no more lines than there is room for");
        require(line.start >= 0 && line.count >= 0, "a line is somewhere");
        require(line.start + line.count <= DV_PREVIEW_TEXT_CAPACITY, "a line is in the text");
        require(uint32_t(line.count) <= side / 6, "a line is no longer than the picture");
    }
    return 0;
}
