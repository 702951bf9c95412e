// A fuzz target, built once for each reader: EDD_FUZZ_RUN names what one input
// does, in FuzzCommon.h, which the regression tests of what the fuzzers found share.

#include "FuzzCommon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Fuzzing::EDD_FUZZ_RUN(data, size);
    return 0;
}
