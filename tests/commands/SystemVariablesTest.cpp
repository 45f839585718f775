// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <ctime>

#include "drafthost/commands/DateTime.h"
#include "drafthost/commands/VariableRows.h"
#include "tests/commands/TestDrawings.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

class Variables : public TestHost {
  protected:
    VariableStatus set(std::string_view name, const VariableValue& value) {
        return host.variables().set(name, value, reason);
    }
    std::string reason;
};

TEST_F(Variables, TheTableIsSortedAndItsInitialValuesKeepTheirOwnRanges) {
    std::string_view last;
    for (const commands::VariableRow& row : commands::variableRows()) {
        EXPECT_LT(last, row.name);
        last = row.name;
        const VariableEntry* entry = host.variables().find(row.name);
        ASSERT_NE(entry, nullptr) << row.name;
        double value = std::holds_alternative<int>(entry->defaultValue) ? std::get<int>(entry->defaultValue)
                       : std::holds_alternative<double>(entry->defaultValue)
                           ? std::get<double>(entry->defaultValue)
                           : entry->minimum.value_or(0);
        EXPECT_GE(value, entry->minimum.value_or(value)) << row.name;
        EXPECT_LE(value, entry->maximum.value_or(value)) << row.name;
        auto now = host.variables().get(row.name);
        ASSERT_TRUE(now) << row.name;
        EXPECT_EQ(now->index(), entry->defaultValue.index()) << row.name << " changes its type";
    }
}

TEST_F(Variables, HeaderValuesAreReadAndWrittenWhereTheyStand) {
    open(write("plan.dxf", drawing2000()));
    EXPECT_EQ(std::get<Point2>(variable("LIMMAX")), (Point2{40, 30}));
    EXPECT_EQ(text("CECOLOR"), "BYLAYER");
    EXPECT_EQ(set("CECOLOR", std::string("red")), VariableStatus::Ok);
    EXPECT_EQ(set("clayer", std::string("walls")), VariableStatus::Ok);
    EXPECT_EQ(set("ANGBASE", std::acos(-1.0) / 2), VariableStatus::Ok);
    EXPECT_EQ(set("INSBASE", Point{1, 2, 3}), VariableStatus::Ok);
    EXPECT_EQ(integer("DBMOD"), 4);
    EXPECT_EQ(text("CLAYER"), "Walls") << "the table's way to write the name";
    type("qsave\n");
    std::string saved = read(path("plan.dxf"));
    EXPECT_NE(saved.find("$CECOLOR\n 62\n1\n"), std::string::npos) << saved.substr(0, 900);
    EXPECT_NE(saved.find("$CLAYER\n  8\nWalls\n"), std::string::npos);
    EXPECT_NE(saved.find("$ANGBASE\n 50\n90.0\n"), std::string::npos);
    EXPECT_NE(saved.find("$INSBASE\n 10\n1.0\n 20\n2.0\n 30\n3.0\n"), std::string::npos);
    EXPECT_EQ(set("LTSCALE", 1), VariableStatus::Ok);
    EXPECT_EQ(integer("DBMOD"), 0) << "the same value again is no change";
}

TEST_F(Variables, WhatADrawingDoesNotAllowIsRefusedWithAReason) {
    open(write("plan.dxf", drawing2000()));
    struct Case {
        const char* name;
        VariableValue value;
        VariableStatus status;
    };
    for (const Case& wrong :
         {Case{"CLAYER", std::string("Nowhere"), VariableStatus::Rejected},
          Case{"CLAYER", std::string("Doors"), VariableStatus::Rejected},
          Case{"CELTYPE", std::string("DOTTED"), VariableStatus::Rejected},
          Case{"CELWEIGHT", 26, VariableStatus::Rejected},
          Case{"CTAB", std::string("Nowhere"), VariableStatus::Rejected},
          Case{"SDI", 2, VariableStatus::Rejected}, Case{"EXPERT", 6, VariableStatus::OutOfRange},
          Case{"LTSCALE", 0.0, VariableStatus::OutOfRange}, Case{"USERI1", 40000, VariableStatus::OutOfRange},
          Case{"FILEDIA", std::string("x"), VariableStatus::WrongType},
          Case{"DBMOD", 0, VariableStatus::ReadOnly}, Case{"NOSUCHVAR", 0, VariableStatus::Unknown}}) {
        auto before = host.variables().get(wrong.name);
        reason.clear();
        EXPECT_EQ(set(wrong.name, wrong.value), wrong.status) << wrong.name;
        EXPECT_FALSE(reason.empty()) << wrong.name;
        EXPECT_EQ(host.variables().get(wrong.name), before) << wrong.name;
    }
    EXPECT_EQ(integer("DBMOD"), 0);
}

