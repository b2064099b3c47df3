// programruns.h - what the benchmarks of the evaluation programs share: running a program in a
// folder of its own, its time and memory, and ratios to what is allowed.
#pragma once

#include "files.h"
#include "stops.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern "C" {
void openblas_set_num_threads(int n);
void ssyrk_(const char *uplo, const char *trans, const int *n, const int *k, const float *alpha,
            const float *a, const int *lda, const float *beta, float *c, const int *ldc);
}

using clocktype = std::chrono::steady_clock;
inline double since(clocktype::time_point start)
{
    return std::chrono::duration<double>(clocktype::now() - start).count();
}

inline void printratio(const std::string &name, double ratio, double allowed)
{
    std::printf("%s ratio %.2f allowed %.2f\n", name.c_str(), ratio, allowed);
    std::fflush(stdout);
}

struct usage {
    double seconds = 0, mebibytes = 0;
};

// Runs a program of the build in the working directory, its output in logfile, which is shown.
inline usage run(const std::string &program, const std::string &logfile)
{
    const std::string path = std::string(SOLVANTO_BINFOLDER) + "/" + program;
    const auto start = clocktype::now();
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0) {
        if (std::freopen(logfile.c_str(), "w", stdout))
            ::execl(path.c_str(), path.c_str(), static_cast<char *>(nullptr));
        ::_exit(127);
    }
    int status = 0;
    rusage used{};
    if (child < 0 || ::wait4(child, &status, 0, &used) != child || status != 0)
        ioerror(path, "failed");
    const usage result{since(start), static_cast<double>(used.ru_maxrss) / 1024};
    infile in(logfile);
    while (in.nextrecord())
        std::printf("    %.*s\n", static_cast<int>(in.line().size()), in.line().data());
    std::printf("%s %.2f s, %.0f MiB\n", program.c_str(), result.seconds, result.mebibytes);
    return result;
}

// One ssyrk of the genotypes in single precision, SNPs of an individual contiguous: relationships
// of the individuals.
inline double timessyrk(int64 n, int64 nsnp, const std::vector<int8> &g)
{
    std::vector<float> z(g.begin(), g.end()), product(static_cast<std::size_t>(n * n));
    const int order = static_cast<int>(n), inner = static_cast<int>(nsnp);
    const float one = 1, zero = 0;
    const auto start = clocktype::now();
    ssyrk_("L", "T", &order, &inner, &one, z.data(), &inner, &zero, product.data(), &order);
    return since(start);
}

// Reading a file of n individuals with nsnp genotypes once.
inline double timereading(const std::string &filename, int64 n, int64 nsnp)
{
    std::vector<int8> row(static_cast<std::size_t>(nsnp));
    const auto start = clocktype::now();
    infile in(filename);
    for (int64 i = 1; i <= n; ++i) {
        in.record();
        in.integer();
        in.alleles(row.data(), nsnp);
    }
    return since(start);
}

inline void infreshfolder(const std::function<void()> &body)
{
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path();
    std::string folder = (fs::temp_directory_path() / "benchprogramXXXXXX").string();
    if (!::mkdtemp(folder.data())) ioerrno(folder, "can't make");
    fs::current_path(folder);
    body();
    fs::current_path(before);
    fs::remove_all(folder);
}
