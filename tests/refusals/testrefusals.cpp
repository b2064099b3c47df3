// What the programs refuse, by the tables *.txt of this folder: README.md tells their lines.
#include "filetree.h"
#include "specsupport.h"
#include "testsupport.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace fs = std::filesystem;

namespace
{
struct tableline {
    std::size_t number; // from 1
    std::string word, rest;
    std::string content; // of a file
};

// Lines that act on the folder alike for all tries, a line for each try, and what is to come of it.
struct refusal {
    std::vector<tableline> actions, tries;
    std::string program, texts;
    std::optional<int64> code;
};

struct refusaltable {
    std::vector<tableline> base;
    std::vector<refusal> refusals;
};

constexpr const char *actionwords[] = {"in", "file", "shell", "smallrun", "runs"},
                     *trywords[] = {"spec", "edit", "args", "run"},
                     *settings[] = {"program", "code", "gone", "untouched"};

template <std::size_t n> bool isoneof(const std::string &word, const char *const (&words)[n])
{
    return std::find(words, words + n, word) != words + n;
}

std::vector<tableline> readtable(const std::string &path)
{
    const std::vector<std::string> lines = readlines(path);
    std::vector<tableline> table;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty() || lines[i].starts_with('#')) continue;
        const std::size_t blank = std::min(lines[i].find(' '), lines[i].size());
        tableline line{i + 1, lines[i].substr(0, blank),
                       lines[i].substr(std::min(blank + 1, lines[i].size())), ""};
        if (line.word == "file") {
            while (++i < lines.size() && lines[i] != "end") line.content += lines[i] + "\n";
            if (i == lines.size()) throw std::invalid_argument("a file without a line \"end\"");
        }
        table.push_back(line);
    }
    return table;
}

// Base lines up to the first try; then refusals, each ended by its texts.
refusaltable grouptable(const std::vector<tableline> &lines)
{
    refusaltable table;
    refusal next;
    bool inbase = true;
    for (const tableline &line : lines) {
        const std::string where = "line " + std::to_string(line.number) + ": ";
        if (line.word == "refusals" && inbase) {
            inbase = false;
            continue;
        }
        if (inbase && (isoneof(line.word, actionwords) || isoneof(line.word, settings) ||
                       line.word == "spec")) {
            table.base.push_back(line);
            continue;
        }
        const bool expectation = line.word == "=" || line.word == "stop";
        if (inbase || (!expectation && !isoneof(line.word, actionwords) &&
                       !isoneof(line.word, trywords)))
            throw std::invalid_argument(where + "\"" + line.word + "\" is no line of a table here");
        if (!expectation && !next.texts.empty()) table.refusals.push_back(std::exchange(next, {}));
        if (line.word == "stop") next.code = std::stoll(line.rest);
        if (line.word == "=") next.texts += line.rest + "\n";
        if (!expectation) (isoneof(line.word, trywords) ? next.tries : next.actions).push_back(line);
        if (expectation && next.tries.empty() && next.actions.empty())
            throw std::invalid_argument(where + "nothing is tried");
    }
    if (next.texts.empty()) throw std::invalid_argument("the table doesn't end with a text");
    table.refusals.push_back(next);
    return table;
}
} // namespace

class refusals : public infolder, public testing::WithParamInterface<std::string>
{
  protected:
    std::string base = "base", place = ".", program;
    std::vector<std::string> gone; // files that no refused run leaves
    bool untouched = false;        // no file may change but the seed
    int64 code = 2;

    void act(const tableline &line);
    void edit(const std::string &rest);
    void attempt(const refusal &r, const tableline &change);
    void expectrefusal(const refusal &r, const commandresult &result);
    static std::vector<std::string> changedfiles(const filetree &was);
};

// FILE|FOUND|REPLACEMENT: the first place of a text in a file; \n stands for a line end.
void refusals::edit(const std::string &rest)
{
    std::string text = rest;
    for (std::size_t at = 0; (at = text.find("\\n", at)) != std::string::npos;)
        text.replace(at, 2, "\n");
    const std::size_t first = text.find('|'), second = text.find('|', first + 1);
    if (second == std::string::npos) throw std::invalid_argument("FILE|FOUND|REPLACEMENT");
    const std::string file = text.substr(0, first),
                      found = text.substr(first + 1, second - first - 1);
    std::string content = readfile(file);
    const std::size_t at = content.find(found);
    if (at == std::string::npos) throw std::invalid_argument("the text isn't in " + file);
    writefile(file, content.replace(at, found.size(), text.substr(second + 1)));
}