TEST_F(Variables, AnOldDrawingIsNotGivenHeaderValuesThatItsVersionLacks) {
    open(write("old.dxf", drawingR12()));
    EXPECT_EQ(set("INSUNITS", 4), VariableStatus::Ok);
    EXPECT_EQ(integer("INSUNITS"), 4);
    EXPECT_EQ(set("LTSCALE", 2.0), VariableStatus::Ok);
    type("qsave\n");
    std::string saved = read(path("old.dxf"));
    EXPECT_EQ(saved.find("INSUNITS"), std::string::npos);
    EXPECT_NE(saved.find("$LTSCALE\n 40\n2.0\n"), std::string::npos);
}

TEST_F(Variables, SetvarAsksAgainUntilTheValueFits) {
    open(write("plan.dxf", drawing2000()));
    type("setvar nosuch ltscale x -1 2.5\n");
    EXPECT_EQ(std::get<double>(variable("LTSCALE")), 2.5) << output;
    EXPECT_NE(output.find("nosuch"), std::string::npos);
    type("setvar\n\n3.5\n");
    EXPECT_EQ(std::get<double>(variable("LTSCALE")), 3.5) << "the variable set last is the default";
    type("clayer \"Hidden lines\"\n");
    EXPECT_EQ(text("CLAYER"), "Hidden lines");
    type("users1 hello users1 .\n");
    EXPECT_EQ(text("USERS1"), "");
    type("dbmod\n");
    EXPECT_NE(output.find("read only"), std::string::npos);
    EXPECT_TRUE(idle());
    type("setvar ? user#1\n");
    EXPECT_EQ(output.find("USERI1"), std::string::npos);
    type("setvar ? user@[12]\n");
    EXPECT_NE(output.find("USERI1"), std::string::npos);
    EXPECT_NE(output.find("USERS2"), std::string::npos);
    EXPECT_EQ(output.find("USERI3"), std::string::npos);
    type("ltscale\n\n");
    EXPECT_EQ(std::get<double>(variable("LTSCALE")), 3.5) << "Enter keeps the value";
}

TEST_F(Variables, DatesAreLocalTime) {
    ::setenv("TZ", "UTC-2", 1);
    ::tzset();
    auto when = std::chrono::sys_days{std::chrono::January / 1 / 2000} + std::chrono::hours(22) +
                std::chrono::milliseconds(1500);
    EXPECT_NEAR(commands::calendarDate(when), 20000102.0000015, 1e-8);
    EXPECT_NEAR(commands::julianDate(when), 2451546.0 + 1.5 / 86400, 1e-9);
    ::unsetenv("TZ");
    ::tzset();
}

TEST_F(Variables, TheCurrentTabMovesTheContentsOfLayouts) {
    ASSERT_EQ(set("SDI", 1), VariableStatus::Ok);
    open(write("plan.dxf", drawing2000()));
    EXPECT_EQ(text("CTAB"), "Model");
    type("tilemode 0\n");
    EXPECT_EQ(text("CTAB"), "Sheet");
    EXPECT_EQ(integer("CVPORT"), 1);
    type("regen\n");
    EXPECT_EQ(std::get<Point>(variable("EXTMAX"))[0], 55.0);
    EXPECT_EQ(set("CTAB", std::string("detail")), VariableStatus::Ok) << reason;
    EXPECT_EQ(text("CTAB"), "Detail");
    type("regen\n");
    EXPECT_EQ(std::get<Point>(variable("EXTMAX"))[0], 77.0);
    type("qsave\n");
    open(path("plan.dxf"));
    EXPECT_EQ(text("CTAB"), "Detail") << "stays so in the file";
    EXPECT_EQ(set("CTAB", std::string("Sheet")), VariableStatus::Ok) << reason;
    type("regen\n");
    EXPECT_EQ(std::get<Point>(variable("EXTMAX"))[0], 55.0);
    EXPECT_EQ(set("CTAB", std::string("MODEL")), VariableStatus::Ok);
    type("regen\n");
    EXPECT_EQ(std::get<Point>(variable("EXTMAX")), (Point{30, 20, 0}));
}

}  // namespace

}  // namespace drafthost::test
