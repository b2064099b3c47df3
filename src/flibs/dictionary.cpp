#include "flibs/dictionary.h"

#include "words.h"

namespace
{
// The key's bucket; the table must exist.
template <class dict> auto &bucketof(dict &d, std::string_view key)
{
    return d.table[static_cast<std::size_t>(dict_hashkey(key) - 1)].list;
}
} // namespace

void dict_create(dict_struct &dict, std::string_view key, const fileunit &value)
{
    dict_destroy(dict);
    dict.table = std::vector<hash_list>(dict_size);
    dict_add_key(dict, key, value);
}

void dict_destroy(dict_struct &dict)
{
    for (hash_list &bucket : dict.table) list_destroy(bucket.list);
    std::vector<hash_list>().swap(dict.table);
}

void dict_add_key(dict_struct &dict, std::string_view key, const fileunit &value)
{
    const list_data data{std::string(trimright(key)), value};
    if (linked_list *elem = dict_get_elem(dict, key)) {
        list_put_data(elem, data);
        return;
    }
    list_head &list = bucketof(dict, key);
    if (list)
        list_insert(list.get(), data);
    else
        list_create(list, data);
}

void dict_delete_key(dict_struct &dict, std::string_view key)
{
    if (const linked_list *elem = dict_get_elem(dict, key))
        list_delete_element(bucketof(dict, key), elem);
}

fileunit dict_get_key(const dict_struct &dict, std::string_view key)
{
    const linked_list *elem = dict_get_elem(dict, key);
    return elem ? list_get_data(elem).value : dict_null;
}

bool dict_has_key(const dict_struct &dict, std::string_view key)
{
    return dict_get_elem(dict, key) != nullptr;
}

linked_list *dict_get_elem(const dict_struct &dict, std::string_view key)
{
    if (dict.table.empty()) return nullptr;
    linked_list *elem = bucketof(dict, key).get();
    while (elem && list_get_data(elem).key != trimright(key)) elem = list_next(elem);
    return elem;
}

int64 dict_hashkey(std::string_view key)
{
    std::uint64_t h = 0;
    for (const char c : trimright(key)) h = 31 * h + static_cast<unsigned char>(c);
    const int64 remainder = static_cast<int64>(h - 1) % dict_size; // of the signed number
    return 1 + (remainder < 0 ? remainder + dict_size : remainder);
}
