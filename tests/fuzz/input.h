// The bytes of one try, taken off piece by piece. At their end, numbers are 0 and texts are empty.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <string>

namespace fuzz {

class Input {
  public:
    Input(const uint8_t* bytes, size_t size) : at_(bytes), left_(size) {}

    size_t left() const { return left_; }
    uint8_t byte() { return number<uint8_t>(); }
    template <typename Number>
    Number number() {
        Number result = 0;
        const size_t size = std::min(sizeof result, left_);
        memcpy(&result, at_, size);
        skip(size);
        return result;
    }
    std::string text(size_t size) {
        size = std::min(size, left_);
        const std::string result(reinterpret_cast<const char*>(at_), size);
        skip(size);
        return result;
    }
    // Up to a zero byte, which goes too.
    std::string word() {
        const void* end = memchr(at_, 0, left_);
        if (!end) return rest();
        const std::string result =
            text(static_cast<size_t>(static_cast<const uint8_t*>(end) - at_));
        skip(1);
        return result;
    }
    std::string rest() { return text(left_); }

  private:
    void skip(size_t size) {
        at_ += size;
        left_ -= size;
    }
    const uint8_t* at_;
    size_t left_;
};

}  // namespace fuzz
