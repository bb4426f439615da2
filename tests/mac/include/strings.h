#pragma once

extern "C" int strcasecmp(const char* first, const char* second);
