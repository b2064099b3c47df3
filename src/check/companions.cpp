#include "check/companions.h"

#include "check/rungenerations.h"
#include "cyclefolder.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
// What the cycles of this run do.
struct cyclework {
    bool prediction = false, contributions = false, coancestry = false;
};

cyclework workofcycles(const state &s)
{
    cyclework work;
    const generationspan cycles = cyclegenerations(s);
    for (int64 gen = cycles.first; gen <= cycles.last; ++gen) {
        if (s.selection.selontbvyes1no0 == 0 && !aresolutionsinforce(s, gen - s.pop.ngen))
            work.prediction = true;
        if (gen > lastgenerationmade(s)) break; // ends behind the values of the candidates
        if (s.selection.optcontribselonoff && !isimported(s, gen)) work.contributions = true;
        if (s.selection.computeavercoancestryyes1no0 == 1) work.coancestry = true;
    }
    return work;
}

std::string reasonagainst(const std::string &program)
{
    std::error_code error;
    const auto status = std::filesystem::status(program, error);
    if (!std::filesystem::exists(status)) return "is missing";
    if (!std::filesystem::is_regular_file(status)) return "is not a file";
    if (access(program.c_str(), X_OK) != 0) return "is not executable";
    if (access(program.c_str(), R_OK) != 0) return "can't be read, and so not be copied";
    return "";
}
} // namespace

std::string adviceon(const missingcompanion &missing)
{
    return missing.reason + ", and this run will need it: copy it into this folder from where "
                            "solvanto was built or installed";
}

namespace
{
// The child's part: nothing but calls that are safe behind a fork of any program.
[[noreturn]] void execute(const char *path, int output)
{
    setpgid(0, 0);
    const int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    if (chdir("/proc/self") == 0) execl(path, path, "--version", nullptr);
    _exit(127);
}

// Up to the end of the first line, the end of the output, or of a second.
std::string readanswer(int input)
{
    using clock = std::chrono::steady_clock;
    const auto end = clock::now() + std::chrono::seconds(1);
    std::string answer;
    char bytes[256];
    while (answer.find('\n') == std::string::npos) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - clock::now()).count();
        pollfd waiting{input, POLLIN, 0};
        if (left <= 0 || poll(&waiting, 1, static_cast<int>(left)) <= 0) return "";
        const ssize_t n = read(input, bytes, sizeof bytes);
        if (n <= 0) break;
        answer.append(bytes, static_cast<std::size_t>(n));
    }
    return answer.substr(0, answer.find('\n'));
}
} // namespace

std::string versionanswer(const std::string &program)
{
    if (!reasonagainst(program).empty()) return "";
    std::error_code error;
    const std::string path = std::filesystem::absolute(program, error).string();
    int ends[2];
    if (error || pipe2(ends, O_CLOEXEC) != 0) return "";
    const pid_t child = fork();
    if (child == 0) execute(path.c_str(), ends[1]);
    close(ends[1]);
    const std::string answer = child > 0 ? readanswer(ends[0]) : "";
    close(ends[0]);
    if (child > 0) {
        setpgid(child, child); // whichever of both comes first
        kill(-child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
    return answer;
}

bool isours(const std::string &program)
{
    return versionanswer(program).starts_with(program + " ");
}

std::vector<std::string> neededcompanions(const state &s)
{
    std::vector<std::string> programs;
    if (s.run.merging != mergekind::none) return programs;
    if (s.run.specstartgen == 1) programs = {"macs", "Vintrecaskelle"};
    const cyclework work = workofcycles(s);
    if (work.prediction)
        programs.emplace_back(s.selection.selmethindicator == 1 ? "QuillomereP" : "Quillomere");
    if (work.contributions || work.coancestry) programs.emplace_back("Brenvask");
    if (work.contributions) programs.emplace_back("Corvalind");
    return programs;
}

std::vector<missingcompanion> missingcompanions(const state &s)
{
    std::vector<missingcompanion> missing;
    for (const std::string &program : neededcompanions(s))
        if (const std::string reason = reasonagainst(program); !reason.empty())
            missing.push_back({program, reason});
    return missing;
}
