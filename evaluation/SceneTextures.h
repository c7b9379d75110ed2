// Procedural textures for the evaluation scenes: value noise summed over
// octaves, coloured per kind (grass, leaves, plaster, wood, bark, gravel).
// RGBA, 8 bits, size x size, the same for a kind on every run.
#pragma once

#include <cstdint>
#include <vector>

#include "Scene.h"

std::vector<uint8_t> makeTexture(Texture kind, int size);
