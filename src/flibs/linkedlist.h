// linkedlist.h - a list of keys and values, as the buckets of the dictionary hold it.
//
// A list is known by its first element; no list is an empty pointer. Elements own what follows
// them, so a list must be freed by list_destroy where it may be long.
#pragma once

#include "arrays.h"

#include <memory>
#include <string>

// An open file's number in the registry. 0 means that it has none.
struct fileunit {
    int64 unitnumber = 0;
    bool initialised = false;
};
inline bool operator==(const fileunit &a, const fileunit &b)
{
    return a.unitnumber == b.unitnumber;
}

struct list_data {
    std::string key; // without trailing blanks
    fileunit value;
};

struct linked_list {
    std::unique_ptr<linked_list> next;
    list_data data;
};
using list_head = std::unique_ptr<linked_list>;

// Makes a list of one element; an old one is freed.
void list_create(list_head &list, const list_data &data);
void list_destroy(list_head &list);
// Number of elements, 0 for no list.
int64 list_count(const list_head &list);
linked_list *list_next(const linked_list *elem);
// A new element right after elem; at the front of the list.
void list_insert(linked_list *elem, const list_data &data);
void list_insert_head(list_head &list, const list_data &data);
// Unlinks and frees an element, the first one included; one that isn't in the list changes nothing.
void list_delete_element(list_head &list, const linked_list *elem);
const list_data &list_get_data(const linked_list *elem);
void list_put_data(linked_list *elem, const list_data &data);
