#include "operations/undo_record.h"

#include <host/text.h>

#include <stdlib.h>

#include <algorithm>
#include <initializer_list>
#include <unordered_map>

namespace operations {

namespace {

// An entry is a verb and its fields, each ended by a zero byte. Names may hold any other byte.
constexpr const char* begun = "delvio-undo-2";
constexpr const char* named = "named";
constexpr const char* moving = "moving";
constexpr const char* trashing = "trashing";
constexpr const char* not_done = "not-done";
constexpr const char* copying = "copying";
constexpr const char* copied = "copied";
constexpr const char* emptying = "emptying";
constexpr const char* aliasing = "aliasing";
constexpr const char* elsewhere = "elsewhere";
constexpr const char* restoring = "restoring";
constexpr const char* undone = "undone";

std::string entry(std::initializer_list<std::string> fields) {
    std::string text;
    for (const std::string& field : fields) text.append(field).push_back('\0');
    return text;
}

std::string text_of(const timespec& time) {
    return std::to_string(time.tv_sec) + " " + std::to_string(time.tv_nsec);
}

timespec time_of(const std::string& text) {
    char* rest = nullptr;
    timespec time;
    time.tv_sec = strtoll(text.c_str(), &rest, 10);
    time.tv_nsec = strtol(rest, nullptr, 10);
    return time;
}

unsigned long long number_of(const std::string& text) {
    return strtoull(text.c_str(), nullptr, 10);
}

// Reads the entries one after the other.
class Reader {
  public:
    explicit Reader(Recorded* recorded) : recorded_(*recorded), steps_(recorded->steps) {}

    using Fields = const std::string*;
    void begin(Fields) {}
    void name(Fields fields) { recorded_.operation = fields[0]; }
    void move(Fields fields) { add(Step::Moved, fields).inode = number_of(fields[2]); }
    void put_in_trash(Fields fields) {
        Step& step = add(Step::Trashed, fields);
        step.target.clear();
        step.trashed = {fields[1], fields[2]};
        step.inode = number_of(fields[3]);
    }
    void take_back(Fields) {
        if (!steps_.empty()) steps_.pop_back();
    }
    void copy(Fields fields) {
        copies_[fields[1]] = steps_.size();
        Step& step = add(Step::Copied, fields);
        step.inode = step.copy.inode = number_of(fields[2]);
        step.copy.size = strtoll(fields[3].c_str(), nullptr, 10);
        step.copy.modified = time_of(fields[4]);
        step.copy.changed = time_of(fields[5]);
        step.copy.linked = !fields[6].empty();
    }
    void confirm(Fields) {
        if (!steps_.empty()) steps_.back().is_confirmed = true;
    }
    void empty(Fields fields) {
        const auto known = copies_.find(fields[1]);
        if (known == copies_.end() || known->second >= steps_.size()) return;
        Step& step = steps_[known->second];
        if (step.source != fields[0]) return;
        step.kind = Step::Moved;
        step.original = number_of(fields[2]);
    }
    void alias(Fields fields) { add(Step::Aliased, fields); }
    void refuse(Fields fields) { recorded_.problem = fields[0]; }
    void restore(Fields fields) {
        if (Step* step = step_of(fields[0])) step->restored = number_of(fields[1]);
    }
    void undo(Fields fields) {
        if (Step* step = step_of(fields[0])) step->is_undone = true;
    }

  private:
    Step& add(Step::Kind kind, Fields fields) {
        steps_.emplace_back();
        steps_.back().kind = kind;
        steps_.back().source = fields[0];
        steps_.back().target = fields[1];
        return steps_.back();
    }
    Step* step_of(const std::string& number) {
        const auto index = number_of(number);
        return index < steps_.size() ? &steps_[index] : nullptr;
    }

