#include "Brenvask/brenvask.h"

#include "stops.h"

int main()
{
    return runtostop(brenvask);
}
