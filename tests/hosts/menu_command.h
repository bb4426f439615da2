// Runs `delvio menu` without a display: the command starts its own.
#pragma once

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <string>
#include <vector>

#include "file_steps/state_folder.h"
#include "hosts/command_runner.h"
#include "operations/undo_journal.h"
#include "support/temp_folder.h"

namespace test {

using nlohmann::json;
using Words = std::vector<std::string>;

struct MenuCommand : testing::Test {
    TempFolder folder;

    // No menu offers to undo what another case did.
    MenuCommand() {
        unlink(operations::undo_journal_path(operations::default_state_folder()).c_str());
    }

    static Outcome menu(Words words, const Changes& environment = {}) {
        words.insert(words.begin(), "menu");
        return run_delvio(words, environment);
    }

    // The menu as JSON, from a run that must succeed and print nothing else.
    static json menu_json(Words words) {
        words.insert(words.begin(), "--json");
        const Outcome outcome = menu(words);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return json::parse(outcome.out);
    }

    // The items that a level shows while no key is held.
    static json shown(const json& items) {
        json result = json::array();
        for (const json& item : items) {
            if (item["type"] == "separator" || !item["alternate"]) result.push_back(item);
        }
        return result;
    }

    // The titles that a level shows, "-" for a separator.
    static Words titles(const json& items) {
        Words result;
        for (const json& item : shown(items)) {
            result.push_back(item["type"] == "separator" ? "-" : item["title"].get<std::string>());
        }
        return result;
    }

    // The item with that title. When there is none, the test fails and the result is null.
    static json item(const json& items, const std::string& title) {
        for (const json& candidate : items) {
            if (candidate["title"] == title) return candidate;
        }
        ADD_FAILURE() << "no item " << title << " in " << items;
        return nullptr;
    }

    static json level(const json& items, const std::string& title) {
        const json found = item(items, title);
        return found.is_null() ? json::array() : found["submenu"]["items"];
    }

    static void expect_one_line(const Outcome& outcome, int status, const std::string& hint) {
        EXPECT_EQ(outcome.status, status);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.rfind("delvio: ", 0), 0u) << outcome.err;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
        EXPECT_NE(outcome.err.find(hint), std::string::npos) << outcome.err;
    }
};

}  // namespace test
