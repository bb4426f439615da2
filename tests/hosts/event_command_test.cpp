// Apple Events from a plug-in to the real command.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hosts/command_runner.h"
#include "support/recording_program.h"
#include "support/temp_folder.h"

namespace {

using test::Outcome;

struct CommandEvents : testing::Test {
    Outcome menu_with_event(const std::string& document, const std::string& trace) {
        return test::run_delvio({"menu", "--print", folder.path()},
                                {{"DELVIO_BUNDLE", PROBE_BUNDLE},
                                 {"PROBE_DOCUMENT", document},
                                 {"DELVIO_TRACE", trace}});
    }
    static std::string line_of(const std::string& document) {
        return "aevt/odoc to \"MACS\"\n  ----: fsrf \"" + document + "\"\n";
    }
    test::TempFolder folder;
};

TEST_F(CommandEvents, AreHandledBeforeItEnds) {
    const test::RecordingProgram program({"text/plain"});
    const std::string document = folder.file("document.txt", "text");
    const Outcome outcome = menu_with_event(document, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(program.wait(), std::vector<std::string>({document}));
}

TEST_F(CommandEvents, AreTraced) {
    const test::RecordingProgram program({"text/plain"});
    const std::string document = folder.file("document.txt", "text");
    const Outcome outcome = menu_with_event(document, "-");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, line_of(document));
    EXPECT_EQ(menu_with_event(document, folder.path("trace")).err, "");
    EXPECT_EQ(test::read_file(folder.path("trace")), line_of(document));
}

TEST_F(CommandEvents, ATraceThatCannotBeWrittenIsReportedInOneLine) {
    const Outcome outcome = menu_with_event(folder.path(), folder.path("no/trace"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "delvio: cannot write the trace to " + folder.path("no/trace") +
                               ": No such file or directory\n");
}

}  // namespace
