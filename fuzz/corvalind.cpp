// The readers of optimal contributions. An input is up to four files: the specification, and of four
// individuals relationships, estimates and genders.
#include "harness.h"

#include "Corvalind/candidates.h"
#include "Corvalind/corvalindspec.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 4);
    putfile("CorvalindSpec.txt", parts[0]);
    putfile("Relationships.txt", parts[1]);
    putfile("Ebv.txt", parts[2]);
    putfile("Genders.txt", parts[3]);
    orderly([] { readcorvalindspec("CorvalindSpec.txt"); });
    orderly([] {
        corvalindspec spec;
        spec.file = "CorvalindSpec.txt";
        spec.relationshipfile = "Relationships.txt";
        spec.breedingvaluefile = "Ebv.txt";
        spec.genderfile = "Genders.txt";
        spec.sexesmatter = true;
        spec.nindiv = 4;
        spec.nmales = spec.nfemales = 2;
        readcandidates(spec);
    });
    return 0;
}
