#include "solvanto.h"
#include "stops.h"

int main()
{
    return runtostop([] { solvanto(); });
}
