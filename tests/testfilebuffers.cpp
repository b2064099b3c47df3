// Files filled and read in their buffers: pieces of any size, files written on,
// broken frames.
#include "files.h"
#include "testsupport.h"

#include <cstring>

class filebuffers : public infolder
{
};

TEST_F(filebuffers, piecesOfAnySizeKeepTheirOrder)
{
    writefile("out", "first line\nsecond line\n");
    std::string wanted = "first line\n";
    outfile out;
    out.openandkeep("out", 1);
    char fill = 'a';
    // Up to more than a buffer at once, in steps that share no factor with any
    // alignment.
    for (std::size_t n = 1; n < 3'000'000; n = n * 3 + 1) {
        for (int piece = 0; piece < 3; ++piece) {
            std::memset(out.reserve(n + 50), fill, n); // more room than is used
            out.commit(n);
            wanted.append(n, fill);
            fill = fill == 'z' ? 'a' : static_cast<char>(fill + 1);
        }
        out.write("\n");
        wanted += '\n';
    }
    out.write(std::string(2'000'001, '-'));
    wanted.append(2'000'001, '-');
    out.writeline("end");
    wanted += "end\n";
    out.close();
    EXPECT_TRUE(readfile("out") == wanted);
}

TEST_F(filebuffers, recordsMadeAndShownInPlace)
{
    // Frames of 100 bytes cut the pieces; frames of the usual length don't.
    std::vector<int64> wanted(50'000);
    for (std::size_t i = 0; i < wanted.size(); ++i) wanted[i] = static_cast<int64>(i * i);
    const int64 nbytes = 8 * static_cast<int64>(wanted.size());
    for (const int64 limit : {int64{100}, framelimit}) {
        outfile out("records");
        for (int repeat = 0; repeat < 4; ++repeat) {
            framewriter record(out, nbytes, limit);
            for (std::size_t i = 0; i < wanted.size(); i += 50)
                record.putmade(400, [&](char *to) { std::memcpy(to, &wanted[i], 400); });
            record.finish();
        }
        out.close();
        framereader in("records");
        std::vector<int64> whole(wanted.size()), shown;
        for (int repeat = 0; repeat < 2; ++repeat) {
            in.record(whole.data(), nbytes);
            EXPECT_EQ(whole, wanted);
            in.begin(nbytes);
            shown.clear();
            for (int64 left = nbytes; left > 0; left -= 8000)
                in.show(8000, [&](const char *from) {
                    shown.resize(shown.size() + 1000);
                    std::memcpy(&shown[shown.size() - 1000], from, 8000);
                });
            in.finish();
            EXPECT_EQ(shown, wanted);
        }
    }
}
