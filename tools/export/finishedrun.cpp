#include "finishedrun.h"

#include "allelerows.h"
#include "founders/extractsegsites.h"
#include "founders/presets.h"
#include "pedigree/pedigreefiles.h"
#include "randomnumbers.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "runlock.h"
#include "selection/trainingsets.h"
#include "shell.h"
#include "spec/readinparameters.h"
#include "spec/specreader.h"
#include "stops.h"
#include "values/phenotypes.h"
#include "words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <htslib/hts.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

int64 finishedrun::generationof(int64 individual) const
{
    return std::lower_bound(cumindiv.begin(), cumindiv.end(), individual) - cumindiv.begin();
}

// ------------------------------------------------------------------ texts, packed or plain

bool istextthere(const std::string &path)
{
    return pathexists(path) || pathexists(path + ".gz");
}

std::string textpath(const std::string &path)
{
    return pathexists(path) ? path : path + ".gz";
}

runtext::runtext(const std::string &path)
{
    const std::string stored = textpath(path);
    if (stored == path) {
        in.open(path, author::system);
        return;
    }
    openchecked(stored, O_RDONLY); // gzip's own message wouldn't be ours
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) ioerrno(stored, "can't make a pipe");
    filedescriptor reading(ends[0]), writing(ends[1]);
    std::fflush(stdout);
    process = ::fork();
    if (process < 0) ioerrno(stored, "can't start gzip");
    if (process == 0) {
        ::dup2(writing, STDOUT_FILENO);
        std::signal(SIGPIPE, SIG_DFL); // it ends quietly where nobody reads on
        ::execlp("gzip", "gzip", "-dc", stored.c_str(), static_cast<char *>(nullptr));
        ::_exit(127);
    }
    in.take(std::move(reading), stored, author::system);
}

void runtext::finish()
{
    if (process < 0) return;
    int status = 0;
    const bool ended = ::waitpid(process, &status, 0) == process;
    process = -1;
    if (!ended || status != 0) ioerror(in.path(), "gzip could not unpack it");
}

runtext::~runtext()
{
    if (process < 0) return;
    in.close(); // who writes into a closed pipe ends
    int status = 0;
    ::waitpid(process, &status, 0);
}

// ------------------------------------------------------------------ whether it is at rest

namespace
{
namespace fs = std::filesystem;

// Standard output goes into a file without a name, and is shown on standard error only where it
// ends with a stop: what a run reports of its specification isn't this program's.
class outputaside
{
  public:
    outputaside()
    {
        std::fflush(stdout);
        kept = filedescriptor(::dup(STDOUT_FILENO));
        aside = filedescriptor(::memfd_create("report", MFD_CLOEXEC));
        ::dup2(aside.isopen() ? aside : STDERR_FILENO, STDOUT_FILENO);
    }
    ~outputaside()
    {
        std::fflush(stdout);
        ::dup2(kept, STDOUT_FILENO);
    }
    void show()
    {
        std::fflush(stdout);
        char bytes[4096];
        for (off_t at = 0; aside.isopen();) {
            const ssize_t n = ::pread(aside, bytes, sizeof bytes, at);
            if (n <= 0) return;
            std::fwrite(bytes, 1, static_cast<std::size_t>(n), stderr);
            at += n;
        }
    }

