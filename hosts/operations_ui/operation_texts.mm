#include "operations_ui/operation_texts.h"

#include <sys/stat.h>

#include "file_steps/visible_text.h"

namespace operations {

namespace {

constexpr size_t most_reasons = 6;
// Making a file takes about as long as writing this many bytes of it.
constexpr double bytes_of_an_item = 16 * 1024;

NSString* quoted(const std::string& path) {
    return [NSString stringWithUTF8String:window_name(path).c_str()];
}

NSString* grouped(uint64_t number) {
    NSMutableString* text = [NSMutableString stringWithFormat:@"%llu", (unsigned long long)number];
    for (NSInteger at = (NSInteger)[text length] - 3; at > 0; at -= 3) {
        [text insertString:@"," atIndex:(NSUInteger)at];
    }
    return text;
}

NSString* size_text(uint64_t bytes) {
    if (bytes < 1000) return [NSString stringWithFormat:@"%llu bytes", (unsigned long long)bytes];
    static NSString* const units[] = {@"KB", @"MB", @"GB", @"TB"};
    double amount = (double)bytes / 1000;
    size_t unit = 0;
    for (; amount >= 999.95 && unit < 3; unit++) amount /= 1000;
    return [NSString stringWithFormat:amount < 100 ? @"%.1f %@" : @"%.0f %@", amount, units[unit]];
}

NSString* verb_of(Kind kind) {
    switch (kind) {
        case Kind::Move:
            return @"Moving";
        case Kind::Copy:
            return @"Copying";
        case Kind::Alias:
            return @"Making aliases of";
        case Kind::Trash:
            break;
    }
    return @"Moving to the trash";
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
    NSString* what = count == 1 ? quoted(request.sources.front())
                                : [NSString stringWithFormat:@"%@ items", grouped(count)];
    NSString* title = [NSString stringWithFormat:@"%@ %@", verb_of(request.kind), what];
    if (request.kind == Kind::Trash) return title;
    return [title stringByAppendingFormat:@" to %@", quoted(request.destination)];
}

NSString* detail_of(const Progress& progress) {
    if (progress.items_total == 0) {
        return [NSString stringWithFormat:@"%@ items, %@", grouped(progress.items_done),
                                          size_text(progress.bytes_done)];
    }
    if (progress.items_done >= progress.items_total) return @"Writing everything to the disk…";
    NSString* items = [NSString stringWithFormat:@"%@ of %@ items", grouped(progress.items_done),
                                                 grouped(progress.items_total)];
    if (progress.bytes_total == 0) return items;
    return [items stringByAppendingFormat:@", %@ of %@", size_text(progress.bytes_done),
                                          size_text(progress.bytes_total)];
}

double fraction_of(const Progress& progress) {
    const double total = (double)progress.bytes_total + progress.items_total * bytes_of_an_item;
    const double done = (double)progress.bytes_done + progress.items_done * bytes_of_an_item;
    return total > 0 ? MIN(done / total, 1) : -1;
}

NSString* question_of(const Conflict& conflict) {
    const std::string folder = conflict.target.substr(0, conflict.target.rfind('/'));
    return [NSString stringWithFormat:@"%@ is already in %@.", quoted(conflict.target),
                                      quoted(folder.empty() ? "/" : folder)];
}

NSString* describe_file(const std::string& path) {
    struct stat what;
    if (lstat(path.c_str(), &what) != 0) return @"no longer there";
    NSDateFormatter* formatter = [[NSDateFormatter new] autorelease];
    [formatter setDateFormat:@"d MMM yyyy 'at' HH:mm"];
    NSDate* date = [NSDate dateWithTimeIntervalSince1970:(NSTimeInterval)what.st_mtim.tv_sec];
    NSString* changed =
        [NSString stringWithFormat:@"changed on %@", [formatter stringFromDate:date]];
    if (S_ISDIR(what.st_mode)) return [@"Folder, " stringByAppendingString:changed];
    if (S_ISLNK(what.st_mode)) return [@"Alias, " stringByAppendingString:changed];
    return [NSString stringWithFormat:@"%@, %@", size_text((uint64_t)what.st_size), changed];
}

NSString* failure_title_of(const Report& report) {
    size_t failed = 0;
    for (const Outcome& outcome : report.outcomes) failed += outcome.state == State::Failed;
    if (failed == 0) return nil;
    if (failed == 1) return @"One item failed.";
    return [NSString stringWithFormat:@"%@ items failed.", grouped(failed)];
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
    if (more > 0) [reasons addObject:[NSString stringWithFormat:@"and %@ more", grouped(more)]];
    return [reasons componentsJoinedByString:@"\n"];
}

}  // namespace operations
