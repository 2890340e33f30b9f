#include "fakes/CoreFixture.h"
#include "lang/UnitFormat.h"
#include "settingsdlg/SettingsApplier.h"

using namespace korvalin;

namespace {

class SettingsApplierTest : public CoreFixture {
  protected:
    void Apply() {
        const auto effect = [this](const char* name) {
            return [this, name](auto...) { effects.push_back(name); };
        };
        SettingsApplier applier({settings, errors, locale, units, live, traffic},
                                {[] { return std::filesystem::path("/old/"); },
                                 [this](const std::filesystem::path&, const std::filesystem::path&) {
                                     effects.push_back("move");
                                     return moves;
                                 },
                                 [this](bool) {
                                     if (failing) throw std::runtime_error("no disk");
                                     effects.push_back("autostart");
                                 },
                                 effect("topmost"), effect("opacity"), effect("history"), effect("tray"),
                                 effect("chart"), effect("password")});
        applier.ApplyChanges(entered, chosen);
    }

    UnitFormat units{errors, locale, clock};
    InfoTexts live;
    TrafficOptions traffic;
    SettingsRecord chosen;
    EnteredSettings entered;
    bool moves = true;
    bool failing = false;
    Lines effects;
};

TEST_F(SettingsApplierTest, EffectsFollowTheirSettings) {
    entered.DataPath = "/new";
    entered.ChartMinutes = "7";
    chosen.Display.TrayAnimated = false;
    Apply();
    EXPECT_EQ(effects, (Lines{"move", "autostart", "topmost", "history", "opacity", "tray", "chart"}));
    EXPECT_EQ(settings.Get(Keys::DataPath), "/new");
    EXPECT_EQ(chosen.Display.ConnDataMax, 420) << "what has become of it";
}

TEST_F(SettingsApplierTest, AFolderThatIsNotTakenIsNotStored) {
    for (const char* place : {"/old/", "/new"}) {
        moves = false;
        entered.DataPath = place;
        Apply();
        EXPECT_EQ(settings.Get(Keys::DataPath), "") << place;
    }
    EXPECT_EQ(std::count(effects.begin(), effects.end(), "move"), 1) << "the present folder is not moved to";
}

TEST_F(SettingsApplierTest, WhatWasWrittenBeforeAnErrorStays) {
    failing = true;
    entered.MultiInstance = true;
    Apply();
    EXPECT_NE(boxes.Take().Text.find("ApplyChanges"), std::string::npos);
    EXPECT_FALSE(settings.Get(Keys::CloseTrayOnly));
    EXPECT_FALSE(settings.Get(Keys::MultiInstance));
}

} // namespace
