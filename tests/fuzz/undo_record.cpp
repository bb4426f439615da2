// The undo journal as text: whatever it holds, it is read or refused as a whole.
#include "operations/undo_record.h"

#include "require.h"

using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    operations::Trashed trashed;
    operations::ends_with_trashing(text, &trashed);
    const operations::Recorded read = operations::read_undo_record(text);
    require(read.length <= size, "the complete entries are in the text");
    for (const operations::Step& step : read.steps) {
        require(step.source[0] == '/', "a source is a whole path");
        const bool in_trash = step.kind == operations::Step::Trashed;
        require(in_trash || step.target[0] == '/', "a target is a whole path");
        require(!in_trash || is_place_in_trash(step.trashed), "a place in the trash");
    }
    if (!read.problem.empty()) return 0;
    // The text without its cut-off end says the same, also with an entry more.
    const std::string whole = text.substr(0, read.length);
    require(operations::read_undo_record(whole).steps.size() == read.steps.size(),
            "the same steps");
    if (read.steps.empty()) return 0;
    const size_t last = read.steps.size() - 1;
    const auto again = operations::read_undo_record(whole + operations::undone_entry(last));
    require(again.steps.at(last).is_undone, "an entry more is read");
    return 0;
}
