#pragma once

#include <string>
#include <vector>

#include "checks/modFinding.h"

/// Appends what a load of the model file at `path` drops or misreads of its text, and what a save after it would drop
/// or change. The scene is neither read nor changed. False when the file cannot be read.
bool CheckText(const std::string& path, std::vector<Finding>* findings, std::string* error);
