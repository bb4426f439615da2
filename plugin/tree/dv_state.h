// The plug-in's one state record: settings, root trees, scratch buffers, preview and popup state.
// The controller allocates it zero-filled and never frees it. Main thread, except for the text
// preview and the control-free popup, whose headers say so.
#pragma once

#include <pthread.h>
#include <stdint.h>

#include <Carbon/Carbon.h>
#include <CoreGraphics/CoreGraphics.h>

struct dv_tree_t;
struct ht_table_t;
struct OpaqueEventHandlerRef;
struct OpaqueMenuRef;
struct OpaqueWindowPtr;

enum { DV_PATH_BUFFER_SIZE = 10240 };

struct dv_point_t {
    double x, y;
};

// A field marked "carried" only keeps the record's layout; nothing reads it. A field named after a
// preference holds that preference's value.
struct delvio_t {
    void* interface;   // carried
    void* factory_id;  // carried
    int32_t count;     // open menus; the trees are freed at 0
    int32_t carried_int;
    uint32_t started;  // 1 once the controller has been created

    uint32_t sort_order;
    uint32_t show_hidden_files;
    uint32_t show_package_contents;
    uint32_t use_icons;
    uint32_t placement;
    uint32_t font_size;
    uint32_t intra_sort_order;
    uint32_t open_after_file_op;
    uint32_t preview_context_size;  // the preview_size that preview_context was made for
    uint32_t carried_unsigned[2];

    // Root slots. Each is an owned chain; all are freed together when the last menu closes.
    dv_tree_t* root;       // made from the selection
    dv_tree_t* custom;     // the second root: user-configured folders
    dv_tree_t* forest;     // the roots of the menus around the open one
    dv_tree_t* open_with;  // the open-with folder's level
    dv_tree_t* carried_trees[4];
    dv_tree_t*
        copies;  // made for Move/Copy/Alias targets and recent items ("move_copy" in the log)
    dv_tree_t* running_apps;

    char* path_buffer;  // DV_PATH_BUFFER_SIZE bytes
    OpaqueEventHandlerRef* carried_event_handlers[7];

    int32_t carried_flag;
    int32_t disable_menu_fade;
    int32_t custom_folder_order;
    int32_t only_folders_in_main_menu;
    int32_t multiple_selection;  // 1 when more than one item is selected
    int32_t autoOpenWithMenu;

    ht_table_t* hash_table;
    OpaqueMenuRef* carried_menus[3];
    int32_t carried_menu_state[3];

    CGContextRef preview_context;
    CGContextRef carried_context;
    CGImageRef preview_image;  // owned
    CGImageRef carried_image;
    CGRect preview_rect;
    CGRect carried_rects[2];
    void* preview_bitmap;  // owned: preview_context_size squared, 4 bytes a pixel
    void* carried_pointer;

    CFArrayRef folders;          // owned: the preference "folders" as read, of whatever type
    CFStringRef open_with_path;  // owned

    dv_tree_t* carried_tree;
    OpaqueMenuRef* carried_menu;
    uint16_t carried_short;
    pthread_t popup_thread;
    double carried_time;
    uint32_t popup_wake;  // non-zero: the control-free popup's thread stops waiting
    uint32_t carried_popup[2];
    Point carried_point;
    dv_point_t carried_location;
    pthread_cond_t popup_condition;
    pthread_mutex_t popup_mutex;

    uint32_t control_free_delay_usec;
    uint32_t control_free_enabled;
    uint32_t use_generic_icons;
    uint32_t preview_size;
    OpaqueWindowPtr* preview_window;

    int32_t file_op_in_progress;  // keeps the trees alive while name conflicts are checked
    int32_t carried_state[2];
    int32_t delvio_is_on;
    int32_t rootMenuCollapseThreshold;
    int32_t runningAppsInOpenWithMenu;
    int32_t showLabels;
    int32_t showRecentItems;
    int32_t hoverPreviews;
    int32_t hoverPreviewsInterval;
    int32_t hideMoveCopyAlias;
    int32_t finderInSeparateSubmenu;
};
