#include "specsupport.h"

#include "testsupport.h"
#include "words.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace
{
std::vector<std::string> linesof(const std::string &text)
{
    std::istringstream in(text + "\n");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}
} // namespace

spectext::spectext(const std::string &content) : lines(linesof(content)) {}

// The n lines from line i on (from 0) become the lines of a text.
spectext &spectext::splice(std::size_t i, std::size_t n, const std::string &content)
{
    const auto at = lines.begin() + static_cast<std::ptrdiff_t>(std::min(i, lines.size()));
    const std::vector<std::string> added = linesof(content);
    const auto behind =
        lines.erase(at, at + static_cast<std::ptrdiff_t>(std::min(n, lines.size())));
    lines.insert(behind, added.begin(), added.end());
    return *this;
}

std::size_t spectext::find(const std::string &key) const
{
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (tlc(lines[i].substr(0, lines[i].find(','))) == tlc(key)) return i;
    return lines.size();
}

std::size_t spectext::findpresent(const std::string &key) const
{
    const std::size_t i = find(key);
    if (i == lines.size()) throw std::invalid_argument("no line of the key " + key);
    return i;
}

spectext &spectext::replace(const std::string &key, const std::string &line)
{
    return splice(findpresent(key), 1, line);
}

spectext &spectext::set(const std::string &key, const std::string &values)
{
    const std::size_t i = find(key);
    return splice(i, i < lines.size() ? 1 : 0, key + "," + values);
}

spectext &spectext::change(const std::string &changes)
{
    for (std::size_t at = 0, end; at < changes.size(); at = end + 2) {
        end = std::min(changes.find("; ", at), changes.size());
        const std::string line = changes.substr(at, end - at);
        const std::size_t mark = line.find_first_of(",=<");
        const std::string key = line.substr(0, mark);
        if (line.starts_with('-'))
            remove(line.substr(1));
        else if (line.starts_with('+'))
            append(line.substr(1));
        else if (mark == std::string::npos)
            throw std::invalid_argument("no change of a specification: " + line);
        else if (line[mark] == '=')
            replace(key, line.substr(mark + 1));
        else if (line[mark] == '<')
            movebefore(key, line.substr(mark + 1));
        else
            set(key, line.substr(mark + 1));
    }
    return *this;
}

spectext &spectext::remove(const std::string &key)
{
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(findpresent(key)));
    return *this;
}

spectext &spectext::insertbefore(const std::string &key, const std::string &line)
{
    return splice(findpresent(key), 0, line);
}

spectext &spectext::addrow(const std::string &key, const std::string &row)
{
    std::size_t i = findpresent(key) + 1;
    while (i < lines.size() && lines[i].find_first_of("-0123456789") == 0) ++i;
    return splice(i, 0, row);
}

spectext &spectext::append(const std::string &line)
{
    return splice(lines.size(), 0, line);
}

spectext &spectext::movebefore(const std::string &key, const std::string &other)
{
    const std::string line = lines[findpresent(key)];
    return remove(key).insertbefore(other, line);
}

spectext &spectext::moveafter(const std::string &key, const std::string &other)
{
    const std::string line = lines[findpresent(key)];
    remove(key);
    return splice(findpresent(other) + 1, 0, line);
}

std::string spectext::text() const
{
    std::string all;
    for (const std::string &line : lines) all += line + "\n";
    return all;
}

void spectext::write() const
{
    writefile("SolvantoSpec.txt", text());
}

spectext documentedspec()
{
    const std::vector<std::string> page = readlines(sourcefolder() + "/docs/spec-file.md");
    const auto begin = std::find(page.begin(), page.end(), "```text") + 1;
    spectext spec("");
    spec.lines.assign(begin, std::find(begin, page.end(), "```"));
    return spec;
}

spectext goodspec()
{
    static const spectext good = documentedspec().change(
        "NumberOfIndividualsInEachGeneration,Constant,20; "
        "NumberOfSiresInEachGeneration,Constant,4; NumberOfDamsInEachGeneration,Constant,10; "
        "NumberOfChromosomes,2; PopulationHistoryMaCS,InternalTest; NumberOfHaplotypes,40; "
        "EffectivePopulationSizeBaseMaCS,Value,100; NumberOfSnpChips,1; "
        "nSnpPerChipPerChromosme,20; "
        "MinMaxAlleleFreqForSnp,0,1; IdOfChipUsedForSelection,1; "
        "NumberOfQtnPerChromosomeNormalDist,10; NumberOfQtnPerChromosomeGammaDist,10; "
        "MinMaxAlleleFreqForModel2And4,0,0.5; DominanceDegreeMeanAndVariance,0.1,0.2; "
        "SelectionMethod,Tbv; TrainingSetSizeForRandomPhenotypesStrat,20; NumberOfTraits,1; "
        "IndexWeights,1; TraitHeritability,0.5; TraitGeneticVariance,1; -0.3 1.0; -0.1 1.0");
    return good;
}

spectext smallrun()
{
    return goodspec()
        .set("NumberOfHaplotypes", "40")
        .set("ChromosomeLengthBasesMaCS", "External,10000000")
        .set("ChromosomeLengthMorgansMaCS", "External,1.0")
        .set("ChromosomeLengthMorgansSolvanto", "External,1.0")
        .set("MutationRateMaCS", "External,2.5e-8")
        .set("EffectivePopulationSizeBaseMaCS", "External,100");
}
