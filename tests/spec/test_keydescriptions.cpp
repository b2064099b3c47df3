#include "spec/keydescriptions.h"

#include "merge/startmerge.h"
#include "spec/keylist.h"
#include "spec/readinparameters.h"
#include "spec/specreader.h"
#include "specsupport.h"
#include "testsupport.h"
#include "words.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace
{
std::vector<std::string> splitat(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
    return parts;
}

outcome read(const spectext &spec)
{
    spec.write();
    return runbody([] {
        const runsettings settings = readinparameters();
        state s(settings);
        startmerge(s);
    });
}

// Selection on estimates, so that no key is passed over because of the method.
spectext estimatingspec()
{
    spectext spec = goodspec();
    return spec.change("SelectionMethod,GBlup; SelectionPhenotypingStrategy,AllPhenotypes; "
                       "AddQtnToTheSnpChipYesNo,No; UseExternalSnpSolutionsYesNo,No; "
                       "ComputeAverageCoancestryYesNo,No");
}
} // namespace

class keydescribing : public infolder
{
};

// The descriptions are those of the keys that are read, in their order, and what they name (other
// keys, words of theirs) exists.
TEST_F(keydescribing, namesallkeysandonlywhatexists)
{
    std::vector<std::string> described, wanted;
    for (const keydescription &key : keydescriptions()) {
        described.push_back(tlc(key.name));
        EXPECT_EQ(describekey(tlc(key.name)), &key);
        for (const char *text : {key.form, key.bounds, key.standard, key.meaning, key.usual})
            EXPECT_STRNE(text, "") << key.name;
        if (std::string_view(key.needs) == "never") continue;
        for (const std::string &term : splitat(key.needs, ' ')) {
            const keydescription *other = describekey(term.substr(0, term.find_first_of("=!>")));
            ASSERT_NE(other, nullptr) << term;
            const std::size_t mark = term.find_last_of("=>");
            const std::string words = term[mark] == '>' ? "0 1" : other->words;
            for (const std::string &word : splitat(term.substr(mark + 1), '|'))
                EXPECT_NE((" " + words + " ").find(" " + word + " "), std::string::npos) << term;
        }
    }
    for (const speckey &key : allspeckeys()) wanted.emplace_back(key.name);
    EXPECT_EQ(described, wanted);
    EXPECT_EQ(describekey("NumberOfTrait"), nullptr);
}

// Words that are listed are taken. A key is called required if and only if a specification without
// it is refused.
TEST_F(keydescribing, agreeswiththereader)
{
    const spectext good = estimatingspec();
    ASSERT_EQ(read(good).code(), 0);
    for (const keydescription &key : keydescriptions()) {
        const int64 code = findkey(tlc(key.name))->code;
        for (const std::string &word : splitat(key.words, ' '))
            EXPECT_NE(read(spectext(good).set(key.name, word)).code(), code) << key.name << word;
        spectext without = good;
        without.remove(key.name);
        const bool flexible = std::string_view(key.name) == "StartStopGeneration";
        if (flexible) without.set("GenerationFlexibilityOnOff", "On");
        const bool chips = std::string_view(key.name) == "IdOfChipUsedForSelection";
        if (chips) without.change("NumberOfSnpChips,2; nSnpPerChipPerChromosme,10,20");
        if (std::string_view(key.form) == "matrix rows")
            std::erase_if(without.lines, [](const std::string &line) { return line[0] == '1'; });
        EXPECT_EQ(read(without).code() != 0, std::string_view(key.standard) == "required")
            << key.name;
    }
}

// What --keys prints is JSON: an object for each key, each field on a line, strings closed, and
// commas behind all but the last of a list.
TEST(keylist, isjson)
{
    const std::regex field(
        R"re(    "([a-z]+)": ("([^"\\]|\\["\\])*"|[0-9]+|\[("[A-Za-z]+"(, )?)*\]))re");
    const std::vector<std::string> lines = splitat(keysasjson(), '\n');
    ASSERT_EQ(lines.front() + lines.back(), "[]");
    std::vector<std::string> objects;
    for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
        std::string line = lines[i];
        const char next = lines[i + 1][lines[i + 1].find_first_not_of(' ')];
        const bool comma = line != "  {" && next != '}' && next != ']';
        ASSERT_EQ(line.ends_with(','), comma) << line;
        if (comma) line.pop_back();
        std::smatch parts;
        if (line == "  {")
            objects.emplace_back();
        else if (std::regex_match(line, parts, field))
            objects.back() += std::string(parts[1]) + " ";
        else
            ASSERT_EQ(line, "  }");
    }
    EXPECT_EQ(objects, std::vector<std::string>(
                           keydescriptions().size(),
                           "name box form words bounds default standsafter code message meaning "
                           "unit usual pitfall needs "));
}
