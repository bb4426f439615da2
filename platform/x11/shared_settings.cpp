#include "x11/shared_settings.h"

#include <X11/Xlib.h>
#include <string.h>

#include "x11/window_connection.h"
#include "x11/window_questions.h"

namespace {

constexpr uint32_t most_words = 64 * 1024 / 4;

xcb_intern_atom_cookie_t ask_atom(xcb_connection_t* server, const std::string& name) {
    return xcb_intern_atom(server, 1, static_cast<uint16_t>(name.size()), name.data());
}

xcb_atom_t atom_of(xcb_connection_t* server, xcb_intern_atom_cookie_t cookie) {
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, cookie, nullptr));
    return reply ? reply->atom : XCB_ATOM_NONE;
}

// The settings as the settings manager has them; empty without a manager.
std::string all_settings(const WindowConnection& to) {
    const std::string screen = std::to_string(DefaultScreen(to.display));
    const auto selection_cookie = ask_atom(to.server, "_XSETTINGS_S" + screen);
    const auto property_cookie = ask_atom(to.server, "_XSETTINGS_SETTINGS");
    const xcb_atom_t selection = atom_of(to.server, selection_cookie);
    const xcb_atom_t property = atom_of(to.server, property_cookie);
    if (selection == XCB_ATOM_NONE || property == XCB_ATOM_NONE) return {};
    const Reply<xcb_get_selection_owner_reply_t> manager(xcb_get_selection_owner_reply(
        to.server, xcb_get_selection_owner(to.server, selection), nullptr));
    if (!manager || manager->owner == XCB_WINDOW_NONE) return {};
    return PropertyQuestion(to.server, manager->owner, property, most_words).bytes();
}

// Reads numbers and texts one after the other. Behind the end, numbers are 0 and texts are empty.
class Reader {
  public:
    explicit Reader(const std::string& bytes)
        : bytes_(bytes), big_endian_(!bytes.empty() && bytes[0] == 1) {}

    bool is_at_end() const { return place_ >= bytes_.size(); }
    void skip(size_t count) { place_ += count; }

    uint32_t number(size_t size) {
        uint32_t value = 0;
        for (size_t i = 0; i < size; i++) {
            const size_t from = big_endian_ ? i : size - 1 - i;
            value = value << 8 | byte(place_ + from);
        }
        place_ += size;
        return value;
    }
    // A text is filled up to whole words.
    std::string text(size_t length) {
        const std::string text = is_at_end() ? "" : bytes_.substr(place_, length);
        place_ += (length + 3) / 4 * 4;
        return text;
    }

  private:
    uint8_t byte(size_t at) const {
        return at < bytes_.size() ? static_cast<uint8_t>(bytes_[at]) : 0;
    }
    const std::string& bytes_;
    const bool big_endian_;
    size_t place_ = 0;
};

enum { number_type, text_type, color_type };

}  // namespace

std::map<std::string, std::string> shared_settings() {
    std::map<std::string, std::string> settings;
    const WindowConnection* to = window_connection();
    const std::string bytes = to ? all_settings(*to) : "";
    Reader reader(bytes);
    reader.skip(8);  // the order of bytes, the serial number
    for (uint32_t count = reader.number(4); count > 0 && !reader.is_at_end(); count--) {
        const uint32_t type = reader.number(1);
        reader.skip(1);
        const uint32_t length = reader.number(2);
        const std::string name = reader.text(length);
        reader.skip(4);  // when it was set
        if (type == text_type) {
            settings.emplace(name, reader.text(reader.number(4)));
        } else if (type == color_type) {
            reader.skip(8);
        } else {
            settings.emplace(name, std::to_string(static_cast<int32_t>(reader.number(4))));
        }
    }
    return settings;
}
