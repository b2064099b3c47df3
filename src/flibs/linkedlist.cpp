#include "flibs/linkedlist.h"

void list_create(list_head &list, const list_data &data)
{
    list_destroy(list);
    list_insert_head(list, data);
}

void list_destroy(list_head &list)
{
    while (list) list = std::move(list->next); // one by one: no recursion down a long list
}

int64 list_count(const list_head &list)
{
    int64 n = 0;
    for (const linked_list *elem = list.get(); elem; elem = list_next(elem)) ++n;
    return n;
}

linked_list *list_next(const linked_list *elem)
{
    return elem->next.get();
}

namespace
{
void insertat(list_head &place, const list_data &data)
{
    auto elem = std::make_unique<linked_list>();
    elem->data = data;
    elem->next = std::move(place);
    place = std::move(elem);
}
} // namespace

void list_insert(linked_list *elem, const list_data &data)
{
    insertat(elem->next, data);
}

void list_insert_head(list_head &list, const list_data &data)
{
    insertat(list, data);
}

void list_delete_element(list_head &list, const linked_list *elem)
{
    for (list_head *place = &list; *place; place = &(*place)->next) {
        if (place->get() != elem) continue;
        *place = std::move((*place)->next);
        return;
    }
}

const list_data &list_get_data(const linked_list *elem)
{
    return elem->data;
}

void list_put_data(linked_list *elem, const list_data &data)
{
    elem->data = data;
}
