// What the doctor mends when it is asked to: nothing by which anything stored is lost.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "doctor_surroundings.h"
#include "language_source.h"
#include "setup.h"

namespace vordane::tools {

// What mending needs. All of it lives longer.
struct Medicine {
  const SuiteLayout& layout;
  database::Engine& engine;
  SetupSystem& system;
  const Surroundings& around;
  const LanguageSource* language;  // null: texts can't be made
};

// "make the fault index anew"; empty for Remedy::none.
std::string deedOf(Remedy remedy);

// Throws ToolError or database::DatabaseError; then everything is as before.
void apply(Remedy remedy, const Medicine& medicine);

// The remedies of findings, each once, in their order.
std::vector<Remedy> remediesFor(const std::vector<Finding>& findings);

// What the doctor says, for programs: one JSON object, `mended` being the deeds done.
std::string jsonOf(const std::string& suite, const std::vector<Finding>& findings,
                   const std::vector<std::string>& mended);

}  // namespace vordane::tools
