#include "accessibility/bridge/field_answers.h"

#include <atspi/atspi-constants.h>

#include <string.h>

#include <algorithm>
#include <string_view>

namespace {

GVariant* truth(bool is_so) { return g_variant_new("(b)", is_so); }

GVariant* answer(const std::string& text, TextRange range) {
    return g_variant_new("(sii)", part_of(text, range).c_str(), range.begin, range.end);
}

TextUnit unit_of_granularity(unsigned granularity) {
    if (granularity == ATSPI_TEXT_GRANULARITY_CHAR) return TextUnit::character;
    return granularity == ATSPI_TEXT_GRANULARITY_WORD ? TextUnit::word : TextUnit::whole;
}

TextUnit unit_of_boundary(unsigned boundary) {
    switch (boundary) {
        case ATSPI_TEXT_BOUNDARY_CHAR:
            return TextUnit::character;
        case ATSPI_TEXT_BOUNDARY_WORD_START:
        case ATSPI_TEXT_BOUNDARY_WORD_END:
            return TextUnit::word;
        default:
            return TextUnit::whole;
    }
}

TextRange selected_in(const OpenRow& field) {
    if (field.caret < 0) return {};
    const auto [begin, end] = std::minmax(field.caret, field.anchor);
    return {character_at_byte(field.written, static_cast<size_t>(begin)),
            character_at_byte(field.written, static_cast<size_t>(end))};
}

TextRange unit_before(const std::string& text, int character, TextUnit unit) {
    const TextRange here = unit_at(text, character, unit);
    return here.begin == 0 ? TextRange{} : unit_at(text, here.begin - 1, unit);
}

TextRange unit_after(const std::string& text, int character, TextUnit unit) {
    const int end = unit_at(text, character, unit).end;
    return unit == TextUnit::whole ? TextRange{end, end} : unit_at(text, end, unit);
}

}  // namespace

GVariant* FieldAnswers::text_property(const Node& field, const std::string& name) const {
    const OpenRow shown = tree_.row(field);
    if (name == "CharacterCount") return g_variant_new_int32(characters_in(shown.written));
    if (name != "CaretOffset") return nullptr;
    const int caret = shown.caret < 0 ? -1 : character_at_byte(shown.written, shown.caret);
    return g_variant_new_int32(caret);
}

GVariant* FieldAnswers::value_property(const Node& bar, const std::string& name) const {
    if (name == "CurrentValue") return g_variant_new_double(std::max(0.0, tree_.row(bar).value));
    if (name == "MaximumValue") return g_variant_new_double(1);
    if (name == "MinimumValue" || name == "MinimumIncrement") return g_variant_new_double(0);
    return nullptr;
}

GVariant* FieldAnswers::text(const Node& field, const std::string& method,
                             GVariant* arguments) const {
    const std::string text = tree_.row(field).written;
    const int count = characters_in(text);
    if (method == "GetText") {
        TextRange range;
        g_variant_get(arguments, "(ii)", &range.begin, &range.end);
        return g_variant_new("(s)", part_of(text, range).c_str());
    }
    const std::string_view name = method;
    if (name.ends_with("Offset") && name.starts_with("Get") && method != "GetCharacterAtOffset") {
        int offset;
        unsigned kind;
        g_variant_get(arguments, "(iu)", &offset, &kind);
        if (method == "GetStringAtOffset") {
            return answer(text, unit_at(text, offset, unit_of_granularity(kind)));
        }
        const TextUnit unit = unit_of_boundary(kind);
        if (method == "GetTextBeforeOffset") return answer(text, unit_before(text, offset, unit));
        if (method == "GetTextAfterOffset") return answer(text, unit_after(text, offset, unit));
        return answer(text, unit_at(text, offset, unit));
    }
    if (method == "GetCharacterAtOffset") {
        int offset;
        g_variant_get(arguments, "(i)", &offset);
        const std::string character = part_of(text, {offset, offset + 1});
        const bool is_there = offset >= 0 && !character.empty();
        return g_variant_new("(i)", is_there ? int(g_utf8_get_char(character.data())) : 0);
    }
    if (method == "SetCaretOffset") {
        int offset;
        g_variant_get(arguments, "(i)", &offset);
        return truth(write(field, text, byte_of_character(text, offset)));
    }
    // All characters look alike.
    if (method == "GetAttributes" || method == "GetAttributeRun") {
        return g_variant_new("(a{ss}ii)", nullptr, 0, count);
    }
    if (method.starts_with("GetDefaultAttribute")) return g_variant_new("(a{ss})", nullptr);
    if (method.ends_with("Selection") || method.ends_with("Selections")) {
        return selection(field, method, arguments);
    }
    return places(field, method, arguments);
}

