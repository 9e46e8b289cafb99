// The demo's printed results.
#pragma once

#include <cstdio>
#include <span>
#include <string>

#include "Physiology.h"
#include "Replay.h"

// The text in lines of at most 100 characters where its words allow.
void PrintComment(FILE* stream, const std::string& comment);

// A line for each sequence entry of each epoch.
void PrintEpochs(FILE* stream, std::span<const Replay> replays);

void PrintFindings(FILE* stream, std::span<const Finding> findings);
