#include "exportoptions.h"

#include "stops.h"
#include "textlayout.h"

#include <cstdio>
#include <set>
#include <string_view>

const char exportusage[] = "FOLDER --to vcf|bcf|plink|pgen|tables --output PREFIX [options]";
const char exportdetails[] =
    "Writes what a run left in FOLDER for other programs. The run must be at its end, or between\n"
    "two runs.\n"
    "\n"
    "  --to vcf             PREFIX.vcf.gz (bgzip) and its index, phased\n"
    "  --to bcf             PREFIX.bcf and its index, phased\n"
    "  --to plink           PREFIX.bed, .bim and .fam\n"
    "  --to pgen            PREFIX.pgen, .pvar and .psam, phased; plink2 makes them, which must "
    "be\n"
    "                       installed\n"
    "  --to tables          tab-separated text: PREFIX.individuals.tsv, .sites.tsv, .qtn.tsv and\n"
    "                       .generations.tsv\n"
    "  --output PREFIX      what the names of the files begin with\n"
    "  --data DATA          chip<e>, a chip; sequence, all sites; founders, the haplotypes of the\n"
    "                       founders (vcf and bcf) (the chip of selection)\n"
    "  --samples SET        last, all, training or candidates: the last generation, all of them, "
    "or\n"
    "                       those of the last cycle of selection (last; all where the next two\n"
    "                       options choose)\n"
    "  --generations A-B    only individuals of these generations\n"
    "  --individuals FILE   only individuals whose numbers stand in the file\n"
    "  --chromosomes LIST   only these, as 1,3,7-9\n"
    "  --qtn CHOICE         only: QTN alone; without: no QTN; with: all QTN beside the data's "
    "sites.\n"
    "                       QTN are marked in INFO whatever the choice (the data's sites as they "
    "are)\n"
    "  --phenotype WHAT     for plink and pgen: trait<t>, the phenotype of a trait, or tbv<t>, "
    "its\n"
    "                       true breeding value (none)\n"
    "  --uncompressed       plain .vcf, or .bcf without compression and index\n"
    "  --threads N          threads that compress (1)\n"
    "  --force              replaces files that are there\n"
    "\n"
    "Individual 12 is sample I12. Allele 0 is A, the reference, and allele 1 is T. A file is "
    "written\n"
    "whole or not at all. docs/export.md tells the rest.\n"
    "\n"
    "Exit status: 0 when all files stand; 2 for arguments, and for files that could not be read "
    "or\n"
    "written; 1 and others as solvanto's, where the specification is refused.\n";

