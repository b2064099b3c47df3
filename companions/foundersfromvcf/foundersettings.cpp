#include "foundersettings.h"

#include "files.h"
#include "shell.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <filesystem>

namespace
{
constexpr const char *settingsname = "Founders.txt";
constexpr const char *defaultnames[] = {"Founders.vcf.gz", "Founders.bcf"};

std::string inworkingfolder(const std::string &path)
{
    return path.starts_with('/') ? path : "../../" + path;
}

int64 chromosomeoffolder()
{
    const std::string name = std::filesystem::path(workingdirectory()).filename().string();
    constexpr std::string_view begins = "Chromosome";
    int64 chrom = 0;
    if (!name.starts_with(begins) ||
        !readinteger(std::string_view(name).substr(begins.size()), chrom) || chrom < 1)
        ioerror(workingdirectory(), "is no folder of a chromosome, Chromosomes/Chromosome<h> of a "
                                    "run: there this program stands in the place of macs");
    return chrom;
}

void readsamples(founderfile &settings)
{
    infile in(settings.samplesfile);
    while (in.nextrecord()) {
        const std::string_view name = trim(in.line());
        if (!name.empty()) settings.samples.emplace_back(name);
    }
    if (settings.samples.empty()) ioerror(settings.samplesfile, "names no samples");
}

void readsetting(infile &in, founderfile &settings)
{
    const std::string word(in.word());
    const auto rest = [&] {
        const std::string text(trim(in.rest()));
        if (text.empty()) in.complain(word + ": its value is missing");
        return text;
    };
    if (word == "file") {
        settings.file = inworkingfolder(rest());
    } else if (word == "samples") {
        settings.samplesfile = inworkingfolder(rest());
    } else if (word == "contig") {
        const int64 chrom = in.integer();
        const std::string contig = rest();
        if (chrom == settings.chrom) settings.contig = contig;
    } else if (word == "first") {
        settings.first = true;
    } else if (word == "--skip") {
        settings.skip = true;
    } else {
        in.complain("\"" + word + "\" is no setting: file, contig, samples, first and --skip are");
    }
}

std::string defaultfile()
{
    std::string found;
    for (const char *name : defaultnames) {
        const std::string path = inworkingfolder(name);
        if (!pathexists(path)) continue;
        if (!found.empty())
            ioerror(path, "stands beside " + found + ": say in " + settingsname +
                              " which one is meant (file PATH)");
        found = path;
    }
    if (found.empty())
        ioerror(
            inworkingfolder(defaultnames[0]),
            std::string("there is none, nor Founders.bcf: put the founders' haplotypes into the "
                        "working folder under that name, or name the file in ") +
                settingsname + " (file PATH)");
    return found;
}
} // namespace

founderfile readfoundersettings()
{
    founderfile settings;
    settings.chrom = chromosomeoffolder();
    const std::string path = inworkingfolder(settingsname);
    if (pathexists(path)) {
        infile in(path);
        while (in.nextrecord()) {
            const std::string_view line = trim(in.line());
            if (!line.empty() && line[0] != '#') readsetting(in, settings);
        }
    }
    if (settings.file.empty()) settings.file = defaultfile();
    if (!settings.samplesfile.empty()) readsamples(settings);
    return settings;
}
