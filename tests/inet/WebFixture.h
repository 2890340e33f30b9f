#pragma once

#include "fakes/CoreFixture.h"
#include "inet/WebFetch.h"
#include "inet/WebServer.h"
#include "platform/linux/files/PosixFiles.h"
#include "platform/linux/web/CurlHttp.h"
#include "platform/qt/CurlTransferControl.h"
#include "platform/qt/QtEvents.h"

namespace korvalin {

enum class Transport { Loop, Control };

/// Real transfers from the misbehaving server, under a clock that stands still unless a test lets it run.
class WebFixture : public CoreFixture {
  protected:
    /// While something is waited for, `SecondsPerWait` pass by the fake clock.
    class HurriedEvents : public QtEvents {
      public:
        explicit HurriedEvents(FakeClock& clock) : clock_(clock) {}
        void Wait(int) override {
            QtEvents::Wait(2);
            clock_.Advance(SecondsPerWait);
        }
        double SecondsPerWait = 0;

      private:
        FakeClock& clock_;
    };

    explicit WebFixture(WebServer::Certificates certificates = WebServer::Certificates::No)
        : server(certificates) {
        KeepDataInFolder();
    }
    ~WebFixture() override { fetch.UseControl(nullptr); }

    void Use(Transport transport) { fetch.UseControl(transport == Transport::Control ? &control : nullptr); }

    WebServer server;
    // What the loop waits a minute for is over in a second here; the control goes by the clock.
    CurlRules rules{5, 1, 120, (server.Folder / "ca.pem").string()};
    HurriedEvents hurried{clock};
    PosixFiles realFiles;
    CurlHttp curl{rules};
    CurlTransferControl control{{5, 60, 120, rules.TrustedCertificates}};
    WebFetch::Parts FetchParts(Http& transport) {
        return {.Http = transport,
                .Settings = settings,
                .Errors = errors,
                .Files = realFiles,
                .Events = hurried,
                .Clock = clock,
                .Language = language,
                .DataFolder = dataFolder,
                .Version = {2, 3, 12}};
    }
    WebFetch fetch{FetchParts(curl)};
};

} // namespace korvalin
