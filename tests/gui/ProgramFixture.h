#pragma once

#include "platform/Ports.h"
#include "startup/Program.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeFiles.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FakeNetwork.h"
#include "fakes/FakeRegistry.h"
#include "fakes/FakeScreen.h"
#include "fakes/FakeSystem.h"
#include "fakes/TemporaryFolder.h"

namespace korvalin {

/// The whole core over fake ports, with the language file of the product and English texts.
class ProgramFixture : public testing::Test {
  protected:
    ProgramFixture() {
        std::filesystem::copy_file(KORVALIN_RESOURCES "/lang/Korvalin.lng", folder / "Korvalin.lng");
        shell.Executable = folder / "Korvalin.exe";
        shell.Folders[SpecialFolderCommonAppData] = folder / "data";
        program = std::make_unique<Program>(
            Ports{registry, network, internet, ras, clock, events, boxes, screen, shell, user, lock, files}, Locale());
        program->settings.SetReg("Language", "ENG");
    }

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
    FakeEvents events{clock};
    FakeInstanceLock lock;
    std::unique_ptr<Program> program;
};

} // namespace korvalin