  private:
    filedescriptor kept, aside;
};

runsettings readspecification()
{
    outputaside report;
    runoptions quiet;
    quiet.quiet = true;
    try {
        return readinparameters(quiet);
    } catch (const stopped &) {
        report.show();
        throw;
    }
}

void stopifyounger(const std::string &path)
{
    if (fs::last_write_time(oldseedfile) <= fs::last_write_time(path)) return;
    ioerror(path, std::string("is older than ") + oldseedfile +
                      ": a run has begun since and isn't at its end. If none is under way (it was "
                      "refused, or the folder is a copy without times): touch " +
                      path);
}

// A file that a run writes at its end holds a row of each individual.
void stopifincomplete(const std::string &path, int64 nindividuals, int64 titlelength)
{
    if (!istextthere(path))
        ioerror(path, "is missing, which a run makes at its end: the run was cut short");
    stopifyounger(textpath(path));
    if (!pathexists(path)) return; // packed: its reader counts the rows
    infile in(path);
    in.skiprecords(titlelength > 0 ? 1 : 0);
    in.record();
    const int64 rowlength = std::ssize(in.line()) + 1;
    const int64 nrows =
        (static_cast<int64>(fs::file_size(path)) - titlelength) / std::max<int64>(rowlength, 1);
    if (nrows != nindividuals)
        ioerror(path, "holds " + numbertext(nrows) + " individuals, and " + valuetable + " " +
                          numbertext(nindividuals) + ": the run was cut short");
}

void stopifunfinished(const state &s, int64 nindividuals)
{
    if (s.chips.nchip == 0) stopifyounger(valuetable);
    for (int64 e = 1; e <= s.chips.nchip; ++e)
        stopifincomplete(chipgenotypefile(e), nindividuals, 0);
    // The title of the sequence: I50 and a line end.
    if (s.run.fullseqoutonoff) stopifincomplete(sequencegenotypefile, nindividuals, 51);
}

// Generations all of whose individuals have values: the pedigree may hold one more, whose parents
// the user is about to choose.
std::vector<int64> generationswithvalues(int64 nvalues)
{
    std::vector<int64> cumindiv{0};
    for (const generationcounts &counts : readgenerationcounts(generationtable))
        if (cumindiv.back() + counts.nindiv <= nvalues)
            cumindiv.push_back(cumindiv.back() + counts.nindiv);
    if (cumindiv.back() != nvalues)
        ioerror(valuetable, "holds " + numbertext(nvalues) + " individuals, and " +
                                generationtable + " " + numbertext(cumindiv.back()) +
                                " in whole generations: the run was cut short");
    return cumindiv;
}

std::string checksumof(const std::string &path)
{
    hts_md5_context *const context = hts_md5_init();
    if (!context) ioerror(path, "no memory for its checksum");
    const filedescriptor file = openchecked(path, O_RDONLY);
    std::vector<char> bytes(buffersize);
    while (const std::size_t n = readchecked(file, path, bytes.data(), bytes.size()))
        hts_md5_update(context, bytes.data(), n);
    unsigned char digest[16];
    char text[33];
    hts_md5_final(digest, context);
    hts_md5_hex(text, digest);
    hts_md5_destroy(context);
    return text;
}

int64 seedofrun()
{
    infile in(oldseedfile);
    in.record();
    return in.integer();
}
} // namespace

finishedrun openfinishedrun()
{
    finishedrun run;
    if (!pathexists(specfile))
        ioerror(specfile,
                "there is none in " + workingdirectory() + ": this is no folder of a run");
    run.lock = lockreading({}, specfile);
    for (const char *path : {valuetable, pedigreetable, generationtable, oldseedfile})
        if (!pathexists(path)) ioerror(path, "is missing: no run has ended in this folder");
    run.settings = readspecification();
    run.s = std::make_unique<state>(run.settings);
    run.cumindiv = generationswithvalues(countlines(valuetable) - 1);
    stopifunfinished(*run.s, run.nindividuals());

    run.s->pedi.ped.allocate(run.nindividuals());
    readpedigree(*run.s, run.nindividuals());
    for (const genderline &line : readgenderlines(run.nindividuals()))
        run.gender.push_back(line.gender);
    run.nsites = readincludedcounts();
    run.chrlength = chromosomelength(*run.s);
    run.seed = seedofrun();
    run.specificationchecksum = checksumof(specfile);
    return run;
}

void loadvalues(const finishedrun &run)
{
    state &s = *run.s;
    for (array3<double> *values : {&s.values.tbv, &s.values.tdv, &s.values.tpv})
        values->allocate(run.nindividuals(), s.qtn.nqtnmodels, s.traits.ntraits);
    readtruevalues(s, run.nindividuals());
}

std::string filedvalue(double value)
{
    if (!std::isfinite(value)) return "NA";
    char text[400];
    constexpr int ndecimals = 10;
    const auto end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, ndecimals);
    return std::string(text, end.ptr);
}
