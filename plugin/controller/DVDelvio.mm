#include "controller/DVDelvio.h"

#include <stdlib.h>

#include "support/ht.h"
#include "tree/dv_prefs.h"
#include "tree/dv_state.h"

uint32_t dvFontSize = 13;

namespace {

constexpr NSUInteger root_items_capacity = 256;
constexpr int32_t hash_bucket_count = 97;

delvio_t* create_state() {
    delvio_t* state = static_cast<delvio_t*>(calloc(1, sizeof(delvio_t)));
    if (!state) return nullptr;
    state->path_buffer = static_cast<char*>(calloc(1, DV_PATH_BUFFER_SIZE));
    state->started = 1;
    state->hash_table = ht_create_hash_table(hash_bucket_count, 0);
    if (!state->path_buffer || !state->hash_table) {
        if (state->hash_table) ht_dispose_hash_table(state->hash_table, 0);
        free(state->path_buffer);
        free(state);
        return nullptr;
    }
    dv_read_prefs(state, 1);
    return state;
}

}  // namespace

@implementation DVDelvio

+ (DVDelvio*)sharedDelvio {
    static DVDelvio* shared;
    if (!shared) shared = [[DVDelvio alloc] init];
    return shared;
}

- (instancetype)init {
    self = [super init];
    if (!self) return nil;
    dv = create_state();
    if (!dv) {
        [self release];
        return nil;
    }
    rootItems = [[NSMutableArray alloc] initWithCapacity:root_items_capacity];
    pthread_mutex_init(&treeLock, nullptr);
    dvFontSize = dv->font_size;
    [self createParts];
    return self;
}

- (delvio_t*)getDV {
    return dv;
}

- (NSMenu*)finderMenu {
    return _finderMenu;
}

- (void)notificationReceived:(NSNotification*)notification {
    (void)notification;
}

- (void)delayedChangedItems:(NSMenu*)menu {
    for (NSMenuItem* item in [menu itemArray]) [menu itemChanged:item];
}

@end
