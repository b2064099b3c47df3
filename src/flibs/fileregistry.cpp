#include "flibs/fileregistry.h"

#include "shell.h"
#include "stops.h"

int64 findfreeunitnumber(const fileregistry &r)
{
    for (int64 number = firstunitnumber; number <= lastunitnumber; ++number)
        if (!r.allocatedunits(number)) return number;
    printline("error! Not enough units available. ");
    plainstop();
}

void initdescriptor(fileregistry &r, fileunit &unit)
{
    if (unit.initialised) return;
    unit.unitnumber = findfreeunitnumber(r);
    r.allocatedunits(unit.unitnumber) = 1;
    unit.initialised = true;
}

void openfile(fileregistry &r, const std::string &path, filestatus rwtype)
{
    fileunit unit;
    initdescriptor(r, unit);
    if (r.init)
        dict_add_key(r.dict, path, unit);
    else
        dict_create(r.dict, path, unit);
    r.init = true;
    openstream &stream = r.streams[unit.unitnumber];
    if (rwtype == filestatus::replace || (rwtype == filestatus::unknown && !pathexists(path)))
        stream.out.open(path);
    if (rwtype == filestatus::replace) return;
    stream.out.close();
    stream.in.open(path);
}

int64 getunitnumber(const fileregistry &r, const std::string &path)
{
    const fileunit unit = dict_get_key(r.dict, path);
    if (!(unit == dict_null)) return unit.unitnumber;
    printline("there has been an error in the merge. Key not found " + path);
    stopwithcode(360000);
}

bool isopenfile(const fileregistry &r, const std::string &path)
{
    return dict_has_key(r.dict, path);
}

recordfile &inputof(fileregistry &r, const std::string &path)
{
    return r.streams.at(getunitnumber(r, path)).in;
}

outfile &outputof(fileregistry &r, const std::string &path)
{
    return r.streams.at(getunitnumber(r, path)).out;
}

void closefile(fileregistry &r, const std::string &path)
{
    const int64 number = getunitnumber(r, path);
    openstream &stream = r.streams.at(number);
    stream.in.close();
    stream.out.close();
    r.streams.erase(number);
    r.allocatedunits(number) = 0;
    dict_delete_key(r.dict, path);
}

void closedict(fileregistry &r)
{
    dict_destroy(r.dict);
    r.init = false;
}
