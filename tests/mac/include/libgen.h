#pragma once

extern "C" char* basename(char* path);
