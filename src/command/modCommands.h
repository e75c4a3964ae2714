#pragma once

#include <CLI/CLI.hpp>

#include "modTerminal.h"

// Each adds commands to the program. A command that ran leaves its outcome in Outcome.

inline ExitCode Outcome = ExitCode::Done;

void AddCheckCommand(CLI::App* program);
void AddReportCommand(CLI::App* program);
void AddDiffCommand(CLI::App* program);
void AddMirrorCommand(CLI::App* program);
void AddEditCommands(CLI::App* program);
void AddAliasCommands(CLI::App* program);
void AddWeightsCommands(CLI::App* program);
void AddNewCommand(CLI::App* program);
void AddConvertCommand(CLI::App* program);
void AddPictureCommand(CLI::App* program);
