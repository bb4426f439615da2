// A file manager's file of actions, which `delvio install` changes in one place only.
#include "file_managers/xml_elements.h"

#include <glib.h>

#include "require.h"

using fuzz::require;

namespace {

void check(const XmlRange& range, const std::string& text) {
    require(range.begin <= range.end && range.end <= text.size(), "a range in the text");
}

// The same elements as GLib's parser tells them, with which the file manager reads the file.
struct Told {
    std::string root;
    size_t children = 0;
    int depth = 0;
};

void begin_element(GMarkupParseContext*, const char* name, const char**, const char**, void* data,
                   GError**) {
    Told& told = *static_cast<Told*>(data);
    if (told.depth == 0) told.root = name;
    if (told.depth == 1) told.children++;
    told.depth++;
}

void end_element(GMarkupParseContext*, const char*, void* data, GError**) {
    static_cast<Told*>(data)->depth--;
}

Told told_by_parser(const std::string& text) {
    const GMarkupParser parser = {begin_element, end_element, nullptr, nullptr, nullptr};
    Told told;
    GMarkupParseContext* context =
        g_markup_parse_context_new(&parser, G_MARKUP_DEFAULT_FLAGS, &told, nullptr);
    g_markup_parse_context_parse(context, text.data(), static_cast<gssize>(text.size()), nullptr);
    g_markup_parse_context_free(context);
    return told;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::string problem;
    const auto document = read_xml(text, &problem);
    require(document.has_value() == problem.empty(), "a document or a problem");
    const std::string escaped = xml_escaped(text);
    require(escaped.find('<') == escaped.npos, "what is escaped has no tags");
    if (!document) return 0;
    const Told told = told_by_parser(text);
    require(document->root == told.root, "the parser's root");
    require(document->children.size() == told.children, "the parser's children");
    require(document->root.empty() || document->is_closed_at_once ||
                text.compare(document->inside.end, document->root.size() + 2,
                             "</" + document->root) == 0,
            "the root's own end tag");
    check(document->inside, text);
    for (const auto& list : {document->children, document->comments}) {
        size_t before = document->inside.begin;
        for (const XmlRange& range : list) {
            check(range, text);
            require(range.begin >= before && range.end <= document->inside.end,
                    "one after the other");
            before = range.end;
            child_text(range.of(text), "name");
        }
    }
    return 0;
}
