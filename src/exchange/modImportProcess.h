#pragma once

#include <string>

/// Reads a model of another format by means of a program of its own, which gets limited memory and time. *glb becomes
/// the model as a binary glTF file; *messages what the program told, a line each. `program` is given without the ending
/// that the system's programs have.
bool RunImporter(const std::string& program, const std::string& file, std::string* glb, std::string* messages,
                 std::string* error);
