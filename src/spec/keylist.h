// keylist.h - all keys of SolvantoSpec.txt for other programs: what `solvanto --keys` prints.
#pragma once

#include <string>

// A JSON array, box by box. Each key is an object of the fields name, box, form, words (an array),
// bounds, default, standsafter, code and message of its stop, meaning, unit, usual, pitfall and
// needs (keydescriptions.h), each on a line of its own.
std::string keysasjson();
