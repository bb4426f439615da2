#include "look/image_questions.h"

@implementation NSImage (MenuQuestions)

- (BOOL)isOfHiddenFile {
    return NO;
}

- (BOOL)mayChangeAfterFirstLook {
    return NO;
}

- (NSImage*)imageForMenuItem {
    return self;
}

@end
