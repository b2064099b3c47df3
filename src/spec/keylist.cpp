#include "spec/keylist.h"

#include "spec/keydescriptions.h"
#include "spec/specreader.h"
#include "words.h"

namespace
{
std::string quoted(std::string_view text)
{
    std::string json = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') json += '\\';
        json += c;
    }
    return json + '"';
}

std::string listofwords(std::string_view words)
{
    std::string json = "[";
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        json += (json.size() > 1 ? ", " : "") + quoted(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return json + "]";
}

// A code is the box followed by the place in the box, which has two digits from 10 on in box 10.
int64 boxofcode(int64 code)
{
    return code >= 1000 ? code / 100 : code / 10;
}

std::string keyasjson(const keydescription &key)
{
    const speckey &reader = *findkey(tlc(key.name));
    const std::pair<const char *, std::string> fields[] = {
        {"name", quoted(key.name)},
        {"box", numbertext(boxofcode(reader.code))},
        {"form", quoted(key.form)},
        {"words", listofwords(key.words)},
        {"bounds", quoted(key.bounds)},
        {"default", quoted(key.standard)},
        {"standsafter", quoted(key.standsafter)},
        {"code", numbertext(reader.code)},
        {"message", quoted(reader.message)},
        {"meaning", quoted(key.meaning)},
        {"unit", quoted(key.unit)},
        {"usual", quoted(key.usual)},
        {"pitfall", quoted(key.pitfall)},
        {"needs", quoted(key.needs)},
    };
    std::string json = "  {";
    for (const auto &[name, value] : fields)
        json += (json.size() > 3 ? ",\n    " : "\n    ") + quoted(name) + ": " + value;
    return json + "\n  }";
}
} // namespace

std::string keysasjson()
{
    std::string json = "[";
    for (const keydescription &key : keydescriptions())
        json += (json.size() > 1 ? ",\n" : "\n") + keyasjson(key);
    return json + "\n]";
}
