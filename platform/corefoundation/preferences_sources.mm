#include "corefoundation/preferences_sources.h"

#import <Foundation/Foundation.h>

#include <mutex>
#include <string>
#include <vector>

namespace {

struct Named {
    const char* suffix;
    PreferencesSource source;
};

struct Sources {
    std::mutex lock;
    std::vector<Named> list;
};

Sources& sources() {
    static Sources& all = *new Sources;
    return all;
}

PreferencesSource source_of(const std::string& domain) {
    const std::lock_guard<std::mutex> guard(sources().lock);
    for (const Named& named : sources().list) {
        if (domain.ends_with(named.suffix)) return named.source;
    }
    return nullptr;
}

}  // namespace

void add_preferences_source(const char* suffix, PreferencesSource source) {
    const std::lock_guard<std::mutex> guard(sources().lock);
    sources().list.push_back({suffix, source});
}

CFPropertyListRef copy_value_from_sources(CFStringRef key, CFStringRef domain) {
    const char* name = [(NSString*)domain UTF8String];
    const PreferencesSource source = key && name ? source_of(name) : nullptr;
    return source ? source(key, domain) : nullptr;
}
