// The numbers of the class families that CFGetTypeID tells apart. 0 is any other class.
#pragma once

enum {
    STRING_TYPE_ID = 7,
    DICTIONARY_TYPE_ID = 18,
    ARRAY_TYPE_ID = 19,
    DATA_TYPE_ID = 20,
    NUMBER_TYPE_ID = 22,
    DATE_TYPE_ID = 42
};
