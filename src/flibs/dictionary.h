// dictionary.h - the numbers of open files by their paths: a hash table of fixed size.
//
// Keys are texts; trailing blanks don't count. Buckets are numbered from 1.
#pragma once

#include "flibs/linkedlist.h"

#include <string_view>
#include <vector>

constexpr int64 dict_size = 4993;
// What dict_get_key gives for an unknown key.
constexpr fileunit dict_null{};

struct hash_list {
    list_head list; // empty while the bucket is
};

struct dict_struct {
    std::vector<hash_list> table; // bucket b at offset b - 1; no entries before dict_create
};

// Makes the table and puts the first key in.
void dict_create(dict_struct &dict, std::string_view key, const fileunit &value);
void dict_destroy(dict_struct &dict);
// Replaces the value of a key that is present. A new key goes behind the first of its bucket.
void dict_add_key(dict_struct &dict, std::string_view key, const fileunit &value);
// Removes the key if it is present.
void dict_delete_key(dict_struct &dict, std::string_view key);
fileunit dict_get_key(const dict_struct &dict, std::string_view key);
bool dict_has_key(const dict_struct &dict, std::string_view key);
// The key's element, or none.
linked_list *dict_get_elem(const dict_struct &dict, std::string_view key);
// Bucket of a key: from h = 31 h + code over its characters, in 64 bits that wrap around.
int64 dict_hashkey(std::string_view key);
