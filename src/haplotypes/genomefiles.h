// genomefiles.h - the binary files of packed genomes, one framed record each.
//
//   MacsHaplotypesInBlocks.txt   (nhaplos, nblock): founder haplotypes of a chromosome
//   GenomeGeneration<g>.txt      (nindiv, nblock, 2): genomes of a generation
//
// 64-bit integers; in the file the haplotype or individual varies fastest, then the block, then
// the gamete, while in memory each gamete is contiguous. The record is transposed on the way,
// through a buffer of a few megabytes or, where a generation is very large, of 8 blocks of every
// individual. A file whose record has another length is an I/O error that names it.
#pragma once

#include "files.h"
#include "state.h"

#include <string>
#include <vector>

inline std::string haplotypeblocksfile(int64 chrom)
{
    return chromfolder(chrom) + "MacsHaplotypesInBlocks.txt";
}
inline std::string genomefile(int64 chrom, int64 gen)
{
    return chromfolder(chrom) + "GenomeGeneration" + std::to_string(gen) + ".txt";
}

// Reads them through, as readgenome does, and keeps nothing.
void checkgenomeblocks(const std::string &path, int64 nindiv, int64 nblock);
// Genomes of a generation; g is made anew unless it has the extents already.
void readgenome(const std::string &path, genomestore &g, int64 nindiv, int64 nblock);
// limit is the longest frame; only tests give another one.
void writegenome(const std::string &path, const genomestore &g, int64 limit = framelimit);

// Genomes of some individuals of a generation of nindiv: rows(1), rows(2), ... are their places in
// the file, from 1; they go to places firstplace, firstplace + 1, ... of g, which must have room.
// Memory: one block of every individual of the file.
void readgenomerows(const std::string &path, int64 nindiv, int64 nblock, const array1<int64> &rows,
                    genomestore &g, int64 firstplace);

// Reads such a file block by block, of all its rows: what is made site by site needs no more in
// memory. Rows are the individuals of a generation, or with one gamete the haplotypes of a
// chromosome.
class genomeblocks
{
  public:
    // ngametes is 2, or 1 for haplotypes. bytesatatime: of the buffer for each gamete.
    genomeblocks(const std::string &path, int64 nrows, int64 nblock, int64 ngametes,
                 std::size_t bytesatatime = buffersize);
    // Block b of gamete m: row k at offset k - 1, valid until the next call for the gamete. Blocks
    // of a gamete are asked for in rising order, and may be left out.
    const int64 *block(int64 b, int64 m);

  private:
    struct gametereader {
        framereader in;
        int64 next = 1; // block
        std::vector<int64> rows;
    };
    int64 nrows;
    std::vector<gametereader> gametes;
};

// Founder haplotypes, as many as the file holds; h is made anew.
void readhaplotypes(const std::string &path, haplotypestore &h, int64 nblock);
void writehaplotypes(const std::string &path, const haplotypestore &h, int64 limit = framelimit);
