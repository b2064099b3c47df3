#include "pedigree/earlierrun.h"

#include "files.h"
#include "pedigree/pedigreefiles.h"
#include "words.h"

#include <sys/stat.h>

#include <ctime>

void warnofearlierrun(const runoptions &options)
{
    struct stat status {
    };
    if (stat(generationtable, &status) != 0 || !S_ISREG(status.st_mode)) return;
    const int64 ngenerations = countlines(generationtable) - 1; // a title line
    char day[32] = "";
    std::tm local{};
    if (localtime_r(&status.st_mtime, &local))
        std::strftime(day, sizeof day, "%Y-%m-%d %H:%M", &local);
    warn(options, generationtable, 0,
         "the results of an earlier run, " + numbertext(ngenerations) + " generations of " + day +
             ", are removed: this run begins with generation 1");
}
