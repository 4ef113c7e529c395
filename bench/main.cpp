#include "Benches.h"
#include "Comparison.h"

int main(int argc, char **argv)
{
    hazelmark::bench::addBlurRows();
#ifdef HAZELMARK_CLI
    hazelmark::bench::addCommandLineRows();
#endif
    hazelmark::bench::addErrorRows();
    hazelmark::bench::addPaintRows();
    return hazelmark::bench::run(argc, argv);
}
