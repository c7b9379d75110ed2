#include "ZelHost.h"

ZelHost& zelHost() {
    static ZelHost host;
    return host;
}
