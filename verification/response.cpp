// Response to selection of whole runs against the breeder's equation.
#include "wholeruns/runsupport.h"

#include <cmath>

class response : public wholerun
{
};

// One generation of truncation on true values. With 20 of 200 males (intensity 1.755) and 100 of
// 200 females (0.798), accuracy 1: response (1.755 + 0.798) / 2 = 1.28 genetic standard deviations.
// Its standard error is about 0.075 of them (sampling of the best, and Mendelian sampling of 400
// progeny); allowed are 0.3, four times as much.
TEST_F(response, ofonegeneration)
{
    mustrun(smallrun()
                .set("NumberGenerationsBurnIn", "2")
                .set("NumberGenerationsSelection", "1")
                .set("NumberOfIndividualsInEachGeneration", "Constant,400")
                .set("NumberOfSiresInEachGeneration", "Constant,20")
                .set("NumberOfDamsInEachGeneration", "Constant,100")
                .set("NumberOfQtnPerChromosomeNormalDist", "80")
                .set("NumberOfQtnPerChromosomeGammaDist", "0"),
            -35);
    std::vector<double> mean(4, 0), variance(4, 0);
    for (const auto &row : numbertable("SimulatedData/GeneticMeansPerGeneration.txt", 1))
        if (row[1] == 1) mean[static_cast<std::size_t>(row[0])] = row[3];
    for (const auto &row :
         numbertable("SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt", 1))
        if (row[1] == 1) variance[static_cast<std::size_t>(row[0])] = row[4];
    EXPECT_NEAR((mean[3] - mean[2]) / std::sqrt(variance[2]), 1.28, 0.3);
}
