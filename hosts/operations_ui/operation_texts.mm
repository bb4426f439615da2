#include "operations_ui/operation_texts.h"

#include <host/text.h>

#include <sys/stat.h>

#include <cmath>

#include "file_steps/visible_text.h"

namespace operations {

namespace {

constexpr size_t most_reasons = 6;
// Making a file takes about as long as writing this many bytes of it.
constexpr double bytes_of_an_item = 16 * 1024;

// What stands between the digits of a number that is written in the user's language.
std::string mark_in(const char* number, size_t digits_before, size_t digits_after) {
    const std::string text = number;
    if (text.size() < digits_before + digits_after) return {};
    return text.substr(digits_before, text.size() - digits_before - digits_after);
}

std::string grouped(uint64_t number) {
    // Translators: how this number is written. What is between 1 and 000 groups all numbers.
    static const std::string mark = mark_in(translated("1,000"), 1, 3);
    std::string text = std::to_string(number);
    for (size_t at = text.size(); at > 3;) text.insert(at -= 3, mark);
    return text;
}

std::string one_decimal(double amount) {
    // Translators: how this number is written. What is between 1 and 5 is the decimal mark.
    static const std::string mark = mark_in(translated("1.5"), 1, 1);
    const auto tenths = static_cast<uint64_t>(std::llround(amount * 10));
    return std::to_string(tenths / 10) + mark + std::to_string(tenths % 10);
}

std::string size_text(uint64_t bytes) {
    if (bytes < 1000) {
        return translated_count("%s byte", "%s bytes", bytes, {std::to_string(bytes)});
    }
    static const char* const units[] = {to_translate("%s KB"), to_translate("%s MB"),
                                        to_translate("%s GB"), to_translate("%s TB")};
    double amount = (double)bytes / 1000;
    size_t unit = 0;
    for (; amount >= 999.95 && unit < 3; unit++) amount /= 1000;
    return translated(
        units[unit], {amount < 99.95 ? one_decimal(amount) : std::to_string(std::llround(amount))});
}

NSString* string_of(const std::string& text) {
    return [NSString stringWithUTF8String:text.c_str()] ?: @"";
}

std::string items_text(size_t count) {
    return translated_count("%s item", "%s items", count, {grouped(count)});
}

// With places for the files and the folder.
const char* title_format(Kind kind) {
    switch (kind) {
        case Kind::Move:
            return to_translate("Moving %s to %s");
        case Kind::Copy:
            return to_translate("Copying %s to %s");
        case Kind::Alias:
            return to_translate("Making aliases of %s to %s");
        case Kind::Trash:
            break;
    }
    return to_translate("Moving to the trash %s");
}

std::string date_text(time_t seconds) {
    NSDateFormatter* formatter = [[NSDateFormatter new] autorelease];
    // Translators: the code of your language, whose names of months are used.
    NSString* language = string_of(translated("en"));
    [formatter setLocale:[[[NSLocale alloc] initWithLocaleIdentifier:language] autorelease]];
    // Translators: how a date is written, in the letters of Unicode's date formats.
    [formatter setDateFormat:string_of(translated("d MMM yyyy 'at' HH:mm"))];
    NSDate* date = [NSDate dateWithTimeIntervalSince1970:(NSTimeInterval)seconds];
    return [[formatter stringFromDate:date] UTF8String] ?: "";
}

}  // namespace

NSString* text_of_name(const std::string& name) {
    return [NSString stringWithUTF8String:visible_text(name).c_str()];
}

NSString* text_of_last(const std::string& path) {
    return text_of_name(std::string(last_component(path)));
}

NSString* window_title_of(const Request& request) {
    const size_t count = request.sources.size();
    const std::string what = count == 1 ? window_name(request.sources.front()) : items_text(count);
    return string_of(
        translated(title_format(request.kind), {what, window_name(request.destination)}));
}

NSString* detail_of(const Progress& progress) {
    if (progress.items_total == 0) {
        return string_of(translated(
            "%s, %s", {items_text(progress.items_done), size_text(progress.bytes_done)}));
    }
    if (progress.items_done >= progress.items_total) {
        return string_of(translated("Writing everything to the disk…"));
    }
    const std::string items =
        translated_count("%s of %s item", "%s of %s items", progress.items_total,
                         {grouped(progress.items_done), grouped(progress.items_total)});
    if (progress.bytes_total == 0) return string_of(items);
    return string_of(translated(
        "%s, %s of %s", {items, size_text(progress.bytes_done), size_text(progress.bytes_total)}));
}

double fraction_of(const Progress& progress) {
    const double total = (double)progress.bytes_total + progress.items_total * bytes_of_an_item;
    const double done = (double)progress.bytes_done + progress.items_done * bytes_of_an_item;
    return total > 0 ? MIN(done / total, 1) : -1;
}

NSString* question_of(const Conflict& conflict) {
    const std::string folder = conflict.target.substr(0, conflict.target.rfind('/'));
    return string_of(
        translated("%s is already in %s.",
                   {window_name(conflict.target), window_name(folder.empty() ? "/" : folder)}));
}

NSString* describe_file(const std::string& path) {
    struct stat what;
    if (lstat(path.c_str(), &what) != 0) return string_of(translated("no longer there"));
    const std::string date = date_text(what.st_mtim.tv_sec);
    if (S_ISDIR(what.st_mode)) return string_of(translated("Folder, changed on %s", {date}));
    if (S_ISLNK(what.st_mode)) return string_of(translated("Alias, changed on %s", {date}));
    return string_of(translated("%s, changed on %s", {size_text((uint64_t)what.st_size), date}));
}

NSString* failure_title_of(const Report& report) {
    size_t failed = 0;
    for (const Outcome& outcome : report.outcomes) failed += outcome.state == State::Failed;
    if (failed == 0) return nil;
    return string_of(
        translated_count("One item failed.", "%s items failed.", failed, {grouped(failed)}));
}

NSString* failure_reasons_of(const Report& report) {
    NSMutableArray* reasons = [NSMutableArray array];
    size_t more = 0;
    for (const Outcome& outcome : report.outcomes) {
        if (outcome.state != State::Failed) continue;
        NSString* reason = text_of_name(outcome.reason);
        if ([reasons containsObject:reason]) continue;
        if ([reasons count] == most_reasons) {
            more++;
        } else {
            [reasons addObject:reason];
        }
    }
    if (more > 0) {
        [reasons addObject:string_of(translated_count("and %s more", "and %s more", more,
                                                      {grouped(more)}))];
    }
    return [reasons componentsJoinedByString:@"\n"];
}

}  // namespace operations
