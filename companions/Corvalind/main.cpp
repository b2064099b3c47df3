#include "Corvalind/corvalind.h"

#include "stops.h"

int main()
{
    return runtostop(corvalind);
}
