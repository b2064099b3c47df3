// mergefolders.h - what a merge knows of the run folders that it takes individuals from.
#pragma once

#include "state.h"

#include <string>
#include <vector>

// One individual that is taken.
struct thing {
    int64 folder = 0;       // its source folder, from 1
    int64 id = 0;           // its number there
    int64 generation = 0;   // its generation there
    int64 generationid = 0; // its place in that generation, from 1
    int64 newid = 0;        // its number, generation and parents in the merged population
    int64 newgeneration = 1;
    int64 newsire = 0, newdam = 0; // 0 unknown
};

struct sourcefolder {
    std::string path;
    array1<int64> genarray;      // (generations) individuals in each
    array1<int64> accumgenarray; // (0 to generations) running sums, entry 0 is 0
    int64 ngenerations() const { return genarray.size(); }
    int64 nindividuals() const { return accumgenarray(ngenerations()); }
};

// A merge: the folder that the working folder becomes a copy of, the folders that give individuals,
// and these in the order of their new numbers, generation by generation.
struct mergeplan {
    std::string burninfolder;
    std::vector<sourcefolder> sources; // source folder f at offset f - 1
    std::vector<thing> things;         // individual i at offset i - 1
    const sourcefolder &sourceof(const thing &t) const
    {
        return sources[static_cast<std::size_t>(t.folder - 1)];
    }
};

// A path of the working folder (SimulatedData/..., ./Chromosomes/...) in another run's folder.
std::string inrunfolder(const std::string &folder, const std::string &path);

// Reads a NbOfIndivInEachGen.txt.
void calcindivsingen(const std::string &pathstr, array1<int64> &genarray,
                     array1<int64> &accumgenarray);
// The folder with its generations.
sourcefolder readsourcefolder(const std::string &path);
// Sets generation and generationid of an individual with a number up to the folder's last.
void calculategenid(thing &onething, const array1<int64> &accumgenarray);

// Makes SimulatedData and Chromosomes copies of the folder's, and an empty Selection. A copy that
// fails is an I/O error. Stop 900000: no Selection could be made.
void copyfromburnin(const std::string &burninfolder);

// The lines of a list with content, without the blanks behind them.
struct listline {
    int64 number = 0; // in the file
    std::string text;
};
std::vector<listline> readlist(const std::string &path);
// Stop 48 where the list holds another number of folders than the specification asks for.
void checksamefolders(const std::string &list, int64 expected, int64 found,
                      const std::string &what);
