#include "loader/NSPasteboard+Selection.h"

#include "menus/DVDelvio+Selection.h"
#include "support/dv_log.h"

@implementation NSPasteboard (DVDelvioAdditions)

- (BOOL)dvWriteObjects:(NSArray*)objects {
    if (dvEnableDebugOutput) {
        dvdprintf("Delvio: Writing objects; %s\n", [[objects description] UTF8String]);
    }
    [[DVDelvio sharedDelvio] setSelectedFiles:objects];
    return [self dvWriteObjects:objects];
}

@end
