#pragma once

#include <cstdint>

namespace hazelmark {

/// How a data set of the IIM application record (record 2) is called in the property dictionary.
struct IptcName
{
    uint16_t dataSet;
    const char *key;
    bool repeats; ///< may be there several times: its object is an array even of one
};

/// Null for a data set that the dictionary has no name for.
const IptcName *iptcName(uint16_t dataSet);

} // namespace hazelmark
