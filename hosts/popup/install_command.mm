#include "popup/install_command.h"

#include <Foundation/Foundation.h>

#include <stdio.h>

#include "finderkit/plug_in.h"

namespace {

NSString* const list_key = @"GSAppKitUserBundles";
NSString* const program_domain = @"GWorkspace";
NSString* const bundle_name = @"DelvioGWorkspace.bundle";

int failed(const std::string& problem) {
    Complain(problem);
    return exit_failed;
}

bool is_ours(id entry) {
    return [entry isKindOfClass:[NSString class]] &&
           [[entry lastPathComponent] isEqualToString:bundle_name];
}

NSDictionary* content_of(NSString* domain) {
    NSDictionary* content = [[NSUserDefaults standardUserDefaults] persistentDomainForName:domain];
    return content ?: [NSDictionary dictionary];
}

// A list of GWorkspace's own hides the one for all programs.
NSString* list_domain() {
    return [content_of(program_domain) objectForKey:list_key] ? program_domain : NSGlobalDomain;
}

// The list with this path in the place of our entries, or at its end; without them for nil.
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

bool write_list(NSString* domain, NSArray* list) {
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    NSMutableDictionary* content = [[content_of(domain) mutableCopy] autorelease];
    if ([list count] > 0) {
        [content setObject:list forKey:list_key];
    } else {
        [content removeObjectForKey:list_key];
    }
    [defaults removePersistentDomainForName:domain];
    if ([content count] > 0) [defaults setPersistentDomain:content forName:domain];
    return [defaults synchronize];
}

int say(const char* text, NSString* path, NSString* domain) {
    printf("%s\n  %s\n  in the list %s of the defaults domain %s\n", text, [path UTF8String],
           [list_key UTF8String], [domain UTF8String]);
    return exit_done;
}

int install(NSString* domain, NSArray* list) {
    std::string problem;
    const std::string found = FindBundle([bundle_name UTF8String], &problem);
    if (found.empty()) return failed(problem);
    NSString* path = [NSString stringWithUTF8String:found.c_str()];
    if (!path) return failed("the path of the bundle is not UTF-8: " + found);
    NSArray* changed = changed_list(list, path);
    if ([changed isEqual:list]) return say("GWorkspace has Delvio already:", path, domain);
    if (!write_list(domain, changed)) return failed("cannot write your defaults");
    return say("GWorkspace has Delvio from its next start on:", path, domain);
}

int uninstall(NSString* domain, NSArray* list) {
    NSArray* changed = changed_list(list, nil);
    if ([changed count] == [list count]) {
        puts("GWorkspace does not have Delvio: nothing to do.");
        return exit_done;
    }
    NSString* path = nil;
    for (id entry in list) {
        if (is_ours(entry)) path = entry;
    }
    if (!write_list(domain, changed)) return failed("cannot write your defaults");
    return say("GWorkspace does not have Delvio any more from its next start on; taken out:", path,
               domain);
}

}  // namespace

int RunInstallCommand(const InstallRequest& request) {
    NSString* domain = list_domain();
    id list = [content_of(domain) objectForKey:list_key];
    if (list && ![list isKindOfClass:[NSArray class]]) {
        return failed(std::string("the default ") + [list_key UTF8String] + " of the domain " +
                      [domain UTF8String] + " is no list; it was left as it is");
    }
    return request.remove ? uninstall(domain, list) : install(domain, list);
}
