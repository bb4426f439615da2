// GNUstep's own defaults. As a program starts they are read under a lock, and a dead program's lock
// would hold the start up for 20 seconds.
#import <Foundation/Foundation.h>

#include <atomic>
#include <memory>

#include "corefoundation/defaults_lock.h"
#include "objc/method_patch.h"

@interface NSUserDefaults (StockFolder)
- (NSString*)_directory;
@end

namespace {

// A start waits this long for a living program that holds the lock, and then goes on without it.
// That does not matter for what it reads, as files are replaced as a whole; GNUstep itself goes on
// after 66 seconds.
const int patience = 800;

IMP stock_lock, stock_unlock;

// While this process holds the lock.
std::atomic<DefaultsTurn*> turn_of_process;
// A lock that has been waited for in vain is not waited for again.
std::atomic<bool> has_given_up;

BOOL lock_defaults(NSUserDefaults* self, SEL selector, BOOL* was_locked) {
    const auto stock = reinterpret_cast<BOOL (*)(id, SEL, BOOL*)>(stock_lock);
    NSString* const folder = [self _directory];
    if (turn_of_process || [folder length] == 0) return stock(self, selector, was_locked);
    auto turn = std::make_unique<DefaultsTurn>([folder fileSystemRepresentation],
                                               has_given_up ? 0 : patience);
    has_given_up = !turn->is_free();
    if (has_given_up) return *was_locked = YES;  // So the caller does not unlock it.
    const BOOL is_locked = stock(self, selector, was_locked);
    if (is_locked && !*was_locked) delete turn_of_process.exchange(turn.release());
    return is_locked;
}

void unlock_defaults(NSUserDefaults* self, SEL selector) {
    reinterpret_cast<void (*)(id, SEL)>(stock_unlock)(self, selector);
    delete turn_of_process.exchange(nullptr);
}

}  // namespace

@interface StockDefaultsInstaller : NSObject
@end

@implementation StockDefaultsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSUserDefaults", "_lockDefaultsFile:", reinterpret_cast<IMP>(lock_defaults), &stock_lock},
        {"NSUserDefaults", "_unlockDefaultsFile", reinterpret_cast<IMP>(unlock_defaults),
         &stock_unlock},
    };
    patch_methods(patches);
}

@end
