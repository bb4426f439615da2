#include <stdint.h>

#include "corefoundation/list_limits.h"

namespace {

const size_t trailer_size = 32, head_size = 8;

// Follows every reference each time it occurs, like a parser that keeps nothing: a few bytes can
// stand for any number of objects.
class BinaryWalk {
  public:
    explicit BinaryWalk(std::string_view bytes) : bytes_(bytes) {}
    bool is_bounded() { return read_trailer() && object(root_, 0); }

  private:
    bool read_trailer();
    // The number at `at`, the most significant byte first. False when it is not all there.
    bool number(uint64_t at, unsigned size, uint64_t* value) const;
    bool count(uint64_t* at, unsigned low, uint64_t* value) const;
    bool holds(uint64_t at, uint64_t size) const { return at <= end_ && size <= end_ - at; }
    bool object(uint64_t index, int depth);
    bool objects(uint64_t at, uint64_t count, int depth);

    const std::string_view bytes_;
    uint64_t end_ = 0;  // of the objects
    uint64_t objects_ = 0, root_ = 0, table_ = 0;
    unsigned offset_size_ = 0, index_size_ = 0;
    int items_ = 0;
};

bool BinaryWalk::number(uint64_t at, unsigned size, uint64_t* value) const {
    if (at > bytes_.size() || size > bytes_.size() - at) return false;
    *value = 0;
    for (unsigned i = 0; i < size; i++) {
        *value = *value << 8 | static_cast<unsigned char>(bytes_[at + i]);
    }
    return true;
}

bool BinaryWalk::read_trailer() {
    if (bytes_.size() < head_size + trailer_size) return false;
    const uint64_t trailer = bytes_.size() - trailer_size;
    offset_size_ = static_cast<unsigned char>(bytes_[trailer + 6]);
    index_size_ = static_cast<unsigned char>(bytes_[trailer + 7]);
    if (offset_size_ < 1 || offset_size_ > 4 || index_size_ < 1 || index_size_ > 4) return false;
    number(trailer + 8, 8, &objects_);
    number(trailer + 16, 8, &root_);
    number(trailer + 24, 8, &table_);
    end_ = table_;
    return table_ <= trailer && objects_ <= (trailer - table_) / offset_size_;
}

// Reads a count from a marker's low half, or from the number behind the marker.
bool BinaryWalk::count(uint64_t* at, unsigned low, uint64_t* value) const {
    *value = low;
    if (low != 15) return true;
    uint64_t marker = 0;
    if (!number(*at, 1, &marker) || marker < 0x10 || marker > 0x12) return false;
    const unsigned size = 1u << (marker - 0x10);
    const bool is_there = number(*at + 1, size, value);
    *at += 1 + size;
    return is_there;
}

bool BinaryWalk::objects(uint64_t at, uint64_t count, int depth) {
    // The bytes cannot hold more, and this keeps the multiplication from overflowing.
    if (count > bytes_.size() || !holds(at, count * index_size_)) return false;
    for (uint64_t i = 0; i < count; i++) {
        uint64_t index = 0;
        if (!number(at + i * index_size_, index_size_, &index) || !object(index, depth)) {
            return false;
        }
    }
    return true;
}

bool BinaryWalk::object(uint64_t index, int depth) {
    if (depth > deepest_list || ++items_ > most_list_items || index >= objects_) return false;
    uint64_t at = 0, marker = 0, size = 0;
    if (!number(table_ + index * offset_size_, offset_size_, &at) || !holds(at, 1)) return false;
    number(at++, 1, &marker);
    const unsigned low = marker & 15;
    switch (marker >> 4) {
        case 0x0:
            return true;
        case 0x1:
        case 0x2:
        case 0x3:
            return low <= 4 && holds(at, uint64_t{1} << low);
        case 0x4:
        case 0x5:
            return count(&at, low, &size) && holds(at, size);
        case 0x6:
            return count(&at, low, &size) && size <= end_ && holds(at, size * 2);
        case 0x8:
            return holds(at, low + 1);
        case 0xa:
            return count(&at, low, &size) && objects(at, size, depth + 1);
        case 0xd:
            return count(&at, low, &size) && size <= end_ && objects(at, size * 2, depth + 1);
        default:
            return false;
    }
}

}  // namespace

bool is_bounded_binary_list(std::string_view bytes) { return BinaryWalk(bytes).is_bounded(); }
