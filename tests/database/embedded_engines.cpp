// Runs the contract over the embedded engine.
#include "database/contract.h"
#include "database/embedded.h"

namespace vordane::database {

INSTANTIATE_TEST_SUITE_P(Embedded, DatabaseContract,
                         testing::Values(EngineFactory{
                             "sqlite", [] { return std::make_unique<sqlite::EmbeddedUnderTest>(); }}),
                         [](const auto& run) { return run.param.name; });

}  // namespace vordane::database
