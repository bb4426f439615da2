#include "file_managers/xml_elements.h"

#include <errno.h>
#include <glib.h>
#include <host/text.h>

#include <algorithm>

namespace {

// Only checks; the places of elements are not to be had from GLib's parser.
bool is_well_formed(const std::string& text, std::string* problem) {
    // GLib's parser takes zero bytes in names, and then quotes as well.
    if (text.find('\0') != std::string::npos) {
        *problem = g_strerror(EILSEQ);
        return false;
    }
    const GMarkupParser silent = {};
    GMarkupParseContext* context =
        g_markup_parse_context_new(&silent, G_MARKUP_DEFAULT_FLAGS, nullptr, nullptr);
    GError* error = nullptr;
    const auto size = static_cast<gssize>(text.size());
    const bool good = g_markup_parse_context_parse(context, text.data(), size, &error) &&
                      g_markup_parse_context_end_parse(context, &error);
    if (!good) *problem = error->message;
    g_clear_error(&error);
    g_markup_parse_context_free(context);
    return good;
}

size_t end_of(const std::string& text, size_t from, std::string_view mark) {
    const size_t place = text.find(mark, from);
    return place == std::string::npos ? text.size() : place + mark.size();
}

// The end of a tag; a ">" in a quoted value does not end it.
size_t end_of_tag(const std::string& text, size_t begin) {
    char quote = 0;
    for (size_t at = begin; at < text.size(); at++) {
        if (quote) {
            if (text[at] == quote) quote = 0;
        } else if (text[at] == '"' || text[at] == '\'') {
            quote = text[at];
        } else if (text[at] == '>') {
            return at + 1;
        }
    }
    return text.size();
}

// The end of a document type, where GLib's parser sees it: each "<" of the inner subset takes a
// ">", in quotes or not. Thunar reads its file by the same parser.
size_t end_of_document_type(const std::string& text, size_t begin) {
    size_t open = 0;
    for (size_t at = begin; at < text.size(); at++) {
        if (text[at] == '<') open++;
        if (text[at] == '>' && --open == 0) return at + 1;
    }
    return text.size();
}

// The name in the tag that begins here.
std::string name_in_tag(const std::string& text, size_t begin) {
    const size_t name = begin + 1;
    return text.substr(name, text.find_first_of(" \t\r\n/>", name) - name);
}

std::string without_blanks(const std::string& text) {
    const char* const blanks = " \t\r\n";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Walks over the tags of a text that is known to be well-formed.
class XmlWalk {
  public:
    explicit XmlWalk(const std::string& text) : text_(text) {}

    // Nothing for a text with a second root, which GLib's parser takes.
    std::optional<XmlDocument> read() {
        for (size_t at = text_.find('<'); at != std::string::npos; at = text_.find('<', at)) {
            at = step(at);
        }
        if (roots_ > 1) return {};
        return document_;
    }

  private:
    // Takes the thing that begins here, and returns its end.
    size_t step(size_t at) {
        if (text_.compare(at, 4, "<!--") == 0) return take_comment(at);
        if (text_.compare(at, 9, "<![CDATA[") == 0) return end_of(text_, at, "]]>");
        if (text_.compare(at, 2, "<?") == 0) return end_of(text_, at, "?>");
        if (text_.compare(at, 2, "<!") == 0) return end_of_document_type(text_, at);
        const size_t end = end_of_tag(text_, at);
        take_tag({at, end});
        return end;
    }

    size_t take_comment(size_t at) {
        const size_t end = end_of(text_, at, "-->");
        if (depth_ == 1) document_.comments.push_back({at, end});
        return end;
    }

    void take_tag(XmlRange tag) {
        const bool is_end = text_[tag.begin + 1] == '/';
        const bool is_empty = text_[tag.end - 2] == '/';
        if (is_end) depth_--;
        if (depth_ == 0) take_root(tag, is_end, is_empty);
        if (depth_ == 1 && !is_end) begin_ = tag.begin;
        if (depth_ == 1 && (is_end || is_empty)) document_.children.push_back({begin_, tag.end});
        if (!is_end && !is_empty) depth_++;
    }

    void take_root(XmlRange tag, bool is_end, bool is_empty) {
        if (is_end) {
            document_.inside.end = tag.begin;
            return;
        }
        roots_++;
        document_.root = name_in_tag(text_, tag.begin);
        document_.is_closed_at_once = is_empty;
        document_.inside = is_empty ? tag : XmlRange{tag.end, text_.size()};
    }

    const std::string& text_;
    XmlDocument document_;
    int depth_ = 0, roots_ = 0;
    size_t begin_ = 0;  // of the child that is open
};

}  // namespace

std::optional<XmlDocument> read_xml(const std::string& text, std::string* problem) {
    if (!is_well_formed(text, problem)) return {};
    const std::optional<XmlDocument> document = XmlWalk(text).read();
    if (!document) *problem = translated("it has more than one root element");
    return document;
}

std::string child_text(std::string_view element, const std::string& name) {
    const std::string text(element);
    const std::optional<XmlDocument> document = XmlWalk(text).read();
    if (!document) return {};
    for (const XmlRange& child : document->children) {
        if (name_in_tag(text, child.begin) != name) continue;
        const size_t begin = end_of_tag(text, child.begin);
        const size_t end = std::min(text.find('<', begin), child.end);
        return without_blanks(text.substr(begin, end - begin));
    }
    return {};
}

std::string xml_escaped(const std::string& text) {
    char* escaped = g_markup_escape_text(text.data(), static_cast<gssize>(text.size()));
    std::string result = escaped;
    g_free(escaped);
    return result;
}
