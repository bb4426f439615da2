#include "quicklook/decoder/text_colours.h"

#include <srchilite/formattermanager.h>
#include <srchilite/formatterparams.h>
#include <srchilite/langdefmanager.h>
#include <srchilite/langmap.h>
#include <srchilite/languageinfer.h>
#include <srchilite/regexrulefactory.h>
#include <srchilite/sourcehighlighter.h>
#include <strings.h>
#include <time.h>

#include <exception>
#include <sstream>

namespace thumbnails {

namespace {

const char rules_folder[] = "/usr/share/source-highlight";
// In processor time.
const clock_t patience = CLOCKS_PER_SEC * 7 / 10;

struct Element {
    const char* name;
    Ink ink;
};

// What the language definitions call the parts of a text.
const Element elements[] = {
    {"keyword", Ink::keyword},  {"preproc", Ink::keyword},    {"type", Ink::type},
    {"usertype", Ink::type},    {"classname", Ink::type},     {"string", Ink::string},
    {"regexp", Ink::string},    {"specialchar", Ink::string}, {"value", Ink::string},
    {"url", Ink::string},       {"number", Ink::number},      {"date", Ink::number},
    {"time", Ink::number},      {"comment", Ink::comment},    {"todo", Ink::accent},
    {"function", Ink::name},    {"predef_func", Ink::name},   {"name", Ink::name},
    {"variable", Ink::name},    {"predef_var", Ink::name},    {"attribute", Ink::name},
    {"property", Ink::name},    {"selector", Ink::type},      {"section", Ink::keyword},
    {"label", Ink::accent},     {"oldfile", Ink::removed},    {"newfile", Ink::added},
    {"difflines", Ink::accent}, {"paren", Ink::text},         {"argument", Ink::name},
};

// Names that the library's own list lacks or takes for something else.
const struct {
    const char *ending, *rules;
} more_names[] = {
    {"pl", "perl.lang"},
    {"ts", "javascript.lang"},
    {"tsx", "javascript.lang"},
    {"jsx", "javascript.lang"},
    {"mjs", "javascript.lang"},
    {"m", "c.lang"},
    {"mm", "cpp.lang"},
    {"kt", "java.lang"},
    {"svg", "xml.lang"},
    {"yml", "conf.lang"},
    {"yaml", "conf.lang"},
    {"toml", "conf.lang"},
    {"cfg", "conf.lang"},
    {"service", "desktop.lang"},
    {"plist", "xml.lang"},
    {"txt", ""},
    {"md", ""},
    {"csv", ""},
    {"in", ""},
    {"r", "r.lang"},
    {"s", "asm.lang"},
};

class Collector : public srchilite::Formatter {
  public:
    Collector(Ink ink, const srchilite::FormatterParams& place, std::vector<Stroke>& strokes)
        : ink_(ink), place_(place), strokes_(strokes) {}
    void format(const std::string& part, const srchilite::FormatterParams*) override {
        if (ink_ == Ink::text || place_.start < 0) return;
        strokes_.push_back({static_cast<size_t>(place_.start), part.size(), ink_});
    }

  private:
    const Ink ink_;
    const srchilite::FormatterParams& place_;
    std::vector<Stroke>& strokes_;
};

std::string rules_by_name(const std::string& name) {
    const size_t dot = name.rfind('.');
    const std::string ending = dot == name.npos ? "" : name.substr(dot + 1);
    for (const auto& [known, rules] : more_names) {
        if (strcasecmp(known, ending.c_str()) == 0) return rules;
    }
    srchilite::LangMap map(rules_folder, "lang.map");
    if (!ending.empty()) return map.getMappedFileName(ending);
    return strcasecmp(name.c_str(), "makefile") == 0 ? "makefile.lang" : "";
}

std::string rules_by_text(const std::string& text) {
    std::istringstream stream(text.substr(0, 1024));
    const std::string language = srchilite::LanguageInfer().infer(stream);
    srchilite::LangMap map(rules_folder, "lang.map");
    return language.empty() ? "" : map.getMappedFileName(language);
}

}  // namespace

struct TextColours::Language {
    explicit Language(const std::string& rules)
        : manager(&factory),
          highlighter(manager.getHighlightState(rules_folder, rules)),
          formatters(srchilite::FormatterPtr(new Collector(Ink::text, place, strokes))) {
        for (const auto& [name, ink] : elements) {
            formatters.addFormatter(name,
                                    srchilite::FormatterPtr(new Collector(ink, place, strokes)));
        }
        highlighter.setFormatterManager(&formatters);
        highlighter.setFormatterParams(&place);
        highlighter.setOptimize(false);
    }

    srchilite::RegexRuleFactory factory;
    srchilite::LangDefManager manager;
    srchilite::SourceHighlighter highlighter;
    srchilite::FormatterParams place;
    std::vector<Stroke> strokes;
    srchilite::FormatterManager formatters;
    clock_t spent = 0;
};

TextColours::TextColours(const std::string& name, const std::string& text) {
    try {
        std::string rules = rules_by_name(name);
        if (rules.empty() && name.find('.') == name.npos) rules = rules_by_text(text);
        if (!rules.empty() && rules != "nohilite.lang") language_.reset(new Language(rules));
    } catch (const std::exception&) {
        // Rules that are missing or damaged colour nothing.
    }
}

TextColours::~TextColours() = default;

std::vector<Stroke> TextColours::next(const std::string& line) {
    if (!language_) return {};
    const clock_t start = clock();
    try {
        language_->strokes.clear();
        language_->place.start = 0;
        language_->highlighter.highlightParagraph(line);
        language_->spent += clock() - start;
        std::vector<Stroke> strokes = std::move(language_->strokes);
        if (language_->spent > patience) language_.reset();
        return strokes;
    } catch (const std::exception&) {
        language_.reset();  // a rule that would take for ever
        return {};
    }
}

}  // namespace thumbnails
