#include "ZelBand.h"

namespace {

// Slack added to the share ratio before truncation, so a ratio that comes out
// a hair below a whole number still names the right band.
constexpr double kBandIndexSlack = 0.2;

}  // namespace

long zelBandIndex(unsigned long offset, unsigned long length) {
    if (length == 0) return 0;
    return static_cast<long>(static_cast<double>(offset) / static_cast<double>(length) +
                             kBandIndexSlack);
}

void zelBandRows(long index, long bands, long count, long& first, long& last) {
    // A processor count below 1 (not yet set by the host) means one band; it
    // would otherwise divide by zero.
    if (bands < 1) bands = 1;
    if (index < 0 || index >= bands) {
        // A worker beyond the band count has no rows of its own.
        first = 0;
        last = -1;
        return;
    }
    const long per = count / bands;
    first = index * per;
    last = index == bands - 1 ? count - 1 : first + per - 1;
}
