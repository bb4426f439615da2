// A thread-safe hash table from unsigned 32-bit keys to untyped pointers, with chains and one mutex
// per table. It never grows: use it for small sets. A bucket count of 0 is an error.
#pragma once

#include <pthread.h>
#include <stdint.h>

struct ht_entry_t {
    uint32_t key;
    void* data;  // not owned, unless ht_dispose_hash_table says so
    ht_entry_t* next;
};

struct ht_table_t {
    uint32_t bucket_count;
    uint32_t elem_count;
    uint32_t used_bucket_count;  // buckets whose chain is not empty
    uint32_t user_flags;         // for the creator's use
    ht_entry_t** buckets;
    pthread_mutex_t lock;
};

ht_table_t* ht_create_hash_table(int32_t bucket_count, uint32_t user_flags);

// The bucket of a key: key modulo bucket count.
uint32_t ht_hash(uint32_t bucket_count, uint32_t key);

// Read without the lock.
uint32_t ht_num_elems(const ht_table_t* table);

// A key may be inserted several times: the newest entry is found and removed first.
void ht_insert(ht_table_t* table, uint32_t key, void* data);

// Null for a missing key, and for a key with null data: ht_exists tells them apart.
void* ht_find(ht_table_t* table, uint32_t key);
int ht_exists(ht_table_t* table, uint32_t key);

// Releases the entry, not its data. A missing key prints a warning to standard output.
void ht_remove(ht_table_t* table, uint32_t key);

// The head of the key's chain, and the bucket's index when `bucket` is not null. No lock.
ht_entry_t* ht_find_root_for_key(ht_table_t* table, uint32_t key, uint32_t* bucket);

// Prints the contents to standard output. No lock.
void ht_dump(const ht_table_t* table);

// Releases the table and, with `free_data`, frees each entry's data with free(). No lock: no other
// thread may still use the table.
void ht_dispose_hash_table(ht_table_t* table, int free_data);

// Does nothing: the table never grows.
void ht_rehash(ht_table_t* table);
