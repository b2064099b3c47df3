#include "spec/specreader.h"

std::vector<speckey> allspeckeys()
{
    std::vector<speckey> keys;
    for (const auto table :
         {keyspopulation(), keysgenome(), keysrecombinationediting(), keysselectiontraits()})
        keys.insert(keys.end(), table.begin(), table.end());
    return keys;
}

const speckey *findkey(std::string_view name)
{
    for (const auto table :
         {keyspopulation(), keysgenome(), keysrecombinationediting(), keysselectiontraits()})
        for (const speckey &key : table)
            if (name == key.name) return &key;
    return nullptr;
}
