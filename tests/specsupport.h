// specsupport.h - specifications for tests: a small good one, and ways to change it.
#pragma once

#include <string>
#include <vector>

// The lines of a specification. Keys are found in any case; each change gives the text itself
// back, so that changes can be chained. A line that is put in may hold line ends and is then
// several lines; to change a key that is absent, other than by set, throws.
class spectext
{
  public:
    explicit spectext(const std::string &text);
    // The key's line gets these values ("Constant,10"); a key that is absent is appended.
    spectext &set(const std::string &key, const std::string &values);
    spectext &remove(const std::string &key);
    // Several such changes, behind one another: "NumberOfTraits,1; -PedigreeStatus". Beside these
    // two there are "Key=line" for replace, "Key<Other" for movebefore, and "+line" for append.
    spectext &change(const std::string &changes);
    // Another line in the place of the key's.
    spectext &replace(const std::string &key, const std::string &line);
    spectext &insertbefore(const std::string &key, const std::string &line);
    // Another row behind those that stand below the key of a matrix.
    spectext &addrow(const std::string &key, const std::string &row);
    spectext &append(const std::string &line);
    // Moves the key's line right before or behind another key's.
    spectext &movebefore(const std::string &key, const std::string &other);
    spectext &moveafter(const std::string &key, const std::string &other);

    std::vector<std::string> lines;
    std::string text() const;
    // Writes SolvantoSpec.txt into the working directory.
    void write() const;

  private:
    std::size_t find(const std::string &key) const;
    std::size_t findpresent(const std::string &key) const;
    spectext &splice(std::size_t i, std::size_t n, const std::string &content);
};

// The complete example of the page on the specification file.
spectext documentedspec();
// The same made small, with every key, and passing every check: an animal scheme with 3 burn-in
// generations and 2 of selection on true values, 20 individuals each from 4 sires and 10 dams,
// 2 chromosomes, one chip with 20 SNP and 10 QTN of each distribution per chromosome, one trait
// with heritability 0.5, nothing switched on that needs further files. For a run of burn-in alone
// set NumberGenerationsSelection to 0.
spectext goodspec();
// A specification of a small run: the good one, with founders of about 400 sites a chromosome.
spectext smallrun();
