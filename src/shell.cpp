#include "shell.h"

#include "stops.h"
#include "textlayout.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace
{
// The interpreter waits for the command in the background, so that the signal that it gets when
// this process has ended reaches it at once; it then ends the whole group.
constexpr const char *guarded = "trap 'kill -KILL 0' TERM; eval \"$1\" & wait $!";

struct newcommand {
    const char *text;
    int output; // takes its standard output; -1: this process's own
};

// In the new process. Shares this process's memory until the interpreter runs: calls of the system
// alone.
int startinterpreter(void *command)
{
    const newcommand &its = *static_cast<const newcommand *>(command);
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() == 1) _exit(127); // the run has ended by now
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGXCPU}) std::signal(signal, SIG_DFL);
    if (its.output >= 0 && dup2(its.output, STDOUT_FILENO) < 0) _exit(127);
    execl("/bin/sh", "sh", "-c", guarded, "solvanto", its.text, nullptr);
    _exit(127);
}

// The process of the command, or -1.
pid_t startcommand(const std::string &command, int output)
{
    std::fflush(stdout); // what the command prints comes after what we printed
    // As vfork: a large process isn't copied for each command.
    constexpr std::size_t stacksize = 1 << 16;
    alignas(16) static thread_local char stack[stacksize];
    newcommand its{command.c_str(), output};
    return clone(startinterpreter, stack + stacksize, CLONE_VM | CLONE_VFORK | SIGCHLD, &its);
}

// As waitpid, through interruptions.
pid_t awaitprocess(pid_t child, int &status)
{
    pid_t ended;
    do ended = waitpid(child, &status, 0);
    while (ended < 0 && errno == EINTR);
    return ended;
}

int statusof(int waited)
{
    return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

bool tellstatus(const std::string &command, int status, std::string_view routine,
                commandfailures &failures)
{
    if (status == 0) return true;
    printline("failure : Solvanto : " + std::string(routine));
    notefailure(failures, "the command \"" + command + "\" of " + std::string(routine) +
                              " ended with status " + std::to_string(status));
    return false;
}
} // namespace

void notefailure(commandfailures &failures, const std::string &what)
{
    if (failures.count++ == 0) failures.first = what;
    if (!failures.strict) return;
    std::fflush(stdout);
    std::fprintf(stderr, "ERROR: %s\n", what.c_str());
    plainstop(3);
}

int shellstatus(const std::string &command)
{
    const pid_t child = startcommand(command, -1);
    int status = 0;
    if (child < 0 || awaitprocess(child, status) < 0) return -1;
    return statusof(status);
}

bool runshell(const std::string &command, std::string_view routine, commandfailures &failures)
{
    return tellstatus(command, shellstatus(command), routine, failures);
}

// ------------------------------------------------------- side by side

int64 commandsatonce()
{
    constexpr int64 most = 1024;
    if (const char *given = std::getenv("SOLVANTO_THREADS")) {
        int64 number = 0;
        if (!readinteger(given, number) || number < 1 || number > most)
            ioerror("SOLVANTO_THREADS", "is \"" + std::string(given) +
                                            "\", a number from 1 to 1024 is wanted: how many "
                                            "programs a run has side by side");
        return number;
    }
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) != 0) return 1;
    return CPU_COUNT(&processors);
}

commandqueue::~commandqueue()
{
    while (nrunning > 0) awaitone();
}

void commandqueue::add(const std::vector<std::string> &commands)
{
    chaintorun chain;
    for (const std::string &text : commands) chain.commands.emplace_back().text = text;
    chains.push_back(std::move(chain));
}

bool commandqueue::finish(int64 chain, int64 k, std::string_view routine, commandfailures &failures)
{
    queuedcommand &command =
        chains[static_cast<std::size_t>(chain - 1)].commands[static_cast<std::size_t>(k - 1)];
    if (most == 1) return runshell(command.text, routine, failures);
    beginmore();
    while (!command.ended) {
        awaitone();
        beginmore();
    }
    std::fwrite(command.printed.data(), 1, command.printed.size(), stdout);
    return tellstatus(command.text, command.status, routine, failures);
}

// The next command of each chain that waits for one, as long as there is room.
void commandqueue::beginmore()
{
    for (std::size_t c = firstopen; c < chains.size() && nrunning < most; ++c) {
        chaintorun &chain = chains[c];
        while (chain.nended < chain.commands.size() && chain.commands[chain.nended].child == 0) {
            begin(chain.commands[chain.nended]);
            if (chain.commands[chain.nended].child > 0) break;
            end(chain, -1); // it couldn't be run
        }
        if (c == firstopen && chain.nended == chain.commands.size()) ++firstopen;
    }
}

// A memory file takes what it prints.
void commandqueue::begin(queuedcommand &command)
{
    command.output = filedescriptor(memfd_create("solvanto", MFD_CLOEXEC));
    command.child = command.output.isopen() ? startcommand(command.text, command.output) : -1;
    if (command.child > 0) ++nrunning;
}

void commandqueue::awaitone()
{
    int waited = 0;
    const pid_t ended = awaitprocess(-1, waited);
    for (std::size_t c = firstopen; c < chains.size(); ++c) {
        chaintorun &chain = chains[c];
        if (chain.nended == chain.commands.size()) continue;
        const pid_t child = chain.commands[chain.nended].child;
        if (child <= 0 || (ended > 0 && child != ended)) continue;
        --nrunning;
        end(chain, ended < 0 ? -1 : statusof(waited));
    }
}

void commandqueue::end(chaintorun &chain, int status)
{
    queuedcommand &command = chain.commands[chain.nended++];
    command.ended = true;
    command.status = status;
    if (!command.output.isopen()) return;
    std::vector<char> piece(1 << 12);
    off_t offset = 0;
    for (ssize_t n; (n = pread(command.output, piece.data(), piece.size(), offset)) > 0;
         offset += n)
        command.printed.append(piece.data(), static_cast<std::size_t>(n));
    command.output = filedescriptor();
}

std::string shellword(std::string_view text)
{
    std::string word = "'";
    for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

bool folderexists(const std::string &path)
{
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

bool pathexists(const std::string &path)
{
    std::error_code error;
    return std::filesystem::exists(path, error);
}

std::string workingdirectory()
{
    std::error_code error;
    const auto path = std::filesystem::current_path(error);
    if (error) ioerror(".", "working directory: " + error.message());
    return path.string();
}