    Recorded& recorded_;
    std::vector<Step>& steps_;
    std::unordered_map<std::string, size_t> copies_;  // by target
};

struct Verb {
    const char* verb;
    size_t paths;  // fields at the entry's beginning that are whole paths
    size_t fields;
    void (Reader::*take)(Reader::Fields);
};

const Verb verbs[] = {
    {begun, 0, 0, &Reader::begin},        {named, 0, 1, &Reader::name},
    {moving, 2, 3, &Reader::move},        {trashing, 3, 4, &Reader::put_in_trash},
    {not_done, 0, 0, &Reader::take_back}, {copying, 2, 7, &Reader::copy},
    {copied, 0, 0, &Reader::confirm},     {emptying, 2, 3, &Reader::empty},
    {aliasing, 2, 2, &Reader::alias},     {elsewhere, 0, 1, &Reader::refuse},
    {restoring, 0, 2, &Reader::restore},  {undone, 0, 1, &Reader::undo},
};

// Whether the fields are what an operation writes. A damaged record could name any file.
bool make_sense(const Verb& verb, const std::string* fields) {
    const bool are_paths = std::all_of(fields, fields + verb.paths, [](const std::string& field) {
        return field.starts_with('/');
    });
    return are_paths && (verb.verb != trashing || is_place_in_trash({fields[1], fields[2]}));
}

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> words;
    for (size_t at = 0, end; (end = text.find('\0', at)) != std::string::npos; at = end + 1) {
        words.push_back(text.substr(at, end - at));
    }
    return words;
}

const Verb* known_verb(const std::string& word) {
    for (const auto& verb : verbs) {
        if (word == verb.verb) return &verb;
    }
    return nullptr;
}

Recorded unreadable() {
    Recorded recorded;
    recorded.problem = translated("the record of the last operation cannot be read");
    return recorded;
}

}  // namespace

Recorded read_undo_record(const std::string& text) {
    Recorded recorded;
    Reader reader(&recorded);
    const std::vector<std::string> words = split(text);
    for (size_t at = 0; at < words.size();) {
        const Verb* verb = known_verb(words[at]);
        if (!verb || (at == 0) != (verb->verb == begun)) return unreadable();
        const size_t next = at + 1 + verb->fields;
        // The step of a cut-off entry was never begun.
        if (next > words.size()) break;
        if (!make_sense(*verb, words.data() + at + 1)) return unreadable();
        (reader.*verb->take)(words.data() + at + 1);
        for (; at < next; at++) recorded.length += words[at].size() + 1;
    }
    return recorded;
}

bool ends_with_trashing(const std::string& end, Trashed* trashed) {
    const std::vector<std::string> words = split(end);
    constexpr size_t length = 5;
    // No field of another entry equals the verb: fields are absolute paths and numbers.
    if (words.size() < length || words[words.size() - length] != trashing) return false;
    *trashed = {words[words.size() - 3], words[words.size() - 2]};
    return is_place_in_trash(*trashed);
}

std::string begun_entry(const std::string& operation) {
    return entry({begun}) + entry({named, operation});
}
std::string moving_entry(const std::string& source, const std::string& target, ino_t inode) {
    return entry({moving, source, target, std::to_string(inode)});
}
std::string trashing_entry(const std::string& path, const Trashed& trashed, ino_t inode) {
    return entry({trashing, path, trashed.file, trashed.info, std::to_string(inode)});
}
std::string not_done_entry() { return entry({not_done}); }
std::string copying_entry(const std::string& source, const std::string& target,
                          const CopyState& state) {
    return entry({copying, source, target, std::to_string(state.inode), std::to_string(state.size),
                  text_of(state.modified), text_of(state.changed), state.linked ? "linked" : ""});
}
std::string copied_entry() { return entry({copied}); }
std::string emptying_entry(const std::string& source, const std::string& target, ino_t original) {
    return entry({emptying, source, target, std::to_string(original)});
}
std::string aliasing_entry(const std::string& source, const std::string& target) {
    return entry({aliasing, source, target});
}
std::string elsewhere_entry(const std::string& line) { return entry({elsewhere, line}); }
std::string restoring_entry(size_t step, ino_t inode) {
    return entry({restoring, std::to_string(step), std::to_string(inode)});
}
std::string undone_entry(size_t step) { return entry({undone, std::to_string(step)}); }

}  // namespace operations
