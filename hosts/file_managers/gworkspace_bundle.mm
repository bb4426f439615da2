#include "file_managers/gworkspace_bundle.h"

#include <host/text.h>

#include <Foundation/Foundation.h>

#include "corefoundation/defaults_file.h"
#include "finderkit/plug_in.h"

namespace {

NSString* const list_key = @"GSAppKitUserBundles";
NSString* const program_domain = @"GWorkspace";
NSString* const bundle_name = @"DelvioGWorkspace.bundle";

bool is_ours(id entry) {
    return [entry isKindOfClass:[NSString class]] &&
           [[entry lastPathComponent] isEqualToString:bundle_name];
}

// The two domains as they are on disk.
struct Domains {
    DefaultsFile own{program_domain}, global{NSGlobalDomain};
    // GWorkspace's own list hides the list for all programs.
    bool has_own() const { return [own.values() objectForKey:list_key] != nil; }
    DefaultsFile& file() { return has_own() ? own : global; }
    NSString* name() const { return has_own() ? program_domain : NSGlobalDomain; }
    id list() { return [file().values() objectForKey:list_key]; }
};

// Reads both domains. The reason if that is not possible, or if the list is none.
std::string read_problem(Domains& domains) {
    for (DefaultsFile* file : {&domains.own, &domains.global}) {
        if (file->refresh()) continue;
        return translated(
            "the defaults in %s cannot be read; nothing was changed. Repair or remove that file",
            {file->path()});
    }
    if (!domains.list() || [domains.list() isKindOfClass:[NSArray class]]) return {};
    return translated("the default %s of the domain %s is no list; it was left as it is",
                      {[list_key UTF8String], [domains.name() UTF8String]});
}

// The list with this path in place of our entries, or at its end; for nil, the list without our
// entries.
NSArray* changed_list(NSArray* list, NSString* path) {
    NSMutableArray* changed = [NSMutableArray array];
    bool is_placed = path == nil;
    for (id entry in list) {
        if (!is_ours(entry)) {
            [changed addObject:entry];
        } else if (!is_placed) {
            [changed addObject:path];
            is_placed = true;
        }
    }
    if (!is_placed) [changed addObject:path];
    return changed;
}

bool write_list(DefaultsFile& file, NSArray* list) {
    const id value = [list count] > 0 ? (id)list : (id)[NSNull null];
    return file.merge([NSDictionary dictionaryWithObject:value forKey:list_key]);
}

BundleChange failed(const std::string& problem) {
    BundleChange change;
    change.problem = problem;
    return change;
}

// The change to this list, written if it is one.
BundleChange write_change(Domains& domains, NSArray* changed, NSString* path) {
    BundleChange change;
    change.path = [path UTF8String];
    change.place = translated("in the list %s of the defaults domain %s",
                              {[list_key UTF8String], [domains.name() UTF8String]});
    change.has_changed = ![changed isEqual:domains.list() ?: [NSArray array]];
    if (!change.has_changed || write_list(domains.file(), changed)) return change;
    return failed(translated("cannot write %s; it was left as it is", {domains.file().path()}));
}

BundleChange install(Domains& domains) {
    std::string problem;
    const std::string found = find_bundle([bundle_name UTF8String], &problem);
    if (found.empty()) return failed(problem);
    NSString* path = [NSString stringWithUTF8String:found.c_str()];
    if (!path) return failed(translated("the path of the bundle is not UTF-8: %s", {found}));
    return write_change(domains, changed_list(domains.list(), path), path);
}

BundleChange uninstall(Domains& domains) {
    NSString* path = @"";
    for (id entry in domains.list()) {
        if (is_ours(entry)) path = entry;
    }
    return write_change(domains, changed_list(domains.list(), nil), path);
}

}  // namespace

BundleChange change_gworkspace_bundles(bool is_removal) {
    Domains domains;
    const std::string problem = read_problem(domains);
    if (!problem.empty()) return failed(problem);
    return is_removal ? uninstall(domains) : install(domains);
}

EntryState state_of_gworkspace(std::string* problem) {
    Domains domains;
    *problem = read_problem(domains);
    if (!problem->empty()) return EntryState::refused;
    std::string unused;
    const std::string bundle = find_bundle([bundle_name UTF8String], &unused);
    EntryState state = EntryState::absent;
    for (id entry in domains.list()) {
        if (!is_ours(entry)) continue;
        state = bundle == [entry UTF8String] ? EntryState::present : EntryState::other;
    }
    return state;
}
