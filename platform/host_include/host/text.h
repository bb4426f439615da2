// Texts for people in the user's language. The English text is the key; po/ has the catalogues.
// What programs read (JSON, --print, the log) and names that menus must have are not translated.
// Any thread.
#pragma once

#include <initializer_list>
#include <string>

// The text in the user's language, or the English text itself; valid for ever.
const char* translated(const char* english);

// The form of the text that goes with a number: "%s item", "%s items".
const char* translated_count(const char* one, const char* many, unsigned long number);

// The format with its words: %s are the words in their order, %2$s is the second one, %% is a
// percent sign. A directive without a word stays as it is.
std::string filled(const char* format, std::initializer_list<std::string> words);

// Both in one step: translated("cannot open %s", {name}).
std::string translated(const char* english, std::initializer_list<std::string> words);
std::string translated_count(const char* one, const char* many, unsigned long number,
                             std::initializer_list<std::string> words);

// Marks a text in a table for the catalogues. Whoever shows it calls translated().
#define to_translate(english) english

// What strerror() says, in the user's language.
std::string error_text(int error);

// Whether the texts are in a script that runs from right to left, so that menus and panels are
// mirrored.
bool text_is_mirrored();
