#include "Corvalind/corvalind.h"

#include "Corvalind/matingpairs.h"
#include "evaluationhelpers/progress.h"
#include "evaluationhelpers/records.h"
#include "stops.h"
#include "words.h"

#include <cstdio>
#include <filesystem>

extern "C" void openblas_set_num_threads(int n);

namespace
{
constexpr const char *resultfolder = "CorvalindResults";
constexpr const char *frontierfile = "CorvalindResults/Frontier.txt";
constexpr const char *matingfile = "CorvalindResults/MatingListFinal.txt";
constexpr int64 npoints = 20; // of the frontier between minimum and optimum

void removeresults()
{
    for (const char *file : {frontierfile, matingfile}) std::remove(file); // mostly there is none
}

void makeresultfolder()
{
    std::error_code error;
    std::filesystem::create_directories(resultfolder, error);
    if (error) ioerror(resultfolder, "can't make the folder: " + error.message());
}

int64 readseed(const std::string &filename)
{
    infile in(filename);
    in.record();
    const int64 seed = in.integer();
    checkwholeline(in, 1, "one integer");
    return seed;
}

void writefrontier(const std::vector<frontierpoint> &frontier)
{
    outfile out(frontierfile);
    out.writeline(" Point Weight xGx Gain Kind");
    textline line;
    const int64 n = static_cast<int64>(frontier.size());
    for (int64 k = 1; k <= n; ++k) {
        const frontierpoint &point = frontier[static_cast<std::size_t>(k - 1)];
        putfree(line, k);
        for (const double value : {point.weight, point.xgx, point.gain}) putfree(line, value);
        putfree(line, k == 1 ? "Minimum" : k == n ? "Solution" : "Frontier");
        out.writeline(line);
    }
    out.close();
}

void writematings(const matingpairs &pairs)
{
    outfile out(matingfile);
    textline line;
    for (int64 k = 1; k <= pairs.male.size(); ++k) {
        putfree(line, pairs.male(k));
        putfree(line, pairs.female(k));
        out.writeline(line);
    }
    out.close();
}

void reportoptimum(const corvalindspec &spec, const optimum &best)
{
    const frontierpoint &minimum = best.frontier.front(), &solution = best.frontier.back();
    int64 ncontributors = 0;
    for (const double x : best.x) ncontributors += x > 0;
    note(numbertext(best.nsolved) + " programs solved, " + numbertext(best.nchanges) +
         " changes of the set of contributors");
    note("Minimum: x'Gx " + shortnumber(minimum.xgx) + ", gain " + shortnumber(minimum.gain));
    note("Optimum: x'Gx " + shortnumber(solution.xgx) + ", gain " + shortnumber(solution.gain) +
         ", " + numbertext(ncontributors) + " contributors");
    note("Difference of x'Gx: " + shortnumber(best.difference) + ", wanted " +
         shortnumber(spec.difference) + ": " + (best.reached ? "reached" : "NOT REACHED"));
    if (!best.reached) note("WARNING: the highest gain that there is needs no larger difference");
}

// How far the whole numbers are from the optimum, and who contributes.
void reportplan(const candidates &c, const optimum &best, const matingnumbers &plan,
                const matingpairs &pairs)
{
    const frontierpoint &solution = best.frontier.back();
    note("Mating plan: x'Gx " + shortnumber(plan.xgx) + ", " +
         shortnumber(plan.xgx - solution.xgx) + " from the optimum; gain " +
         shortnumber(plan.gain) + ", " + shortnumber(plan.gain - solution.gain) +
         " from the optimum; " + numbertext(plan.nmoves) + " matings moved");
    note("Mates: average relationship " + shortnumber(pairs.relationship) + ", " +
         numbertext(pairs.nselfed) + " selfed, at most " + numbertext(pairs.mostalike) +
         " matings of a pair, " + numbertext(pairs.nswaps) + " swaps");
    note(
        "Contributors: number, individual, gender (0: of no matter), breeding value, contribution, "
        "matings");
    textline line;
    for (int64 i = 1; i <= c.n; ++i) {
        if (!(best.x(i) > 0) && plan.number(i) == 0) continue;
        puti(line, i, 8);
        puti(line, c.indiv(i), 12);
        puti(line, c.npools == 2 ? c.pool(i) : 0, 3);
        putg(line, c.gain(i), 14, 6);
        putf(line, best.x(i), 12, 8);
        puti(line, plan.number(i), 8);
        note(line);
        line.clear();
    }
}

void allocate()
{
    openblas_set_num_threads(1); // sums in the same order everywhere
    const corvalindspec spec = readcorvalindspec("CorvalindSpec.txt");
    std::mt19937_64 random(static_cast<std::uint64_t>(readseed("Seed.txt")));
    makeresultfolder();
    candidates c;
    {
        const step reading("Reading " + numbertext(spec.nindiv) + " candidates");
        c = readcandidates(spec);
    }
    optimum best;
    {
        const step optimising("Optimising contributions");
        best = findoptimum(c, spec.difference, npoints);
    }
    reportoptimum(spec, best);
    matingnumbers plan;
    matingpairs pairs;
    {
        const step planning("Planning " + numbertext(spec.nmatings) + " matings");
        plan = allocatematings(c, best, spec.nmatings, spec.nplans, spec.ngenerations);
        pairs = pairmates(c, plan, spec.nplans, spec.ngenerations, random);
    }
    reportplan(c, best, plan, pairs);
    {
        const step writing("Writing the results");
        writefrontier(best.frontier);
        writematings(pairs);
    }
}
} // namespace

void corvalind()
{
    note("Corvalind: optimal contributions and mate allocation");
    removeresults();
    try {
        allocate();
    } catch (...) {
        removeresults();
        throw;
    }
    note("Corvalind has ended normally");
}
