#include <host/forced_preferences.h>

#import <Foundation/Foundation.h>

#include <errno.h>
#include <stdlib.h>

#include <mutex>

#include "corefoundation/defaults_file.h"
#include "corefoundation/preferences_sources.h"

namespace {

// One application's preferences: the file, the changes that are not yet written, the forced values,
// and the values for keys that have no other.
struct Preferences {
    explicit Preferences(NSString* identifier) : file(identifier) { file.refresh(); }

    DefaultsFile file;
    NSMutableDictionary* changes = [NSMutableDictionary new];
    NSMutableDictionary* forced = [NSMutableDictionary new];
    NSMutableDictionary* fallbacks = [NSMutableDictionary new];
};

std::mutex preferences_lock;

// The identifier becomes a file's name, so it must not hold a slash.
bool is_usable(NSString* identifier) {
    return [identifier length] > 0 && [identifier rangeOfString:@"/"].length == 0;
}

// Made at first use and kept; null when the identifier names no domain.
Preferences* preferences_of(CFStringRef application) {
    static NSMapTable* all =
        NSCreateMapTable(NSObjectMapKeyCallBacks, NSNonOwnedPointerMapValueCallBacks, 4);
    NSString* identifier = (NSString*)application;
    if (!is_usable(identifier)) return nullptr;
    auto* found = (Preferences*)NSMapGet(all, identifier);
    if (!found) {
        found = new Preferences(identifier);
        NSMapInsert(all, [[identifier copy] autorelease], found);
    }
    return found;
}

// Not retained; nil when the key has no value.
id value_of(CFStringRef key, CFStringRef application) {
    const Preferences* preferences = preferences_of(application);
    if (!preferences || !key) return nil;
    NSString* name = (NSString*)key;
    id value = [preferences->forced objectForKey:name];
    if (!value) value = [preferences->changes objectForKey:name];
    if (!value) value = [preferences->file.values() objectForKey:name];
    if (value && value != [NSNull null]) return value;
    return [preferences->fallbacks objectForKey:name];
}

// A string that is a decimal integer and nothing else, as `defaults write` stores numbers.
bool integer_from_string(NSString* string, CFIndex* value) {
    const char* text = [string UTF8String];
    const char* digits = *text == '-' || *text == '+' ? text + 1 : text;
    if (*digits < '0' || *digits > '9') return false;
    char* end;
    errno = 0;
    *value = strtol(text, &end, 10);
    return *end == 0 && errno == 0;
}

bool integer_from(id value, CFIndex* integer) {
    if ([value isKindOfClass:[NSString class]]) return integer_from_string(value, integer);
    if (![value isKindOfClass:[NSNumber class]]) return false;
    SInt64 whole;
    if (CFNumberGetValue((CFNumberRef)value, kCFNumberSInt64Type, &whole)) {
        return *integer = (CFIndex)whole, true;
    }
    return false;
}

}  // namespace

Boolean CFPreferencesAppSynchronize(CFStringRef applicationID) {
    const std::lock_guard<std::mutex> guard(preferences_lock);
    Preferences* preferences = preferences_of(applicationID);
    if (!preferences) return false;
    if ([preferences->changes count] == 0) return preferences->file.refresh();
    if (!preferences->file.merge(preferences->changes)) return false;
    [preferences->changes removeAllObjects];
    return true;
}

CFIndex CFPreferencesGetAppIntegerValue(CFStringRef key, CFStringRef applicationID,
                                        Boolean* valid) {
    const std::lock_guard<std::mutex> guard(preferences_lock);
    CFIndex integer = 0;
    bool is_integer = false;
    @autoreleasepool {
        is_integer = integer_from(value_of(key, applicationID), &integer);
    }
    if (valid) *valid = is_integer;
    return is_integer ? integer : 0;
}

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    {
        const std::lock_guard<std::mutex> guard(preferences_lock);
        if (id value = value_of(key, applicationID)) return [value retain];
    }
    return copy_value_from_sources(key, applicationID);
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    const std::lock_guard<std::mutex> guard(preferences_lock);
    Preferences* preferences = preferences_of(applicationID);
    if (!preferences || !key || [preferences->forced objectForKey:(NSString*)key]) return;
    const id stored = value ? (id)value : (id)[NSNull null];
    [preferences->changes setObject:stored forKey:(NSString*)key];
}

Boolean CFPreferencesAppValueIsForced(CFStringRef key, CFStringRef applicationID) {
    const std::lock_guard<std::mutex> guard(preferences_lock);
    const Preferences* preferences = preferences_of(applicationID);
    return preferences && key && [preferences->forced objectForKey:(NSString*)key] != nil;
}

void set_fallback_preference(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    const std::lock_guard<std::mutex> guard(preferences_lock);
    Preferences* preferences = preferences_of(applicationID);
    if (!preferences || !key) return;
    if (value)
        [preferences->fallbacks setObject:(id)value forKey:(NSString*)key];
    else
        [preferences->fallbacks removeObjectForKey:(NSString*)key];
}

void force_preference(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    const std::lock_guard<std::mutex> guard(preferences_lock);
    Preferences* preferences = preferences_of(applicationID);
    if (!preferences || !key) return;
    if (value)
        [preferences->forced setObject:(id)value forKey:(NSString*)key];
    else
        [preferences->forced removeObjectForKey:(NSString*)key];
}
