// Where the elements of a small XML file are, so that one of them can be put in or taken out while
// every other byte of the file stays.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A range of bytes.
struct XmlRange {
    size_t begin = 0, end = 0;
    std::string_view of(std::string_view text) const { return text.substr(begin, end - begin); }
};

struct XmlDocument {
    std::string root;                // its name
    bool is_closed_at_once = false;  // <root/>
    XmlRange inside;                 // between the root's tags; of <root/>, the whole tag
    std::vector<XmlRange> children;  // whole elements
    std::vector<XmlRange> comments;  // those between the root's tags, but in no child
};

// Nothing when the text is no well-formed XML with one root; then *problem says why.
std::optional<XmlDocument> read_xml(const std::string& text, std::string* problem);

// The text of the first child of this name in a whole element, without the blanks around it; its
// end is where something else than text begins.
std::string child_text(std::string_view element, const std::string& name);

// The text as it is written in an element.
std::string xml_escaped(const std::string& text);