void refusals::act(const tableline &line)
{
    if (line.word == "in") {
        place = line.rest;
        fs::create_directories(folder + "/" + base + "/" + place);
        fs::current_path(folder + "/" + base + "/" + place);
        if (!fs::exists("solvanto")) linkprograms(binfolder(), ".");
    } else if (line.word == "file") {
        writefile(line.rest, line.content);
    } else if (line.word == "smallrun") {
        smallrun().write();
        writefile("Seed.txt", "-9\n");
    } else if (line.word == "spec") {
        spectext(readfile("SolvantoSpec.txt")).change(line.rest).write();
    } else if (line.word == "edit") {
        edit(line.rest);
    } else if (line.word == "program") {
        program = line.rest;
    } else if (line.word == "code") {
        code = std::stoll(line.rest);
    } else if (line.word == "gone") {
        gone = wordsof(line.rest);
    } else if (line.word == "untouched") {
        untouched = true;
    } else if (line.word != "args" && line.word != "run") { // shell, runs
        const commandresult result = runcommand(line.word == "runs" ? program : line.rest);
        if (result.status != 0) throw std::runtime_error(result.out + result.err);
    }
}

std::vector<std::string> refusals::changedfiles(const filetree &was)
{
    std::vector<std::string> paths = differingpaths(was, readtree("."));
    std::erase_if(paths, [](const std::string &path) { return path.starts_with("Seed"); });
    return paths;
}

void refusals::expectrefusal(const refusal &r, const commandresult &result)
{
    const int64 wanted = r.code.value_or(code);
    const std::string came = "\nstatus " + std::to_string(result.status) + "\n" + result.out +
                             "\nstandard error:\n" + result.err;
    EXPECT_EQ(result.status, wanted % 256) << came;
    if (wanted > 2) {
        EXPECT_NE(result.err.find("STOP " + std::to_string(wanted) + "\n"), std::string::npos)
            << came;
    }
    const std::string text = r.texts.substr(0, r.texts.size() - 1);
    EXPECT_TRUE(result.out.find(text) != std::string::npos ||
                result.err.find(text) != std::string::npos)
        << "wanted: " << text << came;
    for (const std::string &file : gone) EXPECT_FALSE(fs::exists(file)) << file;
}

// One try in a copy of the folder that the program runs in; folders beside it are read only.
void refusals::attempt(const refusal &r, const tableline &change)
{
    SCOPED_TRACE(GetParam() + ".txt, line " + std::to_string(change.number) + ": " + change.word +
                 " " + change.rest);
    fs::current_path(folder);
    fs::create_directory("try");
    for (const auto &entry : fs::directory_iterator("base")) {
        const fs::path name = entry.path().filename();
        if (place == "." || *fs::path(place).begin() == name)
            fs::copy(entry, "try" / name,
                     fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        else
            fs::create_symlink(fs::absolute(entry), "try" / name);
    }
    base = "try";
    fs::current_path("try/" + place);
    try {
        for (const tableline &line : r.actions) act(line);
        act(change);
        const filetree was = untouched ? readtree(".") : filetree();
        const std::string command = change.word == "run"    ? change.rest
                                    : change.word == "args" ? program + " " + change.rest
                                                            : program;
        expectrefusal(r, runcommand(command));
        if (untouched) {
            EXPECT_EQ(changedfiles(was), std::vector<std::string>());
        }
    } catch (const std::exception &error) {
        ADD_FAILURE() << error.what();
    }
    fs::current_path(folder);
    fs::remove_all("try");
}

TEST_P(refusals, bytable)
{
    refusaltable table;
    try {
        table = grouptable(
            readtable(sourcefolder() + "/tests/refusals/" + GetParam() + ".txt"));
        act({0, "in", ".", ""});
        for (const tableline &line : table.base) act(line);
    } catch (const std::exception &error) {
        FAIL() << GetParam() << ".txt: " << error.what();
    }
    const std::string placeofall = place;
    for (const refusal &r : table.refusals)
        for (const tableline &change : r.tries.empty() ? std::vector{r.actions.back()} : r.tries) {
            place = placeofall;
            refusal others = r;
            if (r.tries.empty()) others.actions.pop_back();
            attempt(others, change);
        }
}

namespace
{
std::vector<std::string> tables()
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(sourcefolder() + "/tests/refusals"))
        if (entry.path().extension() == ".txt") names.push_back(entry.path().stem());
    std::sort(names.begin(), names.end());
    return names;
}
} // namespace

INSTANTIATE_TEST_SUITE_P(, refusals, testing::ValuesIn(tables()),
                         [](const auto &table) { return table.param; });
