#include "solvanto.h"
#include "stops.h"

#include <memory>

int main()
{
    const auto s = std::make_unique<state>();
    return runtostop([&] { solvanto(*s); });
}
