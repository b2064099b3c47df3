// Reading and writing of files: records, free-form values, extended files, framed records, errors.
#include "files.h"

#include "testsupport.h"
#include "words.h"

#include <cstring>
#include <random>

class files : public infolder
{
};

TEST_F(files, freeformreads)
{
    writefile("a.txt", "1, 2\t3.5D0 rest is dropped\r\n4\n\n 5 word\n-7");
    infile in("a.txt");
    in.record();
    EXPECT_EQ(in.integer(), 1);
    EXPECT_EQ(in.integer(), 2);
    EXPECT_EQ(in.real(), 3.5);
    in.record();
    EXPECT_EQ(in.integer(), 4);
    EXPECT_EQ(in.integer(), 5); // a record with too few values is continued, over an empty one
    EXPECT_EQ(in.word(), "word");
    in.record();
    EXPECT_EQ(in.integer(), -7); // no line end behind the last record
    const outcome ended = runbody([&] { in.record(); });
    EXPECT_EQ(ended.code(), -2);
    EXPECT_NE(ended.stop.reason.find("a.txt"), std::string::npos);

    writefile("b.txt", "1\nx\n");
    infile bad("b.txt");
    bad.skiprecords(1);
    bad.record();
    const outcome wrong = runbody([&] { bad.integer(); });
    EXPECT_EQ(wrong.stop.reason, "b.txt: line 2: an integer is wanted, not \"x\"");

    writefile("c.txt", "a\n\n  \n b c\n\t\nd");
    EXPECT_EQ(countlines("c.txt"), 3);
}

// Alleles in two columns, read eight at a time, against the plain reader; with values of two
// digits, other separators and continued records between them, and lines beyond the buffer.
TEST_F(files, allelesreadinanylayout)
{
    std::mt19937_64 source(3);
    for (const int kind : {0, 1, 2, 3}) {
        const int n = kind == 3 ? 1200000 : 1000;
        std::vector<int> values;
        std::string text = "                   1";
        for (int i = 0; i < n; ++i) {
            const bool odd = kind == 1 && source() % 20 == 0;
            values.push_back(odd ? 10 + static_cast<int>(source() % 90)
                                 : static_cast<int>(source() % 10));
            const char *separator = " ";
            if (kind == 2 && source() % 10 == 0) separator = source() % 2 ? "\t " : "\n";
            text += separator + std::to_string(values.back());
        }
        writefile("alleles.txt", text + "\n 2 1\n");
        infile in("alleles.txt");
        in.record();
        EXPECT_EQ(in.integer(), 1);
        std::vector<int8> read(values.size());
        in.alleles(read.data(), n);
        int differing = 0;
        for (int i = 0; i < n; ++i) differing += read[i] != values[i];
        EXPECT_EQ(differing, 0) << kind;
        in.record();
        EXPECT_EQ(in.integer(), 2);
    }
    writefile("short.txt", " 0 1 0\n");
    infile in("short.txt");
    in.record();
    int8 four[4];
    EXPECT_EQ(runbody([&] { in.alleles(four, 4); }).code(), -2);
}

TEST_F(files, extendingkeepsthefirstrecords)
{
    {
        outfile out("e.txt");
        for (int i = 1; i <= 5; ++i) out.writeline(freeline(i));
        out.close();
    }
    {
        outfile out;
        out.openandkeep("e.txt", 2);
        out.writeline("new");
        out.close();
    }
    EXPECT_EQ(readfile("e.txt"), " 1\n 2\nnew\n");
    outfile out;
    out.openandkeepfixed("e.txt", 2, 3);
    out.writeline("fixed");
    out.close();
    EXPECT_EQ(readfile("e.txt"), " 1\n 2\nfixed\n");
    EXPECT_EQ(runbody([&] { out.openandkeep("e.txt", 4); }).code(), -2);
    EXPECT_EQ(runbody([&] { out.openandkeepfixed("e.txt", 2, 4); }).code(), -2);
    EXPECT_EQ(readfile("e.txt"), " 1\n 2\nfixed\n"); // a refusal changes nothing
    EXPECT_EQ(runbody([&] { out.openandkeep("absent.txt", 1); }).code(), -2);
    EXPECT_EQ(runcommand("ls").out, "e.txt\n"); // nor makes it a file
    writefile("zipped.txt.gz", "");
    EXPECT_NE(runbody([&] {
                  out.openandkeepfixed("zipped.txt", 1, 5);
              }).stop.reason.find("uncompress zipped.txt.gz"),
              std::string::npos);
    outfile fresh;
    fresh.openandkeep("fresh.txt", 0);
    fresh.close();
    EXPECT_EQ(readfile("fresh.txt"), "");
}

