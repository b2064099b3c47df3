// Keys of boxes 8 and 9: selection on the recombination rate, gene editing and gene drive.
#include "spec/specvalues.h"
#include "textlayout.h"
#include "words.h"

namespace
{
void readrecombination(specreader &r)
{
    r.s.selection.recombselonoff = valueis(r, "on");
    if (!r.s.selection.recombselonoff) return;
    printline(" BOX 8 - RECOMBINATION");
    printline(" Paper is currently under review and until such time as it is published we have not "
              "enabled this option");
}

void readgeneediting(specreader &r)
{
    editingsettings &editing = r.s.editing;
    editing.geneditonoff = valueis(r, "on");
    if (editing.geneditonoff) return;
    editing.nindedited = 0;
    editing.ngeneditsperind = 0;
    editing.userqtnonoff = false;
    r.b9 = true;
}

const speckey keys[] = {
    // Box 8
    {"recombinationonoff", 81, "RecombinationOnOff not set properly", readrecombination},
    {"heritabilityofrecombination", 82, "HeritabilityOfRecombination not set properly",
     [](specreader &r) { r.s.traits.heritrecomb = valuereal(r, 1); }},
    {"numberofqtnperchromforrecombination", 83,
     "NumberOfQtnPerChromForRecombination not set properly",
     [](specreader &r) {
         r.s.qtn.nqtnrecombperchrom = valueinteger(r, 1);
         r.ntotqtnrecomb = r.s.founders.nchrom * r.s.qtn.nqtnrecombperchrom;
     }},
    {"initialrecombinationindexweight", 84, "InitialRecombinationIndexWeight not set properly",
     [](specreader &r) { r.s.selection.recombindexwt = valuereal(r, 1); }},
    {"numbergenerationsselectiononrecombination", 85,
     "NumberGenerationsSelectionOnRecombination not set properly",
     [](specreader &r) { r.s.selection.ngenselectonrec = valueinteger(r, 1); }},
    {"latergenrecombinationindexweight", 86, "LaterGenRecombinationIndexWeight not set properly",
     [](specreader &r) { r.s.selection.recombindexwtlatergen = valuereal(r, 1); }},
    {"distributionofqtnforrecombination", 87, "DistributionOfQtnForRecombination not set properly",
     [](specreader &r) {
         r.recombdistribution = valueword(r, 1);
         r.s.selection.recombdistrib =
             valueis(r, "gamma") ? effectdistribution::gamma : effectdistribution::normal;
     }},
    {"shapeandscaleofgammadist", 88, "ShapeAndScaleOfGammaDist not set properly",
     [](specreader &r) {
         if (r.s.selection.recombdistrib != effectdistribution::gamma) return;
         needcount(r, 2);
         r.s.selection.shaperecomb = valuereal(r, 1);
         r.s.selection.scalerecomb = valuereal(r, 2);
     }},
    // Box 9
    {"geneeditingonoff", 91, "GeneEditingOnOff not set properly", readgeneediting},
    {"edittoporbottom", 92, "EditTopOrBottom not set properly",
     [](specreader &r) { valueword(r, 1); }},
    {"numberofeditedindividuals", 93, "NumberOfEditedIndividuals not set properly",
     [](specreader &r) {
         if (r.b9) return;
         int64 n = r.s.editing.nindedited;
         tryinteger(r, 1, n);
         if (r.b4 && n > r.maxedited)
             failkey(r, 1, "it is more than an earlier line asked for: give this key once");
         r.s.editing.nindedited = n;
     }},
    {"numberofgeneeditsperindividual", 94, "NumberOfGeneEditsPerIndividual not set properly",
     [](specreader &r) {
         if (r.b9) return;
         const int64 n = valueinteger(r, 1);
         if (r.b4 && n > r.maxedits)
             failkey(r, 1, "it is more than an earlier line asked for: give this key once");
         r.s.editing.ngeneditsperind = n;
     }},
    {"performgeonuserqtnselectionyesno", 95, "PerformGEOnUserQtnSelectionYesNo not set properly",
     [](specreader &r) {
         if (r.b9) return;
         valueword(r, 1);
         r.s.editing.userqtnonoff = !valueis(r, "no");
     }},
    {"genedriveonoff", 96, "GeneDriveOnOff not set properly",
     [](specreader &r) { r.s.editing.genedriveonoff = valueis(r, "on"); }},
};
} // namespace

std::span<const speckey> keysrecombinationediting()
{
    return keys;
}
