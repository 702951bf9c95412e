// The JSON reader of every class. What one input does is in FuzzCommon.h, shared
// with the regression tests of what the fuzzers found.

#include "FuzzCommon.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Fuzzing::runJson(data, size);
    return 0;
}