// There is one selection at most; its number is 0.
GVariant* FieldAnswers::selection(const Node& field, const std::string& method,
                                  GVariant* arguments) const {
    const TextRange selected = selected_in(tree_.row(field));
    const bool has_any = selected.begin < selected.end;
    if (method == "GetNSelections") return g_variant_new("(i)", has_any);
    TextRange wanted;
    if (method == "AddSelection") {
        g_variant_get(arguments, "(ii)", &wanted.begin, &wanted.end);
        return truth(!has_any && select(field, wanted));
    }
    int number;
    g_variant_get_child(arguments, 0, "i", &number);
    const bool is_known = number == 0 && has_any;
    if (method == "GetSelection") {
        const TextRange told = is_known ? selected : TextRange{-1, -1};
        return g_variant_new("(ii)", told.begin, told.end);
    }
    if (method == "RemoveSelection") {
        return truth(is_known && select(field, {selected.end, selected.end}));
    }
    if (method != "SetSelection") return nullptr;
    g_variant_get(arguments, "(iii)", &number, &wanted.begin, &wanted.end);
    return truth(number == 0 && select(field, wanted));
}

GVariant* FieldAnswers::places(const Node& field, const std::string& method,
                               GVariant* arguments) const {
    int first, second;
    unsigned coordinates;
    if (method == "GetCharacterExtents") {
        g_variant_get(arguments, "(iu)", &first, &coordinates);
        return area(field, first, first + 1, coordinates);
    }
    if (method != "GetRangeExtents" && method != "GetOffsetAtPoint") return nullptr;
    g_variant_get(arguments, "(iiu)", &first, &second, &coordinates);
    if (method == "GetRangeExtents") return area(field, first, second, coordinates);
    const MenuPoint from = origin(field, coordinates);
    const MenuPoint point = {first + from.x, second + from.y};
    if (!tree_.area(field).contains(point)) return g_variant_new("(i)", -1);
    const size_t byte = tree_.menus().text_at(tree_.level(field), field.index, point);
    return g_variant_new("(i)", character_at_byte(tree_.row(field).written, byte));
}

MenuPoint FieldAnswers::origin(const Node& field, unsigned coordinates) const {
    if (coordinates == ATSPI_COORD_TYPE_SCREEN) return {0, 0};
    const Area level = tree_.area(Node{Node::menu, field.level_number});
    return {level.left, level.top};
}

GVariant* FieldAnswers::area(const Node& field, int begin, int end, unsigned coordinates) const {
    const std::string text = tree_.row(field).written;
    const Area place =
        tree_.menus().text_area(tree_.level(field), field.index, byte_of_character(text, begin),
                                byte_of_character(text, end));
    const MenuPoint from = origin(field, coordinates);
    return g_variant_new("(iiii)", place.left - from.x, place.top - from.y, place.width,
                         place.height);
}

bool FieldAnswers::write(const Node& field, const std::string& text, size_t caret) const {
    return tree_.menus().write(tree_.level(field), field.index, text, caret, caret);
}

bool FieldAnswers::select(const Node& field, TextRange range) const {
    const std::string text = tree_.row(field).written;
    return tree_.menus().write(tree_.level(field), field.index, text,
                               byte_of_character(text, range.end),
                               byte_of_character(text, range.begin));
}

bool FieldAnswers::insert(const Node& field, int at, const std::string& added) const {
    std::string text = tree_.row(field).written;
    const size_t byte = byte_of_character(text, at);
    text.insert(byte, added);
    return write(field, text, byte + added.size());
}

bool FieldAnswers::remove(const Node& field, TextRange range) const {
    std::string text = tree_.row(field).written;
    const size_t first = byte_of_character(text, range.begin);
    const size_t last = byte_of_character(text, range.end);
    if (first >= last) return false;
    text.erase(first, last - first);
    return write(field, text, first);
}

GVariant* FieldAnswers::editing(const Node& field, const std::string& method,
                                GVariant* arguments) const {
    if (method == "SetTextContents") {
        const char* contents;
        g_variant_get(arguments, "(&s)", &contents);
        return truth(write(field, contents, strlen(contents)));
    }
    if (method == "InsertText") {
        int offset, length;
        const char* contents;
        g_variant_get(arguments, "(i&si)", &offset, &contents, &length);
        return truth(insert(field, offset, part_of(contents, {0, length})));
    }
    if (method == "PasteText") {
        int offset;
        g_variant_get(arguments, "(i)", &offset);
        const std::string copied = tree_.menus().copied();
        return truth(!copied.empty() && insert(field, offset, copied));
    }
    TextRange range;
    g_variant_get(arguments, "(ii)", &range.begin, &range.end);
    const std::string part = part_of(tree_.row(field).written, range);
    if (method != "DeleteText" && !part.empty()) tree_.menus().copy(part);
    if (method == "CopyText") return g_variant_new("()");
    return truth(remove(field, range));
}
