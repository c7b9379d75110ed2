// The process-wide host service; the host binding fills it at load time.
#include "ZelHost.h"

ZelHost& zelHost() {
    static ZelHost host;
    return host;
}