TEST_F(files, piecesofanysizekeeptheirorder)
{
    writefile("out", "first line\nsecond line\n");
    std::string wanted = "first line\n";
    outfile out;
    out.openandkeep("out", 1);
    char fill = 'a';
    // Up to more than a buffer at once, in steps that share no factor with any alignment.
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

TEST_F(files, framedrecords)
{
    const std::vector<int64> values{1, -2, 1LL << 60};
    for (const int64 limit : {framelimit, int64{10}, int64{24}, int64{7}}) {
        outfile out("f.bin");
        for (int copy = 0; copy < 2; ++copy) {
            framewriter record(out, 24, limit);
            record.put(values.data(), 3);
            record.put(reinterpret_cast<const char *>(values.data()) + 3, 21);
            record.finish();
        }
        out.close();
        framereader in("f.bin");
        std::vector<int64> read(3);
        for (int copy = 0; copy < 2; ++copy) {
            in.record(read.data(), 24);
            EXPECT_EQ(read, values) << limit;
        }
        EXPECT_EQ(runbody([&] { in.record(read.data(), 24); }).code(), -2); // end of the file
    }
    // A record of 24 bytes in frames of 10: lengths -10|10, -10|-10, 4|-4 around the data.
    outfile out("g.bin");
    framewriter record(out, 24, 10);
    record.put(values.data(), 24);
    record.finish();
    out.close();
    const std::string bytes = readfile("g.bin");
    ASSERT_EQ(bytes.size(), 24u + 6 * 4);
    const auto mark = [&](std::size_t at) {
        std::int32_t value;
        std::memcpy(&value, bytes.data() + at, 4);
        return value;
    };
    EXPECT_EQ(mark(0), -10);
    EXPECT_EQ(mark(14), 10);
    EXPECT_EQ(mark(18), -10);
    EXPECT_EQ(mark(32), -10);
    EXPECT_EQ(mark(36), 4);
    EXPECT_EQ(mark(44), -4);

    framereader in("g.bin");
    std::vector<int64> wrong(4);
    EXPECT_EQ(runbody([&] { in.record(wrong.data(), 32); }).code(), -2); // another length
    writefile("cut.bin", bytes.substr(0, 30));
    framereader cut("cut.bin");
    EXPECT_EQ(runbody([&] { cut.record(wrong.data(), 24); }).code(), -2);
}

TEST_F(files, errorsnamethefile)
{
    const auto reasonof = [](const std::function<void()> &body) {
        const outcome result = runbody(body);
        EXPECT_EQ(result.code(), -2);
        return result.stop.reason;
    };
    EXPECT_EQ(reasonof([] { infile in("absent.txt"); }).find("absent.txt: can't open"), 0u);
    EXPECT_EQ(reasonof([] { outfile out("nofolder/x.txt"); }).find("nofolder/x.txt: "), 0u);
    EXPECT_EQ(reasonof([] { infile in("."); }).find(".: can't"), 0u);
    // A full disk shows at the write or at the close.
    EXPECT_EQ(reasonof([] {
                  outfile out("/dev/full");
                  out.writeline("x");
                  out.close();
              }).find("/dev/full: can't write"),
              0u);
}

// Long files are written by a second thread: pieces of all lengths, one beyond the buffer, bytes left
// in the buffer when the file moves or is dropped, and a full disk.
TEST_F(files, longfileswrittenbehind)
{
    std::minstd_rand draw(5);
    std::string text;
    while (text.size() < 7 * buffersize) text += std::to_string(draw()) + '\n';
    for (const char *nthreads : {"1", "2"}) {
        setenv("SOLVANTO_THREADS", nthreads, 1);
        outfile out("a.txt");
        for (std::size_t at = 0; at < text.size();) {
            const bool islarge = at > 3 * buffersize && at < 3 * buffersize + 4000;
            const std::size_t n = islarge ? buffersize + 12345 : draw() % 4000;
            out.write(std::string_view(text).substr(at, n));
            at += n;
            if (draw() % 100 == 0) {
                outfile moved(std::move(out));
                out = std::move(moved);
            }
        }
        out.close();
        EXPECT_EQ(readfile("a.txt"), text) << nthreads;
        {
            outfile dropped("b.txt");
            for (std::size_t at = 0; at < text.size(); at += 999)
                dropped.write(std::string_view(text).substr(at, 999));
        }
        EXPECT_EQ(readfile("b.txt"), text) << nthreads;
        const outcome full = runbody([&] {
            outfile nowhere("/dev/full");
            for (std::size_t at = 0; at + 999 < 5 * buffersize; at += 999)
                nowhere.write(std::string_view(text).substr(at, 999));
            nowhere.close();
        });
        EXPECT_EQ(full.stop.reason, "/dev/full: can't write: No space left on device") << nthreads;
    }
    unsetenv("SOLVANTO_THREADS");
}