namespace
{
[[noreturn]] void refuse(const std::string &reason)
{
    std::fprintf(stderr, "ERROR: %s\nsolvanto-export --help tells what there is\n", reason.c_str());
    plainstop(2);
}

template <class Value> struct choice {
    std::string_view word;
    Value value;
};

template <class Value, std::size_t n>
Value chosen(const std::string &option, const std::string &word, const choice<Value> (&choices)[n])
{
    std::string words;
    for (const choice<Value> &one : choices) {
        if (word == one.word) return one.value;
        words += (words.empty() ? "" : ", ") + std::string(one.word);
    }
    refuse(option + " " + word + ": one of " + words + " is wanted");
}

constexpr choice<exportformat> formats[] = {{"vcf", exportformat::vcf},
                                            {"bcf", exportformat::bcf},
                                            {"plink", exportformat::plink},
                                            {"pgen", exportformat::pgen},
                                            {"tables", exportformat::tables}};
constexpr choice<sampleset> samplesets[] = {{"last", sampleset::last},
                                            {"all", sampleset::all},
                                            {"training", sampleset::training},
                                            {"candidates", sampleset::candidates}};
constexpr choice<qtnchoice> qtnchoices[] = {
    {"only", qtnchoice::only}, {"without", qtnchoice::without}, {"with", qtnchoice::with}};

// The number behind a word such as chip3; 0 where the text isn't the word and a number from 1.
int64 numberbehind(const std::string &text, std::string_view word)
{
    int64 number = 0;
    const bool good = text.starts_with(word) &&
                      readinteger(std::string_view(text).substr(word.size()), number) && number > 0;
    return good ? number : 0;
}

bool readrange(std::string_view text, int64 &first, int64 &last)
{
    const std::size_t dash = text.find('-');
    const std::string_view upper = dash == text.npos ? text : text.substr(dash + 1);
    return readinteger(text.substr(0, dash), first) && readinteger(upper, last) && first >= 1 &&
           last >= first;
}

void readdata(const std::string &word, exportoptions &options)
{
    if (word == "sequence") {
        options.data = exportdata::sequence;
    } else if (word == "founders") {
        options.data = exportdata::founders;
    } else {
        options.data = exportdata::chip;
        options.chip = numberbehind(word, "chip");
        if (options.chip == 0)
            refuse("--data " + word + ": chip<e>, sequence or founders is wanted");
    }
}

void readphenotype(const std::string &word, exportoptions &options)
{
    options.phenotype = word.starts_with("tbv") ? phenotypekind::tbv : phenotypekind::trait;
    options.trait = numberbehind(word, options.phenotype == phenotypekind::tbv ? "tbv" : "trait");
    if (options.trait == 0) refuse("--phenotype " + word + ": trait<t> or tbv<t> is wanted");
}

void readoption(const std::string &option, const std::string &word, exportoptions &options)
{
    int64 number = 0;
    if (option == "--to") {
        options.format = chosen(option, word, formats);
    } else if (option == "--output") {
        options.output = word;
        if (word.empty()) refuse("--output: what the names of the files begin with is wanted");
    } else if (option == "--data") {
        readdata(word, options);
    } else if (option == "--samples") {
        options.samples = chosen(option, word, samplesets);
    } else if (option == "--generations") {
        if (!readrange(word, options.firstgeneration, options.lastgeneration))
            refuse("--generations " + word + ": the first and last generation, as 2-5, are wanted");
    } else if (option == "--individuals") {
        options.individualsfile = word;
    } else if (option == "--chromosomes") {
        if (!readnumberlist(word, options.chromosomes))
            refuse("--chromosomes " + word + ": a list such as 1,3,7-9 is wanted");
    } else if (option == "--qtn") {
        options.qtn = chosen(option, word, qtnchoices);
    } else if (option == "--phenotype") {
        readphenotype(word, options);
    } else if (option == "--threads") {
        if (!readinteger(word, number) || number < 1 || number > 1024)
            refuse("--threads " + word + ": a number from 1 to 1024 is wanted");
        options.nthreads = static_cast<int>(number);
    } else {
        refuse("argument " + option + " is not known");
    }
}

void stopifcontradictory(const exportoptions &options)
{
    const bool isplink =
        options.format == exportformat::plink || options.format == exportformat::pgen;
    const bool istext = options.format == exportformat::vcf || options.format == exportformat::bcf;
    if (options.folder.empty()) refuse("the folder of a run is wanted");
    if (options.format == exportformat::unset) refuse("--to is missing: what is wanted?");
    if (options.output.empty())
        refuse("--output is missing: what the names of the files begin with");
    if (options.phenotype != phenotypekind::none && !isplink)
        refuse("--phenotype is for --to plink and --to pgen; --to tables writes all values");
    if (options.uncompressed && !istext) refuse("--uncompressed is for --to vcf and --to bcf");
    const bool chosensamples = options.samples != sampleset::unset || options.firstgeneration > 0 ||
                               !options.individualsfile.empty();
    if (options.data == exportdata::founders && (!istext || chosensamples))
        refuse("--data founders: these are no individuals of the pedigree, and go to vcf and bcf "
               "alone");
}
} // namespace

bool readnumberlist(const std::string &text, std::vector<int64> &numbers)
{
    std::set<int64> all;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t comma = std::min(text.find(',', at), text.size());
        int64 first = 0, last = 0;
        if (!readrange(std::string_view(text).substr(at, comma - at), first, last)) return false;
        if (last - first > 1000000) return false;
        for (int64 number = first; number <= last; ++number) all.insert(number);
        at = comma + 1;
    }
    numbers.assign(all.begin(), all.end());
    return true;
}

exportoptions readexportoptions(const std::vector<std::string> &words)
{
    exportoptions options;
    std::set<std::string> seen;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string &word = words[i];
        if (!word.starts_with("-")) {
            if (!options.folder.empty()) refuse("one folder at a time, not also " + word);
            options.folder = word;
            continue;
        }
        if (!seen.insert(word).second) refuse(word + " is given twice");
        if (word == "--force") {
            options.force = true;
        } else if (word == "--uncompressed") {
            options.uncompressed = true;
        } else {
            if (i + 1 == words.size()) refuse(word + ": is not known, or its value is missing");
            readoption(word, words[++i], options);
        }
    }
    stopifcontradictory(options);
    return options;
}
