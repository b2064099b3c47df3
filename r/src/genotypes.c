/* Alleles out of text of fixed columns and out of packed genomes, and the lock of a run folder.
 *
 * Text: rows of an identifier in 20 columns and an allele in 2 columns for each site, all equally long.
 * Matrices of R hold the row fastest, so rows are taken in bands whose columns stay in the processor's
 * cache while they are filled. */
#define _GNU_SOURCE
#include <R.h>
#include <R_ext/Rdynload.h>
#include <Rinternals.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <unistd.h>

enum { identifier = 20, band = 64 };

/* What one of the rows has that it mustn't: 0 nothing, 1 another length, 2 another cell. */
static int fault(const unsigned char *rows, R_xlen_t n, R_xlen_t width)
{
    for (R_xlen_t i = 0; i < n; ++i)
        if (rows[(i + 1) * width - 1] != '\n') return 1;
    return 0;
}

/* Rows of a band to places begin, begin + 1, ... of identifiers and of a matrix of nrow rows. */
static int fillband(const unsigned char *rows, R_xlen_t n, R_xlen_t width, R_xlen_t first, R_xlen_t ncol,
                    R_xlen_t begin, R_xlen_t nrow, double *identifiers, int *cells)
{
    if (fault(rows, n, width)) return 1;
    for (R_xlen_t i = 0; i < n; ++i) {
        char text[identifier + 1] = {0};
        memcpy(text, rows + i * width, identifier);
        identifiers[begin + i] = atof(text);
    }
    unsigned seen = 0;
    for (R_xlen_t j = 0; j < ncol; ++j) {
        const unsigned char *from = rows + identifier + 1 + 2 * (first + j);
        int *to = cells + j * nrow + begin;
        for (R_xlen_t i = 0; i < n; ++i) {
            const unsigned value = from[i * width] - '0';
            seen |= value > 2;
            to[i] = (int)value;
        }
    }
    return seen ? 2 : 0;
}

static SEXP result(SEXP identifiers, SEXP cells, int status)
{
    SEXP list = PROTECT(allocVector(VECSXP, 3));
    SET_VECTOR_ELT(list, 0, identifiers);
    SET_VECTOR_ELT(list, 1, cells);
    SET_VECTOR_ELT(list, 2, ScalarInteger(status));
    UNPROTECT(1);
    return list;
}

/* nrow rows of a plain file from a byte on, columns first + 1 to first + ncol of the sites.
 * Gives identifiers, matrix, and 0, or what is wrong: 1, 2 as above. */
SEXP rowsoffile(SEXP path, SEXP offset, SEXP nrows, SEXP rowwidth, SEXP firstcolumn, SEXP ncols)
{
    const R_xlen_t n = (R_xlen_t)asReal(nrows), width = (R_xlen_t)asReal(rowwidth),
                   first = (R_xlen_t)asReal(firstcolumn), ncol = (R_xlen_t)asReal(ncols);
    SEXP identifiers = PROTECT(allocVector(REALSXP, n));
    SEXP cells = PROTECT(allocMatrix(INTSXP, (int)n, (int)ncol));
    const int file = open(CHAR(STRING_ELT(path, 0)), O_RDONLY | O_CLOEXEC);
    if (file < 0) error("%s: %s", CHAR(STRING_ELT(path, 0)), strerror(errno));
    unsigned char *rows = malloc((size_t)(band * width));
    int status = rows == NULL ? 1 : 0;
    off_t place = (off_t)asReal(offset);
    for (R_xlen_t begin = 0; begin < n && status == 0; begin += band) {
        const R_xlen_t some = n - begin < band ? n - begin : band;
        R_xlen_t got = 0;
        while (got < some * width) {
            const ssize_t piece = pread(file, rows + got, (size_t)(some * width - got), place + got);
            if (piece <= 0) break;
            got += piece;
        }
        place += got;
        status = got < some * width ? 1
                                    : fillband(rows, some, width, first, ncol, begin, n,
                                               REAL(identifiers), INTEGER(cells));
    }
    free(rows);
    close(file);
    SEXP list = result(identifiers, cells, status);
    UNPROTECT(2);
    return list;
}

