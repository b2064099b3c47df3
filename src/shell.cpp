#include "shell.h"

#include "stops.h"
#include "textlayout.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
// The interpreter waits for the command in the background, so that the signal that it gets when
// this process has ended reaches it at once; it then ends the whole group.
constexpr const char *guarded = "trap 'kill -KILL 0' TERM; eval \"$1\" & wait $!";

// In the new process. Shares this process's memory until the interpreter runs: calls of the system
// alone.
int startinterpreter(void *command)
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() == 1) _exit(127); // the run has ended by now
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGXCPU}) std::signal(signal, SIG_DFL);
    execl("/bin/sh", "sh", "-c", guarded, "solvanto", static_cast<const char *>(command), nullptr);
    _exit(127);
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
    std::fflush(stdout); // what the command prints comes after what we printed
    // As vfork: a large process isn't copied for each command.
    constexpr std::size_t stacksize = 1 << 16;
    alignas(16) static thread_local char stack[stacksize];
    const pid_t child = clone(startinterpreter, stack + stacksize, CLONE_VM | CLONE_VFORK | SIGCHLD,
                              const_cast<char *>(command.c_str()));
    if (child < 0) return -1;
    int status = 0;
    pid_t ended;
    do ended = waitpid(child, &status, 0);
    while (ended < 0 && errno == EINTR);
    if (ended < 0) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool runshell(const std::string &command, std::string_view routine, commandfailures &failures)
{
    const int status = shellstatus(command);
    if (status == 0) return true;
    printline("failure : Solvanto : " + std::string(routine));
    notefailure(failures, "the command \"" + command + "\" of " + std::string(routine) +
                              " ended with status " + std::to_string(status));
    return false;
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
