// Stops: exit status and where the words go; shell commands.
#include "shell.h"
#include "stops.h"
#include "textlayout.h"

#include "testsupport.h"

namespace
{
// The exit status of a body, and what it wrote on standard error.
std::pair<int, std::string> statusof(const std::function<void()> &body)
{
    testing::internal::CaptureStderr();
    const int status = runtostop(body);
    return {status, testing::internal::GetCapturedStderr()};
}
} // namespace

TEST(stops, exitstatusandmessage)
{
    using result = std::pair<int, std::string>;
    EXPECT_EQ(statusof([] {}), result(0, ""));
    EXPECT_EQ(statusof([] { stopwithcode(110012); }), result(110012 % 256, "STOP 110012\n"));
    EXPECT_EQ(statusof([] { stopwithcode(512); }), result(1, "STOP 512\n"));
    EXPECT_EQ(statusof([] { plainstop(); }), result(1, ""));
    EXPECT_EQ(statusof([] { plainstop(0); }), result(0, ""));
    EXPECT_EQ(statusof([] { ioerror("some.txt", "is missing"); }),
              result(2, "ERROR: some.txt: is missing\n"));
}

TEST(shell, failuresareprintedandtherungoeson)
{
    bool good = false, bad = true;
    commandfailures failures;
    const outcome result = runbody([&] {
        good = runshell("true", "Routine A", failures);
        bad = runshell("exit 3", "Routine B", failures);
        printline("on");
    });
    EXPECT_TRUE(good);
    EXPECT_FALSE(bad);
    EXPECT_EQ(failures.count, 1);
    EXPECT_EQ(failures.first, "the command \"exit 3\" of Routine B ended with status 3");
    EXPECT_EQ(result.output, "failure : Solvanto : Routine B\non\n");
}
