#include "shell.h"

#include "stops.h"
#include "textlayout.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
// The interpreter reports a signal of its child as 128 + the signal's number.
int interruptof(int status)
{
    for (const int signal : {SIGINT, SIGQUIT}) {
        if (WIFSIGNALED(status) && WTERMSIG(status) == signal) return signal;
        if (WIFEXITED(status) && WEXITSTATUS(status) == 128 + signal) return signal;
    }
    return 0;
}
} // namespace

bool tryshell(const std::string &command)
{
    std::fflush(stdout); // what the command prints comes after what we printed
    const int status = std::system(command.c_str());
    if (status != -1) {
        if (const int signal = interruptof(status)) {
            // The signal ends this program too, by the handler that it has for it.
            const auto handler = std::signal(signal, SIG_DFL);
            if (handler != SIG_IGN) std::signal(signal, handler);
            std::raise(signal);
        }
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    return false;
}

bool runshell(const std::string &command, std::string_view routine)
{
    if (tryshell(command)) return true;
    printline("failure : Solvanto : " + std::string(routine));
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
