#include "quicklook/decoder/size_text.h"

#include <cmath>
#include <sstream>
#include <vector>

namespace thumbnails {

namespace {

// The lines of the words.
enum { bytes, kilobytes = bytes + 6, terabytes = kilobytes + 3, number, lines };

// Which of the lines with bytes a number goes with. Arabic has all six forms; other languages have
// the same text in several lines.
size_t form_of(int64_t count) {
    if (count < 3) return static_cast<size_t>(count);
    const int64_t rest = count % 100;
    return rest < 3 ? 5 : rest < 11 ? 3 : 4;
}

std::vector<std::string> lines_of(const std::string& words) {
    std::vector<std::string> found;
    std::istringstream text(words);
    for (std::string line; std::getline(text, line);) found.push_back(line);
    return found;
}

std::string filled(const std::string& format, const std::string& amount) {
    const size_t place = format.find("%s");
    return place == format.npos ? amount : std::string(format).replace(place, 2, amount);
}

// `like` is the number 1.5 in the user's language.
std::string one_decimal(double amount, const std::string& like) {
    const auto tenths = std::llround(amount * 10);
    const std::string mark = like.size() > 2 ? like.substr(1, like.size() - 2) : ".";
    return std::to_string(tenths / 10) + mark + std::to_string(tenths % 10);
}

}  // namespace

std::string size_text(int64_t size, const std::string& words) {
    if (size < 0) return "";
    const std::vector<std::string> texts = lines_of(words);
    if (texts.size() != lines) return std::to_string(size);
    if (size < 1000) return filled(texts[bytes + form_of(size)], std::to_string(size));
    double amount = static_cast<double>(size) / 1000;
    size_t unit = kilobytes;
    for (; amount >= 999.95 && unit < terabytes; unit++) amount /= 1000;
    const bool has_decimal = amount < 99.95;
    return filled(texts[unit], has_decimal ? one_decimal(amount, texts[number])
                                           : std::to_string(std::llround(amount)));
}

}  // namespace thumbnails
