#include "finderkit/desktop_carrier.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>

#include "finderkit/desktop_managers.h"
#include "finderkit/session_bus.h"
#include "hosts/bus_service.h"
#include "operations/engine.h"
#include "support/temp_folder.h"
#include "support/waiting.h"

namespace {

using operations::Kind;
using operations::Outcome;
using operations::Report;
using operations::Request;
using operations::State;
using test::wait_for;
using Calls = std::vector<std::string>;

// The interfaces as the file managers declare them.
const char thunar_interfaces[] =
    "<node><interface name='org.xfce.FileManager'>"
    "<method name='CopyInto'><arg type='s' direction='in'/><arg type='as' direction='in'/>"
    "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "</method>"
    "<method name='MoveInto'><arg type='s' direction='in'/><arg type='as' direction='in'/>"
    "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "</method></interface>"
    "<interface name='org.xfce.Trash'><method name='MoveToTrash'>"
    "<arg type='as' direction='in'/><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "</method></interface></node>";
const char nautilus_interfaces[] =
    "<node><interface name='org.gnome.Nautilus.FileOperations2'>"
    "<method name='CopyURIs'><arg type='as' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='a{sv}' direction='in'/></method>"
    "<method name='MoveURIs'><arg type='as' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='a{sv}' direction='in'/></method>"
    "<method name='TrashURIs'><arg type='as' direction='in'/><arg type='a{sv}' direction='in'/>"
    "</method></interface></node>";

const char thunar_name[] = "org.xfce.FileManager", thunar_object[] = "/org/xfce/FileManager";
const char nautilus_name[] = "org.gnome.Nautilus";
const char nautilus_object[] = "/org/gnome/Nautilus/FileOperations2";

class Waiter : public operations::Observer {
  public:
    Report wait() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return ended_; });
        return report_;
    }

  private:
    void ended(const Report& report) override {
        const std::lock_guard guard(mutex_);
        report_ = report;
        ended_ = true;
        changed_.notify_all();
    }
    std::mutex mutex_;
    std::condition_variable changed_;
    bool ended_ = false;
    Report report_;
};

// Stands behind the desktop's, and says so.
class Second : public operations::Carrier {
  public:
    void carry_out(Request request, std::shared_ptr<operations::Observer> observer) override {
        Report report;
        for (const std::string& source : request.sources) {
            report.outcomes.push_back({source, State::Done, "second", ""});
        }
        observer->ended(report);
    }
};

class DesktopCarrier : public testing::Test {
  protected:
    Report carry_out(const Request& request) {
        auto waiter = std::make_shared<Waiter>();
        const auto carrier = make_desktop_carrier(std::make_unique<Second>());
        carrier->carry_out(request, waiter);
        return waiter->wait();
    }
    Request request(Kind kind, bool replace = false) {
        return {kind, {folder_.file("a b"), folder_.file("c\xff")}, folder_.folder("to"), replace};
    }
    static bool is_from_second(const Report& report) {
        return !report.outcomes.empty() && report.outcomes[0].target == "second";
    }
    std::string sources() const {
        return "['file://" + folder_.path() + "/a%20b', 'file://" + folder_.path() + "/c%FF']";
    }
    std::string destination() const { return "'file://" + folder_.path("to") + "'"; }

    test::TempFolder folder_;
};

}  // namespace

TEST_F(DesktopCarrier, ThunarIsAskedByItsOwnMethods) {
    const std::string display = getenv("DISPLAY");
    const test::SessionBus bus;
    test::BusService thunar(bus, thunar_name, thunar_object, thunar_interfaces);
    for (const Kind kind : {Kind::Move, Kind::Copy, Kind::Trash}) {
        const Report report = carry_out(request(kind));
        ASSERT_EQ(report.outcomes.size(), 2u);
        EXPECT_EQ(report.outcomes[0].state, State::Done);
        EXPECT_EQ(report.outcomes[0].target, "");
    }
    const std::string rest =
        "('/', " + sources() + ", " + destination() + ", '" + display + "', '')";
    EXPECT_EQ(thunar.calls(),
              Calls({"org.xfce.FileManager.MoveInto" + rest, "org.xfce.FileManager.CopyInto" + rest,
                     "org.xfce.Trash.MoveToTrash(" + sources() + ", '" + display + "', '')"}));
}

TEST_F(DesktopCarrier, WhatAFileManagerDidIsNotUndoneNorWhatWasDoneBefore) {
    Waiter observer;
    const std::string before = folder_.file("from/before", "text");
    folder_.folder("to");
    operations::perform_request({Kind::Move, {before}, folder_.path("to"), false}, observer);
    const test::SessionBus bus;
    test::BusService thunar(bus, thunar_name, thunar_object, thunar_interfaces);
    carry_out(request(Kind::Move));
    const Report report = operations::undo_last(observer);
    ASSERT_EQ(report.outcomes.size(), 1u);
    EXPECT_EQ(report.outcomes[0].state, State::Failed);
    EXPECT_EQ(
        report.outcomes[0].reason,
        "the last operation (moving \"a b\" and 1 other) was handed to Thunar, and can only be "
        "undone there");
    EXPECT_EQ(test::read_file(folder_.path("to/before")), "text");
}

