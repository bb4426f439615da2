// A file manager's file of actions, which `delvio install` changes in one place only.
#include "file_managers/xml_elements.h"

#include "require.h"

using fuzz::require;

namespace {

void check(const XmlRange& range, const std::string& text) {
    require(range.begin <= range.end && range.end <= text.size(), "a range in the text");
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
    require(
        document->is_closed_at_once || text.compare(document->inside.end, document->root.size() + 2,
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
