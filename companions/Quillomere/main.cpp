#include "Quillomere/quillomere.h"

#include "stops.h"

int main()
{
    return runtostop(quillomere);
}