TEST_F(DesktopCarrier, NautilusIsAskedByItsOwnMethods) {
    const test::SessionBus bus;
    test::BusService nautilus(bus, nautilus_name, nautilus_object, nautilus_interfaces);
    for (const Kind kind : {Kind::Move, Kind::Copy, Kind::Trash}) {
        EXPECT_FALSE(is_from_second(carry_out(request(kind))));
    }
    const std::string interface = "org.gnome.Nautilus.FileOperations2.";
    const std::string rest = "(" + sources() + ", " + destination() + ", {})";
    EXPECT_EQ(nautilus.calls(), Calls({interface + "MoveURIs" + rest, interface + "CopyURIs" + rest,
                                       interface + "TrashURIs(" + sources() + ", {})"}));
}

TEST_F(DesktopCarrier, AliasesAndReplacingAreAnothersWork) {
    const test::SessionBus bus;
    test::BusService thunar(bus, thunar_name, thunar_object, thunar_interfaces);
    EXPECT_TRUE(is_from_second(carry_out(request(Kind::Alias))));
    EXPECT_TRUE(is_from_second(carry_out(request(Kind::Move, true))));
    EXPECT_TRUE(is_from_second(carry_out(request(Kind::Copy, true))));
    EXPECT_EQ(thunar.calls(), Calls());
}

TEST_F(DesktopCarrier, WithoutABusOrAManagerAnotherDoesTheWork) {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_TRUE(is_from_second(carry_out(request(Kind::Move))));
    const test::SessionBus bus;
    EXPECT_TRUE(is_from_second(carry_out(request(Kind::Move))));
}

TEST_F(DesktopCarrier, AManagerWithoutTheMethodCountsAsNone) {
    const test::SessionBus bus;
    test::BusService old(bus, nautilus_name, nautilus_object,
                         "<node><interface name='org.example.Other'/></node>");
    EXPECT_TRUE(is_from_second(carry_out(request(Kind::Move))));
}

TEST_F(DesktopCarrier, ARefusalIsReportedAndNothingIsTriedAgain) {
    const test::SessionBus bus;
    test::BusService nautilus(bus, nautilus_name, nautilus_object, nautilus_interfaces, "too busy");
    const Report report = carry_out(request(Kind::Move));
    ASSERT_EQ(report.outcomes.size(), 2u);
    for (const Outcome& outcome : report.outcomes) {
        EXPECT_EQ(outcome.state, State::Failed);
        EXPECT_NE(outcome.reason.find("too busy"), std::string::npos) << outcome.reason;
    }
    EXPECT_EQ(nautilus.calls().size(), 1u);
}

TEST_F(DesktopCarrier, OneThatEndsInsteadOfAnsweringIsAskedAgain) {
    const test::SessionBus bus;
    test::BusService ending(bus, thunar_name, thunar_object, thunar_interfaces,
                            test::BusService::ends);
    test::BusService started(bus, thunar_name, thunar_object, thunar_interfaces);
    const Report report = carry_out(request(Kind::Move));
    ASSERT_EQ(report.outcomes.size(), 2u);
    EXPECT_EQ(report.outcomes[0].state, State::Done) << report.outcomes[0].reason;
    EXPECT_FALSE(is_from_second(report));
    EXPECT_EQ(ending.calls().size(), 1u);
    EXPECT_EQ(started.calls(), ending.calls());
}

TEST_F(DesktopCarrier, OneThatHasEndedForGoodLeavesTheWorkUndone) {
    const test::SessionBus bus;
    test::BusService ending(bus, thunar_name, thunar_object, thunar_interfaces,
                            test::BusService::ends);
    EXPECT_TRUE(is_from_second(carry_out(request(Kind::Move))));
    EXPECT_EQ(ending.calls().size(), 1u);
}

TEST_F(DesktopCarrier, WhatIsGoneIsReportedAndNotHandedOver) {
    const test::SessionBus bus;
    test::BusService nautilus(bus, nautilus_name, nautilus_object, nautilus_interfaces);
    Request wanted = request(Kind::Move);
    unlink(wanted.sources[0].c_str());
    Report report = carry_out(wanted);
    ASSERT_EQ(report.outcomes.size(), 2u);
    EXPECT_EQ(report.outcomes[0].state, State::Failed);
    EXPECT_EQ(report.outcomes[0].reason, "\"a b\" is no longer there");
    EXPECT_EQ(report.outcomes[1].state, State::Done);
    ASSERT_EQ(nautilus.calls().size(), 1u);
    EXPECT_EQ(nautilus.calls()[0].find("a%20b"), std::string::npos);
    unlink(wanted.sources[1].c_str());
    report = carry_out(wanted);
    EXPECT_EQ(report.outcomes[1].state, State::Failed);
    EXPECT_EQ(nautilus.calls().size(), 1u);
}

