#pragma once

#include "errors/Errors.h"
#include "lang/Language.h"
#include "settings/Settings.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FakeNetwork.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeScreen.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"

namespace korvalin {

/// The ground floor of the core over fake ports: clock, errors with a log in a temporary folder, settings.
class CoreFixture : public testing::Test {
  protected:
    CoreFixture() {
        errors.Plug({[](int number) { return std::to_string(number); }, [this] { return folder.Path(); }, [] {}});
    }

    std::string Log() const { return folder.Read("Korvalin_ErrorLog.txt"); }

    TemporaryFolder folder;
    FakeClock clock;
    FakeFiles files;
    FakeMessageBoxes boxes;
    FakeRegistry registry;
    FakeScreen screen;
    FakeShell shell;
    FakeUser user;
    FakeInternet internet;
    FakeNetworkTables network;
    FakeRas ras;
    Locale locale;
    Errors errors{clock, files, boxes, locale, "Korvalin"};
    Settings settings{registry, errors, screen, clock, locale};
};

} // namespace korvalin