/* The same of bytes in memory, of a file that was packed. */
SEXP rowsofbytes(SEXP bytes, SEXP offset, SEXP nrows, SEXP rowwidth, SEXP firstcolumn, SEXP ncols)
{
    const R_xlen_t n = (R_xlen_t)asReal(nrows), width = (R_xlen_t)asReal(rowwidth),
                   first = (R_xlen_t)asReal(firstcolumn), ncol = (R_xlen_t)asReal(ncols),
                   start = (R_xlen_t)asReal(offset);
    if (start + n * width > xlength(bytes)) error("rows behind the end");
    SEXP identifiers = PROTECT(allocVector(REALSXP, n));
    SEXP cells = PROTECT(allocMatrix(INTSXP, (int)n, (int)ncol));
    int status = 0;
    for (R_xlen_t begin = 0; begin < n && status == 0; begin += band) {
        const R_xlen_t some = n - begin < band ? n - begin : band;
        status = fillband(RAW(bytes) + start + begin * width, some, width, first, ncol, begin, n,
                          REAL(identifiers), INTEGER(cells));
    }
    SEXP list = result(identifiers, cells, status);
    UNPROTECT(2);
    return list;
}

/* Alleles of nindiv individuals, (individual, gamete, site), from 64-bit blocks of 60 sites, in which the
 * individual varies fastest, then the block, then the gamete. A block that was never made gives NULL. */
SEXP unpackgenomes(SEXP bytes, SEXP nindividuals)
{
    const R_xlen_t n = (R_xlen_t)asReal(nindividuals), nblock = xlength(bytes) / 16 / n;
    SEXP alleles = PROTECT(allocVector(INTSXP, n * 2 * nblock * 60));
    int *out = INTEGER(alleles);
    for (R_xlen_t m = 0; m < 2; ++m)
        for (R_xlen_t b = 0; b < nblock; ++b)
            for (R_xlen_t k = 0; k < n; ++k) {
                unsigned long long block = 0;
                memcpy(&block, RAW(bytes) + 8 * (k + n * (b + nblock * m)), 8);
                if (block >> 60) {
                    UNPROTECT(1);
                    return R_NilValue;
                }
                for (R_xlen_t p = 0; p < 60; ++p)
                    out[k + n * (m + 2 * (60 * b + p))] = (int)(block >> (59 - p) & 1);
            }
    UNPROTECT(1);
    return alleles;
}

/* Whether a run holds the lock of a specification. */
SEXP islocked(SEXP path)
{
    const int file = open(CHAR(STRING_ELT(path, 0)), O_RDONLY | O_CLOEXEC);
    if (file < 0) return ScalarLogical(0);
    const int locked = flock(file, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(file);
    return ScalarLogical(locked);
}

/* Numbers of texts, rounded to the nearest double, as R's own reading of decimals isn't always; NA where a
 * text is anything else. */
SEXP exactnumbers(SEXP texts)
{
    const R_xlen_t n = xlength(texts);
    SEXP numbers = PROTECT(allocVector(REALSXP, n));
    for (R_xlen_t i = 0; i < n; ++i) {
        const char *const text = CHAR(STRING_ELT(texts, i));
        char *end;
        const double value = strtod(text, &end);
        while (*end == ' ') ++end;
        REAL(numbers)[i] = end == text || *end != 0 ? NA_REAL : value;
    }
    UNPROTECT(1);
    return numbers;
}

static const R_CallMethodDef routines[] = {{"rowsoffile", (DL_FUNC)&rowsoffile, 6},
                                           {"rowsofbytes", (DL_FUNC)&rowsofbytes, 6},
                                           {"unpackgenomes", (DL_FUNC)&unpackgenomes, 2},
                                           {"islocked", (DL_FUNC)&islocked, 1},
                                           {"exactnumbers", (DL_FUNC)&exactnumbers, 1},
                                           {NULL, NULL, 0}};

void R_init_solvanto(DllInfo *info)
{
    R_registerRoutines(info, NULL, routines, NULL, NULL);
    R_useDynamicSymbols(info, FALSE);
}
