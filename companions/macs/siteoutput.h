// siteoutput.h - sites as the coalescent simulator writes them, one line each:
//   SITE:<tab>index<tab>position<tab>age<tab>alleles   index from 0
//   TOTAL_SAMPLES:, TOTAL_SITES:, BEGIN_SELECTED_SITES, the indices, END_SELECTED_SITES
// the last five only behind at least one site. Position has 12 significant digits, age 9, both
// right-aligned in 15 columns where they fit.
#pragma once

#include "files.h"

namespace macs
{
class sitewriter
{
  public:
    sitewriter(outfile &file, int64 nhaplotypes) : out(file), n(nhaplotypes) {}
    // Begins a site, and gives the place of its n alleles, characters 0 and 1, which are then
    // filled in. The output isn't written on before the site is ended.
    char *begin(double position, double age);
    void end();
    // All sites are selected: nothing here chooses among them.
    void close();
    int64 nwritten() const { return nsites; }

  private:
    outfile &out;
    int64 n, nsites = 0;
    textline head;
};
} // namespace macs
