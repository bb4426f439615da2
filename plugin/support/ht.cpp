#include "support/ht.h"

#include <stdio.h>
#include <stdlib.h>

namespace {

// The table's own mutex as a scoped lock.
class table_lock_t {
  public:
    explicit table_lock_t(ht_table_t* table) : lock_(table->lock) { pthread_mutex_lock(&lock_); }
    ~table_lock_t() { pthread_mutex_unlock(&lock_); }
    table_lock_t(const table_lock_t&) = delete;
    table_lock_t& operator=(const table_lock_t&) = delete;

  private:
    pthread_mutex_t& lock_;
};

ht_entry_t* find_entry(ht_table_t* table, uint32_t key) {
    ht_entry_t* entry = ht_find_root_for_key(table, key, nullptr);
    while (entry && entry->key != key) entry = entry->next;
    return entry;
}

// Removes the first entry with the key from its chain and returns it; null if there is none.
ht_entry_t* unlink_entry(ht_table_t* table, uint32_t key) {
    ht_entry_t** head = &table->buckets[ht_hash(table->bucket_count, key)];
    ht_entry_t** link = head;
    while (*link && (*link)->key != key) link = &(*link)->next;
    ht_entry_t* entry = *link;
    if (!entry) return nullptr;
    *link = entry->next;
    table->elem_count--;
    if (!*head) table->used_bucket_count--;
    return entry;
}

}  // namespace

ht_table_t* ht_create_hash_table(int32_t bucket_count, uint32_t user_flags) {
    auto* table = static_cast<ht_table_t*>(calloc(1, sizeof(ht_table_t)));
    if (!table) return nullptr;
    table->bucket_count = static_cast<uint32_t>(bucket_count);
    table->user_flags = user_flags;
    // NOLINTNEXTLINE(bugprone-sizeof-expression): a bucket is a pointer.
    table->buckets = static_cast<ht_entry_t**>(calloc(table->bucket_count, sizeof(ht_entry_t*)));
    if (!table->buckets) {
        free(table);
        return nullptr;
    }
    pthread_mutex_init(&table->lock, nullptr);
    return table;
}

uint32_t ht_hash(uint32_t bucket_count, uint32_t key) { return key % bucket_count; }

uint32_t ht_num_elems(const ht_table_t* table) { return table->elem_count; }

void ht_insert(ht_table_t* table, uint32_t key, void* data) {
    auto* entry = static_cast<ht_entry_t*>(calloc(1, sizeof(ht_entry_t)));
    if (!entry) return;
    entry->key = key;
    entry->data = data;
    table_lock_t lock(table);
    ht_entry_t*& head = table->buckets[ht_hash(table->bucket_count, key)];
    if (!head) table->used_bucket_count++;
    entry->next = head;
    head = entry;
    table->elem_count++;
}

void* ht_find(ht_table_t* table, uint32_t key) {
    table_lock_t lock(table);
    const ht_entry_t* entry = find_entry(table, key);
    return entry ? entry->data : nullptr;
}

int ht_exists(ht_table_t* table, uint32_t key) {
    table_lock_t lock(table);
    return find_entry(table, key) != nullptr;
}

void ht_remove(ht_table_t* table, uint32_t key) {
    ht_entry_t* entry;
    {
        table_lock_t lock(table);
        entry = unlink_entry(table, key);
    }
    if (!entry) printf("WARNING: Attempt to remove non-existant element from ht\n");
    free(entry);
}

ht_entry_t* ht_find_root_for_key(ht_table_t* table, uint32_t key, uint32_t* bucket) {
    const uint32_t index = ht_hash(table->bucket_count, key);
    if (bucket) *bucket = index;
    return table->buckets[index];
}

void ht_dump(const ht_table_t* table) {
    printf("Contents for hash table %p\n", static_cast<const void*>(table));
    for (uint32_t i = 0; i < table->bucket_count; i++) {
        for (const ht_entry_t* entry = table->buckets[i]; entry; entry = entry->next) {
            printf("Key: %8X Data: %p\n", entry->key, entry->data);
        }
    }
}

void ht_dispose_hash_table(ht_table_t* table, int free_data) {
    for (uint32_t i = 0; i < table->bucket_count; i++) {
        for (ht_entry_t* entry = table->buckets[i]; entry;) {
            ht_entry_t* next = entry->next;
            if (free_data) free(entry->data);
            free(entry);
            entry = next;
        }
        table->buckets[i] = nullptr;
    }
    free(table->buckets);
    free(table);
}

void ht_rehash(ht_table_t*) {}
