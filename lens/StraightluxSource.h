// The source name that tags the lens plug-in's allocations in the heap
// manager's records (address map, optimiser work buffer).
#pragma once

constexpr const char* kStraightluxSource = "Straightlux";
