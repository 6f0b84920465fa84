#pragma once

// The application object the tests of one executable share: created before the first test,
// destroyed after the last. Network replies, timers and queued calls need it.

#include <gtest/gtest.h>

#include <QNetworkProxy>

#include <memory>

namespace orvanta::testing {

template <typename Application> class ApplicationEnvironment : public ::testing::Environment
{
public:
    void SetUp() override
    {
        application = std::make_unique<Application>(argc, argv);
        // Loopback traffic never goes through a proxy the machine may name.
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    }
    void TearDown() override { application.reset(); }

private:
    int argc = 1;
    char name[32] = "orvanta_update_tests";
    char* argv[2] = {name, nullptr};
    std::unique_ptr<Application> application;
};

} // namespace orvanta::testing
