// What the programs refuse, by the tables *.txt of this folder: README.md tells their lines.
#include "filetree.h"
#include "specsupport.h"
#include "testsupport.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <stdexcept>

namespace fs = std::filesystem;

namespace
{
struct tableline {
    std::size_t number = 0; // from 1
    std::string word, rest;
    std::string content = ""; // of a file
};

// Lines that act alike for all tries, a line for each try, and what is to come of it.
struct refusal {
    std::vector<tableline> actions, tries;
    std::string texts;
    std::optional<int64> code;
    bool unforeseen = false;
};

struct refusaltable {
    std::vector<tableline> base;
    std::vector<refusal> refusals;
};

const std::set<std::string> actionwords{"file", "shell", "smallrun"},
    trywords{"spec", "edit", "args", "run"}, endwords{"stop", "unforeseen", "="},
    basewords{"needs",      "program", "code",     "gone", "untouched", "in",   "runs",
              "unforeseen", "file",    "smallrun", "spec", "edit",      "shell"};

void expectword(const tableline &line, const std::set<std::string> &words)
{
    if (!words.contains(line.word))
        throw std::invalid_argument("line " + std::to_string(line.number) + ": \"" + line.word +
                                    "\" is no line of a table here");
}

std::vector<tableline> readlinesoftable(const std::string &path)
{
    const std::vector<std::string> lines = readlines(path);
    std::vector<tableline> table;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty() || lines[i].starts_with('#')) continue;
        const std::size_t blank = std::min(lines[i].find(' '), lines[i].size());
        tableline line{i + 1, lines[i].substr(0, blank),
                       lines[i].substr(std::min(blank + 1, lines[i].size()))};
        if (line.word == "file") {
            while (++i < lines.size() && lines[i] != "end") line.content += lines[i] + "\n";
            if (i == lines.size()) throw std::invalid_argument("a file without a line \"end\"");
        }
        table.push_back(line);
    }
    return table;
}

// Base lines up to "refusals"; then refusals, each ended by its texts.
refusaltable readtable(const std::string &path)
{
    const std::vector<tableline> lines = readlinesoftable(path);
    refusaltable table;
    auto line = lines.begin();
    for (; line != lines.end() && line->word != "refusals"; ++line) {
        expectword(*line, basewords);
        table.base.push_back(*line);
    }
    while (line != lines.end() && ++line != lines.end()) {
        refusal next;
        for (; line != lines.end() && !endwords.contains(line->word); ++line) {
            if (!actionwords.contains(line->word)) expectword(*line, trywords);
            (actionwords.contains(line->word) ? next.actions : next.tries).push_back(*line);
        }
        for (; line != lines.end() && endwords.contains(line->word); ++line)
            if (line->word == "stop")
                next.code = std::stoll(line->rest);
            else if (line->word == "unforeseen")
                next.unforeseen = true;
            else
                next.texts += (next.texts.empty() ? "" : "\n") + line->rest;
        if (next.tries.empty() && !next.actions.empty()) {
            next.tries.push_back(next.actions.back());
            next.actions.pop_back();
        }
        if (next.tries.empty() || next.texts.empty())
            throw std::invalid_argument("a refusal without a try or a text ends the table");
        table.refusals.push_back(next);
        --line;
    }
    if (table.refusals.empty()) throw std::invalid_argument("holds no refusals");
    return table;
}
} // namespace

class refusals : public infolder, public testing::WithParamInterface<std::string>
{
  protected:
    std::string place = ".", program; // where it runs, below the base's folder
    std::vector<std::string> gone;    // files that no refused run leaves
    bool untouched = false;           // no file may change but the seed
    bool unforeseen = false;          // no refusal can be foreseen
    int64 code = 2;

    void act(const tableline &line);
    void attempt(const refusal &r, const tableline &change);
    void expectforesight(const refusal &r);
    void expectrefusal(const refusal &r, const commandresult &result);
};

