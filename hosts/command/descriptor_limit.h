// How many files this process may have open.
#pragma once

#include <string>

// Uses what the system allows; a sentence when that is too little to work with, else empty.
std::string DescriptorProblem();
