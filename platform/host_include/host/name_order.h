// The order in which folders list their names. Main thread.
#pragma once

// A host's answer, asked for each folder that scandir reads in an order: whether the names come in
// the order of the user's language, instead of the order that the caller compares by. Null: they do
// not.
void order_names_by_language(bool (*question)());
