#pragma once

#include "platform/AddressReader.h"
#include "platform/Http.h"
#include "platform/Signatures.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace korvalin {

/// A web of a few files by their addresses; everything else cannot be reached.
class FakeHttp : public Http {
  public:
    struct Answer {
        std::string Body;
        bool IsMissing = false;
    };
    std::map<std::string, Answer> Answers;
    std::vector<HttpRequest> Requests;

    std::unique_ptr<HttpStream> Open(const HttpRequest& request) override {
        Requests.push_back(request);
        const auto found = Answers.find(request.Address);
        return std::make_unique<Stream>(found == Answers.end() ? Answer{"", true} : found->second);
    }
    /// The addresses asked for since the last call.
    std::vector<std::string> TakeAddresses() {
        std::vector<std::string> addresses;
        for (const HttpRequest& request : std::exchange(Requests, {}))
            addresses.push_back(request.Address);
        return addresses;
    }

  private:
    struct Stream : HttpStream {
        explicit Stream(Answer answer) : Given(std::move(answer)) {}
        std::optional<std::string> Read(std::size_t bytes) override {
            std::string part = Given.Body.substr(Taken, bytes);
            Taken += part.size();
            return Given.IsMissing ? std::nullopt : std::optional(part);
        }
        HttpHead Head() override { return {Given.IsMissing ? 0 : 200, std::nullopt, !Given.IsMissing}; }
        HttpFailure Failure() override {
            return Given.IsMissing ? HttpFailure{7, "no connection"} : HttpFailure();
        }
        Answer Given;
        std::size_t Taken = 0;
    };
};

/// Takes plain addresses apart, without an account or anything odd in them.
class FakeAddressReader : public AddressReader {
  public:
    std::optional<AddressParts> Read(const std::string& address) override {
        const std::size_t colon = address.find("://");
        if (colon == std::string::npos) return std::nullopt;
        const std::string host =
            address.substr(colon + 3, address.find_first_of(":/", colon + 3) - colon - 3);
        return AddressParts{address.substr(0, colon), "", "", host, address};
    }
};

/// Takes the one signature that it is told, and hashes in its own way.
class FakeSignatures : public Signatures {
  public:
    std::string Valid;
    bool Works = true;
    bool CanCheck() override { return Works; }
    bool IsValid(std::string_view, std::string_view signature, std::string_view) override {
        return Works && signature == Valid;
    }
    std::string Sha256(const std::filesystem::path& path) override {
        std::ifstream file(path, std::ios::binary);
        return Sum(std::string(std::istreambuf_iterator<char>(file), {}));
    }
    static std::string Sum(const std::string& content) {
        return fmt::format("{:064x}", std::hash<std::string>()(content));
    }
};

} // namespace korvalin
