#include "QuillomereP/quillomerep.h"

#include "stops.h"

int main()
{
    return runtostop(quillomerep);
}
