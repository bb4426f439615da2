#include "file_managers/thunar_actions.h"

#include <host/text.h>

#include <algorithm>

#include "file_managers/xml_elements.h"

namespace {

const char* const identifier = "delvio-menu";
const char* const empty_file =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n</actions>\n";

std::string action_text(const std::string& command, const std::string& icon) {
    return "<action>\n\t<icon>" + icon +
           "</icon>\n\t<name>Delvio</name>\n\t<submenu></submenu>\n\t<unique-id>" + identifier +
           "</unique-id>\n\t<command>" + xml_escaped(command) +
           "</command>\n\t<description>Browse in a menu</description>\n\t<range>*</range>\n"
           "\t<patterns>*</patterns>\n\t<directories/>\n\t<audio-files/>\n\t<image-files/>\n"
           "\t<other-files/>\n\t<text-files/>\n\t<video-files/>\n</action>";
}

std::string comment_text(int folders) { return "<!-- " + made_by_delvio(folders) + " -->"; }

// A file of actions, to be changed.
class ActionsFile {
  public:
    ActionsFile(const std::string& path, const std::string& text) : text_(text) {
        std::string reason;
        const auto document = read_xml(text_, &reason);
        if (!document) {
            problem_ = translated("%s cannot be read (%s); it was left as it is", {path, reason});
        } else if (document->root != "actions") {
            problem_ =
                translated("%s is no file of Thunar's actions; it was left as it is", {path});
        } else {
            document_ = *document;
        }
    }

    const std::string& problem() const { return problem_; }
    const std::string& text() const { return text_; }

    // Delvio's action; nothing if it is not there.
    std::optional<XmlRange> action() const {
        for (const XmlRange& child : document_.children) {
            if (child_text(child.of(text_), "unique-id") == identifier) return child;
        }
        return {};
    }

    // The comment that says that Delvio made the file.
    std::optional<XmlRange> comment() const {
        for (const XmlRange& comment : document_.comments) {
            if (folders_made_for(std::string(comment.of(text_))) >= 0) return comment;
        }
        return {};
    }

    // The text with one more thing at the root's end.
    std::string with(const std::string& thing) const {
        std::string text = text_;
        const XmlRange inside = document_.inside;
        if (document_.is_closed_at_once) {
            return text.replace(inside.end - 2, 2, ">" + thing + "</actions>");
        }
        return text.insert(inside.end, thing + "\n");
    }

    // The text without this thing, as with() put it in.
    std::string without(XmlRange thing) const {
        std::string text = text_;
        const bool has_newline = text[thing.end] == '\n';
        const bool is_alone =
            thing.begin == document_.inside.begin && thing.end == document_.inside.end;
        if (is_alone) {
            const size_t end_of_tag = thing.begin - 1;
            return text.replace(end_of_tag, end_of_root(thing.end) - end_of_tag, "/>");
        }
        return text.erase(thing.begin, thing.end - thing.begin + has_newline);
    }

  private:
    size_t end_of_root(size_t from) const { return text_.find('>', from) + 1; }

    std::string text_;
    std::string problem_;
    XmlDocument document_;
};

Edit refused(const std::string& text, const std::string& problem) { return {text, 0, problem}; }

// The user's file with the action in place of the old one, or at its end.
Edit put_action_in(const std::string& path, const std::string& text, const std::string& action) {
    const ActionsFile file(path, text);
    if (!file.problem().empty()) return refused(text, file.problem());
    const auto old = file.action();
    if (!old) return {file.with(action), 0, {}};
    std::string changed = text;
    // An action that Thunar has written anew means the same when its command does.
    if (child_text(old->of(text), "command") == child_text(action, "command")) return {text, 0, {}};
    return {changed.replace(old->begin, old->end - old->begin, action), 0, {}};
}

// A file that Delvio made goes, unless it has something of the user's by now.
Edit without_comment(const std::string& path, const std::string& text,
                     const std::string& standard) {
    const ActionsFile file(path, text);
    const auto comment = file.comment();
    if (!comment) return {text, 0, {}};
    const std::string rest = file.without(*comment);
    if (rest != standard) return {rest, 0, {}};
    return {{}, folders_made_for(std::string(comment->of(text))), {}};
}

Edit take_action_out(const std::string& path, const std::string& text,
                     const std::string& standard) {
    const ActionsFile file(path, text);
    if (!file.problem().empty()) return refused(text, file.problem());
    const auto action = file.action();
    if (!action) return {text, 0, {}};
    return without_comment(path, file.without(*action), standard);
}

}  // namespace

EntryFile thunar_actions(const std::string& path, const std::string& command,
                         const std::string& icon, const FileText& standard) {
    const std::string action = action_text(command, icon);
    std::string base = standard.value_or(empty_file), unused;
    const auto readable = read_xml(base, &unused);
    if (!readable || readable->root != "actions") base = empty_file;
    EntryFile file{path, 0644, {}, {}};
    file.put_in = [=](const FileText& now, int missing) {
        if (now) return put_action_in(path, *now, action);
        const std::string begun = ActionsFile(path, base).with(comment_text(missing));
        return put_action_in(path, begun, action);
    };
    file.take_out = [=](const FileText& now) {
        return now ? take_action_out(path, *now, base) : Edit{};
    };
    return file;
}
