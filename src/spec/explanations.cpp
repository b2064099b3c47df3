#include "spec/explanations.h"

#include "spec/keydescriptions.h"
#include "spec/speclines.h"
#include "textlayout.h"
#include "words.h"

#include <algorithm>
#include <cstdio>
#include <map>

std::string properkey(std::string_view name)
{
    const keydescription *key = describekey(name);
    return key ? key->name : std::string(name);
}

std::string realdigits(double value)
{
    char text[40];
    return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, "%.17g", value))};
}

namespace
{
void printerror(const std::string &text)
{
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", text.c_str());
}

std::string place(int64 line)
{
    std::string text = "ERROR: " + std::string(specfile);
    if (line > 0) text += ':' + numbertext(line);
    return text + ": ";
}

// The part of a record that holds value i (0: the key), without blanks around it: first character
// and length, from 0.
std::pair<std::size_t, std::size_t> spanofvalue(std::string_view record, int64 i)
{
    std::size_t begin = 0;
    for (int64 k = 0; k < i; ++k) {
        const std::size_t comma = record.find(',', begin);
        if (comma == std::string_view::npos) return {record.size(), 0};
        begin = comma + 1;
    }
    std::size_t end = std::min(record.find(',', begin), record.size());
    while (begin < end && (record[begin] == ' ' || record[begin] == '\t')) ++begin;
    while (end > begin && (record[end - 1] == ' ' || record[end - 1] == '\t')) --end;
    return {begin, end - begin};
}

// The record with a caret below value i. Tabs stay tabs, so that the caret stands right.
void printcaret(std::string_view record, int64 i)
{
    constexpr std::size_t widest = 200;
    auto [at, length] = spanofvalue(record, i);
    at = std::min(at, widest);
    std::string blanks;
    for (std::size_t k = 0; k < at; ++k)
        blanks += k < record.size() && record[k] == '\t' ? '\t' : ' ';
    printerror("  " + std::string(record.substr(0, widest)));
    printerror("  " + blanks +
               std::string(std::max<std::size_t>(std::min(length, widest - at), 1), '^'));
}

std::string wantedtext(const keydescription *key)
{
    return key ? "; wanted: " + std::string(key->bounds) : "";
}

// Least number of characters to insert, remove, replace or swap with the next one (restricted
// Damerau-Levenshtein distance; Boytsov 2011, ACM JEA 16, section 2.1), up to a limit: cells of the
// table further than that from its diagonal don't matter, and a row without a lower value ends it.
std::size_t editdistance(std::string_view a, std::string_view b, std::size_t limit)
{
    const std::size_t n = b.size();
    if (std::max(a.size(), n) - std::min(a.size(), n) >= limit) return limit;
    std::vector<std::size_t> row(n + 2), before(n + 2), before2(n + 2);
    for (std::size_t j = 0; j <= n; ++j) before[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        const std::size_t first = i > limit ? i - limit : 1, last = std::min(n, i + limit);
        row[first - 1] = first == 1 ? i : limit;
        std::size_t least = row[first - 1];
        for (std::size_t j = first; j <= last; ++j) {
            std::size_t d = before[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            d = std::min(d, std::min(before[j], row[j - 1]) + 1);
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                d = std::min(d, before2[j - 2] + 1);
            row[j] = d;
            least = std::min(least, d);
        }
        if (least >= limit) return limit;
        row[last + 1] = limit;
        before2.swap(before);
        before.swap(row);
    }
    return std::min(before[n], limit);
}

// The key that is spelt most alike; empty when none is near.
std::string nearestkey(std::string_view name)
{
    std::string nearest;
    std::size_t least = std::max<std::size_t>(name.size() / 3, 2) + 1;
    for (const keydescription &key : keydescriptions()) {
        const std::size_t distance = editdistance(name, tlc(key.name), least);
        if (distance >= least) continue;
        least = distance;
        nearest = key.name;
    }
    return nearest;
}

// The word of a key that is spelt most alike; nothing for one of its words, and when none is near.
std::string nearestword(const keydescription *key, std::string_view value)
{
    if (!key) return "";
    std::string nearest, words = std::string(key->words) + ' ';
    std::size_t least = 4, begin = 0;
    for (std::size_t end = 0; (end = words.find(' ', begin)) != std::string::npos;
         begin = end + 1) {
        const std::string word = words.substr(begin, end - begin);
        const std::size_t limit = std::min(least, word.size());
        const std::size_t distance = editdistance(tlc(value), tlc(word), limit);
        if (distance == 0) return "";
        if (distance >= limit) continue;
        least = distance;
        nearest = word;
    }
    return nearest.empty() ? "" : "; did you mean " + nearest + '?';
}

std::string unexpectedhint(const specreader &r)
{
    const std::string name = tlc(r.first);
    if (name.starts_with("\xef\xbb\xbf"))
        return "the file begins with a byte order mark: save it as UTF-8 without one";
    if (name.starts_with("//") || name.starts_with("!") || name.starts_with("%"))
        return "a comment begins with #";
    const std::string nearest = nearestkey(name);
    if (!nearest.empty()) return "it is no key; the nearest is " + nearest;
    double number = 0;
    if (readreal(name.substr(0, name.find_first_of("\t,")), number))
        return "rows of a matrix stand right behind its key, one for each trait";
    return "it is no key; solvanto --keys lists them all";
}

struct switchword {
    const char *key, *words, *takenfor; // lower case; what any other word is taken for
};
constexpr switchword switches[] = {
    {"animalbreedingonoff", "on off", "Off"},
    {"plantbreedingonoff", "on off", "Off"},
    {"performmatingsconsideringthegenderyesno", "yes no", "No"},
    {"generationflexibilityonoff", "on off", "On"},
    {"selectionflexibilityonoff", "on off", "On"},
    {"recombinationhotspotsonoff", "on off", "On"},
    {"usesnpchiponoff", "on off", "On"},
    {"snpchipsarenestedyesno", "yes no", "No"},
    {"includedominanceeffectsonoff", "on off", "Off"},
    {"qtnclustersonoff", "on off", "On"},
    {"recombinationonoff", "on off", "Off"},
    {"geneeditingonoff", "on off", "Off"},
    {"performgeonuserqtnselectionyesno", "yes no", "Yes"},
    {"genedriveonoff", "on off", "Off"},
    {"fixthetrainingdataacrossgenerationsonoff", "on off", "Off"},
    {"optimalcontributionselectiononoff", "on off", "Off"},
    {"keepchromosomesfolderyesno", "yes no", "Yes"},
    {"writefullsequenceoutonoff", "on off", "what it was before (Off unless a line above says On)"},
    {"zipsequenceoutputfilesyesno", "yes no", "No"},
    {"genomecompressiononoff", "on off", "On"},
};
} // namespace

void explainvalue(const specreader &r, int64 i, std::string_view reason)
{
    const keydescription *key = describekey(r.key->name);
    std::string text = place(r.line) + properkey(r.key->name) + ": ";
    const auto nvalues = static_cast<int64>(r.second.size());
    if (i > nvalues)
        text += "value " + numbertext(i) + " is missing";
    else if (i > 0)
        text +=
            "value " + numbertext(i) + " is \"" + r.second[static_cast<std::size_t>(i - 1)] + '"';
    if (!reason.empty()) text += (i > 0 ? ": " : "") + std::string(reason);
    text += wantedtext(key);
    if (i > 0 && i <= nvalues) text += nearestword(key, r.second[static_cast<std::size_t>(i - 1)]);
    printerror(text);
    printcaret(r.record, i);
    if (r.record.find('#') != std::string_view::npos)
        printerror("  there are no comments behind a value: put the comment on a line of its own");
}

void explainkeys(const specreader &r, std::initializer_list<std::string_view> names,
                 std::string_view reason)
{
    if (!reason.empty()) printerror(place(0) + std::string(reason));
    for (const std::string_view name : names) {
        const keydescription *key = describekey(name);
        const auto found = r.places.find(findkey(name));
        if (found == r.places.end()) {
            printerror(place(0) + properkey(name) + " is missing" + wantedtext(key));
            continue;
        }
        std::string first;
        std::vector<std::string> values;
        parseline(found->second.record, first, values);
        printerror(place(found->second.line) + properkey(name) + wantedtext(key) +
                   (values.empty() ? "" : nearestword(key, values[0])));
        printcaret(found->second.record, 1);
    }
}

void explainunexpected(const specreader &r)
{
    printerror(place(r.line) + unexpectedhint(r));
    printcaret(r.record, 0);
}

void warnhere(const specreader &r, std::string_view text)
{
    warn(r.s.options, specfile, r.line, text);
}

void warnofwords(const specreader &r)
{
    const auto *row =
        std::find_if(std::begin(switches), std::end(switches),
                     [&](const switchword &s) { return r.key->name == std::string_view(s.key); });
    if (row == std::end(switches) || r.second.empty() || r.second[0].empty()) return;
    const std::string word = tlc(r.second[0]);
    if ((' ' + std::string(row->words) + ' ').find(' ' + word + ' ') != std::string::npos) return;
    warnhere(r, properkey(r.key->name) + ": " + r.second[0] + " is neither of its words (" +
                    describekey(r.key->name)->words + "); it was taken for " + row->takenfor);
}

void warnofsurplus(const specreader &r, int64 wanted, std::string_view what)
{
    const auto nvalues = static_cast<int64>(r.second.size());
    if (nvalues > wanted)
        warnhere(r, properkey(r.key->name) + ": " + numbertext(nvalues) + " values stand there, " +
                        numbertext(wanted) + " are taken (" + std::string(what) +
                        "); the others are without effect");
}

namespace
{
// Whether the values ask for nothing: zeros, and words that switch off.
bool asksnothing(const std::vector<std::string> &values)
{
    constexpr std::string_view quietwords[] = {"",     "0",        "off",     "no",
                                               "none", "internal", "constant"};
    return std::all_of(values.begin(), values.end(), [&](const std::string &value) {
        double number = 0;
        if (readreal(value, number)) return number == 0;
        return std::find(std::begin(quietwords), std::end(quietwords), tlc(value)) !=
               std::end(quietwords);
    });
}

// The first value of a key: as its last line has it, or its default.
std::string settingof(const specreader &r, std::string_view name)
{
    const auto found = r.places.find(findkey(tlc(name)));
    if (found == r.places.end()) return describekey(name)->standard;
    std::string first;
    std::vector<std::string> values;
    parseline(found->second.record, first, values);
    return values.empty() ? "" : values[0];
}

// A clause Key=Word|Word, Key!=Word or Key>number of what a key needs to have an effect. False for
// the clause "never".
bool ismet(const specreader &r, std::string_view clause)
{
    const std::size_t at = clause.find_first_of("!=>");
    if (at == std::string_view::npos) return false;
    const std::string setting = settingof(r, clause.substr(0, at));
    if (clause[at] == '>') {
        double number = 0, least = 0;
        return readreal(setting, number) && readreal(clause.substr(at + 1), least) &&
               number > least;
    }
    const bool wantsother = clause[at] == '!';
    const std::string words = '|' + tlc(clause.substr(at + (wantsother ? 2 : 1))) + '|';
    return (words.find('|' + tlc(setting) + '|') != std::string::npos) != wantsother;
}

// The first clause of a key's needs that isn't met; empty if all are.
std::string_view unmetclause(const specreader &r, std::string_view needs)
{
    while (!needs.empty()) {
        const std::string_view clause = needs.substr(0, needs.find(' '));
        if (!ismet(r, clause)) return clause;
        needs.remove_prefix(std::min(clause.size() + 1, needs.size()));
    }
    return {};
}

// A clause in words, behind "without effect".
std::string reasontext(std::string_view clause)
{
    const std::size_t at = clause.find_first_of("!=>");
    if (at == std::string_view::npos) return "in any run";
    const std::string key(clause.substr(0, at));
    if (clause[at] == '!') return "while " + key + " is " + std::string(clause.substr(at + 2));
    std::string words(clause.substr(at + 1));
    if (clause[at] == '>') return "unless " + key + " is above " + words;
    for (std::size_t bar = 0; (bar = words.find('|', bar)) != std::string::npos; bar += 4)
        words.replace(bar, 1, " or ");
    return "unless " + key + " is " + words;
}
} // namespace

void warnofidle(const specreader &r)
{
    std::map<std::string, std::string> idle; // keys, by the reason
    int64 nkeys = 0;
    std::string names;
    for (const keydescription &key : keydescriptions()) {
        const auto found = r.places.find(findkey(tlc(key.name)));
        if (found == r.places.end()) continue;
        const std::string_view clause = unmetclause(r, key.needs);
        std::string first;
        std::vector<std::string> values;
        parseline(found->second.record, first, values);
        if (clause.empty() || asksnothing(values)) continue;
        const std::string name =
            std::string(key.name) + " (line " + numbertext(found->second.line) + ')';
        std::string &list = idle[reasontext(clause)];
        list += (list.empty() ? "" : ", ") + name;
        names += (++nkeys == 1 ? "" : ", ") + name;
    }
    if (nkeys == 0) return;
    if (!r.s.options.checking)
        return warn(r.s.options, specfile, 0,
                    numbertext(nkeys) +
                        " keys are set, but without effect here (--check says why): " + names);
    for (const auto &[reason, list] : idle)
        warn(r.s.options, specfile, 0, "set, but without effect " + reason + ": " + list);
}
