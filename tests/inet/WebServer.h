#pragma once

#include "fakes/TemporaryFolder.h"

#include <QProcess>
#include <gtest/gtest.h>

namespace korvalin {

/// The misbehaving web server of the system tests, for as long as the object lives.
class WebServer {
  public:
    WebServer() {
        process_.start(QStringLiteral("python3"),
                       {QStringLiteral("-B"), QStringLiteral(KORVALIN_WEB_SERVER),
                        QString::fromStdString(Folder.Path().string()), QStringLiteral("certificates")});
        for (const QByteArray& port : ReadLine().split(' '))
            ports_.push_back(port.toInt());
        EXPECT_GT(ports_[0], 0) << process_.readAllStandardError().toStdString();
    }
    ~WebServer() {
        process_.closeWriteChannel();
        process_.waitForFinished();
    }

    std::string Http() const { return "http://127.0.0.1:" + std::to_string(ports_[0]) + "/"; }
    std::string Https() const { return "https://127.0.0.1:" + std::to_string(ports_[1]) + "/"; }
    std::string WronglyCertified() const { return "https://127.0.0.1:" + std::to_string(ports_[2]) + "/"; }

    /// The address of a proxy that asks for an account in that way.
    std::string Proxy(const std::string& scheme) const {
        return "http://127.0.0.1:" + std::to_string(ports_[scheme == "Basic" ? 3 : 4]);
    }

    /// The paths asked for since the last call.
    std::vector<std::string> TakeRequests() {
        std::vector<std::string> paths;
        process_.waitForReadyRead(0);
        while (process_.canReadLine())
            paths.push_back(process_.readLine().trimmed().toStdString());
        return paths;
    }

    TemporaryFolder Folder; ///< what it serves

  private:
    QByteArray ReadLine() {
        while (!process_.canReadLine() && process_.waitForReadyRead()) {
        }
        return process_.readLine().trimmed();
    }

    QProcess process_;
    std::vector<int> ports_;
};

} // namespace korvalin
