// Runs the contract over a store on a real server.
#include "database/contract.h"
#include "odbc/server_store.h"

namespace vordane::database {

INSTANTIATE_TEST_SUITE_P(Server, DatabaseContract,
                         testing::Values(EngineFactory{
                             "postgres", [] { return std::make_unique<odbc::ServerUnderTest>(); }}),
                         [](const auto& run) { return run.param.name; });

}  // namespace vordane::database