TEST_F(DesktopCarrier, ADestinationThatIsNoFolderIsAnothersToReport) {
    const test::SessionBus bus;
    test::BusService nautilus(bus, nautilus_name, nautilus_object, nautilus_interfaces);
    Request wanted = request(Kind::Copy);
    wanted.destination = folder_.file("file");
    EXPECT_TRUE(is_from_second(carry_out(wanted)));
    EXPECT_EQ(nautilus.calls(), Calls());
}

TEST_F(DesktopCarrier, OneThatRunsComesFirst) {
    const test::SessionBus bus;
    test::BusService thunar(bus, thunar_name, thunar_object, thunar_interfaces);
    test::BusService nautilus(bus, nautilus_name, nautilus_object, nautilus_interfaces);
    const files::ObjectOwner<GDBusConnection> connection = connect_to_session_bus();
    const auto managers = managers_on_bus(connection.get());
    ASSERT_EQ(managers.size(), 2u);
    EXPECT_STREQ(managers[0]->service, thunar_name);
}

TEST_F(DesktopCarrier, AManagerIsNotAskedForWhatItHasNoMethodFor) {
    const test::SessionBus bus;
    test::BusService nautilus(bus, nautilus_name, nautilus_object, nautilus_interfaces);
    const files::ObjectOwner<GDBusConnection> connection = connect_to_session_bus();
    DesktopManager copier = *managers_on_bus(connection.get()).at(0);
    copier.methods[0] = copier.methods[1];
    copier.methods[1] = copier.methods[2] = {};
    std::string reason;
    const Request move = request(Kind::Move), copy = request(Kind::Copy);
    EXPECT_EQ(ask_manager(connection.get(), copier, move, &reason), Handover::absent);
    EXPECT_EQ(nautilus.calls(), Calls());
    EXPECT_EQ(ask_manager(connection.get(), copier, copy, &reason), Handover::taken) << reason;
    EXPECT_EQ(nautilus.calls().size(), 1u);
}

namespace {

// The real file manager, if it is installed: a bus starts it, with the test's X server.
class RealThunar : public DesktopCarrier {
  protected:
    void SetUp() override {
        if (access("/usr/share/dbus-1/services/org.xfce.FileManager.service", R_OK) != 0) {
            GTEST_SKIP() << "Thunar is not installed";
        }
        bus_ = std::make_unique<test::SessionBus>(true);
    }
    // Empty when the file manager has taken over everything.
    static std::string said_of(const Report& report) {
        for (const Outcome& outcome : report.outcomes) {
            if (outcome.state != State::Done) return outcome.source + ": " + outcome.reason;
            if (!outcome.target.empty()) return "another did the work";
        }
        return report.outcomes.empty() ? "nothing is said" : "";
    }
    // The bus's services end with it.
    bool is_there(const std::string& path) const {
        struct stat status;
        return lstat(path.c_str(), &status) == 0;
    }
    std::unique_ptr<test::SessionBus> bus_;
};

}  // namespace

TEST_F(RealThunar, MovesAndCopiesAndTrashes) {
    const std::string odd[] = {"-rf",     "line\nbreak", "not utf8 \xff", std::string(255, 'n'),
                               "100% #?", "plain"};
    Request wanted = {Kind::Copy, {}, folder_.folder("to \xff"), false};
    for (const std::string& name : odd) wanted.sources.push_back(folder_.file(name, "text"));
    wanted.sources.push_back(folder_.folder("folder"));
    folder_.file("folder/inside", "inside");
    const auto all_there = [&](const std::string& folder) {
        for (const std::string& name : odd) {
            if (test::read_file(folder + "/" + name) != "text") return false;
        }
        return test::read_file(folder + "/folder/inside") == "inside";
    };
    EXPECT_EQ(said_of(carry_out(wanted)), "");
    EXPECT_TRUE(wait_for([&] { return all_there(wanted.destination); }));
    EXPECT_TRUE(all_there(folder_.path())) << "the originals stay";

    wanted.kind = Kind::Move;
    wanted.destination = folder_.folder("moved");
    EXPECT_EQ(said_of(carry_out(wanted)), "");
    EXPECT_TRUE(wait_for([&] {
        return all_there(wanted.destination) && !is_there(folder_.path("plain")) &&
               !is_there(folder_.path("folder"));
    }));

    Request trash = {Kind::Trash, {folder_.path("moved/plain")}, "", false};
    EXPECT_EQ(said_of(carry_out(trash)), "");
    EXPECT_TRUE(wait_for([&] { return !is_there(trash.sources[0]); }));
}
