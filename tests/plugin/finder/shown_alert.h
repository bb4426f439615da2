// Stands in for the platform's standard alerts: records the request and the state while the alert
// is shown.
#pragma once

#include <Carbon/Carbon.h>

#include <functional>
#include <string>

namespace test {

struct ShownAlert {
    int count = 0;  // alerts that were run
    AlertType type = 0;
    std::string message, explanation, default_text, cancel_text;
    bool has_other_text = false;
    bool has_filter = false;
    AlertStdCFStringAlertParamRec parameters = {};
    OSStatus creation_error = noErr;    // the error to return
    std::function<void()> while_shown;  // called before the answer
};

// Since the test's beginning, which sets it to {}.
extern ShownAlert shown_alert;

}  // namespace test
