#include "Benches.h"
#include "Comparison.h"

int main(int argc, char **argv)
{
    hazelmark::bench::addBlurRows();
#ifdef HAZELMARK_CLI
    hazelmark::bench::addCommandLineRows();
#endif
    hazelmark::bench::addErrorRows();
    hazelmark::bench::addGlassRows();
    hazelmark::bench::addPaintRows();
    hazelmark::bench::addEditRows();
#ifdef HAZELMARK_PROGRAM
    hazelmark::bench::addWindowRows();
#endif
    const int result = hazelmark::bench::run(argc, argv);
#ifdef HAZELMARK_PROGRAM
    hazelmark::bench::endWindowRows();
#endif
    return result;
}
