// The beginning of a text in any encoding, as the decoder of texts draws it in colours.
#define main text_decoder
#include "quicklook/decoder/text_decoder.cpp"
#undef main

#include "drawn_sheet.h"

using fuzz::require;

namespace {

// By its name a text is in one of these languages, or in one that its content tells, or in none.
const char* const names[] = {"a.txt",   "a",     "a.c",    "a.md",  "a.csv", "a.html",
                             "a.patch", "a.py",  "a.json", "a.yml", "a.tex", "makefile",
                             "a.mm",    "a.xml", "a.sh",   "a.pl"};

// What a person sees: no control characters but those of the layout.
void expect_text(const std::string& text) {
    require(g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr), "valid UTF-8");
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        require((byte >= 0x20 && byte != 0x7f) || strchr("\t\n\r", byte), "no control characters");
    }
}

void expect_lines(const std::string& text) {
    size_t at = 0;
    while (at < text.size()) {
        const size_t begin = at;
        const std::string line = next_line(text, &at);
        require(at > begin, "each line goes on");
        require(line.size() <= longest_line && text.compare(begin, line.size(), line) == 0,
                "a line");
        require(g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr), "whole");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const char* const name = names[input.byte() % std::size(names)];
    const DecoderCall call = fuzz::call_of(&input, name);
    const std::string bytes = input.rest(), text = text_of_bytes(bytes);
    expect_text(text);
    expect_lines(text);
    fuzz::expect_answer(bytes, call, decode);
    return 0;
}