namespace
{
// FILE|FOUND|REPLACEMENT: the first place of a text in a file; \n stands for a line end.
void editfile(std::string text)
{
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
} // namespace

void refusals::act(const tableline &line)
{
    if (line.word == "in") {
        place = line.rest;
        fs::create_directories(folder + "/base/" + place);
        fs::current_path(folder + "/base/" + place);
        if (!fs::exists("solvanto")) linkprograms(binfolder(), ".");
    }
    if (line.word == "file") writefile(line.rest, line.content);
    if (line.word == "smallrun") {
        smallrun().write();
        writefile("Seed.txt", "-9\n");
    }
    if (line.word == "spec") spectext(readfile("SolvantoSpec.txt")).change(line.rest).write();
    if (line.word == "edit") editfile(line.rest);
    if (line.word == "program") program = line.rest;
    if (line.word == "code") code = std::stoll(line.rest);
    if (line.word == "gone") gone = wordsof(line.rest);
    if (line.word == "untouched") untouched = true;
    if (line.word == "unforeseen") unforeseen = true;
    if (line.word != "shell" && line.word != "runs") return;
    const commandresult result = runcommand(line.word == "runs" ? program : line.rest);
    if (result.status != 0)
        throw std::runtime_error("line " + std::to_string(line.number) + ": " + result.out +
                                 result.err);
}

void refusals::expectrefusal(const refusal &r, const commandresult &result)
{
    const int64 wanted = r.code.value_or(code);
    const bool told = wanted <= 3 || // statuses of their own, without a line STOP
                      result.err.find("STOP " + std::to_string(wanted) + "\n") != std::string::npos;
    const bool said = result.out.find(r.texts) != std::string::npos ||
                      result.err.find(r.texts) != std::string::npos;
    EXPECT_TRUE(result.status == wanted % 256 && told && said)
        << "wanted: stop " << wanted << "\n"
        << r.texts << "\nbut came: status " << result.status << "\n"
        << result.out << "\nstandard error:\n"
        << result.err;
    for (const std::string &file : gone) EXPECT_TRUE(wanted == 0 || !fs::exists(file)) << file;
}

// solvanto --check ends as the run will, and touches nothing.
void refusals::expectforesight(const refusal &r)
{
    const filetree was = readtree(".");
    const commandresult result = runcommand("./solvanto --check");
    const int64 wanted = r.unforeseen || unforeseen ? 0 : r.code.value_or(code);
    EXPECT_EQ(result.status, wanted % 256) << "by --check:\n" << result.out << result.err;
    EXPECT_TRUE(differingpaths(was, readtree(".")).empty()) << "touched by --check";
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
    fs::current_path("try/" + place);
    try {
        for (const tableline &line : r.actions) act(line);
        act(change);
        if (program == "./solvanto" && change.word != "run" && change.word != "args")
            expectforesight(r);
        const filetree was = untouched ? readtree(".") : filetree();
        expectrefusal(r, runcommand(change.word == "run"    ? change.rest
                                    : change.word == "args" ? program + " " + change.rest
                                                            : program));
        for (const std::string &path :
             untouched ? differingpaths(was, readtree(".")) : std::vector<std::string>())
            EXPECT_TRUE(path.starts_with("Seed")) << path << " was touched";
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
        table = readtable(sourcefolder() + "/tests/refusals/" + GetParam() + ".txt");
        for (const tableline &line : table.base)
            if (line.word == "needs" && !fs::exists(binfolder() + "/" + line.rest))
                GTEST_SKIP() << line.rest << " is not built";
        act({0, "in", "."});
        for (const tableline &line : table.base) act(line);
    } catch (const std::exception &error) {
        FAIL() << GetParam() << ".txt: " << error.what();
    }
    for (const refusal &r : table.refusals)
        for (const tableline &change : r.tries) attempt(r, change);
}

namespace
{
std::vector<std::string> tables()
{
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(sourcefolder() + "/tests/refusals"))
        if (entry.path().extension() == ".txt") names.push_back(entry.path().stem());
    return names;
}
} // namespace

INSTANTIATE_TEST_SUITE_P(, refusals, testing::ValuesIn(tables()),
                         [](const auto &table) { return table.param; });
