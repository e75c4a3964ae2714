#include <fstream> // the library forgets it where it is kept from files

#define TINYGLTF_IMPLEMENTATION
#include "modTinyGltf.h"
