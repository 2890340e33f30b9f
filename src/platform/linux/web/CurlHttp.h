#pragma once

#include "platform/linux/web/CurlTransfer.h"

namespace korvalin {

/// Http on libcurl.
class CurlHttp : public Http {
  public:
    explicit CurlHttp(CurlRules rules = {}) : rules_(std::move(rules)) {}

    std::unique_ptr<HttpStream> Open(const HttpRequest& request) override;

  private:
    CurlRules rules_;
};

} // namespace korvalin
