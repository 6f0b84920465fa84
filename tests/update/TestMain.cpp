// The tests of this executable share one application object.

#include "support/TestApplication.h"

#include <QCoreApplication>

namespace {

[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new orvanta::testing::ApplicationEnvironment<QCoreApplication>);

} // namespace
