// Answers whether a file exists while a menu is open. A disk that has stopped answering must not
// hold up the menu, so a file that is not found in time counts as missing.
#include <Foundation/Foundation.h>

#include "corefoundation/patient_stat.h"
#include "menus/menu_run.h"
#include "objc/method_patch.h"

namespace {

// In seconds: too short to be felt, and far longer than a disk that works takes to answer.
const double patience = 0.2;

IMP stock_exists;

bool holds_a_menu() { return [NSThread isMainThread] && MenuRun::current(); }

// fileExistsAtPath: calls this method too.
BOOL file_exists(NSFileManager* self, SEL selector, NSString* path, BOOL* is_folder) {
    if (![path hasPrefix:@"/"] || !holds_a_menu()) {
        auto stock = reinterpret_cast<BOOL (*)(id, SEL, NSString*, BOOL*)>(stock_exists);
        return stock(self, selector, path, is_folder);
    }
    const auto status = files::patient_stat([self fileSystemRepresentationWithPath:path], patience);
    if (is_folder) *is_folder = status && S_ISDIR(status->st_mode);
    return status.has_value();
}

}  // namespace

@interface MenuQuestionsInstaller : NSObject
@end

@implementation MenuQuestionsInstaller

+ (void)load {
    const MethodPatch patches[] = {
        {"NSFileManager", "fileExistsAtPath:isDirectory:", reinterpret_cast<IMP>(file_exists),
         &stock_exists},
    };
    patch_methods(patches);
}

@end
