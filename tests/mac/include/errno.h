#pragma once

extern "C" int* __error();

#define errno (*__error())
#define EINTR 4
