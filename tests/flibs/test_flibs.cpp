// The registry of open files and its dictionary: buckets, numbers, what is found and what isn't.
#include "flibs/fileregistry.h"

#include "testsupport.h"

class flibs : public infolder
{
};

// Worked out apart from the code: "a" has the code 97, "ab" 31 x 97 + 98 = 3105; less 1, modulo
// 4993, plus 1. No key gives h = 0, so -1 modulo 4993 = 4992. Changing two neighbouring characters
// by +1 and -31 keeps h.
TEST_F(flibs, keysofonebucket)
{
    EXPECT_EQ(dict_hashkey("a"), 97);
    EXPECT_EQ(dict_hashkey("ab   "), 3105);
    EXPECT_EQ(dict_hashkey(""), 4993);
    // By integers of any length, cut to 64 bits and signed: -8532232027920953713.
    EXPECT_EQ(dict_hashkey("/home/of/some/run/SimulatedData/Gender.txt"), 4162);

    const char *const keys[] = {"xb", "yC", "z$"}; // one bucket: +1 and -31 twice
    dict_struct dict;
    dict_create(dict, keys[0], {100, true});
    dict_add_key(dict, keys[1], {101, true});
    dict_add_key(dict, keys[2], {102, true});
    ASSERT_EQ(dict_hashkey(keys[0]), dict_hashkey(keys[1]));
    const list_head &bucket = dict.table[static_cast<std::size_t>(dict_hashkey("xb") - 1)].list;
    EXPECT_EQ(list_count(bucket), 3);
    EXPECT_EQ(list_next(bucket.get())->data.key, "z$"); // right behind the first
    dict_add_key(dict, "yC  ", {103, true});            // replaced
    EXPECT_EQ(dict_get_key(dict, "yC").unitnumber, 103);
    dict_delete_key(dict, "xb ");
    dict_delete_key(dict, "none");
    EXPECT_FALSE(dict_has_key(dict, "xb"));
    EXPECT_EQ(dict_get_key(dict, "z$").unitnumber, 102);
    EXPECT_TRUE(dict_get_key(dict, "xb") == dict_null);
    EXPECT_EQ(list_count(bucket), 2);
}

TEST_F(flibs, numbersofopenfiles)
{
    fileregistry r;
    writefile("b", "two\nlines\n");
    openfile(r, "a", filestatus::replace);
    openfile(r, "b", filestatus::old);
    openfile(r, "c", filestatus::unknown);
    EXPECT_EQ(getunitnumber(r, "a "), 100);
    EXPECT_EQ(getunitnumber(r, "c"), 102);
    EXPECT_EQ(inputof(r, "b").line(2), "lines");
    outputof(r, "a").writeline("written");
    closefile(r, "a");
    EXPECT_EQ(readfile("a"), "written\n");
    EXPECT_EQ(readfile("c"), "");
    openfile(r, "b", filestatus::old); // the lowest free number; the old one stays in use
    EXPECT_EQ(getunitnumber(r, "b"), 100);
    openfile(r, "d", filestatus::replace);
    EXPECT_EQ(getunitnumber(r, "d"), 103);

    for (const auto &body : {std::function<void()>([&] { getunitnumber(r, "a"); }),
                             std::function<void()>([&] { closefile(r, "a"); })}) {
        const outcome unknown = runbody(body);
        EXPECT_EQ(unknown.code(), 360000);
        EXPECT_EQ(unknown.output, "there has been an error in the merge. Key not found a\n");
    }
    closedict(r);
    EXPECT_FALSE(isopenfile(r, "d"));
    openfile(r, "d", filestatus::replace);
    EXPECT_EQ(getunitnumber(r, "d"), 104);

    r.allocatedunits.fill(1);
    const outcome full = runbody([&] { openfile(r, "e", filestatus::replace); });
    EXPECT_EQ(full.code(), -1);
    EXPECT_EQ(full.output, "error! Not enough units available. \n");
}

// Lines in any order, with lines longer than the buffer, no last line end, and one too many asked.
TEST_F(flibs, linesinanyorder)
{
    std::vector<std::string> lines;
    std::string text;
    for (int64 i = 0; i < 40; ++i) {
        lines.push_back(
            std::string(static_cast<std::size_t>(i * i * 500), static_cast<char>('a' + i % 26)));
        text += lines.back() + (i == 39 ? "" : i % 5 ? "\n" : "\r\n");
    }
    writefile("lines", text);
    recordfile in;
    in.open("lines");
    for (const std::size_t i : {3u, 30u, 31u, 2u, 0u, 39u, 38u, 1u, 39u})
        EXPECT_TRUE(in.line(static_cast<int64>(i) + 1) == lines[i]) << i;
    const outcome beyond = runbody([&] { in.line(41); });
    EXPECT_EQ(beyond.stop.reason, "lines: holds 40 lines where line 41 is needed");
}
